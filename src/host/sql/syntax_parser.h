#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "host/jet/expression/expression_lexer.h"
#include "host/sql/parser.h"
#include "host/sql/statements.h"
#include "host/sql/syntax_errors.h"

// The parser behind parser.h: recursive descent, each clause's methods in a source of its own.
namespace sg::sql::detail {

using jet::detail::Token;
using jet::detail::TokenKind;

using jet::detail::Infix;
using jet::detail::infixOf;
using enum jet::detail::Precedence;
class SyntaxParser {
  public:
    explicit SyntaxParser(std::wstring_view text);

    Statement wholeStatement();
    void script(std::vector<ScriptEntry>& into);
    ExpressionPtr wholeExpression();

  private:
    // Counts how deep the parser calls itself.
    struct Nesting {
        explicit Nesting(SyntaxParser& p);
        ~Nesting() { --parser.nesting_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;
        SyntaxParser& parser;
    };

    // ---- Tokens (parser_tokens.cpp)

    void advance();
    // The token `distance` behind the present one.
    const Token& peek(size_t distance = 1);
    Token cut();
    bool at(std::wstring_view word) const { return token_.isWord(word); }
    bool atSymbol(std::wstring_view symbol) const { return token_.isSymbol(symbol); }
    bool atEnd() const { return token_.kind == TokenKind::End; }
    bool take(std::wstring_view word);
    bool takeSymbol(std::wstring_view symbol);
    void expect(std::wstring_view word, SyntaxError otherwise);
    void expectSymbol(std::wstring_view symbol, SyntaxError otherwise);
    // Parentheses that clauses may stand in: so a ")" behind a clause is theirs.
    void open(SyntaxError otherwise);
    void close(SyntaxError otherwise);

    // From the place where the present token stood to the end of the last one.
    size_t start() const { return token_.offset; }
    Range since(size_t start) const;
    // As a part of its parent.
    uint16_t counted(int height);

    // Throws: this token cannot stand here.
    [[noreturn]] void fail(SyntaxError code) const;
    // Throws ExpressionSyntax with the expression that is being read.
    [[noreturn]] void failExpression(std::wstring what) const;
    // As far as a wrong one tells.
    std::wstring_view expressionFrom(size_t begin) const;

    // ---- Names (parser_tokens.cpp)

    bool atName() const;
    Name anyName(SyntaxError otherwise);  // also a reserved word
    Name name(SyntaxError otherwise);
    std::vector<Name> names(SyntaxError otherwise);  // in parentheses
    ColumnName columnName(SyntaxError otherwise);
    TableName tableName(SyntaxError otherwise);
    std::optional<Name> alias(SyntaxError otherwise);  // AS name
    std::optional<ExternalDatabase> externalDatabase(SyntaxError otherwise);

    // ---- Expressions (parser_expressions.cpp, parser_operands.cpp)

    // An expression that fills its place in a clause: throws `missing` when there is none, and
    // ExpressionSyntax when something follows that can follow none.
    ExpressionPtr expression(SyntaxError missing);
    std::vector<ExpressionPtr> expressions(SyntaxError missing);  // with "," between them
    bool mayBeginExpression();
    bool mayBeginOperand();
    void checkBehindExpression();

    ExpressionPtr level(int least);
    ExpressionPtr prefix();
    ExpressionPtr comparison(ExpressionPtr left);
    ExpressionPtr likeBetweenOrIn(ExpressionPtr left);
    ExpressionPtr between(ExpressionPtr left, bool negated);
    ExpressionPtr in(ExpressionPtr left, bool negated);
    ExpressionPtr isNull(ExpressionPtr left);
    ExpressionPtr compared(const Infix& op, ExpressionPtr left);
    bool beginsComparison();
    bool isComparisonWord(const Token& token, size_t distance);

    ExpressionPtr operand();
    ExpressionPtr literal();
    ExpressionPtr parenthesized();
    void closeOperand();
    ExpressionPtr positionalParameter();
    ExpressionPtr exists();
    ExpressionPtr nameOrCall();
    ExpressionPtr qualified();
    ExpressionPtr star(size_t start, std::vector<Name> qualifiers);
    ExpressionPtr call();
    ExpressionPtr aggregate(AggregateFunction function, size_t start);
    QueryPtr subquery();  // in parentheses

    template <class Node>
    ExpressionPtr made(size_t start, Node node, int height);
    ExpressionPtr madeBinary(BinaryOperator op, ExpressionPtr left, ExpressionPtr right);

    // ---- Queries (parser_select.cpp)

    static bool isQueryWord(const Token& token) {
        return token.isWord(L"SELECT") || token.isWord(L"TABLE");
    }
    bool atQuery() const;
    // What `read` reads, with its height.
    template <class Read>
    QueryPtr measured(Read read);
    QueryPtr query();
    QueryPtr queryTerm(bool& enclosed);
    QueryPtr unionBehind(QueryPtr first);
    QueryPtr unite(QueryPtr first, bool enclosed);
    void orderUnion(Query& united, bool enclosed);
    QueryPtr selectQuery();
    QueryPtr crosstab();
    Select select();
    void selectOptions(Select& select);
    Top top();
    SelectItem selectItem(SyntaxError otherwise);
    void selectClauses(Select& select);
    std::vector<OrderItem> orderBy();
    ExpressionPtr where();

    // ---- Sources (parser_sources.cpp)

    From from(SyntaxError otherwise);
    SourcePtr source(SyntaxError otherwise);
    SourcePtr join(SourcePtr left, SyntaxError otherwise);
    bool atJoin();
    SourcePtr operandOfJoin(SyntaxError otherwise);
    SourcePtr enclosedSource(SyntaxError otherwise);
    SourcePtr bracketedQuery(SyntaxError otherwise);
    QueryPtr queryInBrackets();
    SourcePtr derived(size_t start, QueryPtr query);
    std::optional<Name> sourceAlias(SyntaxError otherwise);

    // ---- Actions (parser_actions.cpp)

    Insert insert();
    Update update();
    Delete remove();
    Execute execute();

    // ---- Definitions (parser_definitions.cpp, parser_types.cpp)

    DataType dataType(SyntaxError otherwise);
    void typeArguments(DataType& type, SyntaxError otherwise);
    int32_t wholeNumber(SyntaxError otherwise);
    std::vector<ParameterDeclaration> parameterDeclarations(SyntaxError otherwise);

    decltype(Statement::body) create();
    CreateTable createTable();
    CreateIndex createIndex(bool unique);
    CreateView createView();
    CreateProcedure createProcedure();
    AlterTable alterTable();
    void add(AlterTable& alter);
    void alterColumn(AlterTable& alter);
    Drop drop();

    ColumnDefinition columnDefinition();
    bool columnOption(ColumnDefinition& column);
    bool atTableConstraint();
    Constraint constraint(bool ofTable);
    ConstraintKind constraintKind(Constraint& constraint, bool ofTable);
    References references();

    // ---- Statements (parser.cpp)

    Statement statement();
    decltype(Statement::body) body();
    void endOfStatement();

    std::wstring_view text_;
    jet::detail::ExpressionLexer lexer_;
    Token token_;
    std::vector<Token> ahead_;    // behind token_
    bool behindOperand_ = false;  // the lexer's place
    bool behindPoint_ = false;
    size_t lastEnd_ = 0;                // of the token before the present one
    size_t beforeOrder_ = 0;            // where what the last ORDER BY orders ends
    SyntaxError clause_ = NoStatement;  // what a token that nothing takes is blamed on
    std::optional<size_t> expressionStart_;
    size_t itemStart_ = SIZE_MAX;  // where a Star may stand
    int openParentheses_ = 0;
    int nesting_ = 0;
    int queries_ = 0;      // that enclose this place
    bool inJoin_ = false;  // its condition, which an IN 'file' may follow
    bool inProcedure_ = false;
    int highest_ = 0;  // node since the query began
    uint32_t positionalParameters_ = 0;
};

}  // namespace sg::sql::detail
