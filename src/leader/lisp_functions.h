#pragma once

// The LISP functions that make and change leaders. Each is an implementation as the call guard runs
// it; docs/functions/leader.md tells what they do.
namespace sg {

int leaderInsert();
int leaderSetPoints();
int leaderSetBlock();
int leaderSetOffset();
int leaderExplode();
int hostLeaderCreate();  // of the host's own leader

}  // namespace sg
