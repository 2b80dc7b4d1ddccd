#include "host/editor/commands/command_table.h"

#include "base/text.h"
#include "host/editor/commands/programs.h"

namespace sg {
namespace {

constexpr CommandRow kCommands[] = {
    {L"ARC", commands::arc},
    {L"BLOCK", commands::block},
    {L"CHPROP", commands::properties},
    {L"CIRCLE", commands::circle},
    {L"COPY", commands::copy},
    {L"DTEXT", commands::textLines},
    {L"ERASE", commands::erase},
    {L"EXPLODE", commands::explode},
    {L"INSERT", commands::insert},
    {L"LAYER", commands::layer},
    {L"LINE", commands::line},
    {L"LINETYPE", commands::linetype},
    {L"MIRROR", commands::mirror},
    {L"MOVE", commands::move},
    {L"MREDO", commands::redoSeveral, false},
    {L"MTEXT", commands::paragraphText},
    {L"OPEN", commands::openDrawing, false},
    {L"PLINE", commands::polyline},
    {L"POINT", commands::point},
    {L"PURGE", commands::purge},
    {L"QSAVE", commands::quickSave, false},
    {L"REDO", commands::redo, false},
    {L"REDRAW", commands::redraw, false},
    {L"REDRAWALL", commands::redraw, false},
    {L"REGEN", commands::regenerate, false},
    {L"REGENALL", commands::regenerate, false},
    {L"ROTATE", commands::rotate},
    {L"SAVE", commands::save, false},
    {L"SAVEAS", commands::saveAs, false},
    {L"SCALE", commands::scale},
    {L"SETVAR", commands::setVariable},
    {L"STRETCH", commands::stretch},
    {L"STYLE", commands::textStyle},
    {L"TEXT", commands::text},
    {L"U", commands::undoOne, false},
    {L"UCS", commands::userCoordinates},
    {L"UNDO", commands::undoOptions, false},
    {L"ZOOM", commands::zoom},
};

struct AliasRow {
    const wchar_t *alias, *command;
};
constexpr AliasRow kAliases[] = {
    {L"A", L"ARC"},        {L"B", L"BLOCK"},   {L"C", L"CIRCLE"},     {L"CO", L"COPY"},
    {L"CP", L"COPY"},      {L"DT", L"DTEXT"},  {L"E", L"ERASE"},      {L"I", L"INSERT"},
    {L"L", L"LINE"},       {L"LA", L"LAYER"},  {L"LT", L"LINETYPE"},  {L"M", L"MOVE"},
    {L"MI", L"MIRROR"},    {L"MT", L"MTEXT"},  {L"PL", L"PLINE"},     {L"PO", L"POINT"},
    {L"PU", L"PURGE"},     {L"R", L"REDRAW"},  {L"RA", L"REDRAWALL"}, {L"RE", L"REGEN"},
    {L"REA", L"REGENALL"}, {L"RO", L"ROTATE"}, {L"S", L"STRETCH"},    {L"SC", L"SCALE"},
    {L"SET", L"SETVAR"},   {L"ST", L"STYLE"},  {L"T", L"MTEXT"},      {L"X", L"EXPLODE"},
    {L"Z", L"ZOOM"},
};

}  // namespace

const CommandRow* findCommand(std::wstring_view name) {
    while (!name.empty() && std::wstring_view(L"_.'").find(name.front()) < std::wstring_view::npos)
        name.remove_prefix(1);
    if (name.starts_with(L'-')) name.remove_prefix(1);
    for (const CommandRow& row : kCommands) {
        if (equalIgnoringCase(row.name, name)) return &row;
    }
    return nullptr;
}

std::wstring_view commandOfAlias(std::wstring_view alias) {
    if (alias.starts_with(L'-')) alias.remove_prefix(1);
    for (const AliasRow& row : kAliases) {
        if (equalIgnoringCase(row.alias, alias)) return row.command;
    }
    return {};
}

}  // namespace sg
