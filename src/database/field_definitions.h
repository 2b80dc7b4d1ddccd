#pragma once

#include <optional>
#include <span>
#include <string>

#include "platform/dao/infos.h"
#include "platform/variant/safe_array.h"

namespace sg {

// A field to be made, and its index.
struct FieldDefinition {
    CDaoFieldInfo field;
    std::optional<CDaoIndexInfo> index;  // on this one field, and of its name
};

// Reads the field definitions that LISP passes, one or a list of them:
//
//     ("name" "TYPE" [size] required default [option [unique [primary]]])
//
// The array is as listToVariantArray gives it.
class FieldDefinitionReader {
  public:
    explicit FieldDefinitionReader(const COleSafeArray& array) : items_(array.Variants()) {}

    // The next definition; false behind the last one and where the list has a wrong shape.
    bool next(FieldDefinition& definition);
    // False when reading ended at a wrong shape.
    bool isWellFormed() const { return wellFormed_; }

  private:
    const COleVariant* take();
    const COleVariant* takeText();

    bool findBegin();
    bool readDefinition(FieldDefinition& definition);
    bool readName(CDaoFieldInfo& field);
    bool readType(CDaoFieldInfo& field);
    bool readRequired(CDaoFieldInfo& field);
    bool readDefault(CDaoFieldInfo& field);
    bool readOption(FieldDefinition& definition);
    bool readIndexFlags(CDaoIndexInfo& index);

    std::span<const COleVariant> items_;
    size_t at_ = 0;
    bool wellFormed_ = true;
};

}  // namespace sg
