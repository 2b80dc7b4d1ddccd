#include "host/model/core/list_cursor.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "host/model/model_fixture.h"

namespace sg::model {
namespace {

using ListCursorTest = test::ModelTest;

// Walks layers of a drawing in an order of its own.
struct Walk {
    ListCursor::Ids ids;
    ListCursor cursor;

    void start(bool atBeginning) { cursor.start(&ids, atBeginning, true); }
    void step(bool forward) {
        cursor.step(&ids, forward, true, [this](AcDbObjectId id) -> ptrdiff_t {
            const auto found = std::find(ids.begin(), ids.end(), id);
            return found == ids.end() ? -1 : found - ids.begin();
        });
    }
};

TEST_F(ListCursorTest, WhatLeavesTheListLeavesItsPlaceInBothDirections) {
    const AcDbObjectId a = database->layerTableId(), b = database->blockTableId(),
                       c = database->textStyleTableId(), d = database->linetypeTableId();
    for (const bool forward : {true, false}) {
        Walk walk{{a, b, c, d}, {}};
        walk.start(forward);
        walk.step(forward);
        EXPECT_EQ(walk.cursor.current(), forward ? b : c);
        std::erase(walk.ids, walk.cursor.current());
        walk.step(forward);
        EXPECT_EQ(walk.cursor.current(), forward ? c : b);
        // What comes ahead of it moves it, and does not stop it.
        walk.ids.insert(walk.ids.begin(), d);
        walk.step(forward);
        EXPECT_EQ(walk.cursor.current(), forward ? d : a);
    }
    ListCursor none;
    none.start(nullptr, true, true);
    EXPECT_TRUE(none.done());
}

}  // namespace
}  // namespace sg::model
