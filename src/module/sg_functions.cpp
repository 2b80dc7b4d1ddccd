#include "database/lisp_functions.h"
#include "module/function_tables.h"
#include "module/handlers.h"
#include "module/missing.h"

namespace sg {
namespace {

// The order gives the functions their numbers. A row of a function that this build has reads
// {L"sg_name", sgHandler<implementation>}.
constexpr FunctionRow kRows[] = {
    {L"sg_append", sgHandler<appendRecord>},
    {L"sg_append_withindex", sgHandler<appendRecordWithIndex>},
    {L"sg_closeall_tables", sgHandler<closeAllTables>},
    {L"sg_close_table", sgHandler<closeTable>},
    {L"sg_bottom", sgHandler<bottomRecord>},
    {L"sg_count", sgHandler<recordCount>},
    {L"sg_delete", sgHandler<deleteRecord>},
    {L"sg_getrec", sgHandler<currentRecord>},
    missingSgRow<L"sg_structure">(),
    missingSgRow<L"sg_list_indexes">(),
    missingSgRow<L"sg_modify_table">(),
    {L"sg_replace", sgHandler<replaceRecord>},
    {L"sg_seek", sgHandler<seekRecord>},
    {L"sg_skip", sgHandler<skipRecords>},
    {L"sg_top", sgHandler<topRecord>},
    {L"sg_table", sgHandler<selectTable>},
    missingSgRow<L"sg_rename_table">(),
    {L"sg_connect", sgHandler<connectDatabase>},
    {L"sg_mdb", sgHandler<databaseName>},
    {L"sg_create_db", sgHandler<createDatabase>},
    missingSgRow<L"sg_create_table">(),
    {L"sg_close_db", sgHandler<closeDatabase>},
    {L"sg_beep", sgHandler<beep>},
    {L"sg_random", sgHandler<randomNumber>},
    {L"sg_message_beep", sgHandler<messageBeep>},
    {L"sg_exist", sgHandler<tableExists>},
    {L"sg_readonly", sgHandler<databaseReadOnly>},
    missingSgRow<L"sg_delete_table">(),
    missingSgRow<L"sg_list_tables">(),
    {L"sg_current_table", sgHandler<currentTable>},
    {L"sg_current_index", sgHandler<currentIndex>},
    missingSgRow<L"sg_sql">(),
    missingSgRow<L"sg_sql-nil">(),
    missingSgRow<L"sg_sql-error">(),
    missingSgRow<L"sg_command">(),
    {L"sg_compact", sgHandler<compactDatabaseFile>},
    missingSgRow<L"sg_link_table">(),
    missingSgRow<L"sg_query">(),
    {L"sg_message_box", sgHandler<messageBox>},
    missingSgRow<L"sg_create_index">(),
    missingSgRow<L"sg_create_query">(),
    {L"sg_xdput-list", sgHandler<xdPutList>},
    {L"sg_xdget", sgHandler<xdGet>},
    {L"sg_xdget-list", sgHandler<xdGetList>},
    {L"sg_xdget-all", sgHandler<xdGetAll>},
    {L"sg_mkdir", sgHandler<makeDirectory>},
    missingSgRow<L"sg_relationExists">(),
    missingSgRow<L"sg_relationDelete">(),
    {L"sg_lastError", sgHandler<lastError>},
    {L"sg_resetLastError", sgHandler<resetLastError>},
    missingSgRow<L"sg_field_required">(),
    missingSgRow<L"sg_attributes">(),
    {L"sg_getVersion", sgHandler<databaseVersion>},
    {L"sg_rmdir", sgHandler<removeDirectory>},
    {L"sg_fmove", sgHandler<fileMove>},
    {L"sg_fcopy", sgHandler<fileCopy>},
    {L"sg_fcopyIfChanged", sgHandler<fileCopyIfChanged>},
    {L"sg_fdir", sgHandler<fileDirectory>},
    {L"sg_fdelete", sgHandler<fileDelete>},
    missingSgRow<L"sg_indexUnique">(),
    missingSgRow<L"sg_indexFields">(),
    missingSgRow<L"sg_relationCount">(),
    missingSgRow<L"sg_relationInfo">(),
};

}  // namespace

std::span<const FunctionRow> sgFunctions() {
    return kRows;
}

}  // namespace sg
