#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "host/jet/engine_state.h"

// Random operations on a database, done by the engine and, beside it, by a few lines that tell what
// must come out.
namespace sg::jet::test {

// A database file that is closed and opened now and then.
struct Session {
    std::wstring path;
    StorageOptions options{};
    OpenMode mode = OpenMode::Shared;
    std::unique_ptr<Database> database{};

    void open();
    void close() { database->close(); }
};

// A new file with the tables "Floors" and "Rooms", a relation between them that cascades, indexes
// of many kinds, long values, and some rows; closed again.
void makeEngineFile(const Session& session);

// The same seed and state give the same operations, in whatever process.
class EngineWorkload {
  public:
    EngineWorkload(unsigned seed, DatabaseState state) : random_(seed), state_(std::move(state)) {}

    // Without closing, opening and compacting the file.
    void stayOpen() { staysOpen_ = true; }

    // Chooses the next operation, which is atomic, and does it to the state.
    void plan();
    const DatabaseState& state() const { return state_; }
    const std::string& planned() const { return planned_; }
    // Does what was planned to the database. Throws an engine error that should not have come, and
    // std::logic_error when one that should have come did not.
    void perform(Session& session) const;

  private:
    using Row = std::vector<Value>;
    using Step = std::function<void(Session&)>;

    size_t below(size_t count) { return random_() % count; }
    bool oneIn(size_t count) { return below(count) == 0; }
    void step(Step step) { steps_.push_back(std::move(step)); }
    void refused(int code, Step step);

    std::wstring randomText(size_t length);
    Value randomValue(const ColumnState& column);
    Row randomRow(const std::wstring& table);
    std::optional<int32_t> randomId(const std::wstring& table);
    const std::wstring& randomTable();
    bool isRelated() const { return !state_.relations.empty(); }
    bool isTaken(const std::wstring& table, const std::wstring& column, const Value& value,
                 std::optional<int32_t> own = {}) const;
    bool isRefused(const std::wstring& table, const Row& row, std::optional<int32_t> own,
                   int& code) const;

    void changeRow();
    void insert(const std::wstring& table);
    void update(const std::wstring& table);
    void erase(const std::wstring& table);
    void follow(const Value& before, const Value& after);
    void eraseRoomsOn(const Value& number);

    void transaction();
    void manyRows();
    void fewRows();
    void changeDesign();
    void toggleIndex();
    void toggleRelation();
    void toggleTable();
    void changeColumns(const std::wstring& table);
    void wholeFile();

    std::mt19937 random_;
    DatabaseState state_;
    bool staysOpen_ = false;
    std::vector<Step> steps_;
    std::string planned_;
};

}  // namespace sg::jet::test
