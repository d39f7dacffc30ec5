// Text quoted for shells.
#pragma once

#include <string>

namespace kelvane::console {

// The text in single quotes, as shells read it: "it's" is 'it'\''s'.
std::string shellQuoted(const std::string& text);

// The same where the text needs it; otherwise as it is.
std::string asShellWord(const std::string& text);

// "kelvane-console retry --shared /a/shared/ 17", to be typed into a shell; without the folder
// where it is not known: empty.
std::string consoleCommand(const std::string& subCommand, const std::string& sharedFolder,
                           const std::string& logId);

}  // namespace kelvane::console
