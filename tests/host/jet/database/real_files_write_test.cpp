// Copies of databases that other programs made: rows come, change and go until pages split, and
// nothing in the file contradicts itself at any time.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "host/jet/schema_files.h"

namespace sg::jet {
namespace {

using Row = std::vector<Value>;
using Flags = std::vector<bool>;

// Some value of the column's type; another one for each number as far as the type has so many.
Value valueOf(const Column& column, int number) {
    const std::wstring text = L"value " + std::to_wstring(number);
    switch (column.type) {
        case ColumnType::Boolean:
            return number % 2 != 0;
        case ColumnType::Byte:
            return uint8_t(number);
        case ColumnType::Integer:
            return int16_t(number);
        case ColumnType::Long:
            return int32_t(1000000 + number);
        case ColumnType::Currency:
            return Currency{number};
        case ColumnType::Single:
            return float(number);
        case ColumnType::Double:
            return double(number);
        case ColumnType::Date:
            return Date{double(number)};
        case ColumnType::Text:
            return text.substr(text.size() - std::min<size_t>(text.size(), column.length / 2));
        case ColumnType::Memo:
            return text + std::wstring(number % 5 == 0 ? 5000 : 20, L'x');
        case ColumnType::Ole:
            return Bytes(number % 7 == 0 ? 5000 : 20, uint8_t(number));
        case ColumnType::Guid:
            return Guid{{uint8_t(number), uint8_t(number >> 8), uint8_t(number >> 16)}};
        default:
            return {};
    }
}

class RealFilesWriteTest : public test::SchemaTest {
  protected:
    struct Work {
        std::wstring table;
        std::vector<Row> originals;
        Flags refers;  // columns whose values must be those of other tables' rows
        std::vector<RowId> added;
    };

    std::vector<Work> workOf(const Database& database) {
        std::vector<Work> list;
        for (const std::wstring& name : database.tables()) {
            const Table table = database.table(name);
            Work work{name, {}, Flags(table.definition().columns.size()), {}};
            for (const LogicalIndex& index : table.definition().indexes) {
                if (!index.isForeign() || index.relatedType != LogicalIndex::refers) continue;
                for (const IndexColumn& column : table.definition().realOf(index).columns)
                    work.refers[*table.definition().columnByNumber(column.column)] = true;
            }
            for (RowCursor rows = table.scan(); rows.next();) {
                Row& row = work.originals.emplace_back();
                for (size_t i = 0; i < work.refers.size(); ++i)
                    row.push_back(rows.value(i));
            }
            list.push_back(std::move(work));
        }
        return list;
    }

    // A copy of some row with new values where keys may have to differ.
    Row freshRow(const Work& work) {
        const auto& columns = db().table(work.table).definition().columns;
        Row row(columns.size());
        if (!work.originals.empty()) row = work.originals[pick(work.originals.size())];
        ++number_;
        for (size_t i = 0; i < row.size(); ++i) {
            if (columns[i].isAutoNumber()) {
                row[i] = Value();
            } else if (!work.refers[i]) {
                row[i] = valueOf(columns[i], number_);
            }
        }
        return row;
    }

    void change(Work& work) {
        TableWriter& writer = db().writer(work.table);
        const size_t what = work.added.size() < 20 ? 0 : pick(10);
        if (what < 6) {
            Row row = freshRow(work);
            work.added.push_back(writer.insert(row));
        } else if (what < 8) {
            Row row = freshRow(work);
            Flags changed(row.size());
            for (size_t i = 0; i < row.size(); ++i)
                changed[i] = !isNull(row[i]) && pick(2) == 0;
            writer.update(work.added[pick(work.added.size())], row, changed);
        } else {
            const size_t at = pick(work.added.size());
            writer.erase(work.added[at]);
            work.added.erase(work.added.begin() + ptrdiff_t(at));
        }
    }

    size_t pick(size_t below) { return random_() % below; }

    std::mt19937 random_{5};
    int number_ = 0;
};

TEST_F(RealFilesWriteTest, RowsComeAndGoInFilesOfOtherPrograms) {
    const auto files = test::realFiles();
    if (files.empty()) GTEST_SKIP() << "no real files";
    for (const auto& file : files) {
        const std::string name = file.filename().string();
        copyOf(file);
        std::vector<Work> tables = workOf(db());
        ASSERT_FALSE(tables.empty());
        const uint32_t pagesBefore = db().store().pageCount();
        for (int round = 0; round < 3; ++round) {
            for (Work& work : tables) {
                db().beginTransaction();
                for (int i = 0; i < 1000; ++i)
                    change(work);
                db().commitTransaction();
                for (int i = 0; i < 20; ++i)
                    change(work);
            }
            expectSound(name + " round " + std::to_string(round));
        }
        EXPECT_GT(db().store().pageCount(), pagesBefore);
        // What was there is still what it was.
        for (const Work& work : tables) {
            const Table table = db().table(work.table);
            EXPECT_EQ(table.rowCount(), work.originals.size() + work.added.size());
            RowCursor rows(table);
            size_t found = 0;
            while (rows.next()) {
                Row row;
                for (size_t i = 0; i < work.refers.size(); ++i)
                    row.push_back(rows.value(i));
                found += std::count(work.originals.begin(), work.originals.end(), row) > 0 ? 1 : 0;
            }
            EXPECT_GE(found, work.originals.size()) << name << " " << toUtf8(work.table);
        }
        if (test::SchemaTest::hasTools()) {
            for (const Work& work : tables) {
                const std::string lines =
                    printed("mdb-export -H -R '<row>' -b strip", "'" + toUtf8(work.table) + "'");
                size_t count = 0;
                for (size_t at = 0; (at = lines.find("<row>", at)) != std::string::npos; ++at)
                    ++count;
                EXPECT_EQ(count, work.originals.size() + work.added.size())
                    << name << " " << toUtf8(work.table);
            }
        }
        for (Work& work : tables) {
            for (const RowId row : work.added)
                db().writer(work.table).erase(row);
        }
        expectSound(name + " as before");
    }
}

}  // namespace
}  // namespace sg::jet
