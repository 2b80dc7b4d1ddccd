"""Writes what an installation has besides the program: the manual page, completions, the changes.

Usage: paperwork.py SWIFTGATE FOLDER

The commands and options in them are those that SWIFTGATE tells with --help.
"""

import gzip
import os
import re
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))


class Command:
    """One command as its --help tells it: options and arguments are pairs of a heading, such as
    "-o,--output OUT", and what it does."""

    def __init__(self, program, words):
        self.words = words
        self.options, self.arguments, self.commands = [], [], []
        text = subprocess.run([program, *words, "--help"], check=True, capture_output=True,
                              text=True).stdout
        self.description, _, text = text.partition("\nUsage: ")
        self.usage, _, text = text.partition("\n")
        self.footer = self._read(text)

    def _read(self, text):
        groups = {"Options:": self.options, "Positionals:": self.arguments,
                  "Subcommands:": self.commands}
        group, footer = None, []
        for line in text.splitlines():
            if line in groups:
                group = groups[line]
            elif line.startswith(" " * 20):
                group[-1] = (group[-1][0], f"{group[-1][1]} {line.strip()}".strip())
            elif line.startswith("  "):
                heading, _, told = line.strip().partition("  ")
                group.append((heading, told.strip()))
            elif line:
                footer.append(line)
        self.options[:] = [one for one in self.options if "--help" not in one[0]]
        return " ".join(footer)


def all_commands(program, words=()):
    command = Command(program, list(words))
    if words and not command.commands:
        yield command
    for name, _ in command.commands:
        yield from all_commands(program, [*words, name])


def roff(text):
    """Text as a manual page has it; a line must not begin as a request does."""
    return re.sub(r"(?m)^([.'])", r"\\&\1", text.replace("\\", "\\e").replace("-", "\\-"))


def manual_page(commands):
    lines = []
    for command in commands:
        name, _, values = command.usage.partition(" [OPTIONS]")
        lines += [".SS", roff(name + (" [options]" if command.options else "") + values),
                  roff(command.description + ".")]
        for heading, told in command.arguments + command.options:
            bold, _, value = heading.partition(" ")
            lines += [".TP", f"\\fB{roff(bold.replace(',', ', '))}\\fR"
                      + (f" \\fI{roff(value)}\\fR" if value else ""), roff(told + ".")]
        if command.footer:
            lines += [".PP", roff(command.footer)]
    return "\n".join(lines)


def flags(heading):
    """The spellings of an option, and the kind of its value or an empty text."""
    names, _, value = heading.partition(" ")
    return names.split(","), value


def case_lines(commands):
    """For a shell: each command with its options, and those with a value with the kind of it."""
    lines = []
    for command in commands:
        told = [flags(heading) for heading, _ in command.options]
        options = " ".join(name for names, _ in told for name in names)
        kinds = " ".join(f"{name}={value}" for names, value in told if value for name in names)
        arguments = " ".join(heading for heading, _ in command.arguments)
        lines.append(f'        "{" ".join(command.words)}")\n'
                     f'            options="{options}"\n'
                     f'            kinds="{kinds}"\n'
                     f'            arguments="{arguments}" ;;')
    return "\n".join(lines)


def zsh_lines(commands):
    lines = []
    for command in commands:
        lines.append(f'        "{" ".join(command.words)}")')
        lines.append("            options=(")
        for heading, told in command.options:
            names, value = flags(heading)
            told = re.sub(r"([\[\]:'])", r"\\\1", told).replace("\\'", "'\\''")
            for name in names:
                action = f":{value.replace(':', '')}: _swiftgate_value '{value}'" if value else ""
                lines.append(f"                '*{name}[{told}]{action.replace(chr(39), chr(34))}'")
        lines.append("            )")
        arguments = " ".join(heading for heading, _ in command.arguments)
        lines.append(f'            arguments=({arguments}) ;;')
    return "\n".join(lines)


def read(name):
    with open(os.path.join(HERE, name), encoding="utf-8") as file:
        return file.read()


def filled(template, values):
    text = read(template)
    for name, value in values.items():
        text = text.replace(f"@{name}@", value)
    return text


def main():
    program, folder = sys.argv[1:]
    commands = list(all_commands(program))
    databases = " ".join(command.words[1] for command in commands if command.words[0] == "db")
    values = {
        "VERSION": subprocess.run([program, "--version"], check=True, capture_output=True,
                                  text=True).stdout.split()[-1],
        "NAMES": " ".join(dict.fromkeys(command.words[0] for command in commands)),
        "DATABASE_NAMES": databases,
    }
    results = {
        "swiftgate.1.gz": filled("swiftgate.1.in", {**values, "COMMANDS": manual_page(commands)}),
        "swiftgate.bash": filled("swiftgate.bash.in", {**values, "CASES": case_lines(commands)}),
        "_swiftgate": filled("swiftgate.zsh.in", {**values, "CASES": zsh_lines(commands)}),
        "changelog.gz": read("changelog"),
    }
    os.makedirs(folder, exist_ok=True)
    for name, text in results.items():
        bytes_ = text.encode()
        with open(os.path.join(folder, name), "wb") as file:
            file.write(gzip.compress(bytes_, 9, mtime=0) if name.endswith(".gz") else bytes_)


main()
