#include "database/lisp_functions.h"
#include "module/function_tables.h"
#include "module/handlers.h"

namespace sg {
namespace {

// The order gives the functions their numbers.
constexpr FunctionRow kRows[] = {
    {L"sg_append", sgHandler<appendRecord>},
    {L"sg_append_withindex", sgHandler<appendRecordWithIndex>},
    {L"sg_closeall_tables", sgHandler<closeAllTables>},
    {L"sg_close_table", sgHandler<closeTable>},
    {L"sg_bottom", sgHandler<bottomRecord>},
    {L"sg_count", sgHandler<recordCount>},
    {L"sg_delete", sgHandler<deleteRecord>},
    {L"sg_getrec", sgHandler<currentRecord>},
    {L"sg_structure", sgHandler<tableStructure>},
    {L"sg_list_indexes", sgHandler<listIndexes>},
    {L"sg_modify_table", sgHandler<modifyTable>},
    {L"sg_replace", sgHandler<replaceRecord>},
    {L"sg_seek", sgHandler<seekRecord>},
    {L"sg_skip", sgHandler<skipRecords>},
    {L"sg_top", sgHandler<topRecord>},
    {L"sg_table", sgHandler<selectTable>},
    {L"sg_rename_table", sgHandler<renameTable>},
    {L"sg_connect", sgHandler<connectDatabase>},
    {L"sg_mdb", sgHandler<databaseName>},
    {L"sg_create_db", sgHandler<createDatabase>},
    {L"sg_create_table", sgHandler<createTable>},
    {L"sg_close_db", sgHandler<closeDatabase>},
    {L"sg_beep", sgHandler<beep>},
    {L"sg_random", sgHandler<randomNumber>},
    {L"sg_message_beep", sgHandler<messageBeep>},
    {L"sg_exist", sgHandler<tableExists>},
    {L"sg_readonly", sgHandler<databaseReadOnly>},
    {L"sg_delete_table", sgHandler<deleteTable>},
    {L"sg_list_tables", sgHandler<listTables>},
    {L"sg_current_table", sgHandler<currentTable>},
    {L"sg_current_index", sgHandler<currentIndex>},
    {L"sg_sql", sgHandler<sqlSelect>},
    {L"sg_sql-nil", sgHandler<sqlSelectOrNil>},
    {L"sg_sql-error", sgHandler<sqlSelectOrError>},
    {L"sg_command", sgHandler<sqlCommand>},
    {L"sg_compact", sgHandler<compactDatabaseFile>},
    {L"sg_link_table", sgHandler<linkTable>},
    {L"sg_query", sgHandler<runStoredQuery>},
    {L"sg_message_box", sgHandler<messageBox>},
    {L"sg_create_index", sgHandler<createIndex>},
    {L"sg_create_query", sgHandler<setStoredQuery>},
    {L"sg_xdput-list", sgHandler<xdPutList>},
    {L"sg_xdget", sgHandler<xdGet>},
    {L"sg_xdget-list", sgHandler<xdGetList>},
    {L"sg_xdget-all", sgHandler<xdGetAll>},
    {L"sg_mkdir", sgHandler<makeDirectory>},
    {L"sg_relationExists", sgHandler<relationExists>},
    {L"sg_relationDelete", sgHandler<relationDelete>},
    {L"sg_lastError", sgHandler<lastError>},
    {L"sg_resetLastError", sgHandler<resetLastError>},
    {L"sg_field_required", sgHandler<fieldRequired>},
    {L"sg_attributes", sgHandler<fieldAttributes>},
    {L"sg_getVersion", sgHandler<databaseVersion>},
    {L"sg_rmdir", sgHandler<removeDirectory>},
    {L"sg_fmove", sgHandler<fileMove>},
    {L"sg_fcopy", sgHandler<fileCopy>},
    {L"sg_fcopyIfChanged", sgHandler<fileCopyIfChanged>},
    {L"sg_fdir", sgHandler<fileDirectory>},
    {L"sg_fdelete", sgHandler<fileDelete>},
    {L"sg_indexUnique", sgHandler<indexUnique>},
    {L"sg_indexFields", sgHandler<indexFields>},
    {L"sg_relationCount", sgHandler<relationCount>},
    {L"sg_relationInfo", sgHandler<relationInfo>},
};

}  // namespace

std::span<const FunctionRow> sgFunctions() {
    return kRows;
}

}  // namespace sg
