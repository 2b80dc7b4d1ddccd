#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace sg::app {

// The form of --help: an option with the kind of its value, and what it does beside it, in lines as
// wide as the terminal.
class HelpFormat final : public CLI::Formatter {
  public:
    std::string make_option(const CLI::Option* option, bool isPositional) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
};

}  // namespace sg::app
