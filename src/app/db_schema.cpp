#include "app/db_schema.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "app/db_files.h"
#include "base/text.h"

namespace sg::app {
namespace {

constexpr uint16_t kColumnBlock = 1;  // PropertyBlock::kind

std::wstring quoted(std::wstring_view name) {
    return L"[" + onOneLine(name) + L"]";
}

template <class Number>
std::wstring digitsOf(Number number) {
    char text[40];
    char* const end = std::to_chars(text, text + sizeof text, number).ptr;
    return std::wstring(text, end);
}

struct ValueText {
    std::wstring operator()(std::monostate) const { return {}; }
    std::wstring operator()(bool value) const { return value ? L"Yes" : L"No"; }
    std::wstring operator()(const std::wstring& value) const { return value; }
    std::wstring operator()(const jet::Bytes&) const { return {}; }  // only programs can read it
    template <class T>
    std::wstring operator()(const T& value) const {
        if constexpr (std::is_arithmetic_v<T>) {
            return digitsOf(value);
        } else {
            return jet::toText(value);
        }
    }
};

// True of properties that a definition has a word for, and of those that only tell programs how to
// lay out a sheet of rows or a list to choose from.
bool hasOwnPlace(const jet::Property& property) {
    static constexpr std::wstring_view names[] = {
        L"Required",       L"DefaultValue",    L"UnicodeCompression", L"GUID",
        L"NameMap",        L"FilterOn",        L"FilterLookup",       L"FilterOnLoad",
        L"OrderOn",        L"OrderByOn",       L"OrderByOnLoad",      L"Orientation",
        L"DefaultView",    L"TotalsRow",       L"HideNewField",       L"PublishToWeb",
        L"DisplayControl", L"TextAlign",       L"AggregateType",      L"CurrencyLCID",
        L"ShowDatePicker", L"IMEMode",         L"IMESentenceMode",    L"BoundColumn",
        L"LimitToList",    L"ListRows",        L"ListWidth",          L"AllowMultipleValues",
        L"RowSourceType",  L"LinkChildFields", L"LinkMasterFields"};
    static constexpr std::wstring_view starts[] = {
        L"Column", L"Datasheet", L"Subdatasheet", L"Alternate", L"Back", L"Theme", L"DisplayViews"};
    const auto equals = [&](std::wstring_view name) {
        return equalIgnoringCase(property.name, name);
    };
    const auto begins = [&](std::wstring_view start) {
        return equalIgnoringCase(property.name.substr(0, start.size()), start);
    };
    return std::any_of(std::begin(names), std::end(names), equals) ||
           std::any_of(std::begin(starts), std::end(starts), begins);
}

// DecimalPlaces of a column that shows as many as there are.
bool isAutomatic(const jet::Property& property) {
    const uint8_t* const places = std::get_if<uint8_t>(&property.value);
    return places != nullptr && *places == 255 &&
           equalIgnoringCase(property.name, L"DecimalPlaces");
}

// Lines of comments, indented. A text of several lines stays one comment.
std::wstring comment(const std::wstring& indent, const std::wstring& name, std::wstring_view text) {
    std::wstring lines = indent + L"-- " + onOneLine(name) + L": ";
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of(L"\r\n"), text.size());
        lines += onOneLine(text.substr(0, end));
        text.remove_prefix(end);
        if (text.starts_with(L"\r\n")) text.remove_prefix(1);
        if (text.empty()) break;
        text.remove_prefix(1);
        lines += L"\n" + indent + L"--     ";
    }
    return lines + L"\n";
}

// The properties of a column, or with an empty owner those of the table.
std::wstring comments(const std::wstring& indent, const jet::Properties& properties,
                      std::wstring_view owner) {
    std::wstring lines;
    for (const jet::PropertyBlock& block : properties.blocks()) {
        const bool isOwners = block.kind == kColumnBlock
                                  ? !owner.empty() && equalIgnoringCase(block.owner, owner)
                                  : owner.empty();
        if (!isOwners) continue;
        for (const jet::Property& property : block.properties) {
            const std::wstring text = std::visit(ValueText(), property.value);
            if (!text.empty() && !hasOwnPlace(property) && !isAutomatic(property)) {
                lines += comment(indent, property.name, text);
            }
        }
    }
    return lines;
}

std::wstring sized(const wchar_t* type, size_t size) {
    return type + (L"(" + std::to_wstring(size) + L")");
}

// One that does not count by 1 is told with its next number.
std::wstring counterName(const jet::TableDefinition& table) {
    if (table.autoNumberStep == 1) return L"COUNTER";
    const auto signedText = [](uint32_t value) {
        return std::to_wstring(static_cast<int32_t>(value));
    };
    return L"COUNTER(" + signedText(table.lastAutoNumber + table.autoNumberStep) + L", " +
           signedText(table.autoNumberStep) + L")";
}

std::wstring typeName(const jet::TableDefinition& table, const jet::Column& column,
                      const jet::Format& format) {
    switch (column.type) {
        case jet::ColumnType::Boolean:
            return L"YESNO";
        case jet::ColumnType::Byte:
            return L"BYTE";
        case jet::ColumnType::Integer:
            return L"SHORT";
        case jet::ColumnType::Long:
            return column.isAutoNumber() ? counterName(table) : L"LONG";
        case jet::ColumnType::Currency:
            return L"CURRENCY";
        case jet::ColumnType::Single:
            return L"SINGLE";
        case jet::ColumnType::Double:
            return L"DOUBLE";
        case jet::ColumnType::Date:
            return L"DATETIME";
        case jet::ColumnType::Binary:
            return sized(column.isFixed() ? L"BINARY" : L"VARBINARY", column.length);
        case jet::ColumnType::Text:
            return sized(column.isFixed() ? L"CHAR" : L"TEXT",
                         format.wideText ? column.length / 2 : column.length);
        case jet::ColumnType::Ole:
            return L"LONGBINARY";
        case jet::ColumnType::Memo:
            return L"MEMO";
        case jet::ColumnType::Guid:
            return L"GUID";
        case jet::ColumnType::Numeric:
            return L"DECIMAL(" + std::to_wstring(column.precision) + L", " +
                   std::to_wstring(column.scale) + L")";
        case jet::ColumnType::Complex:
            return L"COMPLEX";
        case jet::ColumnType::BigInteger:
            return L"BIGINT";
        case jet::ColumnType::DateTimeExtended:
            return L"DATETIME2";
    }
    return sized(L"UNKNOWN", static_cast<size_t>(column.type));
}

std::wstring defaultOf(const jet::Column& column, const jet::Properties& properties) {
    const std::wstring text = properties.text(column.name, L"DefaultValue");
    if (!text.empty()) return L" DEFAULT " + onOneLine(text.substr(text.front() == L'=' ? 1 : 0));
    const bool makesOne = column.type == jet::ColumnType::Guid && column.isAutoNumber();
    return makesOne ? L" DEFAULT GenGUID()" : L"";
}

std::wstring columnSchema(const jet::TableDefinition& table, const jet::Column& column,
                          const jet::Properties& properties, const jet::Format& format) {
    const std::wstring indent(4, L' ');
    std::wstring text = comments(indent, properties, column.name);
    if (column.isHyperlink()) text += indent + L"-- a hyperlink\n";
    if (column.isCalculated()) text += indent + L"-- calculated\n";
    text += indent + quoted(column.name) + L" " + typeName(table, column, format);
    if (column.isText() && column.isCompressed()) text += L" WITH COMPRESSION";
    if (properties.flag(column.name, L"Required")) text += L" NOT NULL";
    return text + defaultOf(column, properties);
}

// Conditions that the primary key has by itself are left out.
std::wstring indexConditions(const jet::LogicalIndex& index, const jet::RealIndex& real) {
    std::vector<std::wstring> conditions;
    if (index.isPrimary()) conditions.push_back(L"PRIMARY");
    if (real.isRequired() && !index.isPrimary()) conditions.push_back(L"DISALLOW NULL");
    if (real.ignoresNulls()) conditions.push_back(L"IGNORE NULL");
    std::wstring text;
    for (const std::wstring& condition : conditions)
        text += (text.empty() ? L" WITH " : L", ") + condition;
    return text;
}

std::wstring indexSchema(const jet::TableDefinition& table, const jet::LogicalIndex& index) {
    const jet::RealIndex& real = table.realOf(index);
    std::wstring columns;
    for (const jet::IndexColumn& one : real.columns) {
        const auto place = table.columnByNumber(one.column);
        if (!columns.empty()) columns += L", ";
        columns += place ? quoted(table.columns[*place].name) : L"?";
        if (!one.ascending) columns += L" DESC";
    }
    const bool unique = real.isUnique() || index.isPrimary();
    return std::wstring(unique ? L"CREATE UNIQUE INDEX " : L"CREATE INDEX ") + quoted(index.name) +
           L" ON " + quoted(table.name) + L" (" + columns + L")" + indexConditions(index, real) +
           L";\n";
}

std::wstring columnList(const jet::Relation& relation, std::wstring jet::RelationColumns::*which) {
    std::wstring text;
    for (const jet::RelationColumns& columns : relation.columns)
        text += (text.empty() ? L"(" : L", ") + quoted(columns.*which);
    return text + L")";
}

}  // namespace

std::wstring tableSchema(const jet::TableDefinition& table, const jet::Properties& properties,
                         const jet::Format& format) {
    std::vector<const jet::Column*> columns;
    for (const jet::Column& column : table.columns)
        columns.push_back(&column);
    std::stable_sort(
        columns.begin(), columns.end(),
        [](const jet::Column* a, const jet::Column* b) { return a->ordinal < b->ordinal; });
    std::wstring text = comments({}, properties, {});
    text += L"CREATE TABLE " + quoted(table.name) + L" (\n";
    for (size_t i = 0; i < columns.size(); ++i) {
        text += columnSchema(table, *columns[i], properties, format);
        text += i + 1 < columns.size() ? L",\n" : L"\n";
    }
    text += L");\n";
    for (const jet::LogicalIndex& index : table.indexes) {
        if (!index.isForeign()) text += indexSchema(table, index);
    }
    return text;
}

std::wstring linkSchema(const jet::CatalogObject& link, const jet::Properties& properties) {
    // What follows the kind of link may be a password.
    const std::wstring kind = link.connect.substr(0, link.connect.find(L';'));
    return comments({}, properties, {}) + L"-- " + quoted(link.name) + L" is linked to " +
           quoted(link.foreignName) + L" in " +
           onOneLine(link.database.empty() ? L"a data source" : link.database) +
           (kind.empty() ? L"" : L" (" + onOneLine(kind) + L")") + L"\n";
}

std::wstring relationSchema(const jet::Relation& relation) {
    namespace flags = jet::relationFlags;
    const auto has = [&](uint32_t flag) { return (relation.flags & flag) != 0; };
    const bool enforced = !has(flags::notEnforced);
    std::wstring text = enforced ? L"" : L"-- not enforced: ";
    text += L"ALTER TABLE " + quoted(relation.foreignTable) + L" ADD CONSTRAINT " +
            quoted(relation.name) + L" FOREIGN KEY " +
            columnList(relation, &jet::RelationColumns::foreignColumn) + L" REFERENCES " +
            quoted(relation.table) + L" " + columnList(relation, &jet::RelationColumns::column);
    if (has(flags::cascadeUpdates)) text += L" ON UPDATE CASCADE";
    if (has(flags::cascadeDeletes)) text += L" ON DELETE CASCADE";
    text += L";";
    if (has(flags::unique)) text += L"  -- one to one";
    if (has(flags::inherited)) text += L"  -- of the linked tables' file";
    if (has(flags::leftJoin)) text += L"  -- left join";
    if (has(flags::rightJoin)) text += L"  -- right join";
    return text + L"\n";
}

std::wstring versionName(jet::Version version) {
    switch (version) {
        case jet::Version::Jet3:
            return L"Jet 3";
        case jet::Version::Jet4:
            return L"Jet 4";
        case jet::Version::Ace12:
            return L"ACE 12";
        case jet::Version::Ace14:
            return L"ACE 14";
        case jet::Version::Ace15:
            return L"ACE 15";
        case jet::Version::Ace16:
            return L"ACE 16";
        case jet::Version::Ace17:
            return L"ACE 17";
    }
    return L"unknown version";
}

}  // namespace sg::app
