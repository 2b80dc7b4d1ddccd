#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/db/object_id.h"

class AcDbObject;
class AcRxClass;

namespace sg::model {

class DatabaseState;
class HeaderVariables;

// What changed in a database, step by step, so that it can be put back in reverse order.
//
// Steps are kept while a transaction is active or an undo mark is set. Otherwise the state of an
// object is kept for as long as it is open only, which is what cancel() takes.
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
    void headerChanges();
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
    // Disabling forgets all marks and what could be taken back.
    void disableUndoRecording(bool disable);
    bool isUndoRecordingDisabled() const { return disabled_; }

  private:
    enum class Kind : uint8_t {
        state,     // the state was `bytes`; `payload` is 1 for the first of an open
        appended,  // the object is new
        taken,     // the object was taken away, and is kept in `payload`
        erase,     // the erased flag was `payload`
        joined,    // `payload` came to the list of the object, at `index`
        left,      // `payload` left it
        replaced,  // the object was of the class `payload` with the state `bytes`
        header,    // the header variables were those in `payload`
    };
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
    bool beginSession(AcDbObject& object);
    void endSession(AcDbObject& object);
    void recordAnew();
    void pushState(Steps& steps, AcDbObject& object, Kind kind, uint64_t payload);
    std::span<const uint8_t> bytesOf(const Steps& steps, const Entry& entry) const;
    void restore(AcDbObject& object, std::span<const uint8_t> bytes);
    void takeBack(Steps& steps, size_t position, Steps* inverse);
    void apply(Steps& steps, const Entry& entry, Steps* inverse);
    void putBackClass(Steps& steps, const Entry& entry, Steps* inverse);
    void dispose(Steps& steps, size_t from);
    void forgetRedo();

    DatabaseState& state_;
    Steps steps_;
    std::vector<size_t> scopes_;  // where each active transaction starts
    std::vector<size_t> marks_;
    std::vector<Steps> redo_;
    size_t sessions_ = 0;  // objects with a record of their state whose open lasts
    size_t closed_ = 0;    // steps whose objects are recorded anew when they change again
    bool disabled_ = false;
};

}  // namespace sg::model
