// The sub-command values: what a value can be, which the completion scripts ask for.
#pragma once

#include <string>

#include "console/command_line/completion/TypedWords.h"
#include "console/commands/Command.h"
#include "console/display/Screen.h"

namespace kelvane::console {

struct ValuesOptions {
  std::string sharedFolder;  // where the words name none; may be empty
  std::string kind;          // one of the choices
  TypedWords words = {};     // of the command line that is completed, up to the word in question
};

// Shows the values that can stand there, a line each, with a tab and what it is behind each. What
// cannot be found out is not shown, and no failure: nobody asked for it.
int showValues(const ValuesOptions& options, const Screen& screen);

// The choice for this kind of value; empty for one that needs no asking.
std::string askedFor(ValueKind kind);

Command valuesCommand();

}  // namespace kelvane::console
