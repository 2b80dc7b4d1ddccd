#include "database/lisp_functions.h"
#include "module/function_tables.h"
#include "module/handlers.h"
#include "module/missing.h"

namespace sg {
namespace {

// The order gives the functions their numbers. A row of a function that this build has reads
// {L"sg_name", sgHandler<implementation>}.
constexpr FunctionRow kRows[] = {
    missingSgRow<L"sg_append">(),
    missingSgRow<L"sg_append_withindex">(),
    missingSgRow<L"sg_closeall_tables">(),
    missingSgRow<L"sg_close_table">(),
    missingSgRow<L"sg_bottom">(),
    missingSgRow<L"sg_count">(),
    missingSgRow<L"sg_delete">(),
    missingSgRow<L"sg_getrec">(),
    missingSgRow<L"sg_structure">(),
    missingSgRow<L"sg_list_indexes">(),
    missingSgRow<L"sg_modify_table">(),
    missingSgRow<L"sg_replace">(),
    missingSgRow<L"sg_seek">(),
    missingSgRow<L"sg_skip">(),
    missingSgRow<L"sg_top">(),
    missingSgRow<L"sg_table">(),
    missingSgRow<L"sg_rename_table">(),
    missingSgRow<L"sg_connect">(),
    missingSgRow<L"sg_mdb">(),
    missingSgRow<L"sg_create_db">(),
    missingSgRow<L"sg_create_table">(),
    missingSgRow<L"sg_close_db">(),
    {L"sg_beep", sgHandler<beep>},
    {L"sg_random", sgHandler<randomNumber>},
    {L"sg_message_beep", sgHandler<messageBeep>},
    missingSgRow<L"sg_exist">(),
    missingSgRow<L"sg_readonly">(),
    missingSgRow<L"sg_delete_table">(),
    missingSgRow<L"sg_list_tables">(),
    missingSgRow<L"sg_current_table">(),
    missingSgRow<L"sg_current_index">(),
    missingSgRow<L"sg_sql">(),
    missingSgRow<L"sg_sql-nil">(),
    missingSgRow<L"sg_sql-error">(),
    missingSgRow<L"sg_command">(),
    missingSgRow<L"sg_compact">(),
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
    missingSgRow<L"sg_lastError">(),
    missingSgRow<L"sg_resetLastError">(),
    missingSgRow<L"sg_field_required">(),
    missingSgRow<L"sg_attributes">(),
    missingSgRow<L"sg_getVersion">(),
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
