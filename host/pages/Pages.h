/// What is made from the commands; each function gives the text of one file.
#pragma once

#include <string>

#include "pages/CommandTree.h"

namespace umsctl {

/// The man page of one command, in the macros of man(7); `program` is the root of the tree.
std::string manPage(const CommandEntry& program, const CommandEntry& command);

/// The man page of the file behind --profile.
std::string profilePage(const CommandEntry& program);

/// Completion scripts, by the shell that reads them.
std::string bashCompletion(const CommandEntry& program);
std::string zshCompletion(const CommandEntry& program);
std::string fishCompletion(const CommandEntry& program);

/// All commands on one page, in Markdown.
std::string commandReference(const CommandEntry& program);

}  // namespace umsctl
