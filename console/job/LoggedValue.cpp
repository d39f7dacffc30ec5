#include "console/job/LoggedValue.h"

#include <string>

#include "platform/Json.h"
#include "platform/Text.h"
#include "platform/ValueBuilder.h"

namespace kelvane::console {

using platform::Value;

namespace {

constexpr std::string_view kBlanks = " \n";
constexpr std::string_view kEndsOfWords = " \n,;(){}=\"";

class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  Value read() {
    do {
      if (!step()) return {};
    } while (builder_.isOpen());
    skipBlanks();
    return rest_.empty() ? builder_.take() : Value();
  }

 private:
  // One bracket, separator, key or value; false where none of them stands there.
  bool step() {
    skipBlanks();
    if (rest_.empty()) return false;
    if (take('(')) return open(Value::array());
    if (take('{')) return open(Value::dictionary());
    if (take(')')) return close(true);
    if (take('}')) return close(false);
    return builder_.isOpen() && takeEntry();
  }

  bool open(Value container) { return builder_.open(std::move(container)); }

  bool close(bool isArray) {
    if (!builder_.isOpen() || builder_.isInDictionary() == isArray || !builder_.close()) {
      return false;
    }
    return !builder_.isOpen() || takeSeparator();
  }

  // Of a list a word, of an object a key with a word or before a container.
  bool takeEntry() {
    std::string word;
    if (!takeWord(word)) return false;
    if (!builder_.isInDictionary()) return builder_.add(Value(std::move(word))) && takeSeparator();
    skipBlanks();
    if (!take('=') || !builder_.key(std::move(word))) return false;
    skipBlanks();
    if (rest_.substr(0, 1) == "(" || rest_.substr(0, 1) == "{") return true;
    return takeWord(word) && builder_.add(Value(std::move(word))) && takeSeparator();
  }

  // Behind the last element of a list there is none.
  bool takeSeparator() {
    skipBlanks();
    if (builder_.isInDictionary()) return take(';');
    return take(',') || rest_.substr(0, 1) == ")";
  }

  bool takeWord(std::string& word) {
    word.clear();
    if (take('"')) return takeQuoted(word);
    const std::size_t end = rest_.find_first_of(kEndsOfWords);
    word = rest_.substr(0, end);
    rest_.remove_prefix(word.size());
    return !word.empty();
  }

  bool takeQuoted(std::string& word) {
    while (!rest_.empty()) {
      if (take('"')) return true;
      const char next = takeOne();
      word += next == '\\' && !rest_.empty() ? escaped(takeOne()) : next;
    }
    return false;
  }

  static char escaped(char character) {
    if (character == 'n') return '\n';
    if (character == 'r') return '\r';
    return character == 't' ? '\t' : character;
  }

  char takeOne() {
    const char character = rest_.front();
    rest_.remove_prefix(1);
    return character;
  }

  bool take(char character) {
    if (rest_.empty() || rest_.front() != character) return false;
    rest_.remove_prefix(1);
    return true;
  }

  void skipBlanks() {
    const std::size_t start = rest_.find_first_not_of(kBlanks);
    rest_.remove_prefix(start == std::string_view::npos ? rest_.size() : start);
  }

  std::string_view rest_;
  platform::ValueBuilder builder_{platform::kJsonDepthLimit};
};

}  // namespace

Value parseLogged(std::string_view text) { return Reader(text).read(); }

Value asLogged(const Value& value) {
  const std::string text = platform::describe(value);
  return value.isArray() || value.isDictionary() ? parseLogged(text) : Value(text);
}

}  // namespace kelvane::console
