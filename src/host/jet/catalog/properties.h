#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/jet/format/byte_view.h"
#include "host/jet/values/value.h"

// The properties that programs keep with an object and with its columns. See
// docs/formats/jet.md, "Properties".
namespace sg::jet {

struct Property {
    std::wstring name;
    ColumnType type = ColumnType::Text;
    bool needsDesignRights = false;  // only who may change the object's design may set it
    Value value;
};

struct PropertyBlock {
    std::wstring owner;  // a column's name; empty for the object itself
    uint16_t kind = 0;   // 0 the object, 1 a column; others are kept as they are
    std::vector<Property> properties;
};

class SG_API Properties {
  public:
    // The blocks that `bytes`, an LvProp value, holds; none for no bytes. Throws Damaged when it
    // is no property value or contradicts itself.
    static Properties parse(ByteView bytes, const Format& format);

    // The bytes that parse() reads, for Jet 4 and ACE; none when there is no property.
    Bytes serialize(const Format& format) const;

    const std::vector<PropertyBlock>& blocks() const { return blocks_; }

    // The property `name` of `owner`, both ignoring case; nullptr when there is none. The owner ""
    // is the object itself.
    const Property* find(std::wstring_view owner, std::wstring_view name) const;
    // The same as text, "" when there is none or it is no text.
    std::wstring text(std::wstring_view owner, std::wstring_view name) const;
    // The same as a truth value, false when there is none or it is neither a Boolean nor a number.
    bool flag(std::wstring_view owner, std::wstring_view name) const;

    // Sets the property `property.name` of `owner`; a Null value takes it away.
    void set(std::wstring_view owner, const Property& property);
    // Takes everything of a column away, or gives it to the column's new name.
    void removeOwner(std::wstring_view owner);
    void renameOwner(std::wstring_view owner, std::wstring_view newName);

  private:
    PropertyBlock& blockFor(std::wstring_view owner);

    std::vector<PropertyBlock> blocks_;
};

}  // namespace sg::jet
