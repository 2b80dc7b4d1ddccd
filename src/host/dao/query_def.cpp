#include "platform/dao/query_def.h"

#include "host/dao/errors.h"
#include "host/dao/open_query.h"
#include "host/dao/table_fields.h"
#include "host/dao/variants.h"

using sg::dao::DatabaseSession;
using sg::dao::guarded;
using sg::dao::OpenQuery;
using sg::dao::throwDao;

namespace dao = sg::dao;
namespace jet = sg::jet;

namespace {

DatabaseSession& sessionOf(const std::shared_ptr<DatabaseSession>& session) {
    if (session == nullptr || !session->isOpen()) throwDao(jet::ObjectClosed);
    return *session;
}

COleVariant shownValue(OpenQuery& query, int index) {
    const jet::Value* value = query.value(index);
    return value == nullptr ? COleVariant() : dao::toVariant(*value);
}

void describeParameter(OpenQuery& query, int index, uint32_t level, CDaoParameterInfo& info) {
    const sg::sql::Description::Parameter& parameter = query.parameter(index);
    info = {};
    info.m_strName = parameter.name;
    info.m_nType = parameter.type ? dao::fieldType(*parameter.type) : int16_t(dbText);
    if (level >= AFX_DAO_SECONDARY_INFO) info.m_varValue = shownValue(query, index);
}

}  // namespace

CDaoQueryDef::CDaoQueryDef(CDaoDatabase* database)
    : m_pDatabase(database), session_(database != nullptr ? database->session() : nullptr) {}
CDaoQueryDef::~CDaoQueryDef() = default;

OpenQuery& CDaoQueryDef::opened() const {
    if (!IsOpen()) throwDao(jet::ObjectClosed);
    return *query_;
}

// --- opening ---

void CDaoQueryDef::Create(const std::wstring& name, const std::wstring& sql) {
    Close();
    DatabaseSession& session = sessionOf(session_);
    guarded([&] { query_ = std::make_unique<OpenQuery>(session, name, sql); });
}

void CDaoQueryDef::Append() {
    OpenQuery& query = opened();
    guarded([&] { query.append(); });
}

void CDaoQueryDef::Open(const std::wstring& name) {
    Close();
    DatabaseSession& session = sessionOf(session_);
    guarded([&] { query_ = std::make_unique<OpenQuery>(session, name); });
}

void CDaoQueryDef::Close() {
    query_.reset();
}

bool CDaoQueryDef::IsOpen() const {
    return query_ != nullptr && query_->isValid();
}

// --- what it is ---

std::wstring CDaoQueryDef::GetName() const {
    return IsOpen() ? query_->name() : std::wstring();
}

void CDaoQueryDef::SetName(const std::wstring& name) {
    OpenQuery& query = opened();
    guarded([&] { query.rename(name); });
}

std::wstring CDaoQueryDef::GetSQL() const {
    return IsOpen() ? query_->text() : std::wstring();
}

void CDaoQueryDef::SetSQL(const std::wstring& sql) {
    OpenQuery& query = opened();
    guarded([&] { query.setText(sql); });
}

int16_t CDaoQueryDef::GetType() {
    return static_cast<int16_t>(jet::catalogFlags(opened().kind()));
}

bool CDaoQueryDef::CanUpdate() const {
    return !opened().isStored() || m_pDatabase->CanUpdate();
}

// --- parameters ---

int16_t CDaoQueryDef::GetParameterCount() {
    OpenQuery& query = opened();
    return guarded([&] { return static_cast<int16_t>(query.description().parameters.size()); });
}

void CDaoQueryDef::GetParameterInfo(int index, CDaoParameterInfo& info, uint32_t level) {
    OpenQuery& query = opened();
    guarded([&] { describeParameter(query, index, level, info); });
}

void CDaoQueryDef::GetParameterInfo(const std::wstring& name, CDaoParameterInfo& info,
                                    uint32_t level) {
    OpenQuery& query = opened();
    guarded([&] {
        describeParameter(query, static_cast<int>(query.parameterPlace(name)), level, info);
    });
}

COleVariant CDaoQueryDef::GetParamValue(const std::wstring& name) {
    OpenQuery& query = opened();
    return guarded([&] { return shownValue(query, static_cast<int>(query.parameterPlace(name))); });
}

COleVariant CDaoQueryDef::GetParamValue(int index) {
    OpenQuery& query = opened();
    return guarded([&] { return shownValue(query, index); });
}

void CDaoQueryDef::SetParamValue(const std::wstring& name, const COleVariant& value) {
    OpenQuery& query = opened();
    guarded([&] {
        query.setValue(static_cast<int>(query.parameterPlace(name)), dao::fromVariant(value));
    });
}

void CDaoQueryDef::SetParamValue(int index, const COleVariant& value) {
    OpenQuery& query = opened();
    guarded([&] { query.setValue(index, dao::fromVariant(value)); });
}

// --- fields ---

int16_t CDaoQueryDef::GetFieldCount() {
    OpenQuery& query = opened();
    return guarded([&] { return static_cast<int16_t>(query.description().columns.size()); });
}

void CDaoQueryDef::GetFieldInfo(int index, CDaoFieldInfo& info, uint32_t level) {
    OpenQuery& query = opened();
    guarded([&] {
        dao::ResultFields(session_->database(), query.description().columns)
            .describe(index, level, info);
    });
}

void CDaoQueryDef::GetFieldInfo(const std::wstring& name, CDaoFieldInfo& info, uint32_t level) {
    OpenQuery& query = opened();
    guarded([&] {
        dao::ResultFields fields(session_->database(), query.description().columns);
        fields.describe(static_cast<int>(fields.positionOf(name)), level, info);
    });
}

// --- running ---

void CDaoQueryDef::Execute(int32_t options) {
    OpenQuery& query = opened();
    guarded([&] { query.execute(options); });
}

int32_t CDaoQueryDef::GetRecordsAffected() {
    return opened().recordsAffected();
}
