#include "host/render/depth_order.h"

#include <algorithm>
#include <cmath>

#include "platform/db/extents.h"

namespace sg::render {
namespace {

constexpr size_t kMostAreas = 60'000;  // that are cut by each other's planes
constexpr size_t kMostParts = 1'000'000;
constexpr int kDeepest = 3000;
constexpr size_t kCandidates = 6;    // for a cutting plane
constexpr size_t kSample = 48;       // of items that a candidate is tried on
constexpr double kThickness = 1e-7;  // of a plane, in parts of the scene

struct Plane {
    AcGePoint3d point;
    AcGeVector3d normal;

    double distance(const AcGePoint3d& p) const { return (p - point).dotProduct(normal); }
};

enum class Side : uint8_t { within, ahead, behind, across };

using Items = std::vector<DepthItem>;

// Cuts space by the planes of areas, again and again.
class Sorter {
  public:
    Sorter(const AcGeVector3d& towardsEye, double size,
           const std::function<void(const DepthItem&)>& draw)
        : towardsEye_(towardsEye), thickness_(kThickness * size), draw_(draw) {}

    void run(Items items, int depth = 0) {
        const size_t chosen = bestCut(items);
        if (chosen == items.size()) {
            for (const DepthItem& item : items)
                draw_(item);
            return;
        }
        if (depth > kDeepest || parts_ > kMostParts) {
            drawByDistance(std::move(items));
            return;
        }
        Plane plane{items[chosen].points.front(), items[chosen].normal};
        if (plane.normal.dotProduct(towardsEye_) < 0) plane.normal = -plane.normal;
        Items ahead, within, behind;
        for (size_t i = 0; i < items.size(); ++i) {
            const Side side = i == chosen ? Side::within : sideOf(items[i], plane);
            place(std::move(items[i]), side, plane, ahead, within, behind);
        }
        items.clear();
        items.shrink_to_fit();
        run(std::move(behind), depth + 1);
        std::stable_partition(within.begin(), within.end(),
                              [](const DepthItem& item) { return !item.isLine; });
        for (const DepthItem& item : within)
            draw_(item);
        run(std::move(ahead), depth + 1);
    }

    void drawByDistance(Items items) const {
        std::vector<std::pair<double, size_t>> order;
        order.reserve(items.size());
        for (size_t i = 0; i < items.size(); ++i) {
            double sum = 0;
            for (const AcGePoint3d& p : items[i].points)
                sum += p.asVector().dotProduct(towardsEye_);
            order.emplace_back(sum / static_cast<double>(items[i].points.size()), i);
        }
        std::sort(order.begin(), order.end());
        for (const auto& [distance, index] : order)
            draw_(items[index]);
    }

  private:
    Side sideOf(const DepthItem& item, const Plane& plane) const {
        bool isAhead = false;
        bool isBehind = false;
        for (const AcGePoint3d& p : item.points) {
            const double distance = plane.distance(p);
            isAhead = isAhead || distance > thickness_;
            isBehind = isBehind || distance < -thickness_;
            if (isAhead && isBehind) return Side::across;
        }
        return isAhead ? Side::ahead : isBehind ? Side::behind : Side::within;
    }

    // The area whose plane cuts the fewest of the others; the number of items when there is none.
    size_t bestCut(const Items& items) {
        size_t best = items.size();
        size_t leastCuts = SIZE_MAX;
        size_t tried = 0;
        for (size_t attempt = 0; attempt < items.size() && tried < kCandidates; ++attempt) {
            const size_t at = items.size() <= 2 * kCandidates ? attempt : next() % items.size();
            if (items[at].isLine) continue;
            ++tried;
            const size_t cuts = cutsOf(items, at);
            if (cuts < leastCuts) {
                leastCuts = cuts;
                best = at;
            }
        }
        if (best != items.size()) return best;
        const auto area = std::find_if(items.begin(), items.end(),
                                       [](const DepthItem& item) { return !item.isLine; });
        return static_cast<size_t>(area - items.begin());
    }
    size_t cutsOf(const Items& items, size_t at) const {
        const Plane plane{items[at].points.front(), items[at].normal};
        const size_t step = std::max<size_t>(1, items.size() / kSample);
        size_t cuts = 0;
        for (size_t i = 0; i < items.size(); i += step)
            cuts += sideOf(items[i], plane) == Side::across ? 1 : 0;
        return cuts;
    }
    // Numbers in no order, the same in each run.
    size_t next() {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<size_t>(state_ >> 33);
    }

    void place(DepthItem item, Side side, const Plane& plane, Items& ahead, Items& within,
               Items& behind) {
        switch (side) {
            case Side::within:
                within.push_back(std::move(item));
                return;
            case Side::ahead:
                ahead.push_back(std::move(item));
                return;
            case Side::behind:
                behind.push_back(std::move(item));
                return;
            case Side::across:
                ++parts_;
                behind.push_back(partOf(item, {plane.point, -plane.normal}));
                ahead.push_back(partOf(item, plane));
        }
    }

    // What of an item is ahead of a plane.
    static DepthItem partOf(const DepthItem& item, const Plane& plane) {
        DepthItem part;
        part.source = item.source;
        part.isLine = item.isLine;
        part.normal = item.normal;
        if (item.isLine) {
            clip(item.points.data(), 2, false, plane, part.points);
            return part;
        }
        const AcGePoint3d* chain = item.points.data();
        for (const uint32_t count : item.counts) {
            const size_t before = part.points.size();
            clip(chain, count, true, plane, part.points);
            part.counts.push_back(static_cast<uint32_t>(part.points.size() - before));
            chain += count;
        }
        return part;
    }

    static void clip(const AcGePoint3d* points, size_t count, bool isClosed, const Plane& plane,
                     std::vector<AcGePoint3d>& clipped) {
        for (size_t i = 0; i < count; ++i) {
            const AcGePoint3d& p = points[i];
            const double here = plane.distance(p);
            if (here >= 0) clipped.push_back(p);
            if (i + 1 == count && !isClosed) break;
            const AcGePoint3d& q = points[(i + 1) % count];
            const double there = plane.distance(q);
            if ((here < 0) != (there < 0)) clipped.push_back(p + (q - p) * (here / (here - there)));
        }
    }

    const AcGeVector3d towardsEye_;
    const double thickness_;
    const std::function<void(const DepthItem&)>& draw_;
    size_t parts_ = 0;
    uint64_t state_ = 1;
};

}  // namespace

void drawFromBehind(std::vector<DepthItem> items, const AcGeVector3d& towardsEye,
                    const std::function<void(const DepthItem&)>& draw) {
    AcDbExtents box;
    size_t areas = 0;
    for (const DepthItem& item : items) {
        for (const AcGePoint3d& p : item.points)
            box.addPoint(p);
        areas += item.isLine ? 0 : 1;
    }
    Sorter sorter(towardsEye, (box.maxPoint() - box.minPoint()).length(), draw);
    if (areas > kMostAreas) {
        sorter.drawByDistance(std::move(items));
    } else {
        sorter.run(std::move(items));
    }
}

}  // namespace sg::render
