#pragma once

#include "host/jet/format/byte_view.h"
#include "host/jet/pages/page_allocator.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

namespace sg::jet {

// Writes the system tables of a new database: MSysObjects on the page where everybody looks for it,
// MSysACEs, MSysQueries and MSysRelationships behind it, their rows and indexes. The file has the
// database page, which `databasePage` is without its mask, and that of the map of free pages, and
// nothing else. Texts get `order`; throws OperationNotSupported when its keys are not known.
void writeNewCatalog(PageAllocator& allocator, ByteView databasePage, SortOrder order,
                     Date created);

}  // namespace sg::jet
