#pragma once

#include <string_view>

#include "host/model/core/database_state.h"

namespace sg::dwg {

// A field of the header that names one of the objects a database is entered by.
struct HeaderRoot {
    std::wstring_view name;  // as in headerFields()
    AcDbObjectId model::DatabaseRoots::*root;
};

constexpr HeaderRoot kHeaderRoots[] = {
    {L"*BLOCKS", &model::DatabaseRoots::blockTable},
    {L"*LAYERS", &model::DatabaseRoots::layerTable},
    {L"*STYLES", &model::DatabaseRoots::textStyleTable},
    {L"*LINETYPES", &model::DatabaseRoots::linetypeTable},
    {L"*VIEWS", &model::DatabaseRoots::viewTable},
    {L"*UCS", &model::DatabaseRoots::ucsTable},
    {L"*VIEWPORTS", &model::DatabaseRoots::viewportTable},
    {L"*APPLICATIONS", &model::DatabaseRoots::regAppTable},
    {L"*DIMSTYLES", &model::DatabaseRoots::dimStyleTable},
    {L"*GROUPS", &model::DatabaseRoots::groups},
    {L"*NAMED_OBJECTS", &model::DatabaseRoots::namedObjects},
    {L"*LAYOUTS", &model::DatabaseRoots::layouts},
    {L"*PLOTSTYLENAMES", &model::DatabaseRoots::plotStyleNames},
    {L"*PAPER_SPACE", &model::DatabaseRoots::paperSpace},
    {L"*MODEL_SPACE", &model::DatabaseRoots::modelSpace},
    {L"*BYLAYER", &model::DatabaseRoots::byLayerLinetype},
    {L"*BYBLOCK", &model::DatabaseRoots::byBlockLinetype},
    {L"*CONTINUOUS", &model::DatabaseRoots::continuousLinetype},
};

// Null for a field that is none of them.
inline const HeaderRoot* headerRoot(std::wstring_view name) {
    for (const HeaderRoot& one : kHeaderRoots) {
        if (one.name == name) return &one;
    }
    return nullptr;
}

}  // namespace sg::dwg
