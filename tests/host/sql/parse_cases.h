#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/encoding.h"
#include "host/jet/format/error.h"
#include "host/sql/parser.h"
#include "host/sql/to_text.h"

namespace sg::sql {

// The number and text of an engine error.
inline std::string shown(const jet::Error& error) {
    return "error " + std::to_string(error.code()) + " " + toUtf8(error.text());
}

// The expression with all its parentheses, or the error.
inline std::string parsedExpression(std::wstring_view text) {
    try {
        return toUtf8(toText(*parseExpression(text), Parentheses::All));
    } catch (const jet::Error& error) {
        return shown(error);
    }
}

inline std::string parsed(std::wstring_view text, Parentheses parentheses = Parentheses::Needed) {
    try {
        return toUtf8(toText(parseStatement(text), parentheses));
    } catch (const jet::Error& error) {
        return shown(error);
    }
}

struct ParseCase {
    const wchar_t* text;
    const char* printed;  // empty: the text itself
};

// Each is printed as told, and what is printed means the same.
inline void checkStatements(const std::vector<ParseCase>& cases) {
    for (const ParseCase& c : cases) {
        const std::string printed = parsed(c.text);
        const std::string wanted = *c.printed ? c.printed : toUtf8(c.text);
        EXPECT_EQ(printed, wanted) << toUtf8(c.text);
        EXPECT_EQ(parsed(fromUtf8(printed)), printed);
        const std::string all = parsed(c.text, Parentheses::All);
        EXPECT_EQ(parsed(fromUtf8(printed), Parentheses::All), all);
        EXPECT_EQ(parsed(fromUtf8(all)), printed);
    }
}

inline std::wstring repeated(std::wstring_view text, size_t times) {
    std::wstring all;
    for (size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

}  // namespace sg::sql
