#include "host/editor/system_variables.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sg {
namespace {

using Point2 = std::array<double, 2>;
using Point3 = std::array<double, 3>;
using SetResult = SystemVariables::SetResult;

SystemVariableValue initialValue(const SystemVariableRow& row) {
    switch (row.type) {
        case SystemVariableType::shortInteger:
            return static_cast<int16_t>(row.initial[0]);
        case SystemVariableType::longInteger:
            return static_cast<int32_t>(row.initial[0]);
        case SystemVariableType::real:
            return row.initial[0];
        case SystemVariableType::text:
            return std::wstring(row.initialText);
        case SystemVariableType::point2d:
            return Point2{row.initial[0], row.initial[1]};
        case SystemVariableType::point3d:
            return Point3{row.initial[0], row.initial[1], row.initial[2]};
    }
    return {};
}

std::optional<int32_t> integerOf(const SystemVariableValue& value) {
    if (const auto* const number = std::get_if<int16_t>(&value)) return *number;
    if (const auto* const number = std::get_if<int32_t>(&value)) return *number;
    return std::nullopt;
}

std::optional<double> numberOf(const SystemVariableValue& value) {
    if (const auto* const number = std::get_if<double>(&value)) return *number;
    return integerOf(value);
}

// `value` as the type that the variable has; nullopt when it is of another kind.
std::optional<SystemVariableValue> converted(const SystemVariableValue& value,
                                             SystemVariableType type) {
    switch (type) {
        case SystemVariableType::shortInteger:
        case SystemVariableType::longInteger:
            if (const auto number = integerOf(value)) return *number;
            return std::nullopt;
        case SystemVariableType::real:
            if (const auto number = numberOf(value)) return *number;
            return std::nullopt;
        case SystemVariableType::text:
            if (std::holds_alternative<std::wstring>(value)) return value;
            return std::nullopt;
        case SystemVariableType::point2d:
            if (const auto* const p = std::get_if<Point3>(&value)) return Point2{(*p)[0], (*p)[1]};
            if (std::holds_alternative<Point2>(value)) return value;
            return std::nullopt;
        case SystemVariableType::point3d:
            if (const auto* const p = std::get_if<Point2>(&value)) {
                return Point3{(*p)[0], (*p)[1], 0};
            }
            if (std::holds_alternative<Point3>(value)) return value;
            return std::nullopt;
    }
    return std::nullopt;
}

template <size_t N>
bool allFinite(const std::array<double, N>& point) {
    return std::all_of(point.begin(), point.end(), [](double each) { return std::isfinite(each); });
}

bool inRange(const SystemVariableValue& value, const SystemVariableRow& row) {
    if (const auto* const point = std::get_if<Point2>(&value)) return allFinite(*point);
    if (const auto* const point = std::get_if<Point3>(&value)) return allFinite(*point);
    const auto number = numberOf(value);
    if (!number) return true;
    if (!row.allowed.empty()) {
        return std::find(row.allowed.begin(), row.allowed.end(), *number) != row.allowed.end();
    }
    return *number >= row.low && *number <= row.high;  // false for what is not a number
}

bool fitsShort(const SystemVariableValue& value) {
    const auto number = integerOf(value);
    return number && *number >= INT16_MIN && *number <= INT16_MAX;
}

}  // namespace

SystemVariables::SystemVariables(std::shared_ptr<SystemVariables> application)
    : application_(std::move(application)) {}

const SystemVariables& SystemVariables::owner(const SystemVariableRow& row) const {
    const bool passOn = row.scope == SystemVariableScope::application && application_ != nullptr;
    return passOn ? *application_ : *this;
}

SystemVariables& SystemVariables::owner(const SystemVariableRow& row) {
    return const_cast<SystemVariables&>(std::as_const(*this).owner(row));
}

std::optional<SystemVariableValue> SystemVariables::get(std::wstring_view name) const {
    const SystemVariableRow* const row = findSystemVariable(name);
    if (row == nullptr) return std::nullopt;
    const SystemVariables& set = owner(*row);
    if (const auto found = set.elsewhere_.find(row); found != set.elsewhere_.end()) {
        return found->second.provider();
    }
    const auto found = set.values_.find(row);
    return found != set.values_.end() ? found->second : initialValue(*row);
}

SetResult SystemVariables::set(std::wstring_view name, const SystemVariableValue& value) {
    return store(name, value, true);
}

SetResult SystemVariables::assign(std::wstring_view name, const SystemVariableValue& value) {
    return store(name, value, false);
}

SetResult SystemVariables::store(std::wstring_view name, const SystemVariableValue& value,
                                 bool checked) {
    const SystemVariableRow* const row = findSystemVariable(name);
    if (row == nullptr) return SetResult::unknown;
    if (checked && row->isReadOnly) return SetResult::readOnly;
    auto own = converted(value, row->type);
    if (!own) return SetResult::wrongType;
    if (checked && !inRange(*own, *row)) return SetResult::outOfRange;
    if (row->type == SystemVariableType::shortInteger) {
        if (!fitsShort(*own)) return SetResult::outOfRange;
        own = static_cast<int16_t>(*integerOf(*own));
    }
    SystemVariables& set = owner(*row);
    const auto elsewhere = set.elsewhere_.find(row);
    if (elsewhere != set.elsewhere_.end() && elsewhere->second.keeper) {
        return elsewhere->second.keeper(*own) ? SetResult::ok : SetResult::outOfRange;
    }
    if (checked && watch_) watch_(*row, *get(row->name));
    set.values_[row] = std::move(*own);
    return SetResult::ok;
}

bool SystemVariables::setProvider(std::wstring_view name, Provider value, Keeper keeper) {
    const SystemVariableRow* const row = findSystemVariable(name);
    if (row == nullptr) return false;
    auto& elsewhere = owner(*row).elsewhere_;
    if (value) {
        elsewhere[row] = {std::move(value), std::move(keeper)};
    } else {
        elsewhere.erase(row);
    }
    return true;
}

std::vector<std::wstring> SystemVariables::names() {
    std::vector<std::wstring> all;
    for (const SystemVariableRow& row : systemVariableTable())
        all.emplace_back(row.name);
    return all;
}

}  // namespace sg
