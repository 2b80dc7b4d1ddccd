// Types and parameters of the parser.

#include <limits>

#include "host/sql/syntax_parser.h"
#include "host/sql/words.h"

namespace sg::sql::detail {

// "TEXT(50)", "NATIONAL CHARACTER VARYING (50)", "DECIMAL(10, 2)", "COUNTER(1, 1)"
DataType SyntaxParser::dataType(SyntaxError otherwise) {
    const size_t begin = start();
    if (at(L"NATIONAL") && (peek().isWord(L"CHAR") || peek().isWord(L"CHARACTER"))) {
        advance();
    }
    const TypeWord* word = token_.kind == TokenKind::Name ? typeOf(token_.text) : nullptr;
    if (word == nullptr) {
        fail(otherwise);
    }
    advance();
    DataType made;
    made.type = word->type;
    made.autoNumber = word->autoNumber;
    made.fixed = word->fixed;
    if (!word->second.empty() && take(word->second)) {
        made.fixed = false;
        if (made.type == jet::ColumnType::Boolean) {  // BIT VARYING
            made.type = jet::ColumnType::Binary;
        }
    }
    if (atSymbol(L"(")) {
        typeArguments(made, otherwise);
    }
    made.range = since(begin);
    return made;
}

void SyntaxParser::typeArguments(DataType& type, SyntaxError otherwise) {
    advance();
    const int32_t first = wholeNumber(otherwise);
    std::optional<int32_t> second;
    if (takeSymbol(L",")) {
        second = wholeNumber(otherwise);
    }
    expectSymbol(L")", otherwise);
    if (type.autoNumber) {
        type.seed = first;
        type.increment = second.value_or(1);
    } else if (type.type == jet::ColumnType::Numeric && first > 0 && second.value_or(0) >= 0) {
        type.precision = first;
        type.scale = second;
    } else if ((type.type == jet::ColumnType::Text || type.type == jet::ColumnType::Binary) &&
               first > 0 && !second) {
        type.length = first;
    } else {
        fail(otherwise);
    }
}

int32_t SyntaxParser::wholeNumber(SyntaxError otherwise) {
    const bool isNegative = takeSymbol(L"-");
    int32_t number = 0;
    if (const auto* few = std::get_if<int16_t>(&token_.value)) {
        number = *few;
    } else if (const auto* many = std::get_if<int32_t>(&token_.value)) {
        number = *many;
    } else {
        fail(otherwise);
    }
    if (number == std::numeric_limits<int32_t>::min()) {  // &H80000000
        fail(otherwise);
    }
    advance();
    return isNegative ? -number : number;
}

// "name type, name type"
std::vector<ParameterDeclaration> SyntaxParser::parameterDeclarations(SyntaxError otherwise) {
    std::vector<ParameterDeclaration> all;
    do {
        const size_t begin = start();
        ParameterDeclaration made{columnName(otherwise), {}, {}};
        made.type = dataType(otherwise);
        made.range = since(begin);
        all.push_back(std::move(made));
    } while (takeSymbol(L","));
    return all;
}

}  // namespace sg::sql::detail
