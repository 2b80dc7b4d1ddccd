// Any bytes as a LISP program text: reading and compiling them ends in forms or in a LISP error,
// and what prin1 writes of a form reads back as the same.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "base/encoding.h"
#include "host/lisp/compiler.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace sg;
    using namespace sg::lisp;
    static Interpreter in;
    const std::wstring text =
        decodeTextFile(std::string_view(reinterpret_cast<const char*>(data), size));
    isIncomplete(text);
    LineMap lines;
    static const std::wstring file = L"fuzz.lsp";
    in.runProtected([&] {
        Reader reader(in, text, file, &lines);
        while (reader.more()) {
            const Value form = reader.read();
            in.push(form);
            Compiler(in, &file, &lines).compile(form);
            const std::wstring written = in.toQuotedText(form);
            Reader again(in, written);
            const Value copy = again.more() ? again.read() : Value::nil();
            const std::wstring rewritten = in.toQuotedText(copy);
            if (rewritten != written || again.more()) {
                std::fprintf(stderr, "not read back: %s\n         as: %s\n",
                             toUtf8(written).c_str(), toUtf8(rewritten).c_str());
                std::abort();
            }
        }
        return Value::nil();
    });
    static int runs = 0;
    if (++runs % 64 == 0) in.heap().collectFully();
    return 0;
}
