#pragma once

#include <string>

#include "CommandTable.h"

namespace tarnovel::manual {

/// The page of the whole program, in the language of the moment, as source for `man`.
std::string programPage(const CommandTable &table);

/// The page of one command.
std::string commandPage(const CommandRow &command);

} // namespace tarnovel::manual
