#pragma once

#include <filesystem>
#include <initializer_list>
#include <string>

#include "database/connection.h"
#include "database/database_error.h"
#include "database/db_info.h"
#include "host/dao/dao_fixture.h"
#include "module/module_fixture.h"

namespace sg::test {

// A test whose programs work on databases in the test's folder. In the first drawing the variable
// `folder` is that folder's name with "/" at its end.
class DatabaseTest : public ModuleTest {
  protected:
    DatabaseTest() {
        clearLastErrorText();
        start();
        printed();
        setFolder();
    }

    // In the drawing that is active now.
    void setFolder() { eval("(setq folder \"" + toUtf8(path()) + "/\")"); }

    // What a program answers, and behind " | " what it printed.
    std::string run(const std::string& program) {
        const std::string answer = eval(program);
        const std::string text = printed();
        return text.empty() ? answer : answer + " | " + text;
    }
    std::string connectTo(const std::string& file, const std::string& more = "") {
        return run("(sg_connect (strcat folder \"" + file + "\")" + more + ")");
    }

    // A file with a table "Rooms": a counter under PrimaryKey, and fields of the common types with
    // indexes Name and Place (over two fields); and an empty table "Empty".
    void makeFile(const std::string& name, std::initializer_list<const wchar_t*> rooms = {}) {
        CDaoDatabase db;
        db.Create(path(name), englishLocale);
        makeTable(
            db, L"Rooms",
            {field(L"Id", dbLong, 4, dbAutoIncrField), field(L"Name", dbText, 20),
             field(L"Level", dbInteger), field(L"Area", dbDouble), field(L"Price", dbCurrency),
             field(L"Built", dbDate), field(L"Open", dbBoolean), field(L"s_Note", dbMemo)},
            {indexOver(L"PrimaryKey", {{L"Id", false}}, true, true),
             indexOver(L"Name", {{L"Name", false}}),
             indexOver(L"Place", {{L"Level", false}, {L"Name", false}}),
             indexOver(L"Spot", {{L"Area", false}, {L"Level", false}})});
        makeTable(db, L"Empty", {field(L"A", dbLong)}, {indexOver(L"A", {{L"A", false}}, true)});
        CDaoRecordset rows(&db);
        rows.Open(dbOpenTable, L"Rooms");
        int32_t level = 0;
        for (const wchar_t* room : rooms) {
            ++level;
            append(rows, {{L"Name", text(room)},
                          {L"Level", number(level)},
                          {L"Area", COleVariant::fromDouble(level * 2.5)}});
        }
    }

    // The file as one of a later format, which is only read.
    void makeReadOnly(const std::string& name) {
        constexpr size_t kVersionAt = 0x14;
        std::string bytes = read(name);
        bytes[kVersionAt] = 2;
        write(name, bytes);
    }

    // The name in the current record, or what a program answers in its place.
    std::string nameAfter(const std::string& program) {
        return run("(setq answer " + program +
                   ") (if (listp answer) (cdr (assoc \"Name\" answer)) answer)");
    }
};

}  // namespace sg::test
