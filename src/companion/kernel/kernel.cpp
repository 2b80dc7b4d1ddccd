#include "companion/kernel/kernel.h"

#include <BRepGProp.hxx>
#include <BRep_Builder.hxx>
#include <BinTools.hxx>
#include <GProp_GProps.hxx>
#include <TopoDS_Compound.hxx>
#include <sstream>

#include "base/export.h"
#include "companion/kernel/bodies.h"
#include "companion/kernel/faceting.h"
#include "companion/kernel/fault_guard.h"

namespace sg::companion {
namespace {

// The solids that stand. The last ones are what has become of the body that was added last.
struct Standing {
    Solids solids;
    size_t lastParts = 0;
};

class Bodies final : public Shape {
  public:
    explicit Bodies(Standing standing) : standing_(std::move(standing)) {}

    const Standing& standing() const { return standing_; }

    // The solids with those that overlap made one; as they are where that does not succeed.
    const Solids& united() const {
        if (!isUnited_) {
            isUnited_ = true;
            const Solids& solids = standing_.solids;
            if (!withoutFaults([&] { return fuse(solids, united_); })) united_ = solids;
        }
        return united_;
    }

  private:
    Standing standing_;
    mutable bool isUnited_ = false;
    mutable Solids united_;
};

TopoDS_Shape compoundOf(const Solids& solids) {
    TopoDS_Compound compound;
    BRep_Builder builder;
    builder.MakeCompound(compound);
    for (const TopoDS_Shape& solid : solids)
        builder.Add(compound, solid);
    return compound;
}

// Does what steps say to the solids that stand; false when one of them cannot be done.
class Doer {
  public:
    Doer(Standing& standing, bool isKnown) : standing_(standing), isKnown_(isKnown) {}

    bool operator()(const AddBody& step) {
        const TopoDS_Shape solid = solidOf(step.body);
        if (!isFit(solid)) return false;
        standing_.solids.push_back(solid);
        standing_.lastParts = 1;
        return true;
    }
    bool operator()(const CutBody& step) {
        const TopoDS_Shape tool = solidOf(step.body);
        if (!isFit(tool)) return false;
        return replace(standing_.solids.size(), [&](const TopoDS_Shape& solid, Solids& parts) {
            return cut(solid, tool, parts);
        });
    }
    bool operator()(const SliceLast& step) {
        return replace(standing_.lastParts, [&](const TopoDS_Shape& solid, Solids& parts) {
            return slice(solid, step.point, step.normal, parts);
        });
    }
    bool operator()(const Unite& step) {
        Standing others;
        Doer other(others, true);
        for (const Step& each : step.steps) {
            if (!std::visit(other, each.action)) return false;
        }
        Solids all = standing_.solids;
        all.insert(all.end(), others.solids.begin(), others.solids.end());
        if (!fuse(all, standing_.solids)) return false;
        standing_.lastParts = standing_.solids.size();
        return true;
    }

  private:
    bool isFit(const TopoDS_Shape& solid) const {
        return !solid.IsNull() && (isKnown_ || isSound(solid));
    }

    // Puts what `change` makes of each of the last solids in their place.
    template <class Change>
    bool replace(size_t count, const Change& change) {
        Solids& solids = standing_.solids;
        const size_t first = solids.size() - count;
        const size_t firstOfLast = solids.size() - standing_.lastParts;
        Solids after(solids.begin(), solids.begin() + static_cast<std::ptrdiff_t>(first));
        size_t lastParts = 0;
        for (size_t i = first; i < solids.size(); ++i) {
            Solids parts;
            if (!change(solids[i], parts)) return false;
            after.insert(after.end(), parts.begin(), parts.end());
            if (i >= firstOfLast) lastParts += parts.size();
        }
        standing_ = {std::move(after), lastParts};
        return true;
    }

    Standing& standing_;
    const bool isKnown_;
};

class Kernel final : public SolidKernel {
  public:
    ShapePtr apply(const ShapePtr& before, const Step& step, bool isKnown) const override {
        Standing standing;
        if (before != nullptr) standing = static_cast<const Bodies&>(*before).standing();
        Doer doer(standing, isKnown);
        if (!withoutFaults([&] { return std::visit(doer, step.action); })) return nullptr;
        return std::make_shared<Bodies>(std::move(standing));
    }
    bool facets(const Shape& shape, Polygons polygons, Facets& facets) const override {
        const Solids& solids = static_cast<const Bodies&>(shape).united();
        return withoutFaults([&] { return facetsOf(compoundOf(solids), polygons, facets); });
    }
    bool measure(const Shape& shape, Measures& measures) const override {
        const Solids& solids = static_cast<const Bodies&>(shape).united();
        return withoutFaults([&] {
            measures = {};
            measures.isClosed = !solids.empty();
            measures.bodies = solids.size();
            for (const TopoDS_Shape& solid : solids) {
                measures.volume += volumeOf(solid);
                GProp_GProps surface;
                BRepGProp::SurfaceProperties(solid, surface);
                measures.area += surface.Mass();
                measures.isClosed = measures.isClosed && isSound(solid);
            }
            return true;
        });
    }
    bool exact(const Shape& shape, std::string& bytes) const override {
        const Solids& solids = static_cast<const Bodies&>(shape).united();
        if (solids.empty()) return false;
        return withoutFaults([&] {
            std::ostringstream stream;
            BinTools::Write(compoundOf(solids), stream, false, false,
                            BinTools_FormatVersion_CURRENT);
            bytes = stream.str();
            return stream.good();
        });
    }
};

}  // namespace

}  // namespace sg::companion

extern "C" SG_API const sg::companion::SolidKernel* swiftgateSolidKernel() {
    static const sg::companion::Kernel kernel;
    return &kernel;
}
