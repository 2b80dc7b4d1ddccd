#include <cstdlib>
#include <memory>

#include "base/encoding.h"
#include "base/text.h"
#include "host/editor/commands/linetype_file.h"
#include "host/editor/commands/named_records.h"
#include "host/editor/commands/programs.h"
#include "host/lisp/text/wildcard.h"
#include "host/model/tables/references.h"
#include "host/system/files.h"
#include "platform/db/linetype_table.h"

namespace sg::commands {
namespace {

// The dashes of a description as a record.
void fill(AcDbLinetypeTableRecord& record, const LinetypeDescription& description) {
    std::vector<AcDbLinetypeTableRecord::Dash> dashes;
    for (const double length : description.dashes) {
        AcDbLinetypeTableRecord::Dash dash;
        dash.length = length;
        dashes.push_back(dash);
    }
    record.setComments(description.comments.c_str());
    record.setDashes(std::move(dashes));
}

void define(Command& c, const LinetypeDescription& description) {
    AcDbObjectId id =
        model::recordNamed(&c.database(), model::NamedIn::linetypes, description.name);
    if (!id.isNull() && !c.yes(L"Linetype \"" + description.name +
                                   L"\" is already loaded. Reload it? [Yes/No] <Y>: ",
                               true)) {
        return;
    }
    if (id.isNull()) {
        id = model::addRecord(c.database(), model::NamedIn::linetypes, description.name);
    }
    AcDbLinetypeTableRecord* record = nullptr;
    if (acdbOpenObject(record, id, AcDb::kForWrite) != Acad::eOk) {
        c.print(L"Invalid linetype name \"" + description.name + L"\".");
        return;
    }
    fill(*record, description);
    record->close();
    c.print(L"Linetype \"" + description.name + L"\" loaded.");
}

// The content of a linetype file. Where the usual one is not found the built-in linetypes stand in
// for it.
std::wstring contentOf(Command& c, std::wstring file) {
    if (!lowerCased(file).ends_with(L".lin")) file += L".lin";
    std::wstring path;
    if (acdbHostApplicationServices()->findFile(path, file.c_str()) == Acad::eOk) {
        if (const auto bytes = readFile(path)) return decodeTextFile(*bytes);
    }
    const std::wstring lower = lowerCased(file);
    if (lower == L"acad.lin" || lower == L"acadiso.lin") return std::wstring(standardLinetypes());
    c.print(L"Cannot find the linetype file \"" + file + L"\".");
    return {};
}

void load(Command& c) {
    const std::wstring names = c.text(L"Enter linetype(s) to load: ");
    if (names.empty()) return;
    const std::wstring file(trimmed(c.text(L"Enter name of linetype file to search <acad.lin>: ")));
    std::vector<std::wstring> problems;
    const auto known = parseLinetypes(contentOf(c, file.empty() ? L"acad.lin" : file), problems);
    for (const std::wstring& name : namesIn(names)) {
        bool isFound = false;
        for (const LinetypeDescription& each : known) {
            if (!wildcardMatch(upperCased(each.name), upperCased(name))) continue;
            isFound = true;
            define(c, each);
        }
        if (!isFound) c.print(L"No matching linetypes found: " + name);
    }
}

void create(Command& c) {
    LinetypeDescription made;
    made.name = c.word(L"Enter name of linetype to create: ");
    if (made.name.empty()) return;
    made.comments = c.text(L"Descriptive text: ");
    const std::wstring pattern = c.text(L"Enter linetype pattern (on next line): A,");
    std::vector<std::wstring> problems;
    const std::wstring line =
        pattern.starts_with(L"A,") || pattern.starts_with(L"a,") ? pattern : L"A," + pattern;
    const auto parsed =
        parseLinetypes(L"*" + made.name + L"," + made.comments + L"\n" + line, problems);
    for (const std::wstring& problem : problems)
        c.print(problem);
    if (!parsed.empty()) define(c, parsed.front());
}

void set(Command& c) {
    const std::wstring name(
        trimmed(c.text(L"Specify linetype name or [?] <" + c.textOf(L"CELTYPE") + L">: ")));
    if (name.empty()) return;
    if (name == L"?") {
        listRecords(c, c.database().linetypeTableId(), L"Linetypes:");
        return;
    }
    const AcDbObjectId id = model::recordNamed(&c.database(), model::NamedIn::linetypes, name);
    if (id.isNull() || c.database().setCeltype(id) != Acad::eOk) {
        c.print(L"Linetype \"" + name + L"\" is not loaded.");
    }
}

}  // namespace

void linetype(Command& c) {
    c.print(L"Current line type:  \"" + c.textOf(L"CELTYPE") + L"\"");
    for (;;) {
        const std::wstring option = c.option(L"Enter an option [?/Create/Load/Set]: ");
        if (option.empty()) return;
        if (option == L"?") {
            listRecords(c, c.database().linetypeTableId(), L"Linetypes:");
        } else if (option == L"Create") {
            create(c);
        } else if (option == L"Load") {
            load(c);
        } else {
            set(c);
        }
    }
}

}  // namespace sg::commands
