#include "host/sql/run/like.h"

#include <memory>
#include <string>

#include "base/encoding.h"
#include "host/jet/expression/expression.h"
#include "host/sql/run/functions.h"
#include "host/sql/run/sqlite_values.h"

namespace sg::sql {
namespace {

// A pattern that stays the same is kept by SQLite, with the memory for the texts.
struct Pattern {
    std::wstring pattern;
    std::wstring text;
};

void widen(std::string_view bytes, std::wstring& text) {
    text.assign(bytes.begin(), bytes.end());
    for (const char c : bytes) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            text = fromUtf8(bytes);
            return;
        }
    }
}

Pattern* patternOf(sqlite3_context* context, sqlite3_value* given) {
    auto* kept = static_cast<Pattern*>(sqlite3_get_auxdata(context, 1));
    if (kept == nullptr) {
        auto made = std::make_unique<Pattern>();
        widen(textOf(given), made->pattern);
        sqlite3_set_auxdata(context, 1, made.release(),
                            [](void* pattern) { delete static_cast<Pattern*>(pattern); });
        kept = static_cast<Pattern*>(sqlite3_get_auxdata(context, 1));
    }
    return kept;
}

}  // namespace

std::wstring withDialectWildcards(std::wstring_view pattern) {
    std::wstring made;
    bool inList = false;
    for (const wchar_t c : pattern) {
        const bool isOther = c == L'*' || c == L'?' || c == L'#';
        inList = c == L'[' || (inList && c != L']');
        if (inList || !(isOther || c == L'%' || c == L'_')) {
            made += c;
        } else if (isOther) {
            made.append({L'[', c, L']'});
        } else {
            made += c == L'%' ? L'*' : L'?';
        }
    }
    return made;
}

void callLike(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL ||
        sqlite3_value_type(arguments[1]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    try {
        Pattern* pattern = patternOf(context, arguments[1]);
        if (pattern == nullptr) {
            sqlite3_result_error_nomem(context);
            return;
        }
        widen(textOf(arguments[0]), pattern->text);
        sqlite3_result_int(context, jet::isLike(pattern->text, pattern->pattern));
    } catch (...) {
        keepFailure(*static_cast<Engine::Running*>(sqlite3_user_data(context)));
        sqlite3_result_error(context, "failed", -1);
    }
}

}  // namespace sg::sql
