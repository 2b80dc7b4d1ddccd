#include <fmt/xchar.h>

#include "base/text.h"
#include "host/lisp/files.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/node.h"
#include "host/lisp/text/numbers.h"

// How values are written: as princ writes them, and as prin1 does, which the reader reads back.
namespace sg::lisp {
namespace {

class Printer {
  public:
    Printer(Interpreter& in, bool quoted) : in_(in), quoted_(quoted) {}

    std::wstring take() { return std::move(out_); }

    void write(Value value) {
        in_.checkStack();
        if (value.isNil()) {
            out_ += L"nil";
        } else if (value.isInt()) {
            fmt::format_to(std::back_inserter(out_), L"{}", value.asInt());
        } else if (value.isReal()) {
            out_ += formatReal(value.asReal());
        } else if (value.isString()) {
            writeString(value.asString()->view());
        } else if (value.isSymbol()) {
            out_ += in_.symbolName(value);
        } else if (value.isCons()) {
            writeList(value);
        } else if (value.isEntityName()) {
            fmt::format_to(std::back_inserter(out_), L"<Entity name: {:x}>", value.asEntityName());
        } else if (value.isObject()) {
            writeObject(*value.asObject());
        }
    }

  private:
    void writeString(std::wstring_view text) {
        if (!quoted_) {
            out_ += text;
            return;
        }
        out_ += L'"';
        for (const wchar_t c : text) {
            switch (c) {
                case L'"':
                    out_ += L"\\\"";
                    break;
                case L'\\':
                    out_ += L"\\\\";
                    break;
                case L'\n':
                    out_ += L"\\n";
                    break;
                case L'\r':
                    out_ += L"\\r";
                    break;
                case L'\t':
                    out_ += L"\\t";
                    break;
                case 27:
                    out_ += L"\\e";
                    break;
                default:
                    if (c < 32 || c == 127) {
                        fmt::format_to(std::back_inserter(out_), L"\\{:03o}",
                                       static_cast<unsigned>(c));
                    } else {
                        out_ += c;
                    }
            }
        }
        out_ += L'"';
    }

    void writeList(Value list) {
        out_ += L'(';
        write(list.asCons()->car);
        Value rest = list.asCons()->cdr;
        for (; rest.isCons(); rest = rest.asCons()->cdr) {
            out_ += L' ';
            write(rest.asCons()->car);
        }
        if (!rest.isNil()) {
            out_ += L" . ";
            write(rest);
        }
        out_ += L')';
    }

    void writeNamed(const wchar_t* kind, const Object& object, const std::wstring& name) {
        fmt::format_to(std::back_inserter(out_), L"#<{} @{:016x} {}>", kind,
                       reinterpret_cast<uintptr_t>(&object), name);
    }

    void writeObject(const Object& object) {
        switch (object.kind()) {
            case ObjectKind::Subr:
                writeNamed(L"SUBR", object, static_cast<const Subr&>(object).name);
                break;
            case ObjectKind::Function: {
                const std::wstring& name = static_cast<const Function&>(object).code->name;
                writeNamed(L"USUBR", object, name.empty() ? L"-lambda-" : name);
                break;
            }
            case ObjectKind::ExternalFunction:
                writeNamed(L"EXRXSUBR", object, static_cast<const ExternalFunction&>(object).name);
                break;
            case ObjectKind::File:
                fmt::format_to(std::back_inserter(out_), L"#<file \"{}\">",
                               static_cast<const FileObject&>(object).path());
                break;
            case ObjectKind::PickSet:
                fmt::format_to(std::back_inserter(out_), L"<Selection set: {:x}>",
                               static_cast<const PickSet&>(object).name);
                break;
            case ObjectKind::CatchError:
                out_ += L"#<%catch-all-apply-error%>";
                break;
        }
    }

    Interpreter& in_;
    const bool quoted_;
    std::wstring out_;
};

}  // namespace

std::wstring Interpreter::toText(Value value) {
    Printer printer(*this, false);
    printer.write(value);
    return printer.take();
}

std::wstring Interpreter::toQuotedText(Value value) {
    Printer printer(*this, true);
    printer.write(value);
    return printer.take();
}

}  // namespace sg::lisp
