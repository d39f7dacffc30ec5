// Text quoted for shells.
#pragma once

#include <string>

namespace kelvane::console {

// The text in single quotes, as shells read it: "it's" is 'it'\''s'.
std::string shellQuoted(const std::string& text);

// The same where the text needs it; otherwise as it is.
std::string asShellWord(const std::string& text);

}  // namespace kelvane::console
