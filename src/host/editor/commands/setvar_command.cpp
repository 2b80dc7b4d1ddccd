#include <cwchar>
#include <optional>

#include "base/text.h"
#include "host/editor/commands/command.h"
#include "host/editor/commands/named_records.h"
#include "host/editor/commands/programs.h"
#include "host/editor/prompts/typed_values.h"
#include "host/editor/system_variables.h"
#include "host/lisp/text/numbers.h"
#include "host/lisp/text/units.h"
#include "host/lisp/text/wildcard.h"

namespace sg::commands {
namespace {

using Value = SystemVariableValue;

std::wstring shown(const Value& value) {
    if (const auto* const whole = std::get_if<int16_t>(&value)) return std::to_wstring(*whole);
    if (const auto* const whole = std::get_if<int32_t>(&value)) return std::to_wstring(*whole);
    if (const auto* const real = std::get_if<double>(&value)) return formatReal(*real);
    if (const auto* const text = std::get_if<std::wstring>(&value)) return L"\"" + *text + L"\"";
    std::wstring text;
    const auto add = [&](double number) {
        text += (text.empty() ? L"" : L",") + formatReal(number);
    };
    if (const auto* const point = std::get_if<std::array<double, 2>>(&value)) {
        for (const double each : *point)
            add(each);
    } else {
        for (const double each : std::get<std::array<double, 3>>(value))
            add(each);
    }
    return text;
}

// What is typed, as a value of the variable's type; nullopt for what is none.
std::optional<Value> typedValue(Command& c, std::wstring_view text, SystemVariableType type) {
    TypedContext context;
    context.lunits = c.whole(L"LUNITS");
    switch (type) {
        case SystemVariableType::shortInteger:
        case SystemVariableType::longInteger:
            if (const auto whole = parseTypedInteger(text)) return Value(*whole);
            if (equalIgnoringCase(text, L"ON")) return Value(int32_t{1});
            if (equalIgnoringCase(text, L"OFF")) return Value(int32_t{0});
            return std::nullopt;
        case SystemVariableType::real:
            if (const auto real = parseTypedDistance(text, context)) return Value(*real);
            return std::nullopt;
        case SystemVariableType::text:
            return Value(text == L"." ? std::wstring() : std::wstring(text));
        default:
            if (const auto point = parseTypedPoint(text, context)) {
                return Value(std::array<double, 3>{point->x, point->y, point->z});
            }
            return std::nullopt;
    }
}

void list(Command& c) {
    const std::wstring typed = c.word(L"Enter variable(s) to list <*>: ");
    const std::wstring pattern = typed.empty() ? L"*" : upperCased(typed);
    for (const std::wstring& name : SystemVariables::names()) {
        if (wildcardMatch(name, pattern)) {
            c.print(name + std::wstring(name.size() < 20 ? 20 - name.size() : 1, L' ') +
                    shown(*c.variables().get(name)));
        }
    }
}

void complain(Command& c, const std::wstring& name, SystemVariables::SetResult result) {
    switch (result) {
        case SystemVariables::SetResult::ok:
            return;
        case SystemVariables::SetResult::readOnly:
            c.print(name + L" is read-only.");
            return;
        default:
            c.print(L"Cannot set " + name + L" to that value.");
    }
}

void change(Command& c, const SystemVariableRow& row) {
    const std::wstring name = row.name;
    const Value before = *c.variables().get(name);
    if (row.isReadOnly) {
        c.print(name + L" = " + shown(before) + L" (read only)");
        return;
    }
    const bool isText = row.type == SystemVariableType::text;
    const std::wstring prompt = L"Enter new value for " + name +
                                (isText ? L", or . for none <" : L" <") + shown(before) + L">: ";
    for (;;) {
        const std::wstring typed = isText ? c.text(prompt) : c.word(prompt);
        if (typed.empty()) return;
        if (const auto value = typedValue(c, typed, row.type)) {
            return complain(c, name, c.variables().set(name, *value));
        }
        c.print(L"Requires a value of the variable's type.");
    }
}

}  // namespace

void setVariable(Command& c) {
    const std::wstring name = c.word(L"Enter variable name or [?]: ");
    if (name.empty()) return;
    if (name == L"?") return list(c);
    const SystemVariableRow* const row = findSystemVariable(name);
    if (row == nullptr) {
        c.print(L"Unknown variable name \"" + upperCased(name) + L"\".");
        return;
    }
    change(c, *row);
}

}  // namespace sg::commands
