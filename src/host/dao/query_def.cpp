#include "platform/dao/query_def.h"

#include <memory>

#include "host/dao/database_session.h"
#include "host/dao/errors.h"

using sg::dao::DatabaseSession;
using sg::dao::guarded;
using sg::dao::throwDao;

namespace jet = sg::jet;

struct CDaoQueryDef::State {
    uint64_t opening = 0;  // of the session
    std::wstring name;
    std::wstring sql;
};

namespace {

DatabaseSession& opened(const std::shared_ptr<DatabaseSession>& session) {
    if (session == nullptr || !session->isOpen()) throwDao(jet::ObjectClosed);
    return *session;
}

}  // namespace

CDaoQueryDef::CDaoQueryDef(CDaoDatabase* database)
    : m_pDatabase(database), session_(database != nullptr ? database->session() : nullptr) {}
CDaoQueryDef::~CDaoQueryDef() = default;

void CDaoQueryDef::Create(const std::wstring& name, const std::wstring& sql) {
    state_ = std::make_unique<State>(State{opened(session_).opening(), name, sql});
}

void CDaoQueryDef::Open(const std::wstring& name) {
    DatabaseSession& session = opened(session_);
    guarded([&] {
        const jet::Query query = session.database().query(name);
        state_ = std::make_unique<State>(State{session.opening(), query.name, query.sql()});
    });
}

void CDaoQueryDef::Close() {
    state_.reset();
}

bool CDaoQueryDef::IsOpen() const {
    return state_ != nullptr && state_->opening == session_->opening();
}

std::wstring CDaoQueryDef::GetName() const {
    return IsOpen() ? state_->name : std::wstring();
}

std::wstring CDaoQueryDef::GetSQL() const {
    return IsOpen() ? state_->sql : std::wstring();
}
