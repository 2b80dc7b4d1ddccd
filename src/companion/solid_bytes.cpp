#include "companion/solid_bytes.h"

#include <bit>
#include <cmath>
#include <cstring>

namespace sg::companion {
namespace {

static_assert(std::endian::native == std::endian::little, "numbers are filed as they stand");

constexpr int kDeepestUnion = 200;

enum Tag : uint8_t {
    kAdd = 1,
    kCut = 2,
    kSlice = 3,
    kUnite = 4,
    kExtrusion = 16,
    kRevolution = 17,
    kPatchwork = 18,
    kStraight = 32,
    kArc = 33,
};

class Writer {
  public:
    explicit Writer(std::vector<uint8_t>& bytes) : bytes_(bytes) {}

    void write(const Steps& steps) {
        count(steps.size());
        for (const Step& step : steps)
            std::visit(*this, step.action);
    }

    void operator()(const AddBody& step) {
        tag(kAdd);
        std::visit(*this, step.body);
    }
    void operator()(const CutBody& step) {
        tag(kCut);
        std::visit(*this, step.body);
    }
    void operator()(const SliceLast& step) {
        tag(kSlice);
        put(step.point);
        put(step.normal);
    }
    void operator()(const Unite& step) {
        tag(kUnite);
        write(step.steps);
    }
    void operator()(const Extrusion& body) {
        tag(kExtrusion);
        write(body.outlines);
        put(body.along);
    }
    void operator()(const Revolution& body) {
        tag(kRevolution);
        write(body.outlines);
        put(body.center);
        put(body.axis);
        put(body.angle);
    }
    void operator()(const Patchwork& body) {
        tag(kPatchwork);
        count(body.faces.size());
        for (const PlaneFace& face : body.faces) {
            count(face.size());
            for (const Curve& curve : face)
                write(curve);
        }
        count(body.patches.size());
        for (const Patch& patch : body.patches) {
            write(patch.lower);
            write(patch.upper);
        }
    }

  private:
    void write(const std::vector<Outline>& outlines) {
        count(outlines.size());
        for (const Outline& outline : outlines) {
            count(outline.size());
            for (const Segment& segment : outline) {
                tag(segment.isArc ? kArc : kStraight);
                put(segment.from);
                if (segment.isArc) put(segment.via);
            }
        }
    }
    void write(const Curve& curve) {
        tag(curve.isArc ? kArc : kStraight);
        put(curve.poles[0]);
        if (curve.isArc) put(curve.poles[1]);
        put(curve.poles[2]);
    }
    void tag(Tag value) { bytes_.push_back(value); }
    void count(size_t value) { put(static_cast<uint32_t>(value)); }
    template <class Value>
    void put(const Value& value) {
        const auto* const start = reinterpret_cast<const uint8_t*>(&value);
        bytes_.insert(bytes_.end(), start, start + sizeof value);
    }

    std::vector<uint8_t>& bytes_;
};

class Reader {
  public:
    explicit Reader(std::span<const uint8_t> bytes) : rest_(bytes) {}

    bool isWhole() const { return isGood_ && rest_.empty(); }

    void read(Steps& steps, int depth = 0) {
        if (depth > kDeepestUnion) isGood_ = false;
        for (size_t left = count(); left > 0 && isGood_; --left)
            read(steps.emplace_back(), depth);
    }

  private:
    void read(Step& step, int depth) {
        switch (tag()) {
            case kAdd:
                step.action = AddBody{};
                read(std::get<AddBody>(step.action).body);
                return;
            case kCut:
                step.action = CutBody{};
                read(std::get<CutBody>(step.action).body);
                return;
            case kSlice: {
                SliceLast slice;
                read(slice.point);
                read(slice.normal);
                step.action = slice;
                return;
            }
            case kUnite:
                step.action = Unite{};
                read(std::get<Unite>(step.action).steps, depth + 1);
                return;
            default:
                isGood_ = false;
        }
    }

    void read(Body& body) {
        switch (tag()) {
            case kExtrusion: {
                Extrusion extrusion;
                read(extrusion.outlines);
                read(extrusion.along);
                body = std::move(extrusion);
                return;
            }
            case kRevolution: {
                Revolution revolution;
                read(revolution.outlines);
                read(revolution.center);
                read(revolution.axis);
                read(revolution.angle);
                body = std::move(revolution);
                return;
            }
            case kPatchwork: {
                Patchwork patchwork;
                read(patchwork);
                body = std::move(patchwork);
                return;
            }
            default:
                isGood_ = false;
        }
    }

    void read(Patchwork& body) {
        for (size_t left = count(); left > 0 && isGood_; --left) {
            PlaneFace& face = body.faces.emplace_back();
            for (size_t curves = count(); curves > 0 && isGood_; --curves)
                read(face.emplace_back());
            if (face.size() < 2) isGood_ = false;
        }
        for (size_t left = count(); left > 0 && isGood_; --left) {
            Patch& patch = body.patches.emplace_back();
            read(patch.lower);
            read(patch.upper);
            if (patch.lower.isArc != patch.upper.isArc) isGood_ = false;
        }
    }

    void read(std::vector<Outline>& outlines) {
        for (size_t left = count(); left > 0 && isGood_; --left) {
            Outline& outline = outlines.emplace_back();
            for (size_t segments = count(); segments > 0 && isGood_; --segments) {
                Segment& segment = outline.emplace_back();
                segment.isArc = isArc();
                read(segment.from);
                if (segment.isArc) read(segment.via);
            }
            if (outline.size() < 2) isGood_ = false;
        }
        if (outlines.empty()) isGood_ = false;
    }

    void read(Curve& curve) {
        curve.isArc = isArc();
        read(curve.poles[0]);
        curve.poles[1] = curve.poles[0];
        if (curve.isArc) read(curve.poles[1]);
        read(curve.poles[2]);
    }

    bool isArc() {
        const uint8_t kind = tag();
        if (kind != kArc && kind != kStraight) isGood_ = false;
        return kind == kArc;
    }
    uint8_t tag() { return get<uint8_t>(); }
    size_t count() { return get<uint32_t>(); }
    void read(double& value) {
        value = get<double>();
        if (!std::isfinite(value)) isGood_ = false;
    }
    template <class Triple>
    void read(Triple& value) {
        read(value.x);
        read(value.y);
        read(value.z);
    }
    template <class Value>
    Value get() {
        Value value{};
        if (!isGood_ || rest_.size() < sizeof value) {
            isGood_ = false;
            return value;
        }
        std::memcpy(&value, rest_.data(), sizeof value);
        rest_ = rest_.subspan(sizeof value);
        return value;
    }

    std::span<const uint8_t> rest_;
    bool isGood_ = true;
};

}  // namespace

std::vector<uint8_t> toBytes(const Steps& steps) {
    std::vector<uint8_t> bytes;
    Writer(bytes).write(steps);
    return bytes;
}

bool fromBytes(std::span<const uint8_t> bytes, Steps& steps) {
    Steps read;
    Reader reader(bytes);
    reader.read(read);
    if (!reader.isWhole()) return false;
    steps = std::move(read);
    return true;
}

}  // namespace sg::companion
