#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/model/entities/dimension/dimension.h"
#include "host/model/tables/dim_style_table.h"

namespace sg::model {

// What a dimension is drawn by: the variables of its style, and those that the dimension itself has
// in its extended data in their place.
class DimensionStyle {
  public:
    explicit DimensionStyle(const AcDbDimension& dimension);

    double real(const wchar_t* name) const { return get<double>(name); }
    double size(const wchar_t* name) const { return real(name) * scale_; }  // with DIMSCALE
    int32_t integer(const wchar_t* name) const { return get<int32_t>(name); }
    bool flag(const wchar_t* name) const { return integer(name) != 0; }
    std::wstring text(const wchar_t* name) const { return get<std::wstring>(name); }
    AcDbObjectId object(const wchar_t* name) const { return get<AcDbObjectId>(name); }
    AcCmColor color(const wchar_t* name) const { return get<AcCmColor>(name); }

    // A length or an angle as it reads, without what a dimension puts around it.
    std::wstring formatted(double value, bool isAngle) const;

  private:
    template <class Value>
    const Value& get(const wchar_t* name) const {
        return std::get<Value>(values_[*findDimVariable(name)]);
    }
    void takeOverrides(const AcDbDimension& dimension);

    std::vector<VariableValue> values_;
    double scale_ = 1;
};

// The part of a turn that an angular dimension measures, in the plane of the dimension.
struct AngleSector {
    AcGePoint2d center;
    double radius = 0;  // of the arc that shows it
    double start = 0;   // counter-clockwise by `sweep`
    double sweep = 0;
    AcGePoint2d first, second;  // what extension lines come from, at the start and at the end

    using Line = std::pair<AcGePoint3d, AcGePoint3d>;
    // The sector of two lines, or of their extensions, in which the point lies; none when they are
    // parallel.
    static std::optional<AngleSector> betweenLines(const AcDbDimension& dimension,
                                                   const Line& first, const Line& second,
                                                   const AcGePoint3d& through);
    static std::optional<AngleSector> atVertex(const AcDbDimension& dimension,
                                               const AcGePoint3d& vertex, const AcGePoint3d& first,
                                               const AcGePoint3d& second,
                                               const AcGePoint3d& through);
};

// Makes the lines, arrows and text of a dimension, in its plane.
class DimensionSketch {
  public:
    explicit DimensionSketch(const AcDbDimension& dimension);
    ~DimensionSketch();

    static AcGePoint2d flat(const AcDbDimension& dimension, const AcGePoint3d& point);
    static AcGeVector2d horizontal(const AcDbDimension& dimension);
    // The ends of the dimension line of a linear dimension, in world coordinates.
    static std::pair<AcGePoint3d, AcGePoint3d> lineEnds(const AcDbDimension& dimension,
                                                        const AcGePoint3d& first,
                                                        const AcGePoint3d& second,
                                                        const AcGePoint3d& through, double angle,
                                                        double oblique);
    // Where the text goes, the one that was placed or the usual place.
    static AcGePoint3d textPosition(const AcDbDimension& dimension);

    void linear(const AcGePoint3d& first, const AcGePoint3d& second, const AcGePoint3d& through,
                double angle, double oblique);
    void angular(const AngleSector& sector);
    void radial(const AcGePoint3d& center, const AcGePoint3d& chord, double leader);
    void diametric(const AcGePoint3d& chord, const AcGePoint3d& farChord, double leader);
    void ordinate(const AcGePoint3d& feature, const AcGePoint3d& end, bool xType);

    std::wstring text() const;
    std::vector<std::unique_ptr<AcDbEntity>> take() { return std::move(parts_); }

  private:
    struct TextBox {
        AcGePoint2d middle;
        double angle = 0;
        double width = 0;
        double height = 0;
    };
    enum class Role { DimensionLine, ExtensionLine, Text };

    AcGePoint2d flat(const AcGePoint3d& point) const { return flat(dimension_, point); }
    AcGePoint3d raised(const AcGePoint2d& point) const;
    double turned(double angle) const;  // readable from below or from the right
    void measureText();
    double lineTextAngle(double lineAngle, bool inside) const;
    AcGeVector2d lifted(double angle) const;  // how far text stands over its line
    void placeText(const AcGePoint2d& usual, double angle);
    void add(std::unique_ptr<AcDbEntity> part, Role role);
    void line(const AcGePoint2d& from, const AcGePoint2d& to, Role role);
    void brokenLine(const AcGePoint2d& from, const AcGePoint2d& to);
    void brokenArc(const AngleSector& sector, double start, double sweep);
    void extension(const AcGePoint2d& from, const AcGePoint2d& to, bool first);
    void arrow(const AcGePoint2d& tip, const AcGeVector2d& outward, bool first);
    void arrowBlock(AcDbObjectId block, const AcGePoint2d& tip, const AcGeVector2d& outward);
    void linearText(const AcGePoint2d& from, const AcGePoint2d& to, bool arrowsInside);
    void centerMark(const AcGePoint2d& center);
    void leaderTo(const AcGePoint2d& chord, const AcGeVector2d& outward, double leader);

    const AcDbDimension& dimension_;
    DimensionStyle style_;
    AcGeMatrix3d toWorld_;  // from the plane, at the height of the defining point
    TextBox box_;
    bool hasText_ = false;
    double arrowSize_ = 0;
    double gap_ = 0;
    std::vector<std::unique_ptr<AcDbEntity>> parts_;
};

}  // namespace sg::model
