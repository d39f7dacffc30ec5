// The words of a command line that is still being typed, as a shell hands them to a completion: not
// yet read by it, with their quotes.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kelvane::console {

using TypedWords = std::vector<std::string>;

// The word as a shell would read it: without quotes, with a home folder or a variable put in. Empty
// where a command would have to be run for that.
std::string asShellReads(const std::string& word);

// The value of an option, as a shell would read it: "--option value", "--option=value", or, as bash
// parts that, "--option = value". Of several the last one; nothing where there is none.
std::optional<std::string> valueAmong(const TypedWords& words, const std::string& option);

}  // namespace kelvane::console
