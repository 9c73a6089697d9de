#pragma once

#include <string>

#include "CommandTable.h"

namespace tarnovel::manual {

/// What the Tab key offers behind `tarnovel`: commands, their options, and the values that are known.
std::string bashCompletion(const CommandTable &table);
std::string zshCompletion(const CommandTable &table);
std::string fishCompletion(const CommandTable &table);

} // namespace tarnovel::manual
