#pragma once

#include <string>
#include <vector>

namespace tarnovel::manual {

/// One option as `--help` knows it.
struct OptionRow {
    /// With their dashes, short ones first.
    std::vector<std::string> names;
    /// What stands for its value, as "FILE" or "jpeg|png"; empty for a switch.
    std::string value;
    std::string description;
    bool repeatable = false;
};

/// One command; the program itself is one without a name.
struct CommandRow {
    std::string name;
    std::string description;
    /// What it takes besides options, as "PHOTO..."; empty when nothing.
    std::string operands;
    std::vector<OptionRow> options;
};

struct CommandTable {
    CommandRow program;
    std::vector<CommandRow> commands;
};

/// The grammar of the command line in the current language.
CommandTable readCommandTable();

/// The values that an option of this name and value completes to; empty where only the user knows.
std::vector<std::string> knownValues(const OptionRow &option);

/// Whether the option's value names a file, or a folder.
bool takesFile(const OptionRow &option);
bool takesFolder(const OptionRow &option);

} // namespace tarnovel::manual
