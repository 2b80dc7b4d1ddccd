#include "host/dao/open_query.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "host/dao/sql_source.h"
#include "host/jet/schema/schema.h"
#include "host/sql/run/types.h"
#include "host/sql/stored/query_form.h"
#include "host/sql/stored/stored_query.h"

namespace sg::dao {
namespace {

constexpr int alreadyAppended = 3367;

std::wstring withoutBrackets(std::wstring_view name) {
    std::wstring plain;
    std::copy_if(name.begin(), name.end(), std::back_inserter(plain),
                 [](wchar_t c) { return c != L'[' && c != L']'; });
    return plain;
}

// Parameters without a name are called by their place.
bool isPositional(const std::wstring& name) {
    return name.starts_with(L'?');
}

}  // namespace

OpenQuery::OpenQuery(DatabaseSession& session, std::wstring name, std::wstring text)
    : session_(&session), opening_(session.opening()), name_(std::move(name)) {
    if (!text.empty()) parse(text);
    text_ = std::move(text);
}

OpenQuery::OpenQuery(DatabaseSession& session, std::wstring_view name)
    : session_(&session), opening_(session.opening()) {
    adopt(session.database().query(name));
}

void OpenQuery::adopt(const jet::Query& stored) {
    isStored_ = true;
    name_ = stored.name;
    text_ = stored.sql();
    kind_ = stored.kind();
    statement_.reset();
    description_.reset();
}

void OpenQuery::parse(const std::wstring& text) {
    sql::Statement statement = sql::parseStatement(text);
    kind_ = sql::kindOf(statement);
    statement_ = std::move(statement);
    description_.reset();
}

void OpenQuery::append() {
    if (isStored_) throw jet::Error(alreadyAppended);
    jet::Database& database = session_->database();
    if (database.object(name_, jet::ObjectType::Query) != nullptr) {
        throw jet::Error(jet::ObjectExists, {name_});
    }
    sql::storeQuery(database, name_, text_);
    adopt(database.query(name_));
}

void OpenQuery::rename(const std::wstring& name) {
    if (isStored_) jet::renameQuery(session_->database(), name_, name);
    name_ = name;
}

void OpenQuery::setText(const std::wstring& text) {
    if (isStored_) {
        jet::Database& database = session_->database();
        sql::storeQuery(database, name_, text);
        adopt(database.query(name_));
    } else {
        parse(text);
        text_ = text;
    }
    values_.clear();
}

const sql::Statement& OpenQuery::statement() {
    if (!statement_) {
        statement_ = isStored_ ? storedStatement(session_->database().query(name_))
                               : sql::parseStatement(text_);
    }
    return *statement_;
}

const sql::Description& OpenQuery::description() {
    const uint64_t design = session_->database().designStamp();
    if (!description_ || describedDesign_ != design) {
        description_ = kind_ == jet::QueryKind::PassThrough ? sql::Description()
                                                            : session_->sql().describe(statement());
        describedDesign_ = design;
    }
    return *description_;
}

size_t OpenQuery::parameterPlace(std::wstring_view name) {
    const std::wstring plain = withoutBrackets(name);
    const auto& all = description().parameters;
    for (size_t i = 0; i < all.size(); ++i) {
        if (equalIgnoringCase(all[i].name, plain)) return i;
    }
    throw jet::Error(jet::ItemNotFound);
}

const sql::Description::Parameter& OpenQuery::parameter(int place) {
    const auto& all = description().parameters;
    if (place < 0 || static_cast<size_t>(place) >= all.size()) {
        throw jet::Error(jet::ItemNotFound);
    }
    return all[static_cast<size_t>(place)];
}

const jet::Value* OpenQuery::value(int place) {
    const std::wstring& name = parameter(place).name;
    for (const sql::Parameter& each : values_) {
        if (each.name == name) return &each.value;
    }
    return nullptr;
}

void OpenQuery::setValue(int place, jet::Value value) {
    const sql::Description::Parameter& parameter = this->parameter(place);
    if (parameter.type) value = sql::asType(*parameter.type, std::move(value));
    for (sql::Parameter& each : values_) {
        if (each.name == parameter.name) {
            each.value = std::move(value);
            return;
        }
    }
    values_.push_back({parameter.name, std::move(value)});
}

sql::Parameters OpenQuery::given() {
    sql::Parameters given;
    if (values_.empty()) return given;
    const auto& all = description().parameters;
    bool isGap = false;  // what has no name is told by its place, up to the first one without value
    for (size_t i = 0; i < all.size(); ++i) {
        const jet::Value* held = value(static_cast<int>(i));
        isGap = isGap || (held == nullptr && isPositional(all[i].name));
        if (held != nullptr && !(isGap && isPositional(all[i].name))) {
            given.push_back({isPositional(all[i].name) ? std::wstring() : all[i].name, *held});
        }
    }
    return given;
}

void OpenQuery::execute(int32_t options) {
    recordsAffected_ = 0;
    recordsAffected_ = session_->execute(statement(), given(), options);
}

}  // namespace sg::dao
