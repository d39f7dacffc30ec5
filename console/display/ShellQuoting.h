// Text quoted for shells.
#pragma once

#include <string>

namespace kelvane::console {

// The text in single quotes, as shells read it: "it's" is 'it'\''s'.
std::string shellQuoted(const std::string& text);

}  // namespace kelvane::console
