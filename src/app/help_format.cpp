#include "app/help_format.h"

#include <algorithm>
#include <sstream>

#include "app/process.h"

namespace sg::app {
namespace {

// The words of a text in lines of at most `width` characters, each line but the first behind
// `margin` blanks.
std::string wrapped(const std::string& text, size_t width, size_t margin) {
    std::istringstream words(text);
    std::string word, result;
    size_t used = 0;
    while (words >> word) {
        if (used > 0 && used + 1 + word.size() > width) {
            result += "\n" + std::string(margin, ' ');
            used = 0;
        }
        result += (used > 0 ? " " : "") + word;
        used += word.size() + (used > 0 ? 1 : 0);
    }
    return result;
}

}  // namespace

std::string HelpFormat::make_option(const CLI::Option* option, bool isPositional) const {
    constexpr size_t kNarrowest = 30;
    const size_t margin = get_column_width();
    std::string line = "  " + make_option_name(option, isPositional) + make_option_opts(option);
    if (line.size() + 2 > margin) {
        line += "\n" + std::string(margin, ' ');
    } else {
        line.resize(margin, ' ');
    }
    const auto columns = static_cast<size_t>(terminalColumns());
    const size_t width = std::max(columns, margin + kNarrowest) - margin;
    return line + wrapped(make_option_desc(option), width, margin) + "\n";
}

std::string HelpFormat::make_option_opts(const CLI::Option* option) const {
    // Behind a colon the parser adds what a check allows, which the kind of the value tells
    // already.
    const std::string kind = option->get_type_name();
    if (option->get_type_size() == 0 || kind.empty()) return {};
    return " " + kind.substr(0, kind.find(':'));
}

}  // namespace sg::app
