#include "host/editor/commands/named_records.h"

#include <algorithm>

#include "base/text.h"
#include "host/lisp/text/wildcard.h"
#include "host/model/core/object_access.h"

namespace sg::commands {

std::vector<std::wstring> namesIn(std::wstring_view list) {
    std::vector<std::wstring> names;
    for (;;) {
        const size_t comma = list.find(L',');
        const std::wstring_view name = trimmed(list.substr(0, comma));
        if (!name.empty()) names.emplace_back(name);
        if (comma == std::wstring_view::npos) return names;
        list.remove_prefix(comma + 1);
    }
}

std::vector<NamedRecord> recordsOf(AcDbObjectId table) {
    std::vector<NamedRecord> records;
    const auto* const found = model::peek<AcDbSymbolTable>(table);
    if (found == nullptr) return records;
    const model::Unguarded guard(*found);
    for (auto each = found->newIterator(); !each->done(); each->step()) {
        const auto* const record = model::peek<AcDbSymbolTableRecord>(each->getRecordId());
        if (record == nullptr || record->name().starts_with(L'*') || record->isDependent()) {
            continue;
        }
        records.push_back({record->name(), each->getRecordId()});
    }
    std::sort(records.begin(), records.end(), [](const NamedRecord& a, const NamedRecord& b) {
        return upperCased(a.name) < upperCased(b.name);
    });
    return records;
}

std::vector<NamedRecord> recordsMatching(AcDbObjectId table, std::wstring_view list,
                                         std::vector<std::wstring>* unknown) {
    const std::vector<NamedRecord> all = recordsOf(table);
    std::vector<NamedRecord> matching;
    for (const std::wstring& name : namesIn(list)) {
        const std::wstring pattern = upperCased(name);
        bool isKnown = false;
        for (const NamedRecord& record : all) {
            if (upperCased(record.name) != pattern &&
                !wildcardMatch(upperCased(record.name), pattern)) {
                continue;
            }
            isKnown = true;
            const bool isNew =
                std::none_of(matching.begin(), matching.end(),
                             [&](const NamedRecord& other) { return other.id == record.id; });
            if (isNew) matching.push_back(record);
        }
        if (!isKnown && unknown != nullptr) unknown->push_back(name);
    }
    return matching;
}

void listRecords(Command& c, AcDbObjectId table, const std::wstring& title) {
    const std::wstring list = c.text(L"Enter name(s) to list <*>: ");
    c.print(title);
    for (const NamedRecord& record : recordsMatching(table, list.empty() ? L"*" : list))
        c.print(L"  \"" + record.name + L"\"");
}

}  // namespace sg::commands
