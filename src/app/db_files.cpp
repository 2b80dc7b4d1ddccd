#include "app/db_files.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include "app/exit_codes.h"
#include "app/process.h"
#include "base/nearest_names.h"
#include "base/text.h"
#include "host/system/database_files.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

constexpr size_t kMostLines = 100;
constexpr size_t kMostSuggestions = 5;

bool isTableOrLink(const jet::CatalogObject& object) {
    return object.isTable() || object.isLinked();
}

}  // namespace

std::wstring onOneLine(std::wstring_view text) {
    std::wstring line(text);
    for (wchar_t& c : line) {
        if (c < 0x20 || (c >= 0x7f && c < 0xa0) || c == 0x2028 || c == 0x2029) c = L' ';
    }
    return line;
}

std::wstring described(const jet::Error& error) {
    return error.describe() + L" (error " + std::to_wstring(error.code()) + L")";
}

DamageReport::~DamageReport() {
    if (count_ > kMostLines) complain(std::to_wstring(count_ - kMostLines) + L" more errors");
}

void DamageReport::add(const std::vector<jet::Error>& errors) {
    for (const jet::Error& error : errors)
        add(error);
}

void DamageReport::add(const std::wstring& line) {
    if (++count_ > kMostLines) return;
    if (bar_ != nullptr) bar_->erase();
    complain(onOneLine(line));
}

int DamageReport::exitCode() const {
    return count_ == 0 ? kDone : kFileError;
}

jet::Database openDatabase(const std::wstring& file, jet::OpenMode mode) {
    return jet::Database::open(resolvePath(file).path, mode, databaseOptions());
}

std::vector<jet::CatalogObject> userTables(const jet::Database& database) {
    std::vector<jet::CatalogObject> tables;
    for (const jet::CatalogObject& object : database.objects()) {
        if (isTableOrLink(object) && !object.isSystem()) tables.push_back(object);
    }
    return tables;
}

jet::CatalogObject findTable(const jet::Database& database, const std::wstring& name) {
    for (const jet::CatalogObject& object : database.objects()) {
        if (isTableOrLink(object) && equalIgnoringCase(object.name, name)) return object;
    }
    std::vector<std::wstring> names;
    for (const jet::CatalogObject& table : userTables(database))
        names.push_back(table.name);
    std::wstring near = suggestion(nearestNames(names, name, kMostSuggestions));
    if (near.empty()) near = L"; swiftgate db tables " + database.name() + L" lists them";
    throw UnknownTable{L"no table \"" + name + L"\" in " + database.name() + near};
}

std::vector<size_t> shownOrder(const jet::TableDefinition& table) {
    std::vector<size_t> order(table.columns.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return table.columns[a].ordinal < table.columns[b].ordinal;
    });
    return order;
}

jet::Database& homeOf(jet::Database& database, const jet::CatalogObject& object,
                      std::wstring& name) {
    name = object.name;
    try {
        return database.home(name);
    } catch (jet::Error& error) {
        error.addTable(object.name);
        throw;
    }
}

}  // namespace sg::app
