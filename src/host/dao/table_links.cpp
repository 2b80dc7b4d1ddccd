#include "host/dao/table_links.h"

#include <algorithm>
#include <string_view>

#include "base/text.h"
#include "host/system/paths.h"

namespace sg::dao {
namespace {

constexpr int noDatabaseNamed = 3321;

// A link as the catalog would have it.
jet::CatalogObject linkOf(std::wstring_view connect) {
    constexpr std::wstring_view pathKey = L"DATABASE=";
    constexpr std::wstring_view ownKind = L"MS Access";
    jet::CatalogObject link;
    link.type = jet::ObjectType::LinkedTable;
    for (size_t at = 0; at < connect.size();) {
        const size_t end = std::min(connect.find(L';', at), connect.size());
        const std::wstring_view part = connect.substr(at, end - at);
        at = end + 1;
        if (equalIgnoringCase(part.substr(0, pathKey.size()), pathKey)) {
            link.database = part.substr(pathKey.size());
        } else if (!part.empty() && !equalIgnoringCase(part, ownKind)) {
            link.connect = connect;
        }
    }
    if (link.database.empty()) throw jet::Error(noDatabaseNamed);
    return link;
}

}  // namespace

void requireLinkedTable(jet::Database& database, const std::wstring& connect,
                        const std::wstring& table) {
    const jet::Database& other = database.linked(linkOf(connect));
    // It may have been opened before the file went away.
    if (!resolvePath(other.name()).exists) throw jet::Error(jet::FileNotFound, {other.name()});
    for (const jet::ObjectType type : {jet::ObjectType::Table, jet::ObjectType::LinkedTable}) {
        if (other.object(table, type) != nullptr) return;
    }
    throw jet::Error(jet::ObjectNotFound, {table});
}

}  // namespace sg::dao
