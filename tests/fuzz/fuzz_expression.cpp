// Any text as a default value and as a validation rule: understanding and evaluating it ends soon,
// and in nothing worse than an engine error.

#include <cstdint>
#include <string_view>

#include "base/encoding.h"
#include "host/jet/expression/expression.h"
#include "host/jet/format/error.h"

namespace {

using namespace sg::jet;

// The first letter of a name chooses the kind of its value.
class Names : public ExpressionNames {
  public:
    bool value(std::wstring_view name, Value& into) const override {
        switch (name.empty() ? L't' : name[0]) {
            case L't':
                into = std::wstring(L"Küche [12*]");
                return true;
            case L'i':
                into = INT32_MIN;
                return true;
            case L'q':
                into = INT64_MIN;
                return true;
            case L'c':
                into = Currency{INT64_MIN};
                return true;
            case L'm':
                into = Decimal{true, 255, {~0u, ~0u, ~0u, ~0u}};
                return true;
            case L'd':
                into = -1e308;
                return true;
            case L's':
                into = 3e38f;
                return true;
            case L'a':
                into = Date{-657434.75};
                return true;
            case L'b':
                into = Bytes{1, 2, 3};
                return true;
            case L'g':
                into = Guid{};
                return true;
            case L'n':
                into = Value();
                return true;
            default:
                return false;
        }
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::wstring text =
        sg::fromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    const Names names;
    try {
        Expression::parse(text).evaluate(names);
    } catch (const Error&) {
    }
    try {
        Expression::parseRule(text).isMet(names);
    } catch (const Error&) {
    }
    return 0;
}
