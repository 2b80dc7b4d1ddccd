#include "host/editor/documents.h"

#include <fmt/xchar.h>

#include <algorithm>

#include "host/editor/commands/active_command.h"
#include "host/editor/drawing_variables.h"
#include "host/editor/header_upkeep.h"
#include "host/editor/program_drawing.h"
#include "host/editor/selection/drawing_selection.h"
#include "host/editor/system_variables.h"
#include "host/editor/undo_history.h"
#include "host/editor/variable_undo.h"
#include "host/lisp/interpreter.h"
#include "host/system/paths.h"

namespace sg {
namespace {

class Iterator final : public AcApDocumentIterator {
  public:
    explicit Iterator(const std::vector<std::unique_ptr<Document>>& documents)
        : documents_(documents) {}
    bool done() const override { return at_ >= documents_.size(); }
    void step() override {
        if (!done()) ++at_;
    }
    AcApDocument* document() const override { return done() ? nullptr : documents_[at_].get(); }

  private:
    const std::vector<std::unique_ptr<Document>>& documents_;
    size_t at_ = 0;
};

// Modes by strength; the numbers of the interface do not order them.
int strength(AcAp::DocLockMode mode) {
    switch (mode) {
        case AcAp::kNone:
            return 0;
        case AcAp::kNotLocked:
            return 1;
        case AcAp::kRead:
            return 2;
        case AcAp::kAutoWrite:
        case AcAp::kProtectedAutoWrite:
            return 3;
        case AcAp::kWrite:
            return 4;
        case AcAp::kXWrite:
            return 5;
    }
    return 0;
}

}  // namespace

// ---- Document -----------------------------------------------------------------------------------

Document::Document(std::wstring fileName, std::unique_ptr<AcDbDatabase> database,
                   std::unique_ptr<lisp::Namespace> ns,
                   std::shared_ptr<SystemVariables> application)
    : fileName_(std::move(fileName)),
      title_(lastComponent(fileName_)),
      database_(std::move(database)),
      namespace_(std::move(ns)),
      systemVariables_(std::make_unique<SystemVariables>(std::move(application))),
      programs_(std::make_unique<ProgramDrawing>(*database_)),
      selection_(std::make_unique<DrawingSelection>(*database_)),
      headerUpkeep_(std::make_unique<HeaderUpkeep>(*database_)),
      undo_(std::make_unique<UndoHistory>(*database_)) {
    SystemVariables& variables = *systemVariables_;
    joinDrawingVariables(variables, *database_);
    headerUpkeep_->join(variables);
    joinUndo(variables, *undo_);
    joinView(variables, *database_);
    variables.setProvider(L"DWGNAME", [this] { return SystemVariableValue(title_); });
    variables.setProvider(L"DWGTITLED", [this] { return SystemVariableValue(int16_t{titled_}); });
    variables.setProvider(L"WRITESTAT",
                          [this] { return SystemVariableValue(int16_t{!isReadOnly()}); });
    variables.setProvider(L"DWGPREFIX", [this] {
        const std::wstring folder(titled_ ? parentFolder(fileName_) : absolutePath(L"."));
        return SystemVariableValue(folder.ends_with(L'/') ? folder : folder + L"/");
    });
}

Document::~Document() {
    command.reset();  // it works with all the others
}

AcAp::DocLockMode Document::lockMode() const {
    AcAp::DocLockMode strongest = AcAp::kNone;
    for (const AcAp::DocLockMode mode : locks_) {
        if (strength(mode) > strength(strongest)) strongest = mode;
    }
    return strongest;
}

bool Document::unlock() {
    if (locks_.empty()) return false;
    locks_.pop_back();
    return true;
}

void Document::setFile(std::wstring path, FileLock lock) {
    fileLock_ = std::move(lock);
    fileName_ = std::move(path);
    title_ = lastComponent(fileName_);
    titled_ = true;
    database_->setFilename(fileName_);
}

// ---- DocumentManager ----------------------------------------------------------------------------

DocumentManager::DocumentManager(lisp::Interpreter& interpreter,
                                 std::shared_ptr<SystemVariables> application, Events events)
    : interpreter_(interpreter), application_(std::move(application)), events_(std::move(events)) {}

DocumentManager::~DocumentManager() {
    for (const auto& document : documents_)
        interpreter_.forgetNamespace(&document->variables());
}

Document* DocumentManager::find(const AcApDocument* document) const {
    for (const auto& one : documents_) {
        if (one.get() == document) return one.get();
    }
    return nullptr;
}

AcApDocument* DocumentManager::document(const AcDbDatabase* database) const {
    if (database == nullptr) return nullptr;
    for (const auto& one : documents_) {
        if (one->database() == database) return one.get();
    }
    return nullptr;
}

AcApDocumentIterator* DocumentManager::newAcApDocumentIterator() {
    return new Iterator(documents_);
}

Acad::ErrorStatus DocumentManager::lockDocument(AcApDocument* document, AcAp::DocLockMode mode,
                                                const wchar_t*, const wchar_t*, bool) {
    Document* const found = find(document);
    if (found == nullptr || mode == AcAp::kNone) return Acad::eInvalidInput;
    found->lock(mode);
    return Acad::eOk;
}

Acad::ErrorStatus DocumentManager::unlockDocument(AcApDocument* document) {
    Document* const found = find(document);
    if (found == nullptr) return Acad::eInvalidInput;
    return found->unlock() ? Acad::eOk : Acad::eLockViolation;
}

void DocumentManager::makeCurrent(Document* document) {
    current_ = document;
    working_ = nullptr;
}

Acad::ErrorStatus DocumentManager::activateDocument(AcApDocument* document) {
    Document* const found = find(document);
    if (found == nullptr) return Acad::eInvalidInput;
    active_ = found;
    makeCurrent(found);
    return Acad::eOk;
}

Acad::ErrorStatus DocumentManager::sendStringToExecute(AcApDocument* document, const wchar_t* text,
                                                       bool activate, bool, bool) {
    Document* const found = find(document);
    if (found == nullptr || text == nullptr) return Acad::eInvalidInput;
    if (activate && found != active_) activateDocument(found);
    found->typed.emplace_back(text);
    return Acad::eOk;
}

Document& DocumentManager::add(std::unique_ptr<Document> document) {
    documents_.push_back(std::move(document));
    Document& added = *documents_.back();
    activateDocument(&added);
    if (events_.opened) events_.opened(added);
    return added;
}

Document& DocumentManager::create() {
    std::wstring name = fmt::format(L"Drawing{}.dwg", ++untitled_);
    auto ns = interpreter_.newNamespace(name);
    return add(std::make_unique<Document>(std::move(name), std::make_unique<AcDbDatabase>(),
                                          std::move(ns), application_));
}

Document& DocumentManager::open(const std::wstring& path, std::unique_ptr<AcDbDatabase> database,
                                FileLock lock) {
    auto document = std::make_unique<Document>(path, std::move(database),
                                               interpreter_.newNamespace(path), application_);
    document->setFile(path, std::move(lock));
    return add(std::move(document));
}

void DocumentManager::close(Document& document) {
    Document* const wasActive = active_;
    makeCurrent(&document);
    if (events_.closing) events_.closing(document);
    const auto found = std::find_if(documents_.begin(), documents_.end(),
                                    [&](const auto& one) { return one.get() == &document; });
    const auto index = static_cast<size_t>(found - documents_.begin());
    interpreter_.forgetNamespace(&document.variables());
    const std::unique_ptr<Document> closed = std::move(*found);
    documents_.erase(found);
    Document* next = wasActive;
    if (wasActive == &document) {
        next = documents_.empty() ? nullptr : documents_[index > 0 ? index - 1 : 0].get();
    }
    active_ = next;
    makeCurrent(next);
}

void DocumentManager::withCurrent(Document& document, const std::function<void()>& body) {
    struct Restore {
        DocumentManager& manager;
        Document* before;
        Document* active;
        AcDbDatabase* working;
        ~Restore() {
            // What was activated meanwhile stays current.
            const bool back = manager.active_ == active && manager.find(before) != nullptr;
            manager.current_ = back ? before : manager.active_;
            manager.working_ = back ? working : nullptr;
        }
    } restore{*this, current_, active_, working_};
    makeCurrent(&document);
    body();
}

AcDbDatabase* DocumentManager::workingDatabase() const {
    if (working_ != nullptr) return working_;
    return current_ == nullptr ? nullptr : current_->database();
}

Document* DocumentManager::nextWithTyped() const {
    const auto ready = [](const Document& document) {
        return !document.typed.empty() && document.isQuiescent();
    };
    if (active_ != nullptr && ready(*active_)) return active_;
    for (const auto& document : documents_) {
        if (ready(*document)) return document.get();
    }
    return nullptr;
}

}  // namespace sg
