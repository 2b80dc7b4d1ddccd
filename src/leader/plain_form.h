#pragma once

#include "leader/qn_leader.h"
#include "platform/db/plain_form.h"

namespace sg {

// A reference to the leader's block, as the leader shows it; it is the caller's.
AcDbBlockReference* newLeaderSymbol(const QNLeader& leader);

// A leader's plain form: its two lines and a reference to its block, all like the leader. It lives
// as long as the module.
sgPlainFormPE* leaderPlainForm();

}  // namespace sg
