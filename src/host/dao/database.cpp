#include "platform/dao/database.h"

#include <algorithm>

#include "base/text.h"
#include "host/dao/database_session.h"
#include "host/dao/describe.h"
#include "host/dao/errors.h"
#include "host/dao/sql_source.h"
#include "host/jet/schema/schema.h"

using sg::dao::guarded;
using sg::dao::throwDao;

namespace jet = sg::jet;

namespace {

constexpr int noSuchProvider = 3170;

template <class Item>
const Item& itemAt(const std::vector<Item>& items, int index) {
    if (index < 0 || static_cast<size_t>(index) >= items.size()) {
        throw jet::Error(jet::ItemNotFound);
    }
    return items[static_cast<size_t>(index)];
}

template <class Item>
const Item& itemNamed(const std::vector<Item>& items, const std::wstring& name) {
    const auto found = std::find_if(items.begin(), items.end(), [&](const Item& item) {
        return sg::equalIgnoringCase(item.name, name);
    });
    if (found == items.end()) throw jet::Error(jet::ItemNotFound);
    return *found;
}

int16_t countOf(size_t count) {
    return static_cast<int16_t>(std::min<size_t>(count, INT16_MAX));
}

}  // namespace

CDaoDatabase::CDaoDatabase() : session_(std::make_shared<sg::dao::DatabaseSession>()) {}

CDaoDatabase::~CDaoDatabase() {
    try {
        session_->close();
    } catch (const jet::Error&) {
        // What was written is safe in the log; the next open brings it into the file.
    }
}

void CDaoDatabase::Create(const std::wstring& name, const std::wstring& locale, int32_t) {
    if (m_bOpen) Close();
    guarded([&] { session_->create(name, jet::parseLocale(locale)); });
    m_bOpen = true;
}

void CDaoDatabase::Open(const std::wstring& name, bool exclusive, bool readOnly,
                        const std::wstring& connect) {
    if (m_bOpen) Close();
    if (!connect.empty() && connect != L";") throwDao(noSuchProvider);
    const jet::OpenMode mode = readOnly    ? jet::OpenMode::ReadOnly
                               : exclusive ? jet::OpenMode::Exclusive
                                           : jet::OpenMode::Shared;
    guarded([&] { session_->open(name, mode); });
    m_bOpen = true;
}

void CDaoDatabase::Close() {
    m_bOpen = false;
    guarded([&] { session_->close(); });
}

bool CDaoDatabase::CanUpdate() const {
    return session_->isOpen() && !session_->database().isReadOnly();
}

std::wstring CDaoDatabase::GetName() const {
    return session_->isOpen() ? session_->database().name() : std::wstring();
}

std::wstring CDaoDatabase::GetVersion() const {
    switch (guarded([&] { return session_->database().header().version; })) {
        case jet::Version::Jet3:
            return L"3.0";
        case jet::Version::Jet4:
            return L"4.0";
        case jet::Version::Ace12:
            return L"12.0";
        case jet::Version::Ace14:
            return L"14.0";
        default:
            return L"16.0";
    }
}

// --- tables ---

int16_t CDaoDatabase::GetTableDefCount() {
    return guarded([&] { return countOf(session_->tables().size()); });
}

void CDaoDatabase::GetTableDefInfo(int index, CDaoTableDefInfo& info, uint32_t level) {
    guarded([&] {
        const jet::CatalogObject object = itemAt(session_->tables(), index);
        sg::dao::describeTable(session_->database(), object, level, info);
    });
}

void CDaoDatabase::GetTableDefInfo(const std::wstring& name, CDaoTableDefInfo& info,
                                   uint32_t level) {
    guarded([&] {
        const jet::CatalogObject object = session_->table(name);
        sg::dao::describeTable(session_->database(), object, level, info);
    });
}

void CDaoDatabase::DeleteTableDef(const std::wstring& name) {
    guarded([&] {
        const jet::CatalogObject object = session_->table(name);
        session_->requireUnused(object.name);
        jet::dropTable(session_->database(), object.name);
    });
}

// --- relations ---

int16_t CDaoDatabase::GetRelationCount() {
    return guarded([&] { return countOf(session_->relations().size()); });
}

void CDaoDatabase::GetRelationInfo(int index, CDaoRelationInfo& info, uint32_t level) {
    guarded([&] { sg::dao::describeRelation(itemAt(session_->relations(), index), level, info); });
}

void CDaoDatabase::GetRelationInfo(const std::wstring& name, CDaoRelationInfo& info,
                                   uint32_t level) {
    guarded(
        [&] { sg::dao::describeRelation(itemNamed(session_->relations(), name), level, info); });
}

void CDaoDatabase::CreateRelation(CDaoRelationInfo& info) {
    guarded([&] {
        jet::Relation relation{info.m_strName,
                               info.m_strTable,
                               info.m_strForeignTable,
                               static_cast<uint32_t>(info.m_lAttributes),
                               {}};
        for (const CDaoRelationFieldInfo& field : info.m_pFieldInfos)
            relation.columns.push_back({field.m_strName, field.m_strForeignName});
        jet::createRelation(session_->database(), relation);
    });
}

void CDaoDatabase::DeleteRelation(const std::wstring& name) {
    guarded([&] { jet::dropRelation(session_->database(), name); });
}

// --- stored queries ---

int16_t CDaoDatabase::GetQueryDefCount() {
    return guarded([&] { return countOf(session_->queries().size()); });
}

void CDaoDatabase::GetQueryDefInfo(int index, CDaoQueryDefInfo& info, uint32_t level) {
    guarded([&] {
        const jet::CatalogObject object = itemAt(session_->queries(), index);
        const jet::Query query = session_->database().query(object.name);
        sg::dao::describeQuery(object, query, level, info);
    });
}

void CDaoDatabase::GetQueryDefInfo(const std::wstring& name, CDaoQueryDefInfo& info,
                                   uint32_t level) {
    guarded([&] {
        const jet::CatalogObject object = itemNamed(session_->queries(), name);
        const jet::Query query = session_->database().query(object.name);
        sg::dao::describeQuery(object, query, level, info);
    });
}

void CDaoDatabase::DeleteQueryDef(const std::wstring& name) {
    guarded([&] { jet::dropQuery(session_->database(), name); });
}

// --- SQL ---

void CDaoDatabase::Execute(const std::wstring& sql, int32_t options) {
    recordsAffected_ = 0;
    guarded([&] {
        const sg::sql::Statement statement = sg::dao::statementOf(session_->database(), sql);
        recordsAffected_ = session_->execute(statement, {}, options);
    });
}
