#pragma once

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "host/editor/documents.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/marshal.h"
#include "host/rx/module_loader.h"

namespace sg {

// The LISP functions that modules have defined, and the calls of them that are in progress.
class ExternalFunctions {
  public:
    ExternalFunctions(lisp::Interpreter& interpreter, ModuleLoader& loader)
        : interpreter_(interpreter), loader_(loader) {}

    // What acedDefun, acedRegFunc and acedUndef do, for a document and a module.
    bool define(Document& document, Module& module, const std::wstring& name, int code);
    bool setHandler(Document& document, Module& module, int (*handler)(), int code);
    bool undefine(Document& document, Module& module, const std::wstring& name, int code);

    // Takes away what a module has defined in any document, and what is defined in a document.
    void forgetModule(const Module& module,
                      const std::vector<std::unique_ptr<Document>>& documents);
    void forgetDocument(const Document& document);

    // The innermost call in progress.
    struct Call {
        Call* outer;
        int code;
        lisp::ResbufList arguments;  // until they are taken
        lisp::Value* result;         // on the value stack
        lisp::Args given;
        lisp::Value last{};  // cell of a result that comes in parts
    };
    Call* innermost() const { return innermost_; }

    // Functions that their module has declared as having no implementation, in table order.
    void declareMissing(const std::wstring& name);
    const std::vector<std::wstring>& missing() const { return missing_; }

    // Names of the functions that are defined in a document.
    std::vector<std::wstring> names(const Document& document) const;

  private:
    struct Entry {
        std::wstring name;
        uint32_t slot;
        const lisp::ExternalFunction* function;  // what define() gave the name; not owned
        Module* module;
        int code;
        int (*handler)() = nullptr;
        bool defined = true;
    };
    using Key = std::tuple<const Document*, const Module*, int>;

    lisp::Value call(Entry& entry, lisp::Interpreter& in, lisp::Args arguments);
    int run(Entry& entry);
    void withdraw(Document& document, Entry& entry);

    lisp::Interpreter& interpreter_;
    ModuleLoader& loader_;
    std::map<Key, std::shared_ptr<Entry>> entries_;
    std::vector<std::wstring> missing_;
    Call* innermost_ = nullptr;
};

}  // namespace sg
