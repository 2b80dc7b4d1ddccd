#include "host/jet/expression/expression_parser.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "base/text.h"
#include "host/jet/expression/expression_functions.h"
#include "host/jet/expression/expression_lexer.h"
#include "host/jet/expression/operators.h"
#include "host/jet/expression/words.h"
#include "host/jet/format/error.h"

namespace sg::jet::detail {
namespace {

constexpr size_t maxLength = 16384;
constexpr size_t maxNesting = 200;  // of calls of the parser
constexpr uint16_t maxHeight = 400;
constexpr size_t maxArguments = 255;

// Words that stand neither for a column nor for a function.
constexpr std::wstring_view operatorWords[] = {L"Mod", L"Like", L"And", L"Or", L"Xor",    L"Eqv",
                                               L"Imp", L"Not",  L"Is",  L"In", L"Between"};

bool isOperatorWord(const Token& token) {
    return std::any_of(std::begin(operatorWords), std::end(operatorWords),
                       [&](std::wstring_view word) { return token.isWord(word); });
}

bool isLogical(const ExpressionNode& node) {
    return node.kind == ExpressionNode::Kind::Binary && node.op >= Operator::And;
}

// Whether the node's value is a condition by itself.
bool isCondition(const ExpressionNode& node) {
    using Kind = ExpressionNode::Kind;
    return node.kind == Kind::Between || node.kind == Kind::In || node.kind == Kind::IsNull ||
           (node.kind == Kind::Binary && node.op >= Operator::Equal);
}

class Parser {
  public:
    Parser(std::wstring_view text, bool isRule) : text_(text), lexer_(text), isRule_(isRule) {
        if (text.size() > maxLength) {
            throwSyntax(L"Expression too long", text.substr(0, 100));
        }
        advance(false);
    }

    NodePtr parse();

  private:
    // Counts how deep the parser calls itself.
    struct Nesting {
        explicit Nesting(Parser& p) : parser(p) {
            if (++parser.nesting_ > maxNesting) {
                parser.fail(L"Expression too complex");
            }
        }
        ~Nesting() { --parser.nesting_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;
        Parser& parser;
    };

    NodePtr level(int least);
    NodePtr prefix(int least);
    NodePtr primary();
    NodePtr nameOrCall();
    NodePtr call(const std::wstring& name);
    NodePtr qualified(std::wstring name);
    NodePtr between(NodePtr left);
    NodePtr in(NodePtr left);
    NodePtr is(NodePtr left);
    NodePtr comparison(NodePtr left);
    NodePtr bareValuesCompared(NodePtr node);

    bool beginsComparison();
    bool isComparisonWord(const Token& token) const;
    NodePtr node(ExpressionNode::Kind kind, std::vector<NodePtr> children = {});
    NodePtr binary(Operator op, NodePtr left, NodePtr right);
    NodePtr unary(ExpressionNode::Kind kind, NodePtr operand);
    NodePtr negated(NodePtr operand, bool really);
    NodePtr column();

    void advance(bool behindOperand);
    const Token& peek();
    bool takeWord(std::wstring_view word, bool behindOperand);
    void expectSymbol(std::wstring_view symbol, const wchar_t* otherwise, bool behindOperand);
    [[noreturn]] void fail(const wchar_t* what) const { throwSyntax(what, text_); }

    std::wstring_view text_;
    ExpressionLexer lexer_;
    Token token_;
    std::optional<Token> ahead_;  // behind token_
    const bool isRule_;
    bool namesColumns_ = false;
    int inCall_ = 0;
    size_t nesting_ = 0;
};

// Goes on to the next token; `behindOperand` tells whether the present one ends an operand.
void Parser::advance(bool behindOperand) {
    if (ahead_) {
        token_ = std::move(*ahead_);
        ahead_.reset();
    } else {
        token_ = lexer_.next(behindOperand);
    }
}

// The token behind the present one, which is the word Not.
const Token& Parser::peek() {
    if (!ahead_) {
        ahead_ = lexer_.next(false);
    }
    return *ahead_;
}

bool Parser::takeWord(std::wstring_view word, bool behindOperand) {
    if (!token_.isWord(word)) {
        return false;
    }
    advance(behindOperand);
    return true;
}

void Parser::expectSymbol(std::wstring_view symbol, const wchar_t* otherwise, bool behindOperand) {
    if (!token_.isSymbol(symbol)) {
        fail(otherwise);
    }
    advance(behindOperand);
}

NodePtr Parser::node(ExpressionNode::Kind kind, std::vector<NodePtr> children) {
    auto made = std::make_unique<ExpressionNode>();
    made->kind = kind;
    for (const NodePtr& child : children) {
        made->height = std::max<uint16_t>(made->height, child->height + 1);
    }
    made->children = std::move(children);
    if (made->height > maxHeight) {
        fail(L"Expression too complex");
    }
    return made;
}

NodePtr Parser::binary(Operator op, NodePtr left, NodePtr right) {
    std::vector<NodePtr> operands;
    operands.push_back(std::move(left));
    operands.push_back(std::move(right));
    NodePtr made = node(ExpressionNode::Kind::Binary, std::move(operands));
    made->op = op;
    return made;
}

NodePtr Parser::unary(ExpressionNode::Kind kind, NodePtr operand) {
    std::vector<NodePtr> operands;
    operands.push_back(std::move(operand));
    return node(kind, std::move(operands));
}

NodePtr Parser::negated(NodePtr operand, bool really) {
    return really ? unary(ExpressionNode::Kind::Not, std::move(operand)) : std::move(operand);
}

// The column whose rule this is.
NodePtr Parser::column() {
    return node(ExpressionNode::Kind::Name);
}

NodePtr Parser::parse() {
    if (!isRule_ && token_.isSymbol(L"=")) {
        advance(false);
    }
    if (token_.kind == TokenKind::End) {
        fail(L"Syntax error");
    }
    NodePtr root = level(ImpLevel);
    if (token_.isSymbol(L")")) {
        fail(L"Extra )");
    }
    if (token_.kind != TokenKind::End) {
        fail(L"Syntax error (missing operator)");
    }
    return isRule_ && !namesColumns_ ? bareValuesCompared(std::move(root)) : std::move(root);
}

bool Parser::isComparisonWord(const Token& token) const {
    return token.isWord(L"Like") || token.isWord(L"Between") || token.isWord(L"In");
}

// Whether the present token is that of a comparison, behind its left side.
bool Parser::beginsComparison() {
    const Infix* op = infixOf(token_);
    return (op != nullptr && op->level == ComparisonLevel) || isComparisonWord(token_) ||
           token_.isWord(L"Is") || (token_.isWord(L"Not") && isComparisonWord(peek()));
}

// Operators that bind at least as tightly as `least`.
NodePtr Parser::level(int least) {
    const Nesting nesting(*this);
    NodePtr left = prefix(least);
    while (true) {
        if (least <= ComparisonLevel && beginsComparison()) {
            left = comparison(std::move(left));
            continue;
        }
        const Infix* op = infixOf(token_);
        if (op == nullptr || op->level < least) {
            return left;
        }
        advance(false);
        left = binary(op->op, std::move(left), level(op->level + 1));
    }
}

NodePtr Parser::prefix(int least) {
    const bool maySkipLeft = isRule_ && inCall_ == 0 && least <= ComparisonLevel;
    if (maySkipLeft && beginsComparison()) {
        return column();
    }
    if (takeWord(L"Not", false)) {
        return negated(level(NotLevel), true);
    }
    if (token_.isSymbol(L"+") || token_.isSymbol(L"-")) {
        const bool minus = token_.text == L"-";
        advance(false);
        NodePtr operand = level(SignLevel);
        return minus ? unary(ExpressionNode::Kind::Negate, std::move(operand)) : std::move(operand);
    }
    return primary();
}

// One comparison behind its left side.
NodePtr Parser::comparison(NodePtr left) {
    if (takeWord(L"Is", false)) {
        return is(std::move(left));
    }
    const bool isNegated = takeWord(L"Not", false);
    if (takeWord(L"Between", false)) {
        return negated(between(std::move(left)), isNegated);
    }
    if (takeWord(L"In", false)) {
        return negated(in(std::move(left)), isNegated);
    }
    const Operator op = infixOf(token_)->op;
    advance(false);
    return negated(binary(op, std::move(left), level(ConcatenateLevel)), isNegated);
}

NodePtr Parser::is(NodePtr left) {
    const bool isNegated = takeWord(L"Not", false);
    if (!takeWord(L"Null", true)) {
        fail(L"Syntax error");
    }
    return negated(unary(ExpressionNode::Kind::IsNull, std::move(left)), isNegated);
}

NodePtr Parser::between(NodePtr left) {
    std::vector<NodePtr> operands;
    operands.push_back(std::move(left));
    operands.push_back(level(ConcatenateLevel));
    if (!takeWord(L"And", false)) {
        fail(L"Between operator without And");
    }
    operands.push_back(level(ConcatenateLevel));
    return node(ExpressionNode::Kind::Between, std::move(operands));
}

NodePtr Parser::in(NodePtr left) {
    std::vector<NodePtr> operands;
    operands.push_back(std::move(left));
    expectSymbol(L"(", L"In operator without ()", false);
    ++inCall_;
    operands.push_back(level(ImpLevel));
    while (token_.isSymbol(L",")) {
        advance(false);
        operands.push_back(level(ImpLevel));
    }
    --inCall_;
    expectSymbol(L")", L"Missing ), ], or Item", true);
    return node(ExpressionNode::Kind::In, std::move(operands));
}

NodePtr Parser::primary() {
    if (token_.kind == TokenKind::Literal) {
        NodePtr made = node(ExpressionNode::Kind::Literal);
        made->literal = std::move(token_.value);
        advance(true);
        return made;
    }
    if (token_.isSymbol(L"(")) {
        advance(false);
        NodePtr made = level(ImpLevel);
        expectSymbol(L")", L"Missing ), ], or Item", true);
        return made;
    }
    if (token_.kind == TokenKind::Bracketed) {
        std::wstring name = std::move(token_.text);
        advance(true);
        return qualified(std::move(name));
    }
    if (token_.kind == TokenKind::Name && !isOperatorWord(token_)) {
        return nameOrCall();
    }
    fail(L"Syntax error (missing operator)");
}

NodePtr Parser::nameOrCall() {
    if (std::optional<Value> constant = constantOf(token_.text)) {
        NodePtr made = node(ExpressionNode::Kind::Literal);
        made->literal = std::move(*constant);
        advance(true);
        return made;
    }
    std::wstring name = std::move(token_.text);
    advance(true);
    return token_.isSymbol(L"(") ? call(name) : qualified(std::move(name));
}

// A name and what qualifies it.
NodePtr Parser::qualified(std::wstring name) {
    while (token_.isSymbol(L".") || token_.isSymbol(L"!")) {
        advance(false);
        if (token_.kind != TokenKind::Bracketed && token_.kind != TokenKind::Name) {
            fail(L"Invalid use of '.', '!', or '()'.");
        }
        name += L'.' + token_.text;
        advance(true);
    }
    if (token_.isSymbol(L"(")) {
        fail(L"Invalid use of '.', '!', or '()'.");
    }
    namesColumns_ = true;
    NodePtr made = node(ExpressionNode::Kind::Name);
    made->text = std::move(name);
    return made;
}

NodePtr Parser::call(const std::wstring& name) {
    const Function* function = findFunction(name);
    if (function == nullptr) {
        throw Error(UndefinedFunction, {name});
    }
    advance(false);
    std::vector<NodePtr> arguments;
    ++inCall_;
    if (!token_.isSymbol(L")")) {
        arguments.push_back(level(ImpLevel));
        while (token_.isSymbol(L",")) {
            advance(false);
            arguments.push_back(level(ImpLevel));
        }
    }
    --inCall_;
    expectSymbol(L")", L"Missing ), ], or Item", true);
    if (arguments.size() < function->least ||
        arguments.size() > std::min(function->most, maxArguments)) {
        fail(L"Wrong number of arguments used with function");
    }
    NodePtr made = node(ExpressionNode::Kind::Call, std::move(arguments));
    made->function = function;
    return made;
}

// A rule's values that are no conditions must be equal to the column's, or Null as it.
NodePtr Parser::bareValuesCompared(NodePtr given) {
    if (isLogical(*given) || given->kind == ExpressionNode::Kind::Not) {
        for (NodePtr& child : given->children) {
            child = bareValuesCompared(std::move(child));
            given->height = std::max<uint16_t>(given->height, child->height + 1);
        }
        return given;
    }
    if (isCondition(*given)) {
        return given;
    }
    if (given->kind == ExpressionNode::Kind::Literal && isNull(given->literal)) {
        return unary(ExpressionNode::Kind::IsNull, column());
    }
    return binary(Operator::Equal, column(), std::move(given));
}

}  // namespace

const Infix* infixOf(const Token& token) {
    if (token.kind != TokenKind::Symbol && token.kind != TokenKind::Name) {
        return nullptr;
    }
    const auto* found = std::find_if(std::begin(infixes), std::end(infixes), [&](const Infix& op) {
        return equalIgnoringCase(op.text, token.text);
    });
    return found == std::end(infixes) ? nullptr : found;
}

NodePtr parseExpression(std::wstring_view text) {
    return Parser(text, false).parse();
}

NodePtr parseRuleExpression(std::wstring_view text) {
    return Parser(text, true).parse();
}

}  // namespace sg::jet::detail
