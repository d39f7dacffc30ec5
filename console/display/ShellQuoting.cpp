#include "console/display/ShellQuoting.h"

namespace kelvane::console {

std::string shellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char character : text) {
    if (character == '\'') quoted += "'\\'";
    quoted += character;
  }
  return quoted + "'";
}

}  // namespace kelvane::console
