#include "host/sql/run/tree.h"

#include <algorithm>

namespace sg::sql {
namespace {

bool has(const ExpressionPtr& expression) {
    return expression != nullptr && hasAggregate(*expression);
}

bool anyOf(const std::vector<ExpressionPtr>& all) {
    return std::any_of(all.begin(), all.end(), has);
}

struct Finder {
    bool operator()(const Aggregate&) const { return true; }
    bool operator()(const Unary& node) const { return has(node.operand); }
    bool operator()(const Binary& node) const { return has(node.left) || has(node.right); }
    bool operator()(const Like& node) const { return has(node.value) || has(node.pattern); }
    bool operator()(const Between& node) const {
        return has(node.value) || has(node.low) || has(node.high);
    }
    bool operator()(const In& node) const { return has(node.value) || anyOf(node.list); }
    bool operator()(const IsNull& node) const { return has(node.value); }
    bool operator()(const Call& node) const { return anyOf(node.arguments); }
    bool operator()(const Quantified& node) const { return has(node.value); }
    template <class Leaf>
    bool operator()(const Leaf&) const {
        return false;
    }
};

}  // namespace

bool hasAggregate(const Expression& expression) {
    return std::visit(Finder(), expression.node);
}

}  // namespace sg::sql
