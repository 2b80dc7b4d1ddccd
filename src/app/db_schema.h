#pragma once

#include <string>
#include <vector>

#include "host/jet/catalog/catalog.h"
#include "host/jet/catalog/properties.h"
#include "host/jet/values/table_definition.h"

// Tables and relations as statements of the engine's own data definition language. What it has no
// word for stands in comments.
namespace sg::app {

// The table's columns, then its indexes but for those that serve relations.
std::wstring tableSchema(const jet::TableDefinition& table, const jet::Properties& properties,
                         const jet::Format& format);

// Where a linked table is.
std::wstring linkSchema(const jet::CatalogObject& link, const jet::Properties& properties);

std::wstring relationSchema(const jet::Relation& relation);

// "Jet 4".
std::wstring versionName(jet::Version version);

}  // namespace sg::app
