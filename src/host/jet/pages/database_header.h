#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "base/export.h"
#include "host/jet/storage/page_store.h"
#include "host/jet/values/table_definition.h"
#include "host/jet/values/value.h"

// What page 0 says of the whole file. See docs/formats/jet.md, "The database page".
namespace sg::jet {

struct DatabaseHeader {
    Version version = Version::Jet4;
    SortOrder sortOrder;
    uint16_t codePage = 0;
    std::optional<Date> created;  // Jet 3 does not tell
    bool hasPassword = false;
    bool isEncoded = false;  // the other pages are encrypted
};

// Throws CannotOpenDatabase only when the page cannot be read.
SG_API DatabaseHeader readDatabaseHeader(const PageStore& store);

// Throws InvalidPassword for a file that asks for a password, CannotOpenDatabase for an encrypted
// one.
SG_API void requireReadable(const DatabaseHeader& header, const PageStore& store);

// Takes the mask off the start of page 0, or puts it on: the operation is its own reverse. `page`
// is the whole page.
SG_API void maskDatabasePage(std::span<uint8_t> page, const Format& format);

// The same for the identifier of an account as the catalog's tables hold it, from Jet 4 on. `page`
// is page 0 without its mask.
SG_API void maskAccount(std::span<uint8_t> account, ByteView page, const Format& format);

}  // namespace sg::jet
