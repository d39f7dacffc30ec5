#include "console/command_line/completion/TypedWords.h"

#include <cctype>
#include <cstdlib>
#include <string_view>

namespace kelvane::console {
namespace {

bool isOfName(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

std::string variable(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  return value == nullptr ? "" : value;
}

// Reads one word, character by character.
class Word {
 public:
  explicit Word(std::string_view rest) : rest_(rest) {}

  std::string read() {
    if (rest_ == "~" || rest_.substr(0, 2) == "~/") {
      text_ = variable("HOME");
      rest_.remove_prefix(1);
    }
    while (!rest_.empty() && canBeRead_) step();
    return canBeRead_ ? text_ : "";
  }

 private:
  void step() {
    const char next = take();
    if (next == '\'' && quote_ != '"') {
      takeToQuote();
    } else if (next == '"') {
      quote_ = quote_ == '"' ? '\0' : '"';
    } else if (next == '\\' && !rest_.empty() && isEscaped(rest_.front())) {
      text_ += take();
    } else if (next == '$') {
      takeVariable();
    } else {
      canBeRead_ = next != '`';
      text_ += next;
    }
  }

  char take() {
    const char first = rest_.front();
    rest_.remove_prefix(1);
    return first;
  }

  bool isEscaped(char character) const {
    return quote_ != '"' || std::string_view("\"\\$`").find(character) != std::string_view::npos;
  }

  void takeToQuote() {
    const std::size_t end = rest_.find('\'');
    text_ += rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
  }

  void takeVariable() {
    const bool isBraced = rest_.substr(0, 1) == "{";
    if (isBraced) rest_.remove_prefix(1);
    std::size_t size = 0;
    while (size < rest_.size() && isOfName(rest_[size])) ++size;
    canBeRead_ = size > 0 && (!isBraced || rest_.substr(size, 1) == "}");
    if (!canBeRead_) return;
    text_ += variable(std::string(rest_.substr(0, size)));
    rest_.remove_prefix(size + (isBraced ? 1 : 0));
  }

  std::string_view rest_;
  std::string text_;
  char quote_ = '\0';
  bool canBeRead_ = true;
};

}  // namespace

std::string asShellReads(const std::string& word) { return Word(word).read(); }

std::optional<std::string> valueAmong(const TypedWords& words, const std::string& option) {
  const std::string assigned = option + "=";
  std::optional<std::string> value;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i].rfind(assigned, 0) == 0) value = asShellReads(words[i].substr(assigned.size()));
    if (words[i] != option) continue;
    const bool isParted = i + 1 < words.size() && words[i + 1] == "=";
    const std::size_t place = i + (isParted ? 2 : 1);
    if (place < words.size()) value = asShellReads(words[place]);
  }
  return value;
}

}  // namespace kelvane::console
