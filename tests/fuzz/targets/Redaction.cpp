// What a report keeps to itself: of what is known as a secret no whole word is left.

#include "console/report/redaction/Redaction.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"

namespace kelvane::fuzz {
namespace {

bool isWordCharacter(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= 0x80 || std::isalnum(byte) != 0 || character == '_';
}

bool isWord(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isWordCharacter);
}

// Other than a part of a stand-in, such as "[user-1]".
bool hasWord(const std::string& text, const std::string& word) {
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
    const std::size_t end = at + word.size();
    const bool begins = at == 0 || !isWordCharacter(text[at - 1]);
    const bool ends = end == text.size() || !isWordCharacter(text[end]);
    const bool isStandIn =
        (at > 0 && text[at - 1] == '[') || (end < text.size() && text[end] == ']');
    if (begins && ends && !isStandIn) return true;
  }
  return false;
}

// Names that the system has anyhow are no secret.
bool isSecret(const std::string& name) {
  console::Redaction redaction;
  redaction.addUser(name);
  return redaction.applied(name) != name;
}

void hide(const std::string& name, const std::string& text) {
  console::Redaction redaction;
  redaction.addUser(name);
  redaction.addHome("/Users/" + name);
  redaction.learn(text);
  const std::string shown = redaction.applied(text);
  require(!hasWord(shown, name), "no secret word is left", shown);
  requireSame(shown, redaction.applied(text), "the same text gets the same stand-ins");
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  fuzz::Bytes bytes(data, size);
  const std::string name = bytes.part();
  const std::string text = bytes.rest();
  console::Redaction redaction;
  redaction.learn(text);
  redaction.applied(text);
  if (fuzz::isWord(name) && fuzz::isSecret(name)) {
    fuzz::hide(name, text);
    fuzz::hide(name, "/Users/" + name + "/x?token=" + text + " " + name);
  }
  return 0;
}
