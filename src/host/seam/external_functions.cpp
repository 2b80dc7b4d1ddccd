#include "host/seam/external_functions.h"

#include <fmt/xchar.h>

#include <algorithm>

#include "base/text.h"
#include "host/rx/exception_text.h"

namespace sg {

bool ExternalFunctions::define(Document& document, Module& module, const std::wstring& name,
                               int code) {
    if (name.empty()) return false;
    auto entry = std::make_shared<Entry>();
    entry->name = name;
    entry->slot = interpreter_.intern(upperCased(name));
    entry->module = &module;
    entry->code = code;
    auto function = new lisp::ExternalFunction(
        upperCased(name), [this, entry](lisp::Interpreter& in, lisp::Args arguments) {
            // The call may take the function itself away, and a collection this closure with it.
            const std::shared_ptr<Entry> kept = entry;
            return call(*kept, in, arguments);
        });
    entry->function = function;
    const lisp::Value value = lisp::Value::object(interpreter_.heap().adopt(function));
    // A number stands for one function: the one that had it before is gone.
    std::shared_ptr<Entry>& place = entries_[{&document, &module, code}];
    if (place != nullptr) withdraw(document, *place);
    interpreter_.setValueIn(document.variables(), entry->slot, value);
    place = std::move(entry);
    return true;
}

bool ExternalFunctions::setHandler(Document& document, Module& module, int (*handler)(), int code) {
    const auto found = entries_.find({&document, &module, code});
    if (found == entries_.end()) return false;
    found->second->handler = handler;
    return true;
}

void ExternalFunctions::withdraw(Document& document, Entry& entry) {
    entry.defined = false;
    entry.handler = nullptr;
    // A program may have given the name another value since; that stays.
    const lisp::Value value = interpreter_.valueIn(document.variables(), entry.slot);
    const lisp::ExternalFunction* function = lisp::asExternal(value);
    if (function != nullptr && function == entry.function) {
        interpreter_.setValueIn(document.variables(), entry.slot, lisp::Value::nil());
    }
}

bool ExternalFunctions::undefine(Document& document, Module& module, const std::wstring& name,
                                 int code) {
    const auto found = entries_.find({&document, &module, code});
    if (found == entries_.end() || !equalIgnoringCase(found->second->name, name)) return false;
    withdraw(document, *found->second);
    entries_.erase(found);
    return true;
}

void ExternalFunctions::forgetModule(const Module& module,
                                     const std::vector<std::unique_ptr<Document>>& documents) {
    for (const auto& document : documents) {
        for (auto at = entries_.lower_bound({document.get(), &module, INT32_MIN});
             at != entries_.end() && std::get<0>(at->first) == document.get() &&
             std::get<1>(at->first) == &module;) {
            withdraw(*document, *at->second);
            at = entries_.erase(at);
        }
    }
}

void ExternalFunctions::forgetDocument(const Document& document) {
    for (auto at = entries_.lower_bound({&document, nullptr, INT32_MIN});
         at != entries_.end() && std::get<0>(at->first) == &document;) {
        at->second->defined = false;
        at->second->handler = nullptr;
        at = entries_.erase(at);
    }
}

void ExternalFunctions::declareMissing(const std::wstring& name) {
    if (std::find(missing_.begin(), missing_.end(), name) == missing_.end()) {
        missing_.push_back(name);
    }
}

std::vector<std::wstring> ExternalFunctions::names(const Document& document) const {
    std::vector<std::wstring> names;
    for (auto at = entries_.lower_bound({&document, nullptr, INT32_MIN});
         at != entries_.end() && std::get<0>(at->first) == &document; ++at) {
        names.push_back(at->second->name);
    }
    return names;
}

// A handler where there is one; otherwise the module's entry point is asked.
int ExternalFunctions::run(Entry& entry) {
    if (entry.handler != nullptr) return entry.handler();
    return loader_.send(*entry.module, AcRx::kInvkSubrMsg) == AcRx::kRetOK ? RSRSLT : RSERR;
}

lisp::Value ExternalFunctions::call(Entry& entry, lisp::Interpreter& in, lisp::Args arguments) {
    if (!entry.defined) in.fail(L"no function definition: " + upperCased(entry.name));
    struct Scope {
        Call*& innermost;
        ~Scope() { innermost = innermost->outer; }
    };
    Call call{innermost_, entry.code, lisp::argumentsToResbuf(in, arguments), in.sp, arguments};
    in.push(lisp::Value::nil());
    int answer = RSERR;
    std::wstring escaped;
    {
        const ModuleLoader::Running running(loader_, *entry.module);
        innermost_ = &call;
        const Scope scope{innermost_};
        try {
            answer = run(entry);
        } catch (const lisp::LispError&) {
            throw;
        } catch (const lisp::OutOfMemory&) {
            throw;
        } catch (const lisp::ExitWithValue&) {
            throw;
        } catch (...) {
            escaped = currentExceptionText();
        }
    }
    if (!escaped.empty()) in.fail(fmt::format(L"exception in {}: {}", entry.name, escaped));
    if (answer != RSRSLT) in.fail(L"ADS request error");
    return *call.result;
}

}  // namespace sg
