#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/editor/jig/drags.h"
#include "host/editor/jig/hand.h"
#include "host/model/core/database_state.h"
#include "host/model/tables/header_variables.h"
#include "module/module_fixture.h"

namespace sg::test {

// A test of drags with the module loaded.
class JigTest : public ModuleTest {
  protected:
    void SetUp() override {
        start();
        host().setInput({hand});
    }

    const DragCounts& counts() { return host().drags().counts(); }
    // Runs a program while the user does these things in turn.
    std::string drag(std::vector<std::string> steps, std::string_view program) {
        hand->will(std::move(steps));
        return eval(program);
    }

    // The x axis of the user coordinate system goes up.
    void turnUserAxes() {
        model::HeaderVariables& header =
            model::DatabaseState::of(*active().database()).changeHeader();
        header.set(L"UCSXDIR", AcGePoint3d(0, 1, 0));
        header.set(L"UCSYDIR", AcGePoint3d(-1, 0, 0));
    }

    std::shared_ptr<Hand> hand = std::make_shared<Hand>();
};

}  // namespace sg::test
