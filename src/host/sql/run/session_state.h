#pragma once

#include "host/sql/run/engine.h"
#include "host/sql/run/session.h"

namespace sg::sql {

struct Session::State {
    explicit State(jet::Database& of) : database(of) {}

    jet::Database& database;
    Engine engine;
};

}  // namespace sg::sql
