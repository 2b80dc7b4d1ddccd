// Any text as a statement, a script and an expression: parsing it ends soon, and in nothing worse
// than an engine error. What is understood means the same when it has been written out.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "base/encoding.h"
#include "host/jet/format/error.h"
#include "host/sql/parser.h"
#include "host/sql/syntax_errors.h"
#include "host/sql/to_text.h"

namespace {

using namespace sg::sql;

// Written out in two ways, both must read as the same tree. Only the depth that the parentheses add
// may be too much.
void checkWrittenOut(const Statement& statement) {
    const std::wstring all = toText(statement, Parentheses::All);
    for (const Parentheses parentheses : {Parentheses::Needed, Parentheses::All}) {
        try {
            const Statement again = parseStatement(toText(statement, parentheses));
            if (toText(again, Parentheses::All) != all) {
                std::abort();
            }
        } catch (const sg::jet::Error& error) {
            if (error.code() != TooComplex) {
                std::abort();
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::wstring text =
        sg::fromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    try {
        checkWrittenOut(parseStatement(text));
    } catch (const sg::jet::Error&) {
    }
    try {
        std::vector<ScriptEntry> script;
        parseScript(text, script);
    } catch (const sg::jet::Error&) {
    }
    try {
        parseExpression(text);
    } catch (const sg::jet::Error&) {
    }
    return 0;
}
