#include <fmt/xchar.h>

#include "base/text.h"
#include "host/lisp/functions/list_builder.h"
#include "host/seam/host.h"
#include "host/seam/lisp_functions.h"
#include "host/seam/system_variable_values.h"
#include "host/system/registry.h"

// LISP functions on settings: system variables and the registry.
namespace sg {
namespace {

using lisp::Args;
using lisp::FunctionRow;
using lisp::Interpreter;
using lisp::ListBuilder;
using lisp::Value;

// ---- The registry ------------------------------------------------------------------------------

// Text is a string, a number an integer, an expandable text (REG_EXPAND_SZ . text), several texts
// (REG_MULTI_SZ text ...), bytes (REG_BINARY byte ...). Bytes that do not make their type are nil.
Value registryToLisp(Interpreter& in, const RegistryData& data) {
    if (std::holds_alternative<RegistryRaw>(data)) return Value::nil();
    if (const auto* text = std::get_if<RegistryText>(&data)) {
        const Value value = in.string(text->text);
        return text->expandable ? in.cons(in.symbol(L"REG_EXPAND_SZ"), value) : value;
    }
    if (const auto* number = std::get_if<uint32_t>(&data)) {
        return Value::integer(static_cast<int32_t>(*number));
    }
    ListBuilder items(in);
    if (const auto* texts = std::get_if<std::vector<std::wstring>>(&data)) {
        items.add(in.symbol(L"REG_MULTI_SZ"));
        for (const std::wstring& text : *texts)
            items.add(in.string(text));
    } else {
        items.add(in.symbol(L"REG_BINARY"));
        for (const uint8_t byte : std::get<std::vector<uint8_t>>(data)) {
            items.add(Value::integer(byte));
        }
    }
    return items.list();
}

RegistryData lispToRegistry(Interpreter& in, Value value) {
    if (value.isNil()) return RegistryText{};
    if (value.isString()) return RegistryText{in.str(value)};
    if (value.isInt()) return static_cast<uint32_t>(value.asInt());
    if (!value.isCons()) in.badArgument(L"stringp", value);
    const Value kind = value.asCons()->car;
    Value rest = value.asCons()->cdr;
    if (kind == in.symbol(L"REG_EXPAND_SZ")) return RegistryText{in.str(rest), true};
    if (kind == in.symbol(L"REG_MULTI_SZ")) {
        std::vector<std::wstring> texts;
        for (; rest.isCons(); rest = rest.asCons()->cdr) {
            texts.push_back(in.str(rest.asCons()->car));
        }
        return texts;
    }
    if (kind == in.symbol(L"REG_BINARY")) {
        std::vector<uint8_t> bytes;
        for (; rest.isCons(); rest = rest.asCons()->cdr) {
            const int32_t byte = in.integer(rest.asCons()->car);
            if (byte < 0 || byte > 255) in.badValue(L"byte " + std::to_wstring(byte));
            bytes.push_back(static_cast<uint8_t>(byte));
        }
        return bytes;
    }
    in.badArgument(L"stringp", value);
}

std::wstring valueName(Interpreter& in, Value name) {
    return name ? in.str(name) : L"";
}

Value fnRegistryRead(Interpreter& in, Args a) {
    const auto data = Host::the().registry().read(in.text(a[0]), valueName(in, a.get(1)));
    return data ? registryToLisp(in, *data) : Value::nil();
}

Value fnRegistryWrite(Interpreter& in, Args a) {
    RegistryStore& store = Host::the().registry();
    const std::wstring key = in.str(a[0]);
    if (a.size() == 1) {
        return in.boolean(store.createKey(key) == RegistryError::none);
    }
    const auto error = store.write(key, valueName(in, a[1]), lispToRegistry(in, a.get(2)), true);
    if (error != RegistryError::none) return Value::nil();
    return a.get(2) ? a[2] : in.t();
}

Value fnRegistryDelete(Interpreter& in, Args a) {
    RegistryStore& store = Host::the().registry();
    const std::wstring key = in.str(a[0]);
    const auto error = a.get(1) ? store.deleteValue(key, in.text(a[1])) : store.deleteKey(key);
    return in.boolean(error == RegistryError::none);
}

Value fnRegistryDescendents(Interpreter& in, Args a) {
    RegistryStore& store = Host::the().registry();
    const std::wstring key = in.str(a[0]);
    const auto names = a.get(1) ? store.valueNames(key) : store.subkeys(key);
    ListBuilder out(in);
    if (names) {
        for (const std::wstring& name : *names)
            out.add(in.string(name));
    }
    return out.list();
}

// ---- The configuration of getcfg and setcfg: a part of the registry ---------------------------

struct ConfigurationName {
    std::wstring key;
    std::wstring value;
};

// "AppData/application/section/parameter"; nullopt for a name that does not begin so.
std::optional<ConfigurationName> configurationName(std::wstring_view path) {
    constexpr std::wstring_view kRoot = L"AppData/";
    if (path.size() <= kRoot.size() || !equalIgnoringCase(path.substr(0, kRoot.size()), kRoot)) {
        return std::nullopt;
    }
    std::wstring key = L"HKEY_CURRENT_USER\\Software\\Swift Gate\\" + std::wstring(path);
    for (wchar_t& c : key) {
        if (c == L'/') c = L'\\';
    }
    const size_t last = key.rfind(L'\\');
    return ConfigurationName{key.substr(0, last), key.substr(last + 1)};
}

Value fnGetCfg(Interpreter& in, Args a) {
    const auto name = configurationName(in.text(a[0]));
    if (!name) return Value::nil();
    const auto data = Host::the().registry().read(name->key, name->value);
    const auto* text = data ? std::get_if<RegistryText>(&*data) : nullptr;
    return in.string(text != nullptr ? text->text : L"");
}

Value fnSetCfg(Interpreter& in, Args a) {
    const auto name = configurationName(in.text(a[0]));
    if (!name) return Value::nil();
    const auto error =
        Host::the().registry().write(name->key, name->value, RegistryText{in.str(a[1])}, true);
    return error == RegistryError::none ? a[1] : Value::nil();
}

// ---- System variables --------------------------------------------------------------------------

std::wstring variableName(Interpreter& in, Value name) {
    if (name.isSymbol()) return in.symbolName(name);
    return in.str(name);
}

Value fnGetVar(Interpreter& in, Args a) {
    const auto value = Host::the().systemVariables().get(variableName(in, a[0]));
    return value ? systemVariableToLisp(in, *value) : Value::nil();
}

Value fnSetVar(Interpreter& in, Args a) {
    const auto value = lispToSystemVariable(in, a[1]);
    using SetResult = SystemVariables::SetResult;
    const SetResult result = value
                                 ? Host::the().systemVariables().set(variableName(in, a[0]), *value)
                                 : SetResult::wrongType;
    if (result != SetResult::ok) {
        in.fail(fmt::format(L"AutoCAD variable setting rejected: {} {}", in.toQuotedText(a[0]),
                            in.toQuotedText(a[1])));
    }
    return a[1];
}

constexpr FunctionRow kRows[] = {
    {L"getvar", fnGetVar, 1, 1},
    {L"setvar", fnSetVar, 2, 2},
    {L"getcfg", fnGetCfg, 1, 1},
    {L"setcfg", fnSetCfg, 2, 2},
    {L"vl-registry-read", fnRegistryRead, 1, 2},
    {L"vl-registry-write", fnRegistryWrite, 1, 3},
    {L"vl-registry-delete", fnRegistryDelete, 1, 2},
    {L"vl-registry-descendents", fnRegistryDescendents, 1, 2},
};

}  // namespace

std::span<const FunctionRow> settingsFunctions() {
    return kRows;
}

}  // namespace sg
