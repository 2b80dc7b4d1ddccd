#include <gtest/gtest.h>

#include <map>

#include "base/encoding.h"
#include "host/lisp/evaluate.h"
#include "host/lisp/interpreter.h"

namespace sg::lisp {
namespace {

struct Case {
    const wchar_t* program;
    const wchar_t* answer;
};

class ConversionFunctions : public testing::Test {
  protected:
    ConversionFunctions() {
        Hooks hooks;
        hooks.systemVariable = [this](std::wstring_view name) -> std::optional<Value> {
            const auto found = variables.find(name);
            if (found == variables.end()) return std::nullopt;
            return found->second;
        };
        session.in.setHooks(hooks);
    }
    void check(std::initializer_list<Case> cases) {
        for (const Case& each : cases) {
            EXPECT_EQ(session.evaluate(each.program), each.answer) << toUtf8(each.program);
        }
    }

    std::map<std::wstring, Value, std::less<>> variables;
    Session session;
};

TEST_F(ConversionFunctions, NumbersAsText) {
    check({
        {L"(rtos 17.5 1 4)", LR"("1.7500E+01")"},
        {L"(rtos 17.5 2 2)", LR"("17.50")"},
        {L"(rtos 17 2 1)", LR"("17.0")"},
        {L"(rtos 17.5 3 2)", LR"("1'-5.50\"")"},
        {L"(rtos 17.5 4 2)", LR"("1'-5 1/2\"")"},
        {L"(rtos 17.5 5 2)", LR"("17 1/2")"},
        {L"(rtos 17.5)", LR"("17.5000")"},
        {L"(rtos 17.5 nil 1)", LR"("17.5")"},
        {L"(rtos 17.5 2 -1)", LR"("17.5000")"},
        {L"(rtos \"1\")", LR"(; error: bad argument type: numberp: "1")"},
        {L"(rtos nil 2 2)", L"; error: bad argument type: numberp: nil"},
        {L"(rtos 1 2.0)", L"; error: bad argument type: fixnump: 2.0"},
        {L"(rtos 1 2 2 2)", L"; error: too many arguments"},
        {L"(angtos 0.785398163397448 0 4)", LR"("45.0000")"},
        {L"(angtos 0.785398163397448 1 4)", LR"("45d0'0\"")"},
        {L"(angtos -0.785398163397448 2 0)", LR"("350g")"},
        {L"(angtos 0.785398163397448 3 4)", LR"("0.7854r")"},
        {L"(angtos 0.785398163397448 4 2)", LR"("N 45d0' E")"},
        {L"(angtos 0.785398163397448)", LR"("45")"},
        {L"(angtos '(1 2))", L"; error: bad argument type: numberp: (1 2)"},
    });
}

TEST_F(ConversionFunctions, TextAsNumbers) {
    check({
        {LR"((distof "17.5"))", L"17.5"},
        {LR"((distof "1'-5 1/2\"" 4))", L"17.5"},
        {LR"((distof "1.75E+01" nil))", L"17.5"},
        {LR"((distof "abc"))", L"nil"},
        {LR"((distof "1" 6))", L"nil"},
        {LR"((distof 1))", L"; error: bad argument type: stringp 1"},
        {LR"((angtof "180"))", L"3.14159"},
        {LR"((angtof "45d0'0\"" 1))", L"0.785398"},
        {LR"((angtof "200" 2))", L"3.14159"},
        {LR"((angtof "N 45d E" 4))", L"0.785398"},
        {LR"((angtof ""))", L"nil"},
        {LR"((angtof "1" 5))", L"nil"},
        {LR"((angtof nil))", L"; error: bad argument type: stringp nil"},
    });
}

TEST_F(ConversionFunctions, SystemVariablesAreTheDefaults) {
    variables = {{L"LUNITS", Value::integer(4)}, {L"LUPREC", Value::integer(3)},
                 {L"AUNITS", Value::integer(2)}, {L"AUPREC", Value::integer(1)},
                 {L"DIMZIN", Value::integer(3)}, {L"UNITMODE", Value::integer(1)},
                 {L"ANGDIR", Value::integer(1)}, {L"ANGBASE", Value::real(1.5707963267948966)}};
    check({
        {L"(rtos 17.375)", LR"("1'5-3/8\"")"},
        {L"(rtos 0.5)", LR"("1/2\"")"},
        {L"(rtos 12 4)", LR"("1'0\"")"},
        {L"(rtos 17.375 2)", LR"("17.375")"},
        {L"(angtos 0.0)", LR"("100.0g")"},
        {L"(angtos 0.0 0 0)", LR"("90")"},
        {LR"((angtof "100"))", L"0.0"},
        {LR"((angtof "90" 0))", L"0.0"},
    });
    variables = {{L"LUNITS", Value::nil()}, {L"DIMZIN", Value::integer(8)}};
    check({{L"(rtos 17.5)", LR"("17.5")"}});
}

TEST_F(ConversionFunctions, UnitsOfMeasure) {
    check({
        {LR"((cvunit 1 "minute" "second"))", L"60.0"},
        {LR"((cvunit 1.0 "inch" "cm"))", L"2.54"},
        {LR"((cvunit '(1.0 2.5) "ft" "in"))", L"(12.0 30.0)"},
        {LR"((cvunit '(1 2 3) "ft" "in"))", L"(12.0 24.0 36.0)"},
        {LR"((cvunit 1 "gallon" "furlong"))", L"nil"},
        {LR"((cvunit '(1 2) "gallon" "furlong"))", L"nil"},
        {LR"((cvunit 1 "gallon" "no such unit"))", L"nil"},
        {LR"((cvunit nil "ft" "in"))", L"; error: bad argument type: numberp: nil"},
        {LR"((cvunit '(1 "2") "ft" "in"))", LR"(; error: bad argument type: numberp: "2")"},
        {LR"((cvunit '(1 "2") "ft" "second"))", LR"(; error: bad argument type: numberp: "2")"},
        {LR"((cvunit '(1 . 2) "ft" "in"))", L"; error: bad argument type: listp (1 . 2)"},
        {LR"((cvunit 1 "ft" 'in))", L"; error: bad argument type: stringp IN"},
    });
}

TEST_F(ConversionFunctions, PolarAngleDistance) {
    check({
        {L"(polar '(1 1 3.5) 0.7853981633974483 1.4142135623730951)", L"(2.0 2.0 3.5)"},
        {L"(polar '(1 1) 0 -3)", L"(-2.0 1.0)"},
        {L"(polar '(1) 0 1)", L"; error: bad argument type: 2D/3D point: (1)"},
        {L"(polar '(1 1) nil 1)", L"; error: bad argument type: numberp: nil"},
        {L"(angle '(1.0 1.0) '(1.0 4.0))", L"1.5708"},
        {L"(angle '(5.0 1.33) '(2.4 1.33))", L"3.14159"},
        {L"(angle '(0 0) '(1 -1))", L"5.49779"},
        {L"(angle '(0 0 0) '(1 1 9))", L"0.785398"},
        {L"(angle '(2 3) '(2 3))", L"0.0"},
        {L"(angle '(0.0 0.0) '(-0.0 -0.0))", L"0.0"},
        {L"(angle '(0 0) '(1 -1e-20))", L"0.0"},
        {L"(angle '(0 0) '(0 0 0 0))", L"; error: bad argument type: 2D/3D point: (0 0 0 0)"},
        {L"(distance '(1.0 2.5 3.0) '(7.7 2.5 3.0))", L"6.7"},
        {L"(distance '(0 0 0) '(2 3 6))", L"7.0"},
        {L"(distance '(1.0 2.0 0.5) '(3.0 2.0))", L"2.0"},
        {L"(distance '(0 0) '(3 4 99))", L"5.0"},
        {L"(distance '(0 0) '(3e200 4e200))", L"5.0e+200"},
        {L"(distance '(0 0) '(3e-200 4e-200))", L"5.0e-200"},
        {L"(distance '(0 0) nil)", L"; error: bad argument type: 2D/3D point: nil"},
    });
}

TEST_F(ConversionFunctions, Intersections) {
    check({
        {L"(setq a '(1.0 1.0) b '(9.0 9.0) c '(4.0 1.0) d '(4.0 2.0))", L"(4.0 2.0)"},
        {L"(inters a b c d)", L"nil"},
        {L"(inters a b c d T)", L"nil"},
        {L"(inters a b c d nil)", L"(4.0 4.0)"},
        {L"(inters '(0 0) '(2 2) '(0 2) '(2 0))", L"(1.0 1.0)"},
        // Ends that touch, also where rounding leaves them apart.
        {L"(inters '(0 0) '(1 0) '(1 0) '(1 5))", L"(1.0 0.0)"},
        {L"(inters '(0 0) '(1 0) '(0.5 0.000000000001) '(0.5 5))", L"(0.5 0.0)"},
        {L"(inters '(0 0) '(1 0) '(0.5 0.000001) '(0.5 5))", L"nil"},
        // Parallel, the same, and without length.
        {L"(inters '(0 0) '(1 1) '(1 0) '(2 1) nil)", L"nil"},
        {L"(inters '(0 0) '(0.3 0.1) '(0 0) '(0.9 0.3) nil)", L"nil"},
        {L"(inters '(0 0) '(0 0) '(0 -1) '(0 1) nil)", L"nil"},
        {L"(inters '(5e6 5e6) '(5000000.1 5000000.3) '(5e6 5e6) '(5000000.2 5000000.6) nil)",
         L"nil"},
        // In space only what meets, in the plane when any point is flat.
        {L"(inters '(0 0 0) '(2 2 2) '(0 2 0) '(2 0 2))", L"(1.0 1.0 1.0)"},
        {L"(inters '(0 0 0) '(2 2 0) '(0 2 1) '(2 0 1) nil)", L"nil"},
        {L"(inters '(0 0 0) '(2 2 0) '(0 2 1) '(2 0))", L"(1.0 1.0)"},
        {L"(inters '(3 0 0) '(3 0 4) '(3 -1 1) '(3 1 1))", L"(3.0 0.0 1.0)"},
        {L"(inters '(0 7 0) '(4 7 0) '(1 7 1) '(1 7 2) nil)", L"(1.0 7.0 0.0)"},
        {L"(inters '(0 0) '(1e200 1e200) '(0 1e200) '(1e200 0))", L"nil"},
        {L"(inters '(0 0) '(1 1) '(1 0) nil)", L"; error: bad argument type: 2D/3D point: nil"},
        {L"(inters '(0 0) '(1 1) '(1 0))", L"; error: too few arguments"},
    });
}

}  // namespace
}  // namespace sg::lisp
