#include <algorithm>

#include "base/text.h"
#include "host/model/core/dwg_form.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/entities/hatch.h"
#include "host/model/tables/filing.h"

// Filing of hatches.

using namespace sg::model;

// ---- In memory ----------------------------------------------------------------------------------

namespace {

void writeGradient(AcDbDwgFiler* filer, const AcDbHatch::Gradient& gradient) {
    filer->writeInt32(gradient.on);
    filer->writeInt32(gradient.reserved);
    filer->writeDouble(gradient.angle);
    filer->writeDouble(gradient.shift);
    filer->writeInt32(gradient.oneColor);
    filer->writeDouble(gradient.tint);
    filer->writeUInt32(static_cast<uint32_t>(gradient.stops.size()));
    for (const AcDbHatch::Gradient::Stop& stop : gradient.stops) {
        filer->writeDouble(stop.value);
        writeColor(filer, stop.color);
    }
    filer->writeString(gradient.name);
}

void readGradient(AcDbDwgFiler* filer, AcDbHatch::Gradient& gradient) {
    uint32_t count = 0;
    filer->readInt32(&gradient.on);
    filer->readInt32(&gradient.reserved);
    filer->readDouble(&gradient.angle);
    filer->readDouble(&gradient.shift);
    filer->readInt32(&gradient.oneColor);
    filer->readDouble(&gradient.tint);
    filer->readUInt32(&count);
    gradient.stops.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        AcDbHatch::Gradient::Stop& stop = gradient.stops.emplace_back();
        filer->readDouble(&stop.value);
        readColor(filer, stop.color);
    }
    filer->readString(gradient.name);
}

template <class Part>
void writeParts(AcDbDwgFiler* filer, const std::vector<Part>& parts) {
    filer->writeUInt32(static_cast<uint32_t>(parts.size()));
    for (const Part& part : parts)
        part.dwgOut(filer);
}

template <class Part>
void readParts(AcDbDwgFiler* filer, std::vector<Part>& parts) {
    uint32_t count = 0;
    filer->readUInt32(&count);
    parts.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i)
        parts.emplace_back().dwgIn(filer);
}

}  // namespace

Acad::ErrorStatus AcDbHatch::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    if (filer->dwgForm() != nullptr) return writeFile(*filer);
    filer->writeString(pattern_);
    filer->writeInt16(patternType_);
    filer->writeDouble(angle_);
    filer->writeDouble(scale_);
    filer->writeBool(solid_);
    filer->writeBool(doubled_);
    filer->writeBool(associative_);
    filer->writeInt16(static_cast<int16_t>(style_));
    filer->writeDouble(elevation_);
    filer->writeVector3d(normal_);
    filer->writeDouble(pixelSize_);
    writeParts(filer, loops_);
    writeParts(filer, lines_);
    filer->writeUInt32(static_cast<uint32_t>(seeds_.size()));
    for (const AcGePoint2d& seed : seeds_)
        filer->writePoint2d(seed);
    writeGradient(filer, gradient_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbHatch::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    if (filer->dwgForm() != nullptr) return readFile(*filer);
    int16_t type = 0;
    int16_t style = 0;
    uint32_t count = 0;
    filer->readString(pattern_);
    filer->readInt16(&type);
    filer->readDouble(&angle_);
    filer->readDouble(&scale_);
    filer->readBool(&solid_);
    filer->readBool(&doubled_);
    filer->readBool(&associative_);
    filer->readInt16(&style);
    filer->readDouble(&elevation_);
    filer->readVector3d(&normal_);
    filer->readDouble(&pixelSize_);
    patternType_ = static_cast<PatternType>(type);
    style_ = static_cast<HatchStyle>(style);
    readParts(filer, loops_);
    readParts(filer, lines_);
    filer->readUInt32(&count);
    seeds_.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i)
        filer->readPoint2d(&seeds_.emplace_back());
    readGradient(filer, gradient_);
    return filer->filerStatus();
}

// ---- In files -----------------------------------------------------------------------------------

bool AcDbHatch::hasDerivedLoop() const {
    return std::any_of(loops_.begin(), loops_.end(), [](const HatchLoop& loop) {
        return (loop.type & HatchLoop::kDerived) != 0;
    });
}

Acad::ErrorStatus AcDbHatch::writeFile(AcDbDwgFiler& filer) const {
    if (!isBefore(&filer, AcDb::kDHL_1018)) writeGradient(&filer, gradient_);
    filer.writeDouble(elevation_);
    filer.writeVector3d(normal_);
    filer.writeString(pattern_);
    filer.writeBool(solid_);
    filer.writeBool(associative_);
    filer.writeUInt32(static_cast<uint32_t>(loops_.size()));
    for (const HatchLoop& loop : loops_)
        loop.writeFile(filer);
    filer.writeInt16(static_cast<int16_t>(style_));
    filer.writeInt16(patternType_);
    if (!solid_) writeFilePattern(filer);
    if (hasDerivedLoop()) filer.writeDouble(pixelSize_);
    filer.writeUInt32(static_cast<uint32_t>(seeds_.size()));
    for (const AcGePoint2d& seed : seeds_)
        filer.writePoint2d(seed);
    return filer.filerStatus();
}

Acad::ErrorStatus AcDbHatch::readFile(AcDbDwgFiler& filer) {
    uint32_t count = 0;
    if (!isBefore(&filer, AcDb::kDHL_1018)) readGradient(&filer, gradient_);
    filer.readDouble(&elevation_);
    filer.readVector3d(&normal_);
    filer.readString(pattern_);
    filer.readBool(&solid_);
    filer.readBool(&associative_);
    filer.readUInt32(&count);
    loops_.clear();
    for (uint32_t i = 0; i < count && filer.filerStatus() == Acad::eOk; ++i)
        loops_.emplace_back().readFile(filer);
    readInt16As(&filer, style_);
    readInt16As(&filer, patternType_);
    lines_.clear();
    if (!solid_) readFilePattern(filer);
    if (hasDerivedLoop()) filer.readDouble(&pixelSize_);
    filer.readUInt32(&count);
    seeds_.clear();
    for (uint32_t i = 0; i < count && filer.filerStatus() == Acad::eOk; ++i)
        filer.readPoint2d(&seeds_.emplace_back());
    return filer.filerStatus();
}

void AcDbHatch::writeFilePattern(AcDbDwgFiler& filer) const {
    filer.writeDouble(angle_);
    filer.writeDouble(scale_);
    filer.writeBool(doubled_);
    filer.writeInt16(static_cast<int16_t>(lines_.size()));
    for (const HatchLine& line : lines_) {
        for (const double value :
             {line.angle, line.base.x, line.base.y, line.offset.x, line.offset.y})
            filer.writeDouble(value);
        filer.writeInt16(static_cast<int16_t>(line.dashes.size()));
        for (const double dash : line.dashes)
            filer.writeDouble(dash);
    }
}

void AcDbHatch::readFilePattern(AcDbDwgFiler& filer) {
    uint16_t lines = 0;
    filer.readDouble(&angle_);
    filer.readDouble(&scale_);
    filer.readBool(&doubled_);
    filer.readUInt16(&lines);
    while (lines-- > 0 && filer.filerStatus() == Acad::eOk) {
        HatchLine& line = lines_.emplace_back();
        for (double* const value :
             {&line.angle, &line.base.x, &line.base.y, &line.offset.x, &line.offset.y})
            filer.readDouble(value);
        uint16_t dashes = 0;
        filer.readUInt16(&dashes);
        while (dashes-- > 0 && filer.filerStatus() == Acad::eOk)
            filer.readDouble(&line.dashes.emplace_back());
    }
}

// ---- As groups ----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbHatch::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, L"AcDbHatch");
    filer->writePoint3d(10, {0, 0, elevation_});
    filer->writeVector3d(210, normal_);
    filer->writeString(2, pattern_);
    filer->writeInt16(70, solid_ ? 1 : 0);
    filer->writeInt16(71, associative_ ? 1 : 0);
    filer->writeInt32(91, static_cast<int32_t>(loops_.size()));
    for (const HatchLoop& loop : loops_)
        loop.dxfOut(filer);
    dxfOutPattern(filer);
    if (hasDerivedLoop()) filer->writeDouble(47, pixelSize_);
    filer->writeInt32(98, static_cast<int32_t>(seeds_.size()));
    for (const AcGePoint2d& seed : seeds_)
        writePlanePoint(filer, 10, seed);
    dxfOutGradient(filer);
    return filer->filerStatus();
}

void AcDbHatch::dxfOutPattern(AcDbDxfFiler* filer) const {
    filer->writeInt16(75, static_cast<int16_t>(style_));
    filer->writeInt16(76, patternType_);
    if (solid_) return;
    filer->writeDouble(52, angle_);
    filer->writeDouble(41, scale_);
    filer->writeInt16(77, doubled_ ? 1 : 0);
    filer->writeInt16(78, static_cast<int16_t>(lines_.size()));
    for (const HatchLine& line : lines_)
        line.dxfOut(filer);
}

// Programs see that there is none; files older than 2004 have no place for it.
void AcDbHatch::dxfOutGradient(AcDbDxfFiler* filer) const {
    const bool isEmpty = gradient_.on == 0 && gradient_.stops.empty();
    if (filer->dwgVersion() < AcDb::kDHL_1018 || (isEmpty && !showsDefaults(filer))) return;
    filer->writeInt32(450, gradient_.on);
    filer->writeInt32(451, gradient_.reserved);
    filer->writeDouble(460, gradient_.angle);
    filer->writeDouble(461, gradient_.shift);
    filer->writeInt32(452, gradient_.oneColor);
    filer->writeDouble(462, gradient_.tint);
    filer->writeInt32(453, static_cast<int32_t>(gradient_.stops.size()));
    for (const Gradient::Stop& stop : gradient_.stops) {
        filer->writeDouble(463, stop.value);
        filer->writeInt16(63, static_cast<int16_t>(stop.color.colorIndex()));
        if (stop.color.isByColor()) {
            filer->writeInt32(421, static_cast<int32_t>(stop.color.rgb()));
        }
    }
    filer->writeString(470, gradient_.name);
}

// A hatch's groups come in parts, in which the same codes mean different things.
struct AcDbHatch::Groups {
    AcDbHatch& hatch;
    enum class Part { Head, Polyline, Edges, Pattern, Seeds } part = Part::Head;
    bool namesFill = false;  // whether group 70 came

    void take(const FieldReader& field);

  private:
    bool takeHead(const FieldReader& field);
    bool takeLoopStart(const FieldReader& field);
    void takePolyline(const FieldReader& field);
    void takeEdge(const FieldReader& field);
    void takeArc(const FieldReader& field, HatchEdge& edge);
    void takeSpline(const FieldReader& field, HatchEdge& edge);
    bool takePattern(const FieldReader& field);
    bool takeLine(const FieldReader& field);
    bool takeGradient(const FieldReader& field);
};

void AcDbHatch::Groups::take(const FieldReader& field) {
    if (takeLoopStart(field)) return;
    const int code = field.code();
    if (code == 75) part = Part::Pattern;
    if (part == Part::Polyline) return takePolyline(field);
    if (part == Part::Edges) return takeEdge(field);
    if (code == 10) {
        if (part == Part::Head) hatch.elevation_ = field.point().z;
        if (part == Part::Seeds) hatch.seeds_.push_back(field.point2d());
        return;
    }
    if (takeHead(field) || takePattern(field) || takeLine(field)) return;
    takeGradient(field);
}

bool AcDbHatch::Groups::takeHead(const FieldReader& field) {
    switch (field.code()) {
        case 2:
            hatch.pattern_ = field.text();
            if (!namesFill) hatch.solid_ = sg::equalIgnoringCase(hatch.pattern_, L"SOLID");
            return true;
        case 70:
            hatch.solid_ = field.flag();
            namesFill = true;
            return true;
        case 71:
            hatch.associative_ = field.flag();
            return true;
        case 210:
            setUnit(hatch.normal_, field.vector());
            return true;
        default:
            return false;
    }
}

bool AcDbHatch::Groups::takeLoopStart(const FieldReader& field) {
    if (field.code() == 91) {
        hatch.loops_.clear();
        part = Part::Head;
        return true;
    }
    if (field.code() != 92) return false;
    HatchLoop& loop = hatch.loops_.emplace_back();
    loop.type = field.integer();
    part = loop.isPolyline() ? Part::Polyline : Part::Edges;
    return true;
}

void AcDbHatch::Groups::takePolyline(const FieldReader& field) {
    HatchLoop& loop = hatch.loops_.back();
    switch (field.code()) {
        case 73:
            loop.closed = field.flag();
            break;
        case 10:
            loop.vertices.push_back({field.point2d(), 0});
            break;
        case 42:
            if (!loop.vertices.empty()) loop.vertices.back().bulge = field.real();
            break;
        case 330:
            loop.sources.emplace_back(field.objectId());
            break;
        default:
            break;
    }
}

void AcDbHatch::Groups::takeEdge(const FieldReader& field) {
    HatchLoop& loop = hatch.loops_.back();
    if (field.code() == 330) {
        loop.sources.emplace_back(field.objectId());
    } else if (field.code() == 72) {
        const int kind = std::clamp<int>(field.integer(), 1, 4);
        loop.edges.emplace_back().kind = static_cast<HatchEdge::Kind>(kind);
    } else if (!loop.edges.empty()) {
        HatchEdge& edge = loop.edges.back();
        if (edge.kind == HatchEdge::Kind::Spline) return takeSpline(field, edge);
        if (edge.kind != HatchEdge::Kind::Line) return takeArc(field, edge);
        if (field.code() == 10) edge.start = field.point2d();
        if (field.code() == 11) edge.end = field.point2d();
    }
}

// The ratio, which angles are turned into parameters by, stands before the angles.
void AcDbHatch::Groups::takeArc(const FieldReader& field, HatchEdge& edge) {
    switch (field.code()) {
        case 10:
            edge.center = field.point2d();
            break;
        case 11:
            edge.major = field.point2d().asVector();
            break;
        case 40:
            if (edge.kind == HatchEdge::Kind::Arc) {
                edge.major = {field.real(), 0};
            } else {
                edge.ratio = field.real();
            }
            break;
        case 50:
            edge.first = parameterOfAngle(field.real(), edge.ratio);
            break;
        case 51:
            edge.last = parameterOfAngle(field.real(), edge.ratio);
            break;
        case 73:
            edge.counterClockwise = field.flag();
            break;
        default:
            break;
    }
}

void AcDbHatch::Groups::takeSpline(const FieldReader& field, HatchEdge& edge) {
    switch (field.code()) {
        case 94:
            edge.spline.degree = field.integer();
            break;
        case 74:
            edge.periodic = field.flag();
            break;
        case 40:
            edge.spline.knots.push_back(field.real());
            break;
        case 10:
            edge.spline.controls.emplace_back(field.point2d().x, field.point2d().y, 0);
            break;
        case 42:
            edge.spline.weights.push_back(field.real());
            break;
        case 11:
            edge.fitPoints.push_back(field.point2d());
            break;
        case 12:
            edge.startTangent = field.point2d().asVector();
            break;
        case 13:
            edge.endTangent = field.point2d().asVector();
            break;
        default:
            break;
    }
}

bool AcDbHatch::Groups::takePattern(const FieldReader& field) {
    switch (field.code()) {
        case 75:
            hatch.style_ = static_cast<HatchStyle>(std::clamp<int>(field.integer(), 0, 2));
            return true;
        case 76:
            hatch.patternType_ = static_cast<PatternType>(std::clamp<int>(field.integer(), 0, 2));
            return true;
        case 52:
            hatch.angle_ = field.real();
            return true;
        case 41:
            hatch.scale_ = field.real();
            return true;
        case 77:
            hatch.doubled_ = field.flag();
            return true;
        case 78:
            hatch.lines_.clear();
            return true;
        case 47:
            hatch.pixelSize_ = field.real();
            return true;
        case 98:
            hatch.seeds_.clear();
            part = Part::Seeds;
            return true;
        default:
            return false;
    }
}

bool AcDbHatch::Groups::takeLine(const FieldReader& field) {
    if (field.code() == 53) {
        hatch.lines_.emplace_back().angle = field.real();
        return true;
    }
    if (hatch.lines_.empty()) return false;
    HatchLine& line = hatch.lines_.back();
    switch (field.code()) {
        case 43:
            line.base.x = field.real();
            return true;
        case 44:
            line.base.y = field.real();
            return true;
        case 45:
            line.offset.x = field.real();
            return true;
        case 46:
            line.offset.y = field.real();
            return true;
        case 49:
            line.dashes.push_back(field.real());
            return true;
        default:
            return false;
    }
}

bool AcDbHatch::Groups::takeGradient(const FieldReader& field) {
    Gradient& gradient = hatch.gradient_;
    switch (field.code()) {
        case 450:
            gradient.on = field.integer();
            return true;
        case 451:
            gradient.reserved = field.integer();
            return true;
        case 460:
            gradient.angle = field.real();
            return true;
        case 461:
            gradient.shift = field.real();
            return true;
        case 452:
            gradient.oneColor = field.integer();
            return true;
        case 462:
            gradient.tint = field.real();
            return true;
        case 453:
            gradient.stops.clear();
            return true;
        case 463:
            gradient.stops.emplace_back().value = field.real();
            return true;
        case 63:
            if (!gradient.stops.empty()) {
                gradient.stops.back().color.setColorIndex(static_cast<uint16_t>(field.integer()));
            }
            return true;
        case 421:
            if (!gradient.stops.empty()) {
                setTrueColor(gradient.stops.back().color, field.integer());
            }
            return true;
        case 470:
            gradient.name = field.text();
            return true;
        default:
            return false;
    }
}

Acad::ErrorStatus AcDbHatch::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbHatch")) return Acad::eBadDxfSequence;
    Groups groups{*this};
    FieldReader fields(filer);
    while (fields.next())
        groups.take(fields);
    completePattern(filer->database());
    return filer->filerStatus();
}
