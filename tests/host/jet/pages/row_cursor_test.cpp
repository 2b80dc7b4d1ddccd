#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>

#include "host/jet/database/database.h"
#include "host/jet/file_builder.h"
#include "host/jet/format/error.h"
#include "host/jet/pages/table.h"

namespace sg::jet {
namespace {

// Pages that can change; the bytes that they had stay for those who hold them.
class ChangingStore final : public PageStore {
  public:
    explicit ChangingStore(const Bytes& file)
        : format_(identifyFormat(ByteView(file), L"plan.mdb")) {
        for (size_t at = 0; at < file.size(); at += format_.pageSize) {
            const auto start = file.begin() + static_cast<ptrdiff_t>(at);
            kept_.emplace_back(start, start + static_cast<ptrdiff_t>(format_.pageSize));
            current_.push_back(&kept_.back());
        }
    }

    const Format& format() const override { return format_; }
    const std::wstring& name() const override { return name_; }
    uint32_t pageCount() const override { return static_cast<uint32_t>(current_.size()); }
    PageRef read(uint32_t page) const override {
        if (page >= current_.size()) throw Error(Damaged);
        return {page, ByteView(*current_[page])};
    }

    // The page's bytes from now on.
    uint8_t* change(uint32_t page) {
        kept_.push_back(*current_[page]);
        current_[page] = &kept_.back();
        return kept_.back().data();
    }
    void setFlags(RowId id, uint16_t flags) {
        const size_t at = format_.dataPage.rowDirectory + 2 * size_t(id.row);
        const uint16_t entry =
            static_cast<uint16_t>((read(id.page)->get16(at) & rows::offsetMask) | flags);
        std::memcpy(change(id.page) + at, &entry, sizeof entry);
    }
    void cutOff() { current_.pop_back(); }

  private:
    const Format& format_;
    std::wstring name_ = L"plan.mdb";
    std::deque<Bytes> kept_;
    std::vector<const Bytes*> current_;
};

// A table over pages with other pages between them. A third of the rows are deleted, some pages
// have none at all, and some rows stand on another page than their id.
class RowCursorTest : public testing::TestWithParam<Version> {
  protected:
    RowCursorTest() {
        const std::vector<test::ColumnSpec> columns = {{L"N", ColumnType::Long, 4}};
        definition_ = builder_.addTable(L"T", columns);
        std::mt19937 random(7);
        const auto row = [&](int32_t n) {
            return builder_.encodeRow(columns, {test::number(n, 4)});
        };
        uint32_t page = definition_ + 1;
        for (int number = 0, at = 0; at < 9; ++at) {
            const int count = at == 3 || at == 8 ? 0 : at == 5 ? 1 : 7;
            const uint32_t elsewhere = at == 4 ? addPage() : 0;
            for (int i = 0; i < count; ++i) {
                const bool isDeleted = at == 6 || random() % 3 == 0;
                RowId id;
                if (elsewhere != 0) {
                    const RowId body = builder_.addRow(elsewhere, row(number), rows::deletedFlag);
                    id = builder_.addRow(page, test::number(body.packed(), 4).bytes,
                                         isDeleted ? rows::deletedFlag : rows::lookupFlag);
                } else {
                    id = builder_.addRow(page, row(number), isDeleted ? rows::deletedFlag : 0);
                }
                numbers_[id] = number++;
                if (!isDeleted) live_.insert(id);
            }
            if (at % 2 == 0) builder_.addDataPage(pages::longValueOwner);
            page = addPage();
        }
        store_ = std::make_unique<ChangingStore>(builder_.bytes());
        auto definition =
            std::make_shared<TableDefinition>(TableDefinition::read(*store_, definition_));
        table_.emplace(*store_, std::move(definition));
    }

    // A data page of the table, entered in its map.
    uint32_t addPage() {
        const uint32_t page = builder_.addDataPage(definition_);
        const MemoryPageStore store(builder_.bytes(), L"plan.mdb");
        const RowId map = TableDefinition::read(store, definition_).ownedPages;
        const DataPage maps(store, map.page);
        const size_t at =
            static_cast<size_t>(maps.rowBytes(map.row).data() - builder_.bytes().data());
        builder_.bytes()[at + maps::inlineBits + page / 8] |=
            static_cast<uint8_t>(1u << (page % 8));
        return page;
    }

    // Whether the cursor is where a step from between the rows `at` and the one before leads.
    void expectAt(const RowCursor& cursor, bool found, std::set<RowId>::const_iterator at) {
        ASSERT_EQ(found, at != live_.end());
        ASSERT_EQ(cursor.valid(), found);
        if (!found) return;
        ASSERT_EQ(cursor.id(), *at);
        ASSERT_EQ(cursor.value(0), Value(int32_t(numbers_.at(*at))));
    }
    auto before(std::set<RowId>::const_iterator at) const {
        return at == live_.begin() ? live_.end() : std::prev(at);
    }

    test::FileBuilder builder_{GetParam()};
    uint32_t definition_ = 0;
    std::map<RowId, int> numbers_;  // of every row, deleted ones too
    std::set<RowId> live_;
    std::unique_ptr<ChangingStore> store_;
    std::optional<Table> table_;
};

TEST_P(RowCursorTest, StepsBothWaysMeetTheSameRows) {
    RowCursor cursor(*table_);
    EXPECT_FALSE(cursor.previous()) << "before the first row";
    for (auto at = live_.begin(); at != live_.end(); ++at)
        expectAt(cursor, cursor.next(), at);
    EXPECT_FALSE(cursor.next());
    EXPECT_FALSE(cursor.next());
    for (auto at = live_.rbegin(); at != live_.rend(); ++at)
        expectAt(cursor, cursor.previous(), std::prev(at.base()));
    EXPECT_FALSE(cursor.previous());
    EXPECT_FALSE(cursor.previous());
    expectAt(cursor, cursor.next(), live_.begin());
    expectAt(cursor, cursor.last(), std::prev(live_.end()));
    expectAt(cursor, cursor.first(), live_.begin());
}

TEST_P(RowCursorTest, AnyWalkKeepsItsPlace) {
    std::mt19937 random(3);
    RowCursor cursor(*table_);
    auto at = live_.begin();
    expectAt(cursor, cursor.next(), at);
    for (int step = 0; step < 2000; ++step) {
        const bool forward = random() % 2 == 0;
        if (forward ? std::next(at) == live_.end() : at == live_.begin()) {
            EXPECT_FALSE(forward ? cursor.next() : cursor.previous());
            expectAt(cursor, forward ? cursor.previous() : cursor.next(), at);
            continue;
        }
        at = forward ? std::next(at) : std::prev(at);
        expectAt(cursor, forward ? cursor.next() : cursor.previous(), at);
    }
}

TEST_P(RowCursorTest, NeighboursOfAnyIdAreFound) {
    std::set<RowId> ids;
    for (const auto& [id, number] : numbers_)
        ids.insert(id);
    for (uint32_t page = 0; page < store_->pageCount() + 2; ++page) {
        ids.insert({page, 0});
        ids.insert({page, 255});
    }
    RowCursor cursor(*table_);
    for (const RowId id : ids) {
        SCOPED_TRACE(std::to_string(id.page) + "/" + std::to_string(id.row));
        const auto behind = live_.upper_bound(id);
        const auto ahead = before(live_.lower_bound(id));
        expectAt(cursor, cursor.seekAfter(id), behind);
        expectAt(cursor, cursor.seekBefore(id), ahead);
        const auto self = live_.find(id);
        expectAt(cursor, cursor.seek(id), self);
        if (!numbers_.contains(id)) continue;
        expectAt(cursor, cursor.next(), behind);
        cursor.seek(id);
        expectAt(cursor, cursor.previous(), ahead);
    }
}

TEST_P(RowCursorTest, WhatChangesUnderItIsMetAfterRefresh) {
    for (const RowId id : std::set(live_)) {
        SCOPED_TRACE(std::to_string(id.page) + "/" + std::to_string(id.row));
        RowCursor cursor(*table_);
        ASSERT_TRUE(cursor.seek(id));
        EXPECT_TRUE(cursor.refresh());
        store_->setFlags(id, rows::deletedFlag);
        EXPECT_EQ(cursor.value(0), Value(int32_t(numbers_[id]))) << "the bytes that it holds";
        live_.erase(id);
        EXPECT_FALSE(cursor.refresh());
        EXPECT_FALSE(cursor.refresh());
        expectAt(cursor, cursor.next(), live_.upper_bound(id));
        cursor.seek(id);
        EXPECT_FALSE(cursor.refresh());
        expectAt(cursor, cursor.previous(), before(live_.lower_bound(id)));
    }
    EXPECT_TRUE(live_.empty());
    RowCursor cursor(*table_);
    EXPECT_FALSE(cursor.last());
    EXPECT_FALSE(cursor.first());
}

TEST_P(RowCursorTest, ARowThatChangesOnItsOverflowPageIsReadAgain) {
    const auto elsewhere = std::find_if(live_.begin(), live_.end(), [&](RowId id) {
        return DataPage(*store_, id.page).isLookup(id.row);
    });
    ASSERT_NE(elsewhere, live_.end());
    RowCursor cursor(*table_);
    ASSERT_TRUE(cursor.seek(*elsewhere));
    DataPage page(*store_, elsewhere->page);
    uint16_t row = elsewhere->row;
    followOverflow(*store_, page, row);
    const size_t at = static_cast<size_t>(page.rowBytes(row).data() -
                                          store_->read(page.number()).bytes().data()) +
                      store_->format().row.countSize;
    store_->change(page.number())[at] += 100;
    EXPECT_TRUE(cursor.refresh());
    EXPECT_EQ(cursor.value(0), Value(int32_t(numbers_[*elsewhere] + 100)));
}

TEST_P(RowCursorTest, APageThatLeftTheTableIsPassedOver) {
    const RowId first = *live_.begin();
    const RowId last = *live_.rbegin();
    const auto leave = [&](RowId id) {
        store_->change(id.page)[0] = static_cast<uint8_t>(PageKind::IndexLeaf);
        live_.erase(live_.lower_bound({id.page, 0}), live_.lower_bound({id.page + 1, 0}));
    };
    const auto entry = [&](RowId id) {
        const RowId map = table_->definition().ownedPages;
        const DataPage maps(*store_, map.page);
        const size_t at = static_cast<size_t>(maps.rowBytes(map.row).data() -
                                              store_->read(map.page).bytes().data());
        store_->change(map.page)[at + maps::inlineBits + id.page / 8] &=
            static_cast<uint8_t>(~(1u << (id.page % 8)));
    };
    RowCursor cursor(*table_);
    ASSERT_TRUE(cursor.seek(first));
    leave(first);
    entry(first);
    EXPECT_FALSE(cursor.refresh());
    expectAt(cursor, cursor.next(), live_.begin());
    ASSERT_TRUE(cursor.seek(last));
    leave(last);
    entry(last);
    EXPECT_FALSE(cursor.refresh());
    expectAt(cursor, cursor.previous(), std::prev(live_.end()));
    EXPECT_FALSE(cursor.seek(first));
    // What the map still has is damage, told once.
    leave(*live_.rbegin());
    EXPECT_THROW(cursor.last(), Error);
    expectAt(cursor, cursor.previous(), std::prev(live_.end()));
    EXPECT_THROW(while (cursor.next()){}, Error);
    EXPECT_FALSE(cursor.next());
}

TEST_P(RowCursorTest, AFileThatBecameShorterHasNoRowThere) {
    RowCursor cursor(*table_);
    const RowId last = *live_.rbegin();
    ASSERT_TRUE(cursor.seek(last));
    while (store_->pageCount() > last.page)
        store_->cutOff();
    EXPECT_FALSE(cursor.refresh());
    EXPECT_FALSE(cursor.seek(last));
    live_.erase(live_.lower_bound({last.page, 0}), live_.end());
    EXPECT_THROW(cursor.last(), Error) << "the map goes on beyond the end";
    expectAt(cursor, cursor.previous(), std::prev(live_.end()));
}

INSTANTIATE_TEST_SUITE_P(Versions, RowCursorTest,
                         testing::Values(Version::Jet3, Version::Jet4, Version::Ace12));

}  // namespace
}  // namespace sg::jet
