#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/editor/commands/memory.h"
#include "host/system/file_lock.h"
#include "platform/ap/documents.h"
#include "platform/db/database.h"

namespace sg {

namespace lisp {
class Interpreter;
struct Namespace;
}  // namespace lisp
class ActiveCommand;
class DrawingSelection;
class HeaderUpkeep;
struct ProgramDrawing;
class SystemVariables;
class UndoHistory;

// One open drawing: its database, its LISP namespace, its system variables, its locks and what
// waits to be typed into it.
class SG_API Document final : public AcApDocument {
  public:
    Document(std::wstring fileName, std::unique_ptr<AcDbDatabase> database,
             std::unique_ptr<lisp::Namespace> ns, std::shared_ptr<SystemVariables> application);
    ~Document() override;

    const wchar_t* fileName() const override { return fileName_.c_str(); }
    const wchar_t* docTitle() const override { return title_.c_str(); }
    AcDbDatabase* database() const override { return database_.get(); }
    AcDbTransactionManager* transactionManager() const override {
        return database_->transactionManager();
    }
    AcAp::DocLockMode lockMode() const override;
    int lockCount() const override { return static_cast<int>(locks_.size()); }
    bool isQuiescent() const override { return running_ == 0; }

    // True once the drawing has a file, which is then fileName().
    bool isTitled() const { return titled_; }
    // The lock says that nobody else changes the file.
    void setFile(std::wstring path, FileLock lock);
    // True while another process has the drawing's file, which is then not to be written.
    bool isReadOnly() const { return !fileLock_.isFree(); }
    const std::wstring& fileHolder() const { return fileLock_.holder(); }

    lisp::Namespace& variables() { return *namespace_; }
    SystemVariables& systemVariables() { return *systemVariables_; }
    ProgramDrawing& programs() { return *programs_; }
    DrawingSelection& selection() { return *selection_; }
    HeaderUpkeep& headerUpkeep() { return *headerUpkeep_; }
    UndoHistory& undo() { return *undo_; }

    void lock(AcAp::DocLockMode mode) { locks_.push_back(mode); }
    bool unlock();

    // Held while an expression or command runs in the document.
    class Running {
      public:
        explicit Running(Document& document) : document_(document) { ++document_.running_; }
        ~Running() { --document_.running_; }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

      private:
        Document& document_;
    };

    std::deque<std::wstring> typed;  // lines that wait to be run, oldest first
    CommandMemory memory;
    std::unique_ptr<ActiveCommand> command;  // the built-in command on its way; null for none

  private:
    std::wstring fileName_;
    std::wstring title_;
    bool titled_ = false;
    FileLock fileLock_;
    std::unique_ptr<AcDbDatabase> database_;
    std::unique_ptr<lisp::Namespace> namespace_;
    std::unique_ptr<SystemVariables> systemVariables_;
    std::unique_ptr<ProgramDrawing> programs_;
    std::unique_ptr<DrawingSelection> selection_;
    std::unique_ptr<HeaderUpkeep> headerUpkeep_;
    std::unique_ptr<UndoHistory> undo_;
    std::vector<AcAp::DocLockMode> locks_;
    int running_ = 0;
};

// The open documents. The host is told of comings and goings through Events, so that it can send
// modules their messages.
class SG_API DocumentManager final : public AcApDocManager {
  public:
    struct Events {
        std::function<void(Document&)> opened;   // it is in the list, and current
        std::function<void(Document&)> closing;  // it is still in the list, and current
    };

    DocumentManager(lisp::Interpreter& interpreter, std::shared_ptr<SystemVariables> application,
                    Events events);
    ~DocumentManager() override;

    AcApDocument* curDocument() const override { return current_; }
    AcApDocument* mdiActiveDocument() const override { return active_; }
    AcApDocument* document(const AcDbDatabase* database) const override;
    AcApDocumentIterator* newAcApDocumentIterator() override;
    Acad::ErrorStatus lockDocument(AcApDocument* document, AcAp::DocLockMode mode,
                                   const wchar_t* globalCommand, const wchar_t* localCommand,
                                   bool prompt) override;
    Acad::ErrorStatus unlockDocument(AcApDocument* document) override;
    Acad::ErrorStatus activateDocument(AcApDocument* document) override;
    Acad::ErrorStatus sendStringToExecute(AcApDocument* document, const wchar_t* text,
                                          bool activate, bool wrapUpInactive, bool echo) override;

    // A new drawing named "Drawing<n>.dwg", made active.
    Document& create();
    // A document for a drawing that was read from the file `path`, made active.
    Document& open(const std::wstring& path, std::unique_ptr<AcDbDatabase> database, FileLock lock);
    // Closes a document; another one becomes active, the one opened before it where there is one.
    void close(Document& document);

    Document* current() const { return current_; }
    Document* active() const { return active_; }
    Document* find(const AcApDocument* document) const;
    const std::vector<std::unique_ptr<Document>>& all() const { return documents_; }

    // Runs `body` with another document as the current one.
    void withCurrent(Document& document, const std::function<void()>& body);

    // The working database: that of the current document unless set otherwise.
    AcDbDatabase* workingDatabase() const;
    void setWorkingDatabase(AcDbDatabase* database) { working_ = database; }

    // A document for which typed lines wait and which may run them now; null when none does.
    Document* nextWithTyped() const;

  private:
    Document& add(std::unique_ptr<Document> document);
    void makeCurrent(Document* document);

    lisp::Interpreter& interpreter_;
    const std::shared_ptr<SystemVariables> application_;
    Events events_;
    std::vector<std::unique_ptr<Document>> documents_;  // in the order in which they were opened
    Document* active_ = nullptr;
    Document* current_ = nullptr;
    AcDbDatabase* working_ = nullptr;  // null: that of the current document
    int untitled_ = 0;                 // how many new drawings there have been
};

}  // namespace sg
