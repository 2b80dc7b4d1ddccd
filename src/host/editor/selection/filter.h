#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/export.h"
#include "platform/db/entity.h"
#include "platform/lisp/resbuf.h"

namespace sg {

// A condition on entities, as ssget's filter lists have it: groups that an entity's own must equal,
// all of them unless they stand between "<AND" "AND>", "<OR" "OR>", "<XOR" "XOR>" (two of them) or
// "<NOT" "NOT>" (one), in groups of the code -4. A text is a pattern of wildcards; names are found
// ignoring case. A group -4 ahead of a number or point compares: "=", "!=", "/=", "<>", "<", "<=",
// ">", ">=", "*" (anything), "&" (bits in common), "&=" (all of its bits); for the coordinates of a
// point, a list such as ">,>,*". Behind a group -3, applications (1001) that the entity must have
// extended data of.
class SG_API SelectionFilter {
  public:
    // nullopt for a list that is malformed; a null list makes a filter that takes everything.
    static std::optional<SelectionFilter> parse(const resbuf* groups);

    ~SelectionFilter();
    SelectionFilter(SelectionFilter&&) noexcept;
    SelectionFilter& operator=(SelectionFilter&&) noexcept;

    bool isEmpty() const;
    // The entity need not be open.
    bool takes(const AcDbEntity& entity);

    struct Condition;  // of the implementation

  private:
    SelectionFilter();

    std::vector<Condition> conditions_;
};

}  // namespace sg
