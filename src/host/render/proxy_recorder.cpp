#include <bit>
#include <cstring>
#include <vector>

#include "base/encoding.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/render/kept_graphics.h"
#include "host/render/looks.h"
#include "host/render/proxy_format.h"
#include "host/render/proxy_graphics.h"
#include "platform/db/database.h"
#include "platform/gi/drawable.h"

namespace sg::render {
namespace {

using namespace proxy;

static_assert(std::endian::native == std::endian::little, "the list is little-endian");

constexpr int kDeepestNesting = 64;
// Symbols are small; a block that is a drawing of its own is not written into each entity that
// shows it.
constexpr size_t kMostBytes = 1 << 20;
constexpr int kWeightByLayer = -1;
constexpr int kWeightByBlock = -2;

// ---- The list -----------------------------------------------------------------------------------

class CallList {
  public:
    // Begins a call; what is put next are its arguments.
    CallList& call(Call kind) {
        end();
        start_ = bytes_.size();
        ++calls_;
        return whole(0).whole(kind);
    }
    CallList& whole(int32_t value) { return put(&value, sizeof(value)); }
    CallList& real(double value) { return put(&value, sizeof(value)); }
    CallList& point(const AcGePoint3d& point) { return real(point.x).real(point.y).real(point.z); }
    CallList& vector(const AcGeVector3d& vector) {
        return real(vector.x).real(vector.y).real(vector.z);
    }
    CallList& points(uint32_t count, const AcGePoint3d* points) {
        whole(static_cast<int32_t>(count));
        for (uint32_t i = 0; i < count; ++i)
            point(points[i]);
        return *this;
    }
    // In 16-bit units, with a zero at the end.
    CallList& text(std::wstring_view text) {
        const std::u16string units = toUtf16(text);
        put(units.c_str(), (units.size() + 1) * sizeof(char16_t));
        bytes_.resize((bytes_.size() + kAlignment - 1) / kAlignment * kAlignment);
        return *this;
    }

    bool isEmpty() const { return calls_ == 0; }
    size_t size() const { return bytes_.size(); }
    std::string take() {
        end();
        const auto size = static_cast<int32_t>(bytes_.size());
        std::memcpy(bytes_.data(), &size, sizeof(size));
        std::memcpy(bytes_.data() + sizeof(size), &calls_, sizeof(calls_));
        return std::move(bytes_);
    }

  private:
    CallList& put(const void* data, size_t size) {
        bytes_.append(static_cast<const char*>(data), size);
        return *this;
    }
    void end() {
        if (start_ == 0) return;
        const auto size = static_cast<int32_t>(bytes_.size() - start_);
        std::memcpy(bytes_.data() + start_, &size, sizeof(size));
    }

    std::string bytes_ = std::string(kHeadBytes, '\0');
    size_t start_ = 0;  // of the last call; 0: there is none
    int32_t calls_ = 0;
};

// ---- Properties ---------------------------------------------------------------------------------

struct Traits final : AcGiSubEntityTraits {
    explicit Traits(const AcDbEntity& entity) : now(Properties::of(entity)) {}

    void setColor(uint16_t index) override { now.color.setColorIndex(index); }
    void setTrueColor(const AcCmColor& color) override { now.color = color; }
    void setLayer(AcDbObjectId layer) override { now.layer = layer; }
    void setLineType(AcDbObjectId linetype) override { now.linetype = linetype; }
    void setLineTypeScale(double scale) override { now.linetypeScale = scale; }
    void setLineWeight(int weight) override { now.lineWeight = weight; }
    void setFillType(AcGiFillType type) override { fill = type; }
    void setSelectionMarker(int64_t) override {}
    void setThickness(double value) override { rise = value; }

    uint16_t color() const override { return now.color.colorIndex(); }
    AcCmColor trueColor() const override { return now.color; }
    AcDbObjectId layerId() const override { return now.layer; }
    AcDbObjectId lineTypeId() const override { return now.linetype; }
    double lineTypeScale() const override { return now.linetypeScale; }
    int lineWeight() const override { return now.lineWeight; }
    AcGiFillType fillType() const override { return fill; }
    double thickness() const override { return rise; }

    Properties now;
    AcGiFillType fill = kAcGiFillNever;
    double rise = 0;
};

// ---- The drawing --------------------------------------------------------------------------------

class Recorder final : public AcGiWorldDraw, AcGiGeometry {
  public:
    explicit Recorder(AcDbEntity& entity)
        : entity_(entity), root_(Properties::of(entity)), traits_(entity), written_(entity) {
        const AcDbDatabase* const database = entity.database();
        if (database != nullptr) layerZero_ = database->layerZero();
    }

    std::string run() {
        if (!drawKeptGraphics(*this, entity_)) entity_.worldDraw(this);
        return list_.isEmpty() ? std::string() : list_.take();
    }

    AcGiRegenType regenType() const override { return kAcGiSaveWorldDrawForProxy; }
    bool regenAbort() const override { return isFull(); }
    bool isDragging() const override { return false; }
    // Drawing units: fine for symbols of any size in use.
    double deviation(const AcGePoint3d&) const override { return 1e-3; }
    AcGiGeometry& geometry() const override { return const_cast<Recorder&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return traits_; }

  private:
    AcGeMatrix3d getModelToWorldTransform() const override {
        return transforms_.empty() ? AcGeMatrix3d() : transforms_.back();
    }
    bool pushModelTransform(const AcGeMatrix3d& transform) override;
    bool popModelTransform() override;
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override;
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& start, double sweep, AcGiArcType type) override;
    bool polyline(uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  int64_t marker) override;
    bool polygon(uint32_t count, const AcGePoint3d* points) override;
    bool polyPolygon(uint32_t loops, const uint32_t* counts, const AcGePoint3d* points,
                     const AcGeVector3d& normal) override;
    bool shell(uint32_t points, const AcGePoint3d* vertices, uint32_t faceListSize,
               const int32_t* faceList) override;
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal,
              const AcGeVector3d& direction, const std::wstring& text,
              const AcGiTextStyle& style) override;
    bool ray(const AcGePoint3d& first, const AcGePoint3d& second) override;
    bool xline(const AcGePoint3d& first, const AcGePoint3d& second) override;
    bool draw(AcGiDrawable* drawable) override;

    bool isFull() const { return list_.size() > kMostBytes; }
    CallList& shape(Call kind);
    void writeColor(const AcCmColor& color);
    Properties seenFromTheEntity(const Properties& own) const;

    AcDbEntity& entity_;
    const Properties root_;
    mutable Traits traits_;
    Traits written_;  // what a reader has when it comes to the next call
    CallList list_;
    std::vector<AcGeMatrix3d> transforms_;
    AcDbObjectId layerZero_;
    int depth_ = 0;
};

// What a part of a block has, so that it is by layer only where that is the whole entity's layer.
Properties Recorder::seenFromTheEntity(const Properties& own) const {
    const Properties& outer = traits_.now;
    Properties seen = own;
    if (own.layer == layerZero_ || own.layer.isNull()) seen.layer = outer.layer;
    if (own.color.isByBlock()) seen.color = outer.color;
    if (own.lineWeight == kWeightByBlock) seen.lineWeight = outer.lineWeight;
    if (seen.layer == root_.layer) return seen;
    const auto* const layer = model::peek<AcDbLayerTableRecord>(seen.layer);
    if (layer == nullptr) return seen;
    if (own.color.isByLayer()) seen.color = layer->color();
    if (own.lineWeight == kWeightByLayer) seen.lineWeight = layer->lineWeight();
    return seen;
}

void Recorder::writeColor(const AcCmColor& color) {
    if (!color.isByColor()) {
        list_.call(kColor).whole(color.colorIndex());
        return;
    }
    const uint32_t value = uint32_t{AcCmColor::kByColor} << 24 | color.rgb();
    list_.call(kTrueColor).whole(static_cast<int32_t>(value));
}

// Begins a shape, behind the properties that have changed.
CallList& Recorder::shape(Call kind) {
    if (traits_.now.color != written_.now.color) writeColor(traits_.now.color);
    if (traits_.now.lineWeight != written_.now.lineWeight) {
        list_.call(kLineWeight).whole(traits_.now.lineWeight);
    }
    if (traits_.now.linetypeScale != written_.now.linetypeScale) {
        list_.call(kLinetypeScale).real(traits_.now.linetypeScale);
    }
    if (traits_.fill != written_.fill) {
        list_.call(kFill).whole(traits_.fill == kAcGiFillAlways ? 1 : 0);
    }
    if (traits_.rise != written_.rise) list_.call(kThickness).real(traits_.rise);
    written_ = traits_;
    return list_.call(kind);
}

bool Recorder::draw(AcGiDrawable* drawable) {
    if (drawable == nullptr || depth_ == kDeepestNesting || isFull()) return isFull();
    const Traits before = traits_;
    if (const AcDbEntity* const entity = AcDbEntity::cast(drawable)) {
        if (entity->visibility() != AcDb::kVisible) return false;
        traits_.now = seenFromTheEntity(Properties::of(*entity));
        traits_.fill = kAcGiFillNever;
        traits_.rise = 0;
    }
    ++depth_;
    drawable->worldDraw(this);
    --depth_;
    traits_ = before;
    return false;
}

bool Recorder::pushModelTransform(const AcGeMatrix3d& transform) {
    transforms_.push_back(getModelToWorldTransform() * transform);
    list_.call(kPushTransform);
    for (unsigned int row = 0; row < 4; ++row) {
        for (unsigned int column = 0; column < 4; ++column)
            list_.real(transform(row, column));
    }
    return false;
}

bool Recorder::popModelTransform() {
    if (transforms_.empty()) return false;
    transforms_.pop_back();
    list_.call(kPopTransform);
    return false;
}

// ---- Shapes -------------------------------------------------------------------------------------

bool Recorder::circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) {
    if (isFull()) return true;
    shape(kCircle).point(center).real(radius).vector(normal);
    return false;
}

bool Recorder::circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                           const AcGeVector3d& start, double sweep, AcGiArcType type) {
    if (isFull()) return true;
    shape(kArc).point(center).real(radius).vector(normal).vector(start).real(sweep).whole(type);
    return false;
}

bool Recorder::polyline(uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                        int64_t) {
    if (count == 0 || isFull()) return isFull();
    shape(normal != nullptr ? kPolylineWithNormal : kPolyline).points(count, points);
    if (normal != nullptr) list_.vector(*normal);
    return false;
}

bool Recorder::polygon(uint32_t count, const AcGePoint3d* points) {
    if (count == 0 || isFull()) return isFull();
    shape(kPolygon).points(count, points);
    return false;
}

// A face with holes, as the one call that knows any.
bool Recorder::polyPolygon(uint32_t loops, const uint32_t* counts, const AcGePoint3d* points,
                           const AcGeVector3d&) {
    std::vector<int32_t> face;
    uint32_t total = 0;
    for (uint32_t i = 0; i < loops; ++i) {
        const auto count = static_cast<int32_t>(counts[i]);
        if (count == 0) continue;
        face.push_back(face.empty() ? count : -count);
        for (int32_t corner = 0; corner < count; ++corner)
            face.push_back(static_cast<int32_t>(total++));
    }
    if (face.empty()) return false;
    return shell(total, points, static_cast<uint32_t>(face.size()), face.data());
}

bool Recorder::shell(uint32_t points, const AcGePoint3d* vertices, uint32_t faceListSize,
                     const int32_t* faceList) {
    if (points == 0 || faceListSize == 0 || isFull()) return isFull();
    CallList& list = shape(kShell).points(points, vertices);
    list.whole(static_cast<int32_t>(faceListSize));
    for (uint32_t i = 0; i < faceListSize; ++i)
        list.whole(faceList[i]);
    list.whole(0).whole(0).whole(0);  // no properties of edges, faces and corners
    return false;
}

bool Recorder::text(const AcGePoint3d& position, const AcGeVector3d& normal,
                    const AcGeVector3d& direction, const std::wstring& text,
                    const AcGiTextStyle& style) {
    constexpr int32_t kToItsEnd = -1, kWithoutCodes = 1;
    constexpr double kTracking = 1;
    if (isFull()) return true;
    CallList& list = shape(kWideStyledText).point(position).vector(normal).vector(direction);
    list.text(text).whole(kToItsEnd).whole(kWithoutCodes);
    list.real(style.height).real(style.widthFactor).real(style.oblique).real(kTracking);
    list.whole(style.backward).whole(style.upsideDown).whole(style.vertical);
    list.whole(0).whole(0);  // neither underlined nor overlined: lines are drawn as such
    list.whole(style.bold).whole(style.italic).whole(0).whole(0);
    list.text(style.typeface).text(style.fontFile).text(style.bigFontFile);
    return false;
}

bool Recorder::ray(const AcGePoint3d& first, const AcGePoint3d& second) {
    if (isFull()) return true;
    shape(kRay).point(first).point(second);
    return false;
}

bool Recorder::xline(const AcGePoint3d& first, const AcGePoint3d& second) {
    if (isFull()) return true;
    shape(kXline).point(first).point(second);
    return false;
}

}  // namespace

std::string recordProxyGraphics(AcDbEntity& entity) {
    return Recorder(entity).run();
}

std::string graphicsForOthers(const AcDbObject& object) {
    const AcRxClass* const type = object.isA();
    const auto* const shown = AcDbEntity::cast(&object);
    const bool isProxy = model::proxyData(object) != nullptr;
    if (shown == nullptr || (!isProxy && *type->appName() == L'\0')) return {};
    if (std::string kept = keptGraphics(*shown); !kept.empty()) return kept;
    AcDbEntity* entity = nullptr;
    if (acdbOpenObject(entity, object.objectId()) != Acad::eOk) return {};
    std::string graphics = recordProxyGraphics(*entity);
    entity->close();
    return graphics;
}

}  // namespace sg::render
