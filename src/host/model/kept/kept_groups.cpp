#include <algorithm>

#include "base/encoding.h"
#include "host/model/kept/kept_form.h"
#include "host/model/tables/references.h"

// Kept objects as groups.

namespace sg::model {
namespace {

using Kind = GroupKeptStep::Kind;
using Group = GroupData::Group;

constexpr int kMarker = 100;

// ---- Reading ------------------------------------------------------------------------------------

// The groups one by one, with the coordinates of a point in one.
std::vector<Group> listed(const GroupData& groups) {
    std::vector<Group> list;
    for (GroupData::Walk walk(groups); walk.next();) {
        Group group = walk.group();
        const bool isReal = group.kind == GroupData::Kind::real;
        if (isReal && group.code >= 10 && group.code <= 18) group.kind = GroupData::Kind::point;
        if (isReal && (group.code == 210 || (group.code >= 110 && group.code <= 113))) {
            group.kind = GroupData::Kind::point;
        }
        Group* const before = list.empty() ? nullptr : &list.back();
        const bool follows = isReal && before != nullptr && before->kind == GroupData::Kind::point;
        if (follows && group.code == before->code + 10) {
            before->y = group.real;
        } else if (follows && group.code == before->code + 20) {
            before->z = group.real;
        } else {
            list.push_back(group);
        }
    }
    return list;
}

// The values of a matrix of four rows, each in a row of its own.
std::vector<KeptValues> unitMatrix(int key, int size) {
    constexpr int kBetweenOnes = 5;
    std::vector<KeptValues> rows(static_cast<size_t>(size));
    for (int i = 0; i < size; ++i)
        rows[static_cast<size_t>(i)].values[key] = i % kBetweenOnes == 0 ? 1.0 : 0.0;
    return rows;
}

bool isUnitMatrix(const std::vector<KeptValues>& rows, int key) {
    const std::vector<KeptValues> unit = unitMatrix(key, static_cast<int>(rows.size()));
    return std::equal(
        rows.begin(), rows.end(), unit.begin(),
        [](const KeptValues& a, const KeptValues& b) { return a.values == b.values; });
}

class Matcher {
  public:
    explicit Matcher(const std::vector<Group>& groups) : groups_(groups) {}

    bool match(const std::vector<GroupKeptStep>& steps, KeptValues& values) {
        above_.push_back(&values);
        bool isFine = true;
        for (const GroupKeptStep& step : steps) {
            isFine = isFine && take(step, values);
        }
        above_.pop_back();
        return isFine;
    }
    bool isDone() const { return at_ == groups_.size(); }

  private:
    // A number of this row, or of what it stands in.
    int64_t numberOf(int key) const {
        for (auto each = above_.rbegin(); each != above_.rend(); ++each) {
            const auto found = (*each)->values.find(key);
            if (found == (*each)->values.end()) continue;
            const auto* const whole = std::get_if<int64_t>(&found->second);
            return whole == nullptr ? 0 : *whole;
        }
        return 0;
    }
    const Group* here(int code) const {
        return at_ < groups_.size() && groups_[at_].code == code ? &groups_[at_] : nullptr;
    }
    bool take(const GroupKeptStep& step, KeptValues& values) {
        if (step.kind == Kind::rows) return takeRows(step, values);
        if (step.kind == Kind::marker) return takeMarker(step);
        const Group* const group = here(step.code);
        if (group == nullptr) {
            if (step.kind == Kind::constant || step.kind == Kind::styleName) return true;
            if (step.otherwise) values.values[step.key] = *step.otherwise;
            return step.otherwise.has_value();
        }
        ++at_;
        return takeValue(step, *group, values);
    }
    // One that may be left out has a value for that.
    bool takeMarker(const GroupKeptStep& step) {
        const Group* const group = here(kMarker);
        const bool isThere = group != nullptr && group->text == step.text;
        if (isThere) ++at_;
        return isThere || step.otherwise.has_value();
    }
    bool takeRows(const GroupKeptStep& step, KeptValues& values) {
        std::vector<KeptValues>& rows = values.rows[step.key];
        if (step.isMatrix && here(step.key) == nullptr) {
            rows = unitMatrix(step.key, step.times);
            return true;
        }
        int64_t left = step.times != 0 ? step.times : numberOf(step.key);
        for (; left > 0; --left) {
            if (at_ == groups_.size() || !match(step.row, rows.emplace_back())) return false;
        }
        return true;
    }
    bool takeValue(const GroupKeptStep& step, const Group& group, KeptValues& values) {
        switch (step.kind) {
            case Kind::color:
                values.values[step.key] = colorOf(step, group);
                return true;
            case Kind::rawColor:
                values.values[step.key] = KeptColor{static_cast<uint32_t>(group.whole)};
                return true;
            case Kind::name:
                values.values[step.key] = std::string(group.text);
                return true;
            case Kind::value:
                values.values[step.key] = valueOf(group);
                if (step.isReal) values.values[step.key] = static_cast<int64_t>(group.real);
                return true;
            default:
                return true;
        }
    }
    KeptColor colorOf(const GroupKeptStep& step, const Group& group) {
        const Group* const exact = step.second == 0 ? nullptr : here(step.second);
        if (exact == nullptr) return KeptColor::ofIndex(group.whole);
        ++at_;
        return KeptColor::ofTrue(static_cast<uint32_t>(exact->whole));
    }
    static KeptValue valueOf(const Group& group) {
        switch (group.kind) {
            case GroupData::Kind::real:
                return group.real;
            case GroupData::Kind::point:
            case GroupData::Kind::flatPoint:
                return AcGePoint3d(group.real, group.y, group.z);
            case GroupData::Kind::whole:
                return group.whole;
            case GroupData::Kind::handle:
                return static_cast<int64_t>(group.handle);
            case GroupData::Kind::object:
                return group.object;
            default:
                return std::string(group.text);
        }
    }

    const std::vector<Group>& groups_;
    size_t at_ = 0;
    std::vector<const KeptValues*> above_;
};

// ---- Writing ------------------------------------------------------------------------------------

void append(GroupData& groups, int code, const KeptValue& value) {
    if (const auto* const whole = std::get_if<int64_t>(&value)) {
        groups.appendWhole(code, *whole);
    } else if (const auto* const real = std::get_if<double>(&value)) {
        groups.appendReal(code, *real);
    } else if (const auto* const point = std::get_if<AcGePoint3d>(&value)) {
        Group group;
        group.code = code;
        group.kind = GroupData::Kind::point;
        group.real = point->x;
        group.y = point->y;
        group.z = point->z;
        groups.append(group);
    } else if (const auto* const text = std::get_if<std::string>(&value)) {
        groups.appendText(code, *text);
    } else if (const auto* const id = std::get_if<AcDbObjectId>(&value)) {
        groups.appendObject(code, *id);
    }
}

void appendColor(GroupData& groups, const GroupKeptStep& step, KeptColor color) {
    if (step.kind == Kind::rawColor) {
        return groups.appendWhole(step.code, static_cast<int32_t>(color.raw));
    }
    groups.appendWhole(step.code, color.index());
    if (color.isTrue() && step.second != 0) groups.appendWhole(step.second, color.raw & 0xFFFFFF);
}

class Lister {
  public:
    explicit Lister(GroupData& groups) : groups_(groups) {}

    void list(const KeptValues& values, const std::vector<GroupKeptStep>& steps) {
        for (const GroupKeptStep& step : steps)
            list(values, step);
    }

  private:
    void list(const KeptValues& values, const GroupKeptStep& step) {
        if (step.kind == Kind::marker) {
            if (!step.otherwise) groups_.appendText(kMarker, step.text);
            return;
        }
        if (step.kind == Kind::rows) {
            const auto rows = values.rows.find(step.key);
            if (rows == values.rows.end()) return;
            if (step.isMatrix && isUnitMatrix(rows->second, step.key)) return;
            for (const KeptValues& row : rows->second)
                list(row, step.row);
            return;
        }
        if (step.kind == Kind::constant) return append(groups_, step.code, *step.otherwise);
        if (step.isReal) return listReal(values, step);
        const auto found = values.values.find(step.key);
        if (found == values.values.end()) return;
        if (step.otherwise && found->second == *step.otherwise) return;
        if (step.kind == Kind::color || step.kind == Kind::rawColor) {
            if (const auto* const color = std::get_if<KeptColor>(&found->second)) {
                appendColor(groups_, step, *color);
            }
            return;
        }
        append(groups_, step.code, found->second);
    }

    static int64_t wholeOf(const KeptValues& values, int key) {
        const auto found = values.values.find(key);
        const auto* const whole =
            found == values.values.end() ? nullptr : std::get_if<int64_t>(&found->second);
        return whole == nullptr ? 0 : *whole;
    }
    void listReal(const KeptValues& values, const GroupKeptStep& step) {
        groups_.appendReal(step.code, static_cast<double>(wholeOf(values, step.key)));
    }

    GroupData& groups_;
};

}  // namespace

// ---- Colours ------------------------------------------------------------------------------------

KeptColor KeptColor::ofIndex(int64_t index) {
    constexpr int64_t kByBlockIndex = 0;
    constexpr int64_t kByLayerIndex = 256;
    if (index == kByLayerIndex) return {};
    if (index == kByBlockIndex) return {uint32_t(AcCmColor::kByBlock) << 24};
    if (index > kByLayerIndex || index < 0) return {kNoColor << 24};
    return {uint32_t(AcCmColor::kByACI) << 24 | static_cast<uint32_t>(index)};
}

KeptColor KeptColor::ofTrue(uint32_t rgb) {
    return {uint32_t(AcCmColor::kByColor) << 24 | (rgb & 0xFFFFFF)};
}

int64_t KeptColor::index() const {
    constexpr int64_t kNoIndex = 257;
    if (method() == AcCmColor::kByLayer) return 256;
    if (method() == AcCmColor::kByBlock) return 0;
    if (method() == kNoColor) return kNoIndex;
    if (!isTrue()) return raw & 0xFF;
    AcCmColor color;
    color.setRGB(static_cast<uint8_t>(raw >> 16), static_cast<uint8_t>(raw >> 8),
                 static_cast<uint8_t>(raw));
    return color.colorIndex();
}

// ---- Groups -------------------------------------------------------------------------------------

bool valuesOf(const GroupData& groups, const std::vector<GroupKeptStep>& steps,
              KeptValues& values) {
    const std::vector<Group> list = listed(groups);
    Matcher matcher(list);
    return matcher.match(steps, values) && matcher.isDone();
}

void groupsOf(const KeptValues& values, const std::vector<GroupKeptStep>& steps,
              GroupData& groups) {
    Lister(groups).list(values, steps);
}

}  // namespace sg::model
