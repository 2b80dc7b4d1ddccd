#include "host/jet/compact/compact_table.h"

#include <algorithm>
#include <optional>

#include "base/text.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/database/write_scope.h"
#include "host/jet/pages/definition_writer.h"
#include "host/jet/schema/schema_catalog.h"
#include "host/jet/schema/schema_columns.h"
#include "host/jet/schema/schema_indexes.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet::compaction {
namespace {

constexpr size_t rowsAtOnce = 20000;
constexpr uint16_t mostBytes = 510;
constexpr uint8_t bigDigits = 19;
constexpr uint8_t meaningOfFlags =
    indexes::uniqueFlag | indexes::ignoreNullsFlag | indexes::requiredFlag;

// Numbers with a scale stand among the variable columns, others among the fixed ones.
bool isUsuallyFixed(ColumnType type) {
    return type != ColumnType::Numeric && schema::sizeOf(type) != 0;
}

bool hasSize(ColumnType type) {
    switch (type) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Date:
        case ColumnType::Guid:
        case ColumnType::Numeric:
        case ColumnType::Ole:
        case ColumnType::Memo:
            return true;
        default:
            return false;
    }
}

// A type of this version for the values of a newer one's.
const wchar_t* replaceType(Column& column) {
    if (column.type == ColumnType::BigInteger) {
        column.type = ColumnType::Numeric;
        column.precision = bigDigits;
        column.scale = 0;
        column.flags &= static_cast<uint8_t>(~columns::fixedFlag);
        return L"its large integers have become decimals of 19 digits";
    }
    if (column.type == ColumnType::DateTimeExtended) {
        column.type = ColumnType::Date;
        column.flags |= columns::fixedFlag;
        return L"its extended dates have become dates";
    }
    return nullptr;
}

void makePlain(Column& column) {
    column.extraFlags &= static_cast<uint8_t>(~columns::calculatedMask);
    const bool isFixed = hasSize(column.type) && isUsuallyFixed(column.type);
    column.flags = columns::updatableFlag;
    if (isFixed) column.flags |= columns::fixedFlag;
    if (column.type == ColumnType::Text || column.type == ColumnType::Binary) {
        // What the file has counts the head in that every value has.
        column.length = mostBytes;
    }
}

void setSize(Column& column, const Format& format) {
    if (hasSize(column.type)) {
        column.length = schema::sizeOf(column.type);
        if (column.length == 0) column.flags &= static_cast<uint8_t>(~columns::fixedFlag);
    } else if (column.type == ColumnType::Text) {
        // One byte a character becomes two.
        const size_t bytes = size_t(column.length) * (format.wideText ? 1 : 2);
        column.length =
            bytes == 0 ? mostBytes : static_cast<uint16_t>(std::min<size_t>(bytes, mostBytes));
    }
}

void setText(Column& column, const Format& format, SortOrder order) {
    if (!column.isText()) return;
    column.sortOrder = order;
    column.codePage = 0;
    if (!format.wideText && !column.isFixed()) column.extraFlags |= columns::compressedFlag;
}

// A row on its way: what a repair leaves of it.
class RowSink {
  public:
    RowSink(Run& run, Database& into, uint32_t page) : run_(run), into_(into), page_(page) {
        into_.beginTransaction();
    }

    const TableDefinition& definition() { return into_.writerAt(page_).definition(); }

    bool put(std::vector<Value>& row, const std::wstring& table, RowId id) {
        while (true) {
            try {
                into_.writerAt(page_).insertCopy(row);
                break;
            } catch (const Error& error) {
                // What costs the whole transaction is no matter of one row.
                if (!run_.forgives(error) || into_.transactionDepth() == 0) throw;
                if (giveUpValue(row, error, table, id)) continue;
                run_.lose(L"table " + table + L": a row of page " + std::to_wstring(id.page),
                          error);
                return false;
            }
        }
        if (++count_ % rowsAtOnce == 0) {
            into_.commitTransaction();
            into_.beginTransaction();
        }
        return true;
    }

    // A value that the column's new type has no place for is lost, repair or not.
    void convert(Value& value, size_t place, const std::wstring& table, RowId id) {
        const Column& column = definition().columns[place];
        try {
            convertTo(column, value);
        } catch (const Error& error) {
            run_.lose(L"table " + table + L": page " + std::to_wstring(id.page) +
                      L": a value of column " + column.name + L": " + error.text());
            value = Value();
        }
    }

    uint64_t finish() {
        into_.commitTransaction();
        return count_;
    }

  private:
    // The value that the column does not take.
    bool giveUpValue(std::vector<Value>& row, const Error& error, const std::wstring& table,
                     RowId id) {
        if ((error.code() != FieldTooSmall && error.code() != ConversionError) ||
            error.names().empty()) {
            return false;
        }
        const auto place = definition().columnByName(error.names().front());
        if (!place || isNull(row[*place])) return false;
        if (definition().columns[*place].type == ColumnType::Boolean) return false;
        run_.lose(L"table " + table + L": page " + std::to_wstring(id.page) +
                  L": a value of column " + error.names().front() + L": " + error.text());
        row[*place] = Value();
        return true;
    }

    Run& run_;
    Database& into_;
    uint32_t page_;
    uint64_t count_ = 0;
};

// The index's columns by their numbers in the new table; none when one of them was not kept.
std::optional<std::vector<IndexColumn>> movedColumns(const TableDefinition& from,
                                                     const RealIndex& index,
                                                     const TableDefinition& to, bool& keepsNone) {
    std::vector<IndexColumn> list;
    for (const IndexColumn& column : index.columns) {
        const std::wstring& name = from.columns[*from.columnByNumber(column.column)].name;
        if (const auto place = to.columnByName(name)) {
            list.push_back({to.columns[*place].number, column.ascending});
        }
    }
    keepsNone = list.empty();
    if (list.size() != index.columns.size()) return std::nullopt;
    return list;
}

void addIndex(schema::SchemaChange& change, TableDefinition& table, const LogicalIndex& from,
              const std::vector<IndexColumn>& columns, uint8_t flags) {
    try {
        const size_t real =
            schema::realIndexOver(table, columns, static_cast<uint8_t>(flags & meaningOfFlags));
        LogicalIndex index;
        index.name = from.name;
        index.kind = from.kind;
        index.realIndex = static_cast<uint32_t>(real);
        schema::addLogicalIndex(table, std::move(index));
        schema::makeIndex(change, table, real, from.name);
    } catch (const Error& error) {
        ErrorPlace place = error.place();
        place.table = table.name;
        place.detail =
            L"index " + from.name + L": " + (place.detail.empty() ? error.text() : place.detail);
        throw Error(error.code(),
                    error.names().empty() ? std::vector<std::wstring>{from.name} : error.names(),
                    std::move(place));
    }
}

}  // namespace

TablePlan planTable(const Source& source, const TableDefinition& table, SortOrder order) {
    Run& run = source.run();
    const Format& format = source.format();
    TablePlan plan;
    plan.definition.name = table.name;
    plan.definition.isSystem = table.isSystem;
    plan.definition.lastAutoNumber = table.lastAutoNumber;
    plan.definition.autoNumberStep = table.autoNumberStep;
    uint16_t fixedOffset = 0;
    for (size_t i = 0; i < table.columns.size(); ++i) {
        Column column = table.columns[i];
        const std::wstring told = L"table " + table.name + L": column " + column.name + L": ";
        if (column.type == ColumnType::Complex) {
            plan.dropped.push_back(column.name);
            run.lose(told + L"columns of this kind are not kept");
            continue;
        }
        const bool isCalculated = column.isCalculated();
        if (isCalculated) {
            makePlain(column);
            run.lose(told + L"its values are kept, but not how they were calculated");
        }
        const wchar_t* replaced = replaceType(column);
        if (replaced != nullptr) run.lose(told + replaced);
        setSize(column, format);
        setText(column, format, order);
        column.number = static_cast<uint16_t>(plan.definition.columns.size());
        column.complexId = 0;
        column.ownedPages = column.freePages = std::nullopt;
        column.variableIndex = plan.definition.variableColumns;
        column.fixedOffset = 0;
        if (!column.isFixed()) {
            ++plan.definition.variableColumns;
        } else if (column.type != ColumnType::Boolean) {
            column.fixedOffset = fixedOffset;
            fixedOffset = static_cast<uint16_t>(fixedOffset + column.length);
        }
        plan.moves.push_back({i, column.number, isCalculated || replaced != nullptr});
        plan.definition.columns.push_back(std::move(column));
    }
    plan.definition.maxColumns = static_cast<uint16_t>(plan.definition.columns.size());
    return plan;
}

uint64_t copyRows(const Source& source, const Table& from, Database& into, uint32_t page,
                  const std::vector<ColumnMove>& moves,
                  const std::function<bool(std::vector<Value>&)>& change) {
    Run& run = source.run();
    RowSink sink(run, into, page);
    std::vector<Value> row(sink.definition().columns.size());
    for (SourceRows rows(source, from); rows.next();) {
        for (const ColumnMove& move : moves) {
            rows.value(move.from, row[move.to]);
            if (move.converts) {
                sink.convert(row[move.to], move.to, from.name(), rows.id());
            }
        }
        if (!change || change(row)) sink.put(row, from.name(), rows.id());
        run.advance();
    }
    return sink.finish();
}

void copyIndexes(const Source& source, const TableDefinition& from, Database& into,
                 const CatalogObject& table) {
    Run& run = source.run();
    for (const LogicalIndex& index : from.indexes) {
        if (index.isForeign()) continue;
        const std::wstring told = L"table " + table.name + L": index " + index.name;
        run.guard({}, [&] {
            schema::SchemaChange change(into);
            TableDefinition definition = change.definition(table);
            const RealIndex& real = from.realOf(index);
            bool keepsNone = false;
            const auto columns = movedColumns(from, real, definition, keepsNone);
            if (!columns) {
                // One that only had to do with what is told already is not missed.
                if (!keepsNone) run.lose(told + L": one of its columns is not kept");
                return;
            }
            change.changing();
            addIndex(change, definition, index, *columns, real.flags);
            writeDefinition(change.allocator(), definition);
            change.done();
        });
        run.advance(source.tableRows(from));
    }
}

void copyCounters(const Source& source, const Table& from, Database& into, uint32_t page) {
    const Table made = into.tableAt(page);
    uint32_t last = from.definition().lastAutoNumber;
    if (source.run().repairs()) {
        // One that is behind its rows gives numbers out again.
        const auto reached = static_cast<int32_t>(readAutoNumber(into.store(), made.definition()));
        const auto told = static_cast<int32_t>(last);
        const bool isDescending = static_cast<int32_t>(from.definition().autoNumberStep) < 0;
        if (isDescending ? reached < told : reached > told) last = static_cast<uint32_t>(reached);
    }
    WriteScope scope(into);
    scope.changing();
    writeAutoNumber(scope.pages(), made.definition(), last);
    scope.done();
}

}  // namespace sg::jet::compaction
