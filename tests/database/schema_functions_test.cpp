#include <gmock/gmock.h>

#include "database/database_fixture.h"

namespace sg::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SchemaTest : public DatabaseTest {
  protected:
    SchemaTest() {
        makeFile("plan.mdb", {L"Hall", L"Bath"});
        connectTo("plan.mdb");
    }

    // "name type size required default" of each field of a table, and its indexes as
    // "name(-field) unique primary".
    std::string design(const wchar_t* name) {
        CDaoDatabase db;
        db.Open(path("plan.mdb"), false, true);
        CDaoTableDef table(&db);
        try {
            table.Open(name);
        } catch (CDaoException* exception) {
            exception->Delete();
            return "none";
        }
        std::wstring text;
        for (int i = 0; i < table.GetFieldCount(); ++i) {
            CDaoFieldInfo field;
            table.GetFieldInfo(i, field, AFX_DAO_ALL_INFO);
            text += field.m_strName + L" " + std::to_wstring(field.m_nType) + L" " +
                    std::to_wstring(field.m_lSize) + (field.m_bRequired ? L" required" : L"") +
                    (field.m_bAllowZeroLength ? L" empty" : L"") +
                    ((field.m_lAttributes & dbAutoIncrField) != 0 ? L" counter" : L"") +
                    (field.m_strDefaultValue.empty() ? L"" : L" =" + field.m_strDefaultValue) +
                    L"; ";
        }
        for (int i = 0; i < table.GetIndexCount(); ++i) {
            CDaoIndexInfo index;
            table.GetIndexInfo(i, index, AFX_DAO_ALL_INFO);
            text += index.m_strName + L"(";
            for (const CDaoIndexFieldInfo& field : index.m_pFieldInfos)
                text += (field.m_bDescending ? L"-" : L"") + field.m_strName;
            text += std::wstring(L")") + (index.m_bUnique ? L" unique" : L"") +
                    (index.m_bPrimary ? L" primary" : L"") + L"; ";
        }
        return toUtf8(text);
    }
};

TEST_F(SchemaTest, EveryFormOfAFieldDefinition) {
    const struct {
        const char *fields, *answer, *design;
    } cases[] = {
        {"'((\"A\" \"BOOL\" nil nil) (\"B\" \"BYTE\" T nil) (\"C\" \"INT\" nil \"5\"))", "\"T\"",
         "A 1 1; B 2 1 required; C 3 2 =5; "},
        {"'((\"A\" \"long\" nil nil) (\"B\" \"Real\" nil 5) (\"C\" \"CURRENCY\" 0 \"1.5\"))",
         "\"T\"", "A 4 4; B 7 8; C 5 8 required =1.5; "},
        {"'((\"A\" \"DATE\" nil nil) (\"B\" \"MEMO\" nil nil) (\"C\" \"text\" 20 nil nil))",
         "\"T\"", "A 8 8; B 12 0 empty; C 10 20 empty; "},
        {"'(\"A\" \"TEXT\" 20 nil nil \"X\")", "\"T\"", "A 10 20 empty; A(A); "},
        {"'(\"A\" \"TEXT\" 20 nil \"Hall\" \"D\" T)", "\"T\"",
         "A 10 20 empty =Hall; A(-A) unique; "},
        {"'((\"A\" \"TEXT\" 20 nil nil \"I\" T T) (\"B\" \"INT\" nil nil \"x\" nil nil))", "\"T\"",
         "A 4 4 counter; B 3 2; A(A) unique primary; B(B); "},
        {"'((\"A\" \"INT\" nil nil \"\"))", "\"T\"", "A 3 2; "},
        {"'((\"A\" \"INT\" nil nil \"i\" nil))", "\"T\"", "A 3 2; A(A); "},
        // Without a single field there is no table.
        {"'((\"A\" \"INTEGER\" nil nil))", "nil", "none"},
        {"'((\"A\" \"TEXT\" nil nil))", "nil", "none"},
        {"'((\"A\" \"TEXT\" 20.0 nil nil))", "nil", "none"},
        {"'((\"A\" 5 nil nil))", "nil", "none"},
        {"'((5 \"INT\" nil nil))", "nil", "none"},
        {"'((\"A\" \"INT\" nil))", "nil", "none"},
        {"'((\"A\" \"INT\"))", "nil", "none"},
        {"'((\"A\"))", "nil", "none"},
        {"'((\"A\" . \"INT\"))", "nil", "none"},
        {"'((\"A\" \"INT\" nil nil nil))", "nil", "none"},
        {"'(nil)", "nil", "none"},
        {"nil", "nil", "none"},
        {"", "nil", "none"},
        {"\"A\" \"INT\" nil nil", "nil", "none"},
        {"'((\"A\" \"INT\" nil nil (1.0 2.0)))", "nil", "none"},
        // With some, it has those ahead of the fault.
        {"'((\"A\" \"INT\" nil nil) (\"B\" \"NONE\" nil nil) (\"C\" \"INT\" nil nil))", "nil",
         "A 3 2; "},
        {"'((\"A\" \"INT\" nil nil \"x\") \"B\")", "nil", "A 3 2; A(A); "},
        // The engine's own errors are told.
        {"'((\"A\" \"INT\" nil nil) (\"A\" \"INT\" nil nil))",
         "nil | \nSwift Gate Error: Cannot define field more than once.", "A 3 2; "},
        {"'((\"A\" \"TEXT\" 256 nil nil))",
         "nil | \nSwift Gate Error: Size of field 'A' is too long.", "none"},
    };
    for (const auto& c : cases) {
        const std::string call = std::string("(sg_create_table \"T\" ") + c.fields + ")";
        EXPECT_EQ(run(call), c.answer) << call;
        EXPECT_EQ(design(L"T"), c.design) << call;
        run("(if (sg_exist \"T\") (sg_delete_table \"T\"))");
    }
}

TEST_F(SchemaTest, ATableThatIsThereStays) {
    EXPECT_THAT(run("(sg_create_table \"Empty\" '((\"B\" \"INT\" nil nil)))"),
                HasSubstr("nil | \nSwift Gate Error: "));
    EXPECT_EQ(run("(sg_create_table \"Empty\" '((\"B\" \"NONE\" nil nil)))"), "nil");
    EXPECT_EQ(run("(sg_create_table \"Empty\" '((\"B\" \"INT\" nil nil) (\"C\" \"NONE\")))"), "nil")
        << "what is told is the fault in the list, and that tells nothing";
    EXPECT_EQ(design(L"Empty"), "A 4 4; A(A) unique; ");
}

TEST_F(SchemaTest, FieldsComeToATable) {
    run("(sg_table \"Rooms\" \"Name\")");
    EXPECT_EQ(run("(sg_modify_table \"Rooms\" '(\"Floor\" \"TEXT\" 10 nil nil \"X\"))"),
              "\"Rooms\"");
    EXPECT_EQ(run("(sg_current_table)"), "\"\"") << "the table is closed for it";
    EXPECT_EQ(run("(sg_sql \"select Name, Floor from Rooms where Id = 1\")"),
              "(((\"Name\" . \"Hall\") (\"Floor\")))");
    EXPECT_EQ(
        run("(sg_modify_table \"Rooms\" '((\"X\" \"INT\" nil nil) (\"Y\" \"NONE\" nil nil)))"),
        "nil");
    EXPECT_THAT(design(L"Rooms"), HasSubstr("Floor 10 10 empty; X 3 2; "));
    EXPECT_THAT(run("(sg_modify_table \"Rooms\" '(\"X\" \"INT\" nil nil))"),
                HasSubstr("nil | \nSwift Gate Error: "));
    EXPECT_EQ(run("(sg_modify_table \"None\" '(\"X\" \"INT\" nil nil))"),
              "nil | \nSwift Gate Error: Item not found in this collection.");
    EXPECT_EQ(run("(sg_modify_table \"Rooms\")"), "\"Rooms\"");
}

TEST_F(SchemaTest, TablesAreListedRenamedAndDeleted) {
    run("(sg_create_table \"MSG\" '(\"A\" \"INT\" nil nil))"
        "(sg_create_table \"Msg2\" '(\"A\" \"INT\" nil nil))");
    EXPECT_EQ(run("(sg_list_tables)"), "(\"Empty\" \"Msg2\" \"Rooms\")");
    EXPECT_EQ(run("(sg_exist \"MSG\")"), "T") << "it is only not listed";
    run("(sg_table \"Rooms\") (sg_table \"Empty\")");
    EXPECT_EQ(run("(sg_rename_table \"Rooms\" \"Spaces\")"), "\"Spaces\"");
    EXPECT_EQ(run("(sg_current_table)"), "\"Empty\"");
    EXPECT_THAT(run("(sg_rename_table \"Spaces\" \"Empty\")"), StartsWith("nil | \nSwift Gate"));
    EXPECT_THAT(run("(sg_rename_table \"Rooms\" \"X\")"), StartsWith("nil | \nSwift Gate"));
    EXPECT_EQ(run("(sg_delete_table \"Empty\")"), "nil");
    EXPECT_EQ(run("(sg_current_table)"), "\"\"");
    EXPECT_EQ(run("(sg_delete_table \"Empty\")"),
              "nil | \nSwift Gate Error: Item not found in this collection.");
    EXPECT_EQ(run("(sg_list_tables)"), "(\"Msg2\" \"Spaces\")");
}

TEST_F(SchemaTest, ATemplateRecordByTypes) {
    run("(sg_table \"Rooms\")");
    EXPECT_EQ(run("(sg_structure)"),
              "((\"Id\" . 0) (\"Name\" . \"\") (\"Level\" . 0) (\"Area\" . 0.0) (\"Price\") "
              "(\"Built\" . \"\") (\"Open\" . 0) (\"s_Note\" . \"\"))");
    run("(sg_close_table)");
    EXPECT_EQ(run("(sg_structure)"), "nil");
}

TEST_F(SchemaTest, Indexes) {
    run("(sg_table \"Rooms\")");
    EXPECT_EQ(run("(sg_list_indexes)"), "(\"Name\" \"Place\" \"PrimaryKey\" \"Spot\")");
    EXPECT_EQ(run("(mapcar 'sg_indexUnique (sg_list_indexes))"), "(nil nil T nil)");
    EXPECT_EQ(run("(sg_indexFields \"Place\")"), "(\"Level\" \"Name\")");
    EXPECT_THAT(run("(sg_indexFields \"None\")"), StartsWith("nil | \nSwift Gate Error: "));
    EXPECT_THAT(run("(sg_indexUnique \"None\")"), StartsWith("nil | \nSwift Gate Error: "));
    EXPECT_EQ(run("(sg_create_index \"Rooms\" \"Area\" nil nil)"), "T") << "also of an open table";
    EXPECT_EQ(run("(sg_indexFields \"Area\")"), "(\"Area\")");
    EXPECT_EQ(run("(sg_create_index \"Empty\" \"A\" T nil)").substr(0, 6), "nil | ");
    run("(sg_create_table \"T\" '((\"A\" \"INT\" nil nil) (\"B\" \"INT\" nil nil)))");
    EXPECT_EQ(run("(sg_create_index \"T\" \"A\" nil T)"), "T");
    EXPECT_EQ(run("(sg_create_index \"T\" \"B\" T nil)"), "T");
    EXPECT_EQ(design(L"T"), "A 3 2; B 3 2; A(A) unique primary; B(B) unique; ");
    for (const char* arguments : {"\"T\" \"A\" T", "\"T\" \"A\"", "\"T\" \"A\" '(1) T"}) {
        EXPECT_EQ(run(std::string("(sg_create_index ") + arguments + ")"),
                  "; error: ADS request error | \nWrong type of arguments passed.\n");
    }
    run("(sg_table \"T\") (sg_closeall_tables)");
    EXPECT_EQ(run("(list (sg_list_indexes) (sg_indexFields \"A\") (sg_indexUnique \"A\"))"),
              "(nil nil nil)");
}

TEST_F(SchemaTest, AskingForAFieldSelectsItsTable) {
    run("(sg_create_table \"T\" '((\"A\" \"INT\" T nil) (\"B\" \"INT\" nil nil)))"
        "(sg_table \"Rooms\" \"Name\") (sg_top)");
    EXPECT_EQ(run("(list (sg_field_required \"T\" \"A\") (sg_field_required \"T\" \"B\"))"),
              "(T nil)");
    EXPECT_EQ(run("(sg_current_table)"), "\"T\"");
    EXPECT_EQ(run("(sg_field_required \"Rooms\" \"\")"), "nil");
    EXPECT_EQ(run("(list (sg_current_table) (sg_current_index))"), "(\"Rooms\" \"Name\")");
    EXPECT_THAT(run("(sg_field_required \"T\" \"None\")"), StartsWith("nil | \nSwift Gate Error"));
    EXPECT_THAT(run("(sg_field_required \"None\" \"A\")"), StartsWith("nil | \nSwift Gate Error"));
    run("(sg_table \"T\")");
    EXPECT_EQ(run("(sg_attributes \"A\")"),
              "((\"strName\" . \"A\") (\"nType\" . 3) (\"lSize\" . 2) (\"lAttributes\" . 33) "
              "(\"nOrdinalPosition\" . 0) (\"bRequired\" . 1) (\"bAllowZeroLength\" . 0) "
              "(\"strDefaultValue\" . \"\"))");
    EXPECT_THAT(run("(sg_attributes \"None\")"), StartsWith("nil | \nSwift Gate Error"));
}

class RelationTest : public SchemaTest {
  protected:
    // Doors and Lamps each belong to a room, Lamps also to a door.
    RelationTest() {
        run("(sg_close_db)");
        CDaoDatabase db;
        db.Open(path("plan.mdb"));
        for (const wchar_t* name : {L"Doors", L"Lamps"}) {
            makeTable(db, name,
                      {field(L"Id", dbLong), field(L"Room", dbLong), field(L"Door", dbLong)},
                      {indexOver(L"PrimaryKey", {{L"Id", false}}, true, true)});
        }
        relate(db, L"RoomDoor", L"Rooms", L"Doors", L"Room");
        relate(db, L"RoomLamp", L"Rooms", L"Lamps", L"Room");
        relate(db, L"DoorLamp", L"Doors", L"Lamps", L"Door");
        db.Close();
        connectTo("plan.mdb");
    }
    static void relate(CDaoDatabase& db, const wchar_t* name, const wchar_t* table,
                       const wchar_t* foreign, const wchar_t* field) {
        CDaoRelationInfo relation;
        relation.m_strName = name;
        relation.m_strTable = table;
        relation.m_strForeignTable = foreign;
        relation.m_lAttributes = dbRelationDeleteCascade;
        relation.m_pFieldInfos = {{L"Id", field}};
        relation.m_nFields = 1;
        db.CreateRelation(relation);
    }
};

TEST_F(RelationTest, AreCountedAndDescribed) {
    EXPECT_EQ(run("(sg_relationCount)"), "3");
    EXPECT_EQ(run("(mapcar 'sg_relationExists '(\"RoomDoor\" \"Door\"))"), "(T nil)");
    const std::string info =
        "((\"strName\" . \"DoorLamp\") (\"strTable\" . \"Doors\") (\"strForeignTable\" . "
        "\"Lamps\") (\"lAttributes\" . 4096) (\"field_strName\" . \"Id\") "
        "(\"field_strForeignName\" . \"Door\"))";
    EXPECT_EQ(run("(sg_relationInfo \"DoorLamp\")"), info);
    EXPECT_EQ(run("(sg_relationInfo 0)"), info);
    for (const char* argument : {"3", "-1", "\"None\""}) {
        EXPECT_EQ(run(std::string("(sg_relationInfo ") + argument + ")"),
                  "nil | \nSwift Gate Error: Item not found in this collection.");
    }
}

TEST_F(RelationTest, GoByTheirTwoTables) {
    EXPECT_EQ(run("(sg_relationDelete \"Lamps\" \"Rooms\")"), "T") << "the other way round";
    EXPECT_EQ(run("(sg_relationDelete \"rooms\" \"Lamps\")"), "T") << "case counts";
    EXPECT_EQ(run("(sg_relationCount)"), "3");
    EXPECT_EQ(run("(sg_relationDelete \"Rooms\" \"Lamps\")"), "T");
    EXPECT_EQ(run("(list (sg_relationCount) (sg_relationExists \"RoomLamp\"))"), "(2 nil)");
}

TEST_F(RelationTest, GoWithTheirTable) {
    EXPECT_THAT(run("(sg_delete_table \"Doors\")"), StartsWith("nil | \nSwift Gate Error: "));
    EXPECT_EQ(run("(sg_relationCount)"), "3");
    EXPECT_EQ(run("(sg_delete_table \"Doors\" T)"), "nil");
    EXPECT_EQ(run("(list (sg_exist \"Doors\") (sg_relationCount) (sg_relationExists "
                  "\"RoomLamp\"))"),
              "(nil 1 T)");
    EXPECT_EQ(run("(sg_rename_table \"Rooms\" \"Spaces\")"), "\"Spaces\"");
    EXPECT_THAT(run("(sg_relationInfo 0)"), HasSubstr("(\"strTable\" . \"Spaces\")"));
}

TEST_F(SchemaTest, LinksToAnotherFile) {
    makeFile("other \u03a9.mdb", {L"Cellar"});
    EXPECT_EQ(run("(sg_link_table \"Far\" (strcat (vl-string-translate \"/\" \"\\\\\" folder) "
                  "\"OTHER \u03a9.mdb\") \"Rooms\")"),
              "T");
    EXPECT_EQ(run("(sg_list_tables)"), "(\"Empty\" \"Far\" \"Rooms\")");
    EXPECT_EQ(run("(sg_sql \"select Name from Far\")"), "(\"Cellar\")");
    EXPECT_EQ(run("(sg_command \"insert into Far (Name) values ('Loft')\")"), "1");
    EXPECT_EQ(run("(sg_sql \"select Far.Name from Far inner join Rooms on Far.Id = Rooms.Id "
                  "order by Rooms.Id\")"),
              "(\"Cellar\" \"Loft\")");
    EXPECT_THAT(run("(sg_link_table \"Far\" (strcat folder \"plan.mdb\") \"Rooms\")"),
                StartsWith("nil | \nSwift Gate Error: "));
    for (const char* arguments :
         {"\"A\" (strcat folder \"none.mdb\") \"Rooms\"",
          "\"A\" (strcat folder \"plan.mdb\") \"None\"", "\"A\" (strcat folder \"plan.mdb\") 5"}) {
        EXPECT_THAT(run(std::string("(sg_link_table ") + arguments + ")"),
                    StartsWith("nil | \nSwift Gate Error: "))
            << arguments;
    }
    EXPECT_EQ(run("(sg_exist \"A\")"), "nil");
    EXPECT_EQ(run("(sg_link_table \"A\" \"b\")"),
              "; error: ADS request error | \nToo few arguments passed.\n");
    EXPECT_EQ(run("(sg_link_table 1 \"b\" \"c\")"),
              "; error: ADS request error | \nWrong type of arguments passed.\n");
    EXPECT_EQ(run("(sg_delete_table \"Far\")"), "nil");
    connectTo("other \u03a9.mdb");
    EXPECT_EQ(run("(sg_sql \"select count(*) from Rooms\")"), "(2)") << "only the link goes";
}

}  // namespace
}  // namespace sg::test
