#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/db/object_id.h"

class AcDbDictionary;
class AcDbObject;
class AcRxClass;

namespace sg::model {

class DatabaseState;
class HeaderVariables;

// A change of something outside the database that its undo takes back too.
class OutsideChange {
  public:
    virtual ~OutsideChange() = default;
    // Takes the change back, and answers the change that this was.
    virtual std::unique_ptr<OutsideChange> takeBack() = 0;
};

// What changed in a database, step by step, so that it can be put back in reverse order.
//
// Steps are kept while a transaction is active or an undo mark is set. Otherwise the state of an
// object is kept for as long as it is open only, which is what cancel() takes. Of an object that
// changes again and again behind a mark one state is kept, of one that is new behind it none.
class UndoLog {
  public:
    explicit UndoLog(DatabaseState& state);
    ~UndoLog();
    UndoLog(const UndoLog&) = delete;
    UndoLog& operator=(const UndoLog&) = delete;

    // --- What happens to objects. Each is told before it happens, but for the new objects.

    void stateChanges(AcDbObject& object);
    void objectAppended(AcDbObject& object);
    void eraseChanges(AcDbObject& object);
    // A member comes to, or leaves, the place `index` in a block's or symbol table's list.
    void memberJoins(AcDbObjectId container, AcDbObjectId member, size_t index);
    void memberLeaves(AcDbObjectId container, AcDbObjectId member, size_t index);
    // Another object takes the id of `object`.
    void objectReplaced(AcDbObject& object);
    // The entry of this name is about to be set, or to go.
    void entryChanges(AcDbDictionary& dictionary, const std::wstring& name);
    void headerChanges();
    // Dropped unless steps are kept.
    void outsideChanges(std::unique_ptr<OutsideChange> change);
    // An open for write ends.
    void sessionEnded(AcDbObject& object);
    // Puts back the state that `object` had when it was opened.
    void cancelSession(AcDbObject& object);
    // Forgets what states the object had: it is of another class now.
    void forgetStates(AcDbObjectId id);
    void clear();

    // --- Transactions

    void beginScope();
    void endScope();    // its steps become those of the scope around it
    void abortScope();  // they are taken back

    // --- Commands

    // Sets a mark that undo() goes back to. No effect while recording is disabled.
    void startUndoRecord();
    bool undo();  // to the last mark; false when there is none, or a transaction is active
    bool redo();  // what the last undo() took back; false when something has changed since
    bool canRedo() const { return !redo_.empty(); }
    // Takes the last mark away when nothing has changed since; true when it did.
    bool dropEmptyRecord();
    // Takes all marks away but the first `count`, so that undo() goes back to the last of those.
    void keepMarks(size_t count);
    // Forgets what happened before the mark of this index, and the marks before it. False while a
    // transaction is active or an object is open that has changed.
    bool forgetBefore(size_t mark);
    size_t byteCount() const;
    // Another number whenever a state that is kept now would have to be kept again on a change.
    uint32_t span() const { return span_; }
    // Disabling forgets all marks and what could be taken back.
    void disableUndoRecording(bool disable);

  private:
    enum class Kind : uint8_t {
        state,     // the state was `bytes`; `payload` holds flags
        appended,  // the object is new
        taken,     // the object was taken away, and is kept in `payload`
        erase,     // the erased flag was `payload`
        joined,    // `payload` came to the list of the object, at `index`
        left,      // `payload` left it
        replaced,  // the object was of the class `payload` with the state `bytes`
        header,    // the header variables were those in `payload`
        entry,     // a dictionary's entry was as the bytes tell; `payload` holds flags
        outside,   // what `payload` takes back
    };
    // Flags of a state: the first record of an open; for cancel() only, an older state is kept.
    static constexpr uint64_t kFirst = 1;
    static constexpr uint64_t kForSession = 2;
    struct Entry {
        AcDbObjectId id;
        uint64_t payload;
        uint64_t offset;  // into the bytes, where the entry has some; the index of joined and left
        Kind kind;
    };
    struct Steps {
        std::vector<Entry> entries;
        std::vector<uint8_t> bytes;
    };

    bool isKeeping() const { return !scopes_.empty() || !marks_.empty(); }
    void newStep(const Entry& entry);
    bool isKept(AcDbObjectId id) const;  // its state, or that it is new, in this span
    void setKept(AcDbObjectId id);
    void pushEntry(Steps& steps, AcDbDictionary& dictionary, const std::wstring& name,
                   uint64_t flags);
    // Puts the entry back; what it was meanwhile goes to `inverse`, if there is one.
    void restoreEntry(AcDbDictionary& dictionary, std::span<const uint8_t> bytes, Steps* inverse);
    bool beginSession(AcDbObject& object);
    void endSession(AcDbObject& object);
    void recordAnew();
    void pushState(Steps& steps, AcDbObject& object, Kind kind, uint64_t payload);
    std::span<const uint8_t> bytesOf(const Steps& steps, const Entry& entry) const;
    void restore(AcDbObject& object, std::span<const uint8_t> bytes);
    void takeBack(Steps& steps, size_t position, Steps* inverse);
    void apply(Steps& steps, const Entry& entry, Steps* inverse);
    void putBackClass(Steps& steps, const Entry& entry, Steps* inverse);
    static bool hasBytes(const Entry& entry);
    void release(const Entry& entry);
    void dispose(Steps& steps, size_t from);
    void forgetRedo();

    DatabaseState& state_;
    Steps steps_;
    std::vector<size_t> scopes_;  // where each active transaction starts
    std::vector<size_t> marks_;
    std::vector<Steps> redo_;
    size_t sessions_ = 0;  // objects with a record of their state whose open lasts
    size_t closed_ = 0;    // steps whose objects are recorded anew when they change again
    uint32_t span_ = 1;
    uint32_t headerKept_ = 0;     // the span in which the header was kept last
    std::vector<uint32_t> kept_;  // by the index of an object: the same of its state
    bool disabled_ = false;
};

}  // namespace sg::model
