#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/export.h"
#include "host/editor/system_variable_table.h"

namespace sg {

using SystemVariableValue = std::variant<int16_t, int32_t, double, std::wstring,
                                         std::array<double, 2>, std::array<double, 3>>;

// One set of system variables: that of the application, or that of a document, which passes the
// application's variables on to the set it was made with. Names are found ignoring case.
class SG_API SystemVariables {
  public:
    enum class SetResult { ok, unknown, readOnly, wrongType, outOfRange };

    // Every variable has its initial value. Without an `application` the set holds all variables.
    explicit SystemVariables(std::shared_ptr<SystemVariables> application = nullptr);

    // The value, of the type that the variable has; nullopt for an unknown name.
    std::optional<SystemVariableValue> get(std::wstring_view name) const;

    // Sets a variable as setvar does. An integer of either size will do where the other, or a real,
    // is wanted, if it fits; a real is no integer. A 2D point gets z 0 and a 3D point loses its z
    // where the other is wanted.
    SetResult set(std::wstring_view name, const SystemVariableValue& value);

    // The same for the host: read-only variables and values outside the range are set too.
    SetResult assign(std::wstring_view name, const SystemVariableValue& value);

    // Makes `value` the one to ask for the variable's value in this set, or in the application's
    // for a variable of that; null takes it back. False for an unknown name. What the provider
    // answers must be of the variable's type. The keeper, when there is one, is given each value
    // that is set, of that type and in range; when it answers false the value is out of range.
    using Provider = std::function<SystemVariableValue()>;
    using Keeper = std::function<bool(const SystemVariableValue&)>;
    bool setProvider(std::wstring_view name, Provider value, Keeper keeper = {});

    // Is told of each variable that set() is about to change in this set, or in the application's
    // through it, with the value before; not of those that a keeper has.
    using Watch = std::function<void(const SystemVariableRow&, const SystemVariableValue&)>;
    void watch(Watch watch) { watch_ = std::move(watch); }

    // The names of all variables in alphabetical order.
    static std::vector<std::wstring> names();

  private:
    SystemVariables& owner(const SystemVariableRow& row);
    const SystemVariables& owner(const SystemVariableRow& row) const;
    SetResult store(std::wstring_view name, const SystemVariableValue& value, bool checked);

    const std::shared_ptr<SystemVariables> application_;
    std::map<const SystemVariableRow*, SystemVariableValue> values_;  // those that were ever set
    struct Elsewhere {
        Provider provider;
        Keeper keeper;
    };
    Watch watch_;
    std::map<const SystemVariableRow*, Elsewhere> elsewhere_;  // whose values are not kept here
};

}  // namespace sg
