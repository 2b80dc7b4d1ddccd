#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace sg::app {

// What is said of a command line that the parser has refused: what is wrong, what may have been
// meant, and how to see the usage of the command.
std::string usageError(const CLI::App& program, const CLI::Error& error);

}  // namespace sg::app
