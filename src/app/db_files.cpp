#include "app/db_files.h"

#include "app/exit_codes.h"
#include "app/nearest_names.h"
#include "app/process.h"
#include "base/text.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

constexpr size_t kMostLines = 100;
constexpr size_t kMostSuggestions = 5;

bool isTableOrLink(const jet::CatalogObject& object) {
    return object.isTable() || object.isLinked();
}

// Links to other kinds of data name the kind before the first ";".
bool leadsToJet(const jet::CatalogObject& link) {
    if (link.type != jet::ObjectType::LinkedTable) return false;
    const std::wstring kind = link.connect.substr(0, link.connect.find(L';'));
    return kind.empty() || equalIgnoringCase(kind, L"MS Access");
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
    if (++count_ <= kMostLines) complain(onOneLine(line));
}

int DamageReport::exitCode() const {
    return count_ == 0 ? kDone : kFileError;
}

jet::Database openDatabase(const std::wstring& file) {
    return jet::Database::openReadOnly(resolvePath(file).path);
}

std::vector<const jet::CatalogObject*> userTables(const jet::Database& database) {
    std::vector<const jet::CatalogObject*> tables;
    for (const jet::CatalogObject& object : database.objects()) {
        if (isTableOrLink(object) && !object.isSystem()) tables.push_back(&object);
    }
    return tables;
}

const jet::CatalogObject& findTable(const jet::Database& database, const std::wstring& name) {
    for (const jet::CatalogObject& object : database.objects()) {
        if (isTableOrLink(object) && equalIgnoringCase(object.name, name)) return object;
    }
    std::vector<std::wstring> names;
    for (const jet::CatalogObject* table : userTables(database))
        names.push_back(table->name);
    throw UnknownTable{L"no table \"" + name + L"\" in " + database.store().name() +
                       suggestion(nearestNames(names, name, kMostSuggestions))};
}

OpenTable openTable(const jet::Database& database, const jet::CatalogObject& object) {
    if (object.isTable()) return {std::nullopt, database.tableAt(object.definitionPage())};
    try {
        if (!leadsToJet(object)) {
            throw jet::Error(jet::OperationNotSupported, {},
                             {.file = database.store().name(),
                              .detail = L"the table is linked to something else than a database "
                                        L"file of this kind"});
        }
        std::optional<jet::Database> other(openDatabase(object.database));
        jet::Table table = other->table(object.foreignName);
        return {std::move(other), std::move(table)};
    } catch (jet::Error& error) {
        error.addTable(object.name);
        throw;
    }
}

}  // namespace sg::app
