#include "host/sql/corpus/corpus_file.h"

#include <charconv>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "base/encoding.h"
#include "host/jet/values/value_convert.h"

namespace sg::sql::corpus {
namespace {

std::string trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t\r");
    if (begin == text.npos) return {};
    return std::string(text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1));
}

// What stands between commas, but for those in quotes.
Cells split(std::string_view line) {
    Cells cells(1);
    bool quoted = false;
    for (const char c : line) {
        if (c == '\'') quoted = !quoted;
        if (c == ',' && !quoted) {
            cells.emplace_back();
        } else {
            cells.back() += c;
        }
    }
    for (std::string& cell : cells)
        cell = trimmed(cell);
    return cells;
}

std::string unquoted(std::string_view text) {
    std::string plain;
    for (size_t i = 1; i + 1 < text.size(); ++i) {
        plain += text[i];
        if (text[i] == '\'') ++i;
    }
    return plain;
}

jet::Value valueOf(const std::string& text) {
    if (text == "Null") return {};
    if (text == "True" || text == "False") return text == "True";
    if (text.front() == '\'') return fromUtf8(unquoted(text));
    if (text.front() == '#') {
        jet::Date date;
        if (!jet::parseDate(fromUtf8(text.substr(1, text.size() - 2)), date)) {
            throw std::runtime_error("no date: " + text);
        }
        return date;
    }
    if (text.find('.') != text.npos) return std::stod(text);
    return static_cast<int32_t>(std::stol(text));
}

class Reader {
  public:
    explicit Reader(const std::filesystem::path& file) : file_(file), stream_(file) {
        if (!stream_) throw std::runtime_error("cannot read " + file.string());
    }

    std::vector<Entry> entries() {
        std::string line;
        while (std::getline(stream_, line)) {
            ++number_;
            try {
                take(line);
            } catch (const std::exception& error) {
                throw std::runtime_error(file_.string() + ":" + std::to_string(number_) + ": " +
                                         error.what());
            }
        }
        return std::move(entries_);
    }

  private:
    void take(const std::string& line) {
        if (line.empty() || line.front() == '#') {
            open_ = false;
        } else if (line.starts_with("> ")) {
            statement(line.substr(2));
        } else if (line.front() == ' ') {
            if (!open_ || !entries_.back().rows) throw std::runtime_error("a row of nothing");
            entries_.back().rows->rows.push_back(split(line));
        } else if (open_) {
            result(line);
        } else if (line.starts_with("with ")) {
            parameters(line.substr(5));
        } else {
            directive(line);
        }
    }

    void statement(const std::string& text) {
        if (!open_) {
            Entry entry;
            entry.line = number_;
            entry.parameters = std::exchange(parameters_, {});
            entries_.push_back(std::move(entry));
            open_ = true;
        } else {
            entries_.back().statement += L"\n";
        }
        entries_.back().statement += fromUtf8(text);
    }

    void result(const std::string& line) {
        Entry& entry = entries_.back();
        constexpr std::string_view rows = "rows: ";
        constexpr std::string_view inOrder = "in order: ";
        if (line.starts_with(rows)) {
            entry.rows = ExpectedRows{false, split(line.substr(rows.size())), {}};
        } else if (line.starts_with(inOrder)) {
            entry.rows = ExpectedRows{true, split(line.substr(inOrder.size())), {}};
        } else if (line.starts_with("error ")) {
            entry.error = line == "error any" ? anyError : std::stoi(line.substr(6));
        } else if (line.starts_with("changed ")) {
            entry.changed = std::stoll(line.substr(8));
        } else if (line == "done") {
            entry.isDone = true;
        } else {
            throw std::runtime_error("no result: " + line);
        }
    }

    void parameters(const std::string& line) {
        for (const std::string& cell : split(line)) {
            const size_t sign = cell.find('=');
            parameters_.push_back(
                {fromUtf8(trimmed(cell.substr(0, sign))), valueOf(trimmed(cell.substr(sign + 1)))});
        }
    }

    void directive(const std::string& line) {
        Entry entry;
        entry.line = number_;
        std::istringstream words(line);
        for (std::string word; words >> word;)
            entry.directive.push_back(word);
        entries_.push_back(std::move(entry));
    }

    const std::filesystem::path file_;
    std::ifstream stream_;
    size_t number_ = 0;
    bool open_ = false;  // a statement that takes further lines
    Parameters parameters_;
    std::vector<Entry> entries_;
};

// Writes a value as the files do.
struct Writer {
    std::string operator()(std::monostate) const { return "Null"; }
    std::string operator()(bool truth) const { return truth ? "True" : "False"; }
    std::string operator()(jet::Date date) const {
        const std::string text = toUtf8(jet::toText(date));
        return "#" + (text.substr(11) == "00:00:00" ? text.substr(0, 10) : text) + "#";
    }
    std::string operator()(const std::wstring& text) const {
        std::string quoted = "'";
        for (const char c : toUtf8(text)) {
            quoted += c;
            if (c == '\'') quoted += c;
        }
        return quoted + "'";
    }
    std::string operator()(const jet::Bytes& bytes) const {
        constexpr char digits[] = "0123456789ABCDEF";
        std::string text = "x";
        for (const uint8_t byte : bytes) {
            text += digits[byte >> 4];
            text += digits[byte & 15];
        }
        return text;
    }
    std::string operator()(const jet::Guid& guid) const { return toUtf8(jet::toText(guid)); }
    template <class Number>
    std::string operator()(const Number& number) const {
        return toUtf8(jet::toInvariantText(number));
    }
};

}  // namespace

std::vector<Entry> entriesOf(const std::filesystem::path& file) {
    return Reader(file).entries();
}

std::string written(const jet::Value& value) {
    return std::visit(Writer(), value);
}

std::string written(jet::ColumnType type) {
    switch (type) {
        case jet::ColumnType::Boolean:
            return "Boolean";
        case jet::ColumnType::Byte:
            return "Byte";
        case jet::ColumnType::Integer:
            return "Integer";
        case jet::ColumnType::Long:
            return "Long";
        case jet::ColumnType::Currency:
            return "Currency";
        case jet::ColumnType::Single:
            return "Single";
        case jet::ColumnType::Double:
            return "Double";
        case jet::ColumnType::Date:
            return "Date";
        case jet::ColumnType::Binary:
            return "Binary";
        case jet::ColumnType::Text:
            return "Text";
        case jet::ColumnType::Ole:
            return "Ole";
        case jet::ColumnType::Memo:
            return "Memo";
        case jet::ColumnType::Guid:
            return "Guid";
        case jet::ColumnType::Numeric:
            return "Decimal";
        default:
            return "type " + std::to_string(static_cast<int>(type));
    }
}

}  // namespace sg::sql::corpus
