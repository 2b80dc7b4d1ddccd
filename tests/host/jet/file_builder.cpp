#include "host/jet/file_builder.h"

#include <algorithm>
#include <cstring>

#include "base/encoding.h"
#include "host/jet/pages/database_header.h"

namespace sg::jet::test {
namespace {

void append16(Bytes& bytes, size_t value) {
    bytes.push_back(static_cast<uint8_t>(value));
    bytes.push_back(static_cast<uint8_t>(value >> 8));
}

void append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void copyText(uint8_t* to, std::string_view text) {
    std::memcpy(to, text.data(), text.size());
}

}  // namespace

Cell number(int64_t value, size_t size) {
    Cell cell;
    for (size_t i = 0; i < size; ++i) {
        cell.bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
    }
    return cell;
}

Cell floating(double value) {
    Cell cell;
    cell.bytes.resize(sizeof value);
    std::memcpy(cell.bytes.data(), &value, sizeof value);
    return cell;
}

Cell text(Version version, const std::wstring& value) {
    Cell cell;
    if (version == Version::Jet3) {
        const std::string narrow = toCp1252(value);
        cell.bytes.assign(narrow.begin(), narrow.end());
        return cell;
    }
    for (const char16_t unit : toUtf16(value)) {
        append16(cell.bytes, unit);
    }
    return cell;
}

Cell inlineLong(const Bytes& content) {
    Cell cell = longHeader(static_cast<uint32_t>(content.size()) | longValues::inlineFlag, {});
    append(cell.bytes, content);
    return cell;
}

Cell longHeader(uint32_t lengthAndFlags, RowId first) {
    Cell cell = number(lengthAndFlags, 4);
    append(cell.bytes, number(first.packed(), 4).bytes);
    append(cell.bytes, number(0, 4).bytes);
    return cell;
}

FileBuilder::FileBuilder(Version version) : format_(formatOf(version)) {
    addPage(PageKind::Database);
    copyText(page(0), std::string_view("\0\1\0\0Standard Jet DB\0", 20));
    if (format_.isAce()) {
        copyText(page(0) + 13, "ACE");
    }
    page(0)[pages::versionOffset] = static_cast<uint8_t>(version);
    put16(format_.database.sortOrder, 0x0409);
    put16(format_.database.codePage, 1252);
    maskDatabasePage({page(0), format_.pageSize}, format_);
    addDataPage(0);
    addPage(PageKind::TableDefinition);
    addDataPage(pages::catalog);
    writeDefinition(pages::catalog, catalogColumns(), addMap({catalogDataPage}));
    addObject(pages::catalog, L"MSysObjects", 1, static_cast<int32_t>(0x80000000));
}

const std::vector<ColumnSpec>& FileBuilder::catalogColumns() {
    static const std::vector<ColumnSpec> columns = {
        {L"Id", ColumnType::Long, 4},         {L"ParentId", ColumnType::Long, 4},
        {L"Name", ColumnType::Text, 128},     {L"Type", ColumnType::Integer, 2},
        {L"DateCreate", ColumnType::Date, 8}, {L"DateUpdate", ColumnType::Date, 8},
        {L"Flags", ColumnType::Long, 4},      {L"Database", ColumnType::Memo, 0},
        {L"Connect", ColumnType::Memo, 0},    {L"ForeignName", ColumnType::Text, 128},
        {L"LvProp", ColumnType::Ole, 0},
    };
    return columns;
}

bool FileBuilder::isFixed(ColumnType type) {
    return type != ColumnType::Text && type != ColumnType::Memo && type != ColumnType::Ole &&
           type != ColumnType::Binary;
}

void FileBuilder::put16(size_t at, uint16_t value) {
    std::memcpy(&bytes_[at], &value, 2);
}
void FileBuilder::put32(size_t at, uint32_t value) {
    std::memcpy(&bytes_[at], &value, 4);
}

uint32_t FileBuilder::addPage(PageKind kind) {
    const uint32_t number = pageCount();
    bytes_.resize(bytes_.size() + format_.pageSize);
    page(number)[0] = static_cast<uint8_t>(kind);
    page(number)[1] = kind == PageKind::Database ? 0 : 1;
    return number;
}

uint32_t FileBuilder::addDataPage(uint32_t owner) {
    const uint32_t number = addPage(PageKind::Data);
    put32(number * format_.pageSize + format_.dataPage.owner, owner);
    return number;
}

RowId FileBuilder::addRow(uint32_t number, const Bytes& row, uint16_t flags) {
    const size_t start = number * format_.pageSize;
    const DataPageLayout& layout = format_.dataPage;
    const ByteView view(page(number), format_.pageSize);
    const uint16_t count = view.get16(layout.rowCount);
    const size_t end = count == 0
                           ? format_.pageSize
                           : view.get16(layout.rowDirectory + 2 * (count - 1u)) & rows::offsetMask;
    const size_t at = end - row.size();
    std::copy(row.begin(), row.end(), page(number) + at);
    put16(start + layout.rowDirectory + 2 * size_t(count), static_cast<uint16_t>(at | flags));
    put16(start + layout.rowCount, static_cast<uint16_t>(count + 1));
    return {number, count};
}

RowId FileBuilder::addMap(const std::vector<uint32_t>& list) {
    Bytes record(maps::inlineBits + format_.inlineMapSize);
    for (const uint32_t number : list) {
        record[maps::inlineBits + number / 8] |= static_cast<uint8_t>(1u << (number % 8));
    }
    return addRow(pages::globalMap, record);
}

RowId FileBuilder::addReferencedMap(const std::vector<uint32_t>& mapPages) {
    Bytes record = {maps::referencedKind};
    for (const uint32_t number : mapPages) {
        append(record, test::number(number, 4).bytes);
    }
    return addRow(pages::globalMap, record);
}

void FileBuilder::writeDefinition(uint32_t number, const std::vector<ColumnSpec>& columns,
                                  RowId owned) {
    const size_t start = number * format_.pageSize;
    const TableLayout& t = format_.table;
    size_t at = t.head;
    uint16_t variable = 0;
    uint16_t fixedOffset = 0;
    for (size_t i = 0; i < columns.size(); ++i, at += format_.column.size) {
        const ColumnSpec& spec = columns[i];
        const ColumnLayout& c = format_.column;
        const bool fixed = isFixed(spec.type);
        bytes_[start + at] = static_cast<uint8_t>(spec.type);
        put16(start + at + c.number, static_cast<uint16_t>(i));
        put16(start + at + c.ordinal, static_cast<uint16_t>(i));
        put16(start + at + c.variableIndex, variable);
        put16(start + at + c.fixedOffset, fixedOffset);
        put16(start + at + c.length, spec.length);
        if (spec.type == ColumnType::Numeric) {
            bytes_[start + at + c.precision] = 28;
            bytes_[start + at + c.scale] = spec.scale;
        }
        bytes_[start + at + c.flags] = fixed ? 3 : 2;
        if (c.extraFlags != 0) {
            bytes_[start + at + c.extraFlags] = spec.extraFlags;
        }
        variable = static_cast<uint16_t>(variable + (fixed ? 0 : 1));
        const bool takesRoom = fixed && spec.type != ColumnType::Boolean;
        fixedOffset = static_cast<uint16_t>(fixedOffset + (takesRoom ? spec.length : 0));
    }
    for (const ColumnSpec& spec : columns) {
        const Bytes name = text(format_.version, spec.name).bytes;
        bytes_[start + at] = static_cast<uint8_t>(name.size());
        at += format_.nameLengthSize;
        std::copy(name.begin(), name.end(), page(number) + at);
        at += name.size();
    }
    put16(start + at, columns::none);
    at += 2;
    put32(start + t.length, static_cast<uint32_t>(at - 8));
    bytes_[start + t.tableType] = 0x4E;
    put16(start + t.maxColumns, static_cast<uint16_t>(columns.size()));
    put16(start + t.variableColumns, variable);
    put16(start + t.columns, static_cast<uint16_t>(columns.size()));
    put32(start + t.ownedPages, owned.packed());
    put32(start + t.freePages, owned.packed());
}

uint32_t FileBuilder::addTable(const std::wstring& name, const std::vector<ColumnSpec>& columns) {
    const uint32_t number = addPage(PageKind::TableDefinition);
    const uint32_t data = addDataPage(number);
    writeDefinition(number, columns, addMap({data}));
    addObject(static_cast<int32_t>(number), name, 1);
    return number;
}

Bytes FileBuilder::encodeRow(const std::vector<ColumnSpec>& columns,
                             const std::vector<Cell>& cells) const {
    Bytes row;
    row.push_back(static_cast<uint8_t>(columns.size()));
    if (format_.row.countSize == 2) {
        row.push_back(0);
    }
    Bytes mask((columns.size() + 7) / 8);
    std::vector<Bytes> variable;
    for (size_t i = 0; i < columns.size(); ++i) {
        if (!cells[i].isNull) {
            mask[i / 8] |= static_cast<uint8_t>(1u << (i % 8));
        }
        if (!isFixed(columns[i].type)) {
            variable.push_back(cells[i].bytes);
        } else if (columns[i].type != ColumnType::Boolean) {
            Bytes fixed = cells[i].bytes;
            fixed.resize(columns[i].length);
            append(row, fixed);
        }
    }
    if (variable.empty()) {
        append(row, mask);
        return row;
    }
    if (format_.row.hasJumpTable) {
        row = encodeJet3Variable(std::move(row), variable, mask.size());
    } else {
        std::vector<size_t> offsets;
        for (const Bytes& cell : variable) {
            offsets.push_back(row.size());
            append(row, cell);
        }
        append16(row, row.size());
        std::for_each(offsets.rbegin(), offsets.rend(), [&](size_t o) { append16(row, o); });
        append16(row, variable.size());
    }
    append(row, mask);
    return row;
}

Bytes FileBuilder::encodeJet3Variable(Bytes row, const std::vector<Bytes>& variable,
                                      size_t maskSize) const {
    std::vector<size_t> offsets;
    for (const Bytes& cell : variable) {
        offsets.push_back(row.size());
        append(row, cell);
    }
    offsets.push_back(row.size());
    const size_t fixedTail = offsets.size() + 1 + maskSize;
    // The jump table adds to the length that its own size is counted from.
    size_t jumps = 0;
    while ((row.size() + fixedTail + jumps - 1) / 256 > jumps) {
        ++jumps;
    }
    std::for_each(offsets.rbegin(), offsets.rend(),
                  [&](size_t o) { row.push_back(static_cast<uint8_t>(o)); });
    for (size_t jump = jumps; jump > 0; --jump) {
        const auto first =
            std::find_if(offsets.begin(), offsets.end(), [&](size_t o) { return o >= jump * 256; });
        row.push_back(first == offsets.end() ? 0xff
                                             : static_cast<uint8_t>(first - offsets.begin()));
    }
    row.push_back(static_cast<uint8_t>(variable.size()));
    return row;
}

void FileBuilder::addObject(int32_t id, const std::wstring& name, int16_t type, int32_t flags,
                            const Cell& properties, const Cell& path) {
    const Version version = format_.version;
    addRow(catalogDataPage,
           encodeRow(catalogColumns(),
                     {number(id, 4), number(0, 4), text(version, name), number(type, 2),
                      floating(36526), floating(36526.5), number(flags, 4), path, null(),
                      path.isNull ? null() : text(version, L"Far"), properties}));
}

Bytes sampleFile(Version version) {
    FileBuilder file(version);
    const std::vector<ColumnSpec> columns = {
        {L"Id", ColumnType::Long, 4},       {L"Heated", ColumnType::Boolean, 1},
        {L"Level", ColumnType::Integer, 2}, {L"Name", ColumnType::Text, 100},
        {L"Area", ColumnType::Double, 8},   {L"Price", ColumnType::Currency, 8},
        {L"Kind", ColumnType::Byte, 1},     {L"Built", ColumnType::Date, 8},
        {L"Note", ColumnType::Memo, 0},     {L"Key", ColumnType::Binary, 16},
    };
    const uint32_t table = file.addTable(L"Rooms", columns);
    const uint32_t values = file.addDataPage(pages::longValueOwner);
    const Bytes note = text(version, L"a note on a page of its own").bytes;
    const auto length = static_cast<uint32_t>(note.size());
    const RowId whole = file.addRow(values, note);
    Bytes last = number(0, 4).bytes;
    last.insert(last.end(), note.begin() + 10, note.end());
    const RowId second = file.addRow(values, last);
    Bytes first = number(second.packed(), 4).bytes;
    first.insert(first.end(), note.begin(), note.begin() + 10);
    const RowId chain = file.addRow(values, first);
    const Cell notes[] = {inlineLong(text(version, L"inline").bytes),
                          longHeader(length | longValues::singleFlag, whole),
                          longHeader(length, chain)};
    for (int i = 0; i < 3; ++i) {
        file.addRow(table + 1,
                    file.encodeRow(columns, {number(i + 1, 4),
                                             {{}, i == 1},
                                             number(-i, 2),
                                             text(version, L"Room " + std::to_wstring(i)),
                                             floating(i * 1.5),
                                             number(i * 12345, 8),
                                             number(200 + i, 1),
                                             floating(36526.25 + i),
                                             notes[i],
                                             {{1, 2, 0, 3}, i == 2}}));
    }
    file.addObject(-1, L"Far rooms", 6, 0x200000, null(),
                   inlineLong(text(version, L"c:\\far.mdb").bytes));
    file.addObject(-2, L"All rooms", 5);
    return file.bytes();
}

}  // namespace sg::jet::test
