#include "app/usage_error.h"

#include <fmt/format.h>

#include <vector>

#include "base/encoding.h"
#include "base/file_kind.h"
#include "base/nearest_names.h"

namespace sg::app {
namespace {

constexpr size_t kMostSuggestions = 3;

// The innermost command of the line, and its full name.
struct Place {
    const CLI::App* command;
    std::string name;
};

Place placeOf(const CLI::App& program) {
    Place place{&program, program.get_name()};
    while (!place.command->get_subcommands().empty()) {
        place.command = place.command->get_subcommands().front();
        place.name += " " + place.command->get_name();
    }
    return place;
}

std::string suggested(const std::vector<std::wstring>& names, const std::string& word) {
    return toUtf8(suggestion(nearestNames(names, fromUtf8(word), kMostSuggestions)));
}

std::vector<std::wstring> optionNames(const CLI::App& command) {
    std::vector<std::wstring> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back(fromUtf8("--" + name));
    }
    return names;
}

// The command that a file without one was meant for; empty when its name does not tell.
std::string commandFor(const std::string& file) {
    switch (fileKind(" ", fromUtf8(file))) {
        case FileKind::Program:
            return "swiftgate run " + file;
        case FileKind::Drawing:
            return "swiftgate info " + file;
        case FileKind::Database:
            return "swiftgate db tables " + file;
        default:
            return {};
    }
}

std::string unknownCommand(const CLI::App& command, const std::string& word) {
    std::vector<std::wstring> names;
    for (const CLI::App* one : command.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(fromUtf8(one->get_name()));
    }
    std::string help = suggested(names, word);
    const std::string meant = commandFor(word);
    if (help.empty() && !meant.empty()) help = "; did you mean: " + meant;
    return fmt::format("no command \"{}\"{}", word, help);
}

// Words that the command has no place for. A misspelt option tells more than what stands behind it.
std::string unexpected(const Place& place, const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        if (word.size() < 2 || word[0] != '-') continue;
        const std::string name = word.substr(0, word.find('='));
        return fmt::format("{} has no option {}{}", place.name, name,
                           suggested(optionNames(*place.command), name));
    }
    const bool hasCommands =
        !place.command->get_subcommands([](const CLI::App*) { return true; }).empty();
    if (hasCommands) return unknownCommand(*place.command, words.front());
    return fmt::format("{} has no place for \"{}\"", place.name, fmt::join(words, "\", \""));
}

// "--output is required", and how it is written where it is an option with a value.
std::string required(const CLI::App& command, const std::string& text) {
    const std::string name = text.substr(0, text.find(' '));
    const CLI::Option* const option = command.get_option_no_throw(name);
    if (option == nullptr || option->get_type_name().empty()) return text;
    return fmt::format("{}: {} {}", text, name, option->get_type_name());
}

bool isA(const CLI::Error& error, CLI::ExitCodes code) {
    return error.get_exit_code() == static_cast<int>(code);
}

std::string explained(const CLI::App& program, const Place& place, const CLI::Error& error) {
    std::string text = error.what();
    const std::vector<std::string> words = program.remaining(true);
    if (isA(error, CLI::ExitCodes::RequiredError)) text = required(*place.command, text);
    if (isA(error, CLI::ExitCodes::ExtrasError) && !words.empty()) return unexpected(place, words);
    if (isA(error, CLI::ExitCodes::RequiredError) && !words.empty()) {
        return text + "; " + unexpected(place, words);
    }
    constexpr std::string_view kNoValue = " missing";
    if (isA(error, CLI::ExitCodes::ArgumentMismatch) && text.ends_with(kNoValue)) {
        return text.substr(0, text.find(':')) + " needs a value behind it";
    }
    return text;
}

}  // namespace

std::string usageError(const CLI::App& program, const CLI::Error& error) {
    const Place place = placeOf(program);
    return fmt::format("swiftgate: {}\nRun {} --help for how to call it.\n",
                       explained(program, place, error), place.name);
}

}  // namespace sg::app
