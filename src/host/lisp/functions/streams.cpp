#include <cstring>

#include "base/encoding.h"
#include "base/text.h"
#include "host/lisp/files.h"
#include "host/lisp/functions/program_state.h"
#include "host/lisp/functions/tables.h"
#include "host/system/paths.h"

// Printing, and text files read and written.
namespace sg::lisp {
namespace {

// ---- Open files ---------------------------------------------------------------------------------

FileObject::Mode modeOf(Interpreter& in, Value mode) {
    const std::wstring text = lowerCased(in.text(mode));
    if (text == L"r") return FileObject::Mode::Read;
    if (text == L"w") return FileObject::Mode::Write;
    if (text == L"a") return FileObject::Mode::Append;
    in.badValue(L"open mode: " + in.toQuotedText(mode));
}

FileObject::Encoding encodingOf(Interpreter& in, Value encoding) {
    if (encoding.isNil()) return FileObject::Encoding::Automatic;
    const std::wstring text = lowerCased(in.text(encoding));
    if (text == L"utf8") return FileObject::Encoding::Utf8;
    if (text == L"utf8-bom") return FileObject::Encoding::Utf8Bom;
    in.badValue(L"file encoding: " + in.toQuotedText(encoding));
}

Value fnOpen(Interpreter& in, Args a) {
    const std::wstring_view name = fileName(in, a[0]);
    const FileObject::Mode mode = modeOf(in, a[1]);
    const FileObject::Encoding encoding = encodingOf(in, a.get(2));
    if (name.empty()) return Value::nil();
    // Seen from the current folder, but not made shorter: "link/.." need not be where it seems.
    const std::wstring path = joinPath(absolutePath(L"."), resolvePath(name).path);
    FileObject* file = FileObject::open(path, mode, encoding);
    return file == nullptr ? Value::nil() : Value::object(in.heap().adopt(file));
}

FileObject& fileArgument(Interpreter& in, Value value) {
    FileObject* file = asFile(value);
    if (file == nullptr) in.badArgument(L"streamp", value);
    if (!file->isOpen()) in.fail(L"file is not open: \"" + file->path() + L"\"");
    return *file;
}

FileObject& readableFile(Interpreter& in, Value value) {
    FileObject& file = fileArgument(in, value);
    if (!file.readable()) in.fail(L"file is not open for reading: \"" + file.path() + L"\"");
    return file;
}

void checkWritten(Interpreter& in, const FileObject& file, int error) {
    if (error == 0) return;
    in.fail(L"cannot write to file: \"" + file.path() + L"\": " + fromUtf8(std::strerror(error)));
}

Value fnClose(Interpreter& in, Args a) {
    FileObject& file = fileArgument(in, a[0]);
    checkWritten(in, file, file.close());
    return Value::nil();
}

// Writes to the file, or shows the text to the user when `file` is nil.
void writeTo(Interpreter& in, Value file, std::wstring_view text) {
    if (file.isNil()) {
        in.print(text);
        return;
    }
    FileObject& object = fileArgument(in, file);
    if (object.readable()) {
        in.fail(L"file is not open for writing: \"" + object.path() + L"\"");
    }
    checkWritten(in, object, object.write(text));
}

// ---- Reading ------------------------------------------------------------------------------------

// The most bytes of a line; as text and as a string it takes about eight times its bytes.
size_t longestLine(Interpreter& in) {
    return in.heap().limit() / 8;
}

std::optional<std::wstring> typedLine(Interpreter& in) {
    return in.hooks().readLine ? in.hooks().readLine() : std::nullopt;
}

Value fnReadLine(Interpreter& in, Args a) {
    std::optional<std::wstring> line;
    if (a.get(0)) {
        line = readableFile(in, a[0]).readLine(longestLine(in));
    } else if (std::wstring& ahead = programState(in).typedAhead; !ahead.empty()) {
        ahead.pop_back();  // the line feed at its end
        line = std::move(ahead);
        ahead.clear();
    } else {
        line = typedLine(in);
    }
    return line ? in.string(*line) : Value::nil();
}

Value fnReadChar(Interpreter& in, Args a) {
    if (a.get(0)) {
        const int32_t c = readableFile(in, a[0]).readChar(longestLine(in));
        return c < 0 ? Value::nil() : Value::integer(c);
    }
    std::wstring& ahead = programState(in).typedAhead;
    if (ahead.empty()) {
        const std::optional<std::wstring> line = typedLine(in);
        if (!line) return Value::nil();
        ahead = *line + L'\n';
    }
    const wchar_t c = ahead.front();
    ahead.erase(0, 1);
    return Value::integer(c);
}

// ---- Writing ------------------------------------------------------------------------------------

Value fnWriteLine(Interpreter& in, Args a) {
    writeTo(in, a.get(1), in.str(a[0]) + L'\n');
    return a[0];
}

Value fnWriteChar(Interpreter& in, Args a) {
    const int32_t code = in.integer(a[0]);
    if (code <= 0 || code > 0x10FFFF) {
        in.badValue(L"character code: " + std::to_wstring(code));
    }
    const auto c = static_cast<wchar_t>(code);
    writeTo(in, a.get(1), {&c, 1});
    return a[0];
}

Value fnPrinc(Interpreter& in, Args a) {
    if (a.size() == 0) return Value::voidValue();
    if (a[0].isString()) {
        writeTo(in, a.get(1), a[0].asString()->view());
    } else {
        writeTo(in, a.get(1), in.toText(a[0]));
    }
    return a[0];
}

Value fnPrin1(Interpreter& in, Args a) {
    if (a.size() == 0) return Value::voidValue();
    writeTo(in, a.get(1), in.toQuotedText(a[0]));
    return a[0];
}

Value fnPrint(Interpreter& in, Args a) {
    if (a.size() == 0) return Value::voidValue();
    writeTo(in, a.get(1), L'\n' + in.toQuotedText(a[0]) + L' ');
    return a[0];
}

Value fnTerpri(Interpreter& in, Args) {
    in.print(L"\n");
    return Value::nil();
}

Value fnPrompt(Interpreter& in, Args a) {
    in.print(in.text(a[0]));
    return Value::nil();
}

Value fnPrincToString(Interpreter& in, Args a) {
    return in.string(in.toText(a[0]));
}
Value fnPrin1ToString(Interpreter& in, Args a) {
    return in.string(in.toQuotedText(a[0]));
}

constexpr FunctionRow kRows[] = {
    {L"open", fnOpen, 2, 3},
    {L"close", fnClose, 1, 1},
    {L"read-line", fnReadLine, 0, 1},
    {L"read-char", fnReadChar, 0, 1},
    {L"write-line", fnWriteLine, 1, 2},
    {L"write-char", fnWriteChar, 1, 2},
    {L"princ", fnPrinc, 0, 2},
    {L"prin1", fnPrin1, 0, 2},
    {L"print", fnPrint, 0, 2},
    {L"terpri", fnTerpri, 0, 0},
    {L"prompt", fnPrompt, 1, 1},
    {L"vl-princ-to-string", fnPrincToString, 1, 1},
    {L"vl-prin1-to-string", fnPrin1ToString, 1, 1},
};

}  // namespace

std::span<const FunctionRow> streamFunctions() {
    return kRows;
}

}  // namespace sg::lisp
