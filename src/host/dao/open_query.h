#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/dao/database_session.h"
#include "host/sql/parser.h"
#include "host/sql/run/session.h"

namespace sg::dao {

// A query as a CDaoQueryDef holds it: its text and the values of its parameters. Its session must
// outlive it. Throws jet::Error.
class OpenQuery {
  public:
    // One that the database does not keep. `text` may be empty; then only a new text can be used.
    OpenQuery(DatabaseSession& session, std::wstring name, std::wstring text);
    // A stored one. Throws ItemNotFound.
    OpenQuery(DatabaseSession& session, std::wstring_view name);

    // False when the database has been closed since.
    bool isValid() const { return session_->opening() == opening_; }
    bool isStored() const { return isStored_; }
    const std::wstring& name() const { return name_; }
    const std::wstring& text() const { return text_; }
    jet::QueryKind kind() const { return kind_; }

    void append();
    void rename(const std::wstring& name);
    void setText(const std::wstring& text);

    // Throws what is wrong in the text.
    const sql::Statement& statement();
    // As the tables are now.
    const sql::Description& description();

    // Case and brackets do not matter; throws ItemNotFound.
    size_t parameterPlace(std::wstring_view name);
    // These throw ItemNotFound for a place that there is none.
    const sql::Description::Parameter& parameter(int place);
    // Null where none was set.
    const jet::Value* value(int place);
    // Converted to the parameter's type. Throws ConversionError.
    void setValue(int place, jet::Value value);

    // The values that were set, for running it.
    sql::Parameters given();
    void execute(int32_t options);
    int32_t recordsAffected() const { return recordsAffected_; }

  private:
    void adopt(const jet::Query& stored);
    void parse(const std::wstring& text);

    DatabaseSession* session_;
    uint64_t opening_;
    bool isStored_ = false;
    std::wstring name_;
    std::wstring text_;
    jet::QueryKind kind_ = jet::QueryKind::Select;
    std::optional<sql::Statement> statement_;  // of text_, where it was needed
    std::optional<sql::Description> description_;
    uint64_t describedDesign_ = 0;  // for which description_ holds
    sql::Parameters values_;
    int32_t recordsAffected_ = 0;
};

}  // namespace sg::dao
