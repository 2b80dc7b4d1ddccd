#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

#include "base/encoding.h"
#include "base/text.h"
#include "support/scramble.h"

// deployment_values VALUES SOURCE: writes the C++ source that defines support/deployment.h from a
// file of values. Runs in the build.
namespace {

struct Value {
    const char* name;      // in the file
    const char* constant;  // in the source
};

constexpr Value kValues[] = {
    {"smtp_host", "kSmtpHost"},           {"smtp_user", "kSmtpUser"},
    {"smtp_password", "kSmtpPassword"},   {"support_address", "kSupportAddress"},
    {"support_domain", "kSupportDomain"},
};

std::map<std::wstring, std::wstring> readValues(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + file);
    std::map<std::wstring, std::wstring> values;
    int number = 0;
    for (std::string bytes; std::getline(in, bytes);) {
        ++number;
        const std::wstring text = sg::fromUtf8(bytes);
        const std::wstring_view line = sg::trimmed(text);
        if (line.empty() || line.front() == L'#') continue;
        const size_t equals = line.find(L'=');
        if (equals == std::wstring_view::npos)
            throw std::runtime_error(file + ":" + std::to_string(number) + ": not NAME = VALUE");
        const std::wstring name(sg::trimmed(line.substr(0, equals)));
        values[name] = sg::trimmed(line.substr(equals + 1));
    }
    return values;
}

void writeConstant(std::ostream& out, const char* name, std::wstring_view value) {
    out << "constexpr char16_t " << name << "Units[] = {";
    for (const char16_t unit : sg::ScrambleText(value))
        out << static_cast<unsigned>(unit) << ", ";
    out << "0};\n"
        << "const std::u16string_view " << name << "(" << name << "Units, std::size(" << name
        << "Units) - 1);\n";
}

std::string source(const std::string& file) {
    const auto values = readValues(file);
    std::ostringstream out;
    out << "#include \"support/deployment.h\"\n\n#include <iterator>\n\n"
        << "namespace sg::deployment {\n";
    for (const Value& value : kValues) {
        const auto found = values.find(sg::fromUtf8(value.name));
        if (found == values.end() || found->second.empty())
            throw std::runtime_error(file + ": no value for " + value.name);
        writeConstant(out, value.constant, found->second);
    }
    out << "}  // namespace sg::deployment\n";
    return out.str();
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fputs("usage: deployment_values VALUES SOURCE\n", stderr);
        return 2;
    }
    try {
        const std::string text = source(arguments[1]);
        std::ofstream out(arguments[2], std::ios::binary);
        out << text;
        out.close();
        if (!out) throw std::runtime_error(std::string("cannot write ") + arguments[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "deployment_values: %s\n", error.what());
        return 1;
    }
    return 0;
}
