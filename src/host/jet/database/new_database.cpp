#include "host/jet/database/new_database.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

#include "base/text.h"
#include "host/jet/database/new_catalog.h"
#include "host/jet/expression/expression_dates.h"
#include "host/jet/format/error.h"
#include "host/jet/format/format.h"
#include "host/jet/pages/data_page_editor.h"
#include "host/jet/pages/database_header.h"
#include "host/jet/storage/write_transaction.h"

namespace sg::jet {
namespace {

// What the engines write to page 0, besides what format.h tells of it.
constexpr size_t fixedRows = 0x18;    // row ids of two maps, pages of the four system tables
constexpr size_t engineBuild = 0x6A;  // of the engine that made the file
constexpr size_t formatBuild = 0x98;  // of the engine that this format came with
constexpr size_t formatName = 0x9C;
constexpr size_t commitStates = 0xE00;  // of 256 users, two bytes each
constexpr uint16_t lastBuild = 9756;
constexpr uint16_t firstBuild = 1620;
constexpr uint16_t nothingUnderWay = 0x0100;
constexpr char signature[] = "Standard Jet DB";
constexpr uint8_t systemTables = 4;

template <class T>
void put(std::span<uint8_t> page, size_t offset, T value) {
    std::memcpy(page.subspan(offset, sizeof(T)).data(), &value, sizeof(T));
}

// Page 0 without its mask.
std::vector<uint8_t> makeDatabasePage(const Format& format, const Locale& locale, Date created) {
    const DatabasePageLayout& layout = format.database;
    std::vector<uint8_t> page(format.pageSize);
    put<uint16_t>(page, 1, 1);
    std::copy(std::begin(signature), std::end(signature), page.begin() + 4);
    put(page, pages::versionOffset, static_cast<uint8_t>(format.version));
    put(page, fixedRows, RowId{pages::globalMap, 0}.packed());
    put(page, fixedRows + 4, RowId{pages::globalMap, 1}.packed());
    for (uint32_t i = 0; i < systemTables; ++i) {
        put(page, fixedRows + 8 + 4 * i, pages::catalog + i);
    }
    put(page, layout.codePage, locale.codePage);
    for (size_t at = 0; at < layout.passwordSize; at += 4) {
        put(page, layout.password + at, static_cast<int32_t>(created.days));
    }
    put(page, engineBuild, lastBuild);
    put(page, layout.sortOrder, locale.sortOrder.id);
    put(page, layout.sortOrder + 3, locale.sortOrder.version);
    put(page, layout.creationDate, created.days);
    put(page, formatBuild, firstBuild);
    std::memcpy(&page[formatName], "4.0", 4);
    for (size_t at = commitStates; at < page.size(); at += 2) {
        put(page, at, nothingUnderWay);
    }
    return page;
}

// Page 1: the map of free pages, in which all that the file may get count as free, and another map
// that is empty.
void writeMapPage(WriteTransaction& pages) {
    const Format& format = pages.format();
    const std::span<uint8_t> page = pages.write(pages::globalMap);
    DataPageEditor::initialize(page, format, pages::globalMap);
    std::vector<uint8_t> record(maps::inlineBits + format.inlineMapSize);
    record[0] = maps::inlineKind;
    std::fill(record.begin() + maps::inlineBits, record.end(), uint8_t(0xff));
    record[maps::inlineBits] = static_cast<uint8_t>(0xff << (pages::globalMap + 1));
    DataPageEditor::append(page, format, pages::globalMap, ByteView(record));
    std::fill(record.begin() + maps::inlineBits, record.end(), uint8_t(0));
    DataPageEditor::append(page, format, pages::globalMap, ByteView(record));
}

void writeDatabase(Storage& storage, const Locale& locale) {
    const std::unique_ptr<WriteTransaction> pages = storage.beginWrite();
    const Format& format = pages->format();
    const Date created = detail::now();
    const std::vector<uint8_t> plain = makeDatabasePage(format, locale, created);
    pages->grow(pages::globalMap + 1);
    const std::span<uint8_t> first = pages->write(0);
    std::copy(plain.begin(), plain.end(), first.begin());
    maskDatabasePage(first, format);
    writeMapPage(*pages);
    PageAllocator allocator(*pages);
    writeNewCatalog(allocator, ByteView(plain), locale.sortOrder, created);
    pages->commit();
}

// "0x0409" or "1033"; nothing when it is no number or too large.
std::optional<uint16_t> numberIn(std::wstring_view text) {
    const bool isHexadecimal = text.size() > 2 && text[0] == L'0' && toLower(text[1]) == L'x';
    const uint32_t base = isHexadecimal ? 16 : 10;
    if (isHexadecimal) {
        text.remove_prefix(2);
    }
    constexpr std::wstring_view digits = L"0123456789abcdef";
    uint32_t number = 0;
    for (const wchar_t c : text) {
        const size_t digit = digits.find(toLower(c));
        if (digit >= base) return std::nullopt;
        number = number * base + static_cast<uint32_t>(digit);
        if (number > std::numeric_limits<uint16_t>::max()) return std::nullopt;
    }
    return text.empty() ? std::nullopt : std::optional(static_cast<uint16_t>(number));
}

void readLocalePart(std::wstring_view part, Locale& locale) {
    const size_t equals = std::min(part.find(L'='), part.size());
    const std::wstring_view name = trimmed(part.substr(0, equals));
    const auto number =
        numberIn(equals < part.size() ? trimmed(part.substr(equals + 1)) : std::wstring_view());
    if (number && equalIgnoringCase(name, L"LANGID")) {
        locale.sortOrder.id = *number;
    } else if (number && equalIgnoringCase(name, L"CP")) {
        locale.codePage = *number;
    } else if (!number || !equalIgnoringCase(name, L"COUNTRY")) {
        throw Error(InvalidArgument, {},
                    {.detail = L"the locale has the part \"" + std::wstring(part) + L"\""});
    }
}

}  // namespace

Locale parseLocale(std::wstring_view text) {
    Locale locale;
    while (!text.empty()) {
        const size_t end = std::min(text.find(L';'), text.size());
        const std::wstring_view part = text.substr(0, end);
        if (!trimmed(part).empty()) {
            readLocalePart(part, locale);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return locale;
}

std::unique_ptr<Storage> createDatabaseFile(const std::wstring& path, const Locale& locale,
                                            const StorageOptions& options) {
    std::unique_ptr<Storage> storage = Storage::create(path, formatOf(Version::Jet4), options);
    try {
        writeDatabase(*storage, locale);
        return storage;
    } catch (...) {
        storage.reset();
        FileLayer& files = options.files != nullptr ? *options.files : posixFiles();
        for (const std::wstring& name : {Storage::logPath(path), Storage::sharedPath(path), path}) {
            try {
                files.remove(name);
            } catch (const Error&) {
                // The error that stopped the work is the one to tell.
            }
        }
        throw;
    }
}

}  // namespace sg::jet
