#include "host/seam/system_variable_values.h"

#include <algorithm>

namespace sg {

using lisp::Interpreter;
using lisp::Value;

Value systemVariableToLisp(Interpreter& in, const SystemVariableValue& value) {
    struct Convert {
        Interpreter& in;
        Value operator()(int16_t i) const { return Value::integer(i); }
        Value operator()(int32_t i) const { return Value::integer(i); }
        Value operator()(double d) const { return Value::real(d); }
        Value operator()(const std::wstring& text) const { return in.string(text); }
        Value operator()(const std::array<double, 2>& p) const {
            return in.list({Value::real(p[0]), Value::real(p[1])});
        }
        Value operator()(const std::array<double, 3>& p) const {
            return in.list({Value::real(p[0]), Value::real(p[1]), Value::real(p[2])});
        }
    };
    return std::visit(Convert{in}, value);
}

std::optional<SystemVariableValue> lispToSystemVariable(Interpreter& in, Value value) {
    if (value.isInt()) return SystemVariableValue(value.asInt());
    if (value.isReal()) return SystemVariableValue(value.asReal());
    if (value.isString()) return SystemVariableValue(in.str(value));
    double xyz[3] = {0, 0, 0};
    size_t count = 0;
    for (; value.isCons(); value = value.asCons()->cdr) {
        if (count == 3 || !value.asCons()->car.isNumber()) return std::nullopt;
        xyz[count++] = value.asCons()->car.asNumber();
    }
    if (!value.isNil() || count < 2) return std::nullopt;
    if (count == 2) return SystemVariableValue(std::array<double, 2>{xyz[0], xyz[1]});
    return SystemVariableValue(std::array<double, 3>{xyz[0], xyz[1], xyz[2]});
}

void systemVariableToNode(const SystemVariableValue& value, resbuf& node) {
    struct Convert {
        resbuf& node;
        void operator()(int16_t i) const {
            node.restype = RTSHORT;
            node.resval.rint = i;
        }
        void operator()(int32_t i) const {
            node.restype = RTLONG;
            node.resval.rlong = i;
        }
        void operator()(double d) const {
            node.restype = RTREAL;
            node.resval.rreal = d;
        }
        void operator()(const std::wstring& text) const {
            node.restype = RTSTR;
            node.resval.rstring = acutNewString(text.c_str());
        }
        void operator()(const std::array<double, 2>& p) const {
            node.restype = RTPOINT;
            std::copy(p.begin(), p.end(), node.resval.rpoint);
        }
        void operator()(const std::array<double, 3>& p) const {
            node.restype = RT3DPOINT;
            std::copy(p.begin(), p.end(), node.resval.rpoint);
        }
    };
    node.rbnext = nullptr;
    std::visit(Convert{node}, value);
}

std::optional<SystemVariableValue> nodeToSystemVariable(const resbuf& node) {
    const ads_real* p = node.resval.rpoint;
    switch (node.restype) {
        case RTSHORT:
            return SystemVariableValue(node.resval.rint);
        case RTLONG:
            return SystemVariableValue(node.resval.rlong);
        case RTREAL:
            return SystemVariableValue(node.resval.rreal);
        case RTSTR:
            return SystemVariableValue(
                std::wstring(node.resval.rstring != nullptr ? node.resval.rstring : L""));
        case RTPOINT:
            return SystemVariableValue(std::array<double, 2>{p[0], p[1]});
        case RT3DPOINT:
            return SystemVariableValue(std::array<double, 3>{p[0], p[1], p[2]});
        default:
            return std::nullopt;
    }
}

}  // namespace sg
