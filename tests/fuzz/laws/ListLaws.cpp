#include "tests/fuzz/laws/ListLaws.h"

#include <algorithm>

#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/fuzz/Law.h"
#include "tests/support/PlainUtf8.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

// Whether JSON has a form for it.
bool isWritable(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::data:
    case Value::Kind::date:
      return false;
    case Value::Kind::number:
      return value.digits().find_first_of("in") == std::string::npos;  // "inf", "nan"
    case Value::Kind::array:
      for (const Value& element : value.elements()) {
        if (!isWritable(element)) return false;
      }
      return true;
    case Value::Kind::dictionary:
      for (const auto& [key, inner] : value.entries()) {
        if (!isWritable(inner)) return false;
      }
      return true;
    default:
      return true;
  }
}

// A rule of the catalogue, or none.
bool isFrom(const Value& chosen, const Value& rules) {
  const auto& all = rules.elements();
  return chosen.entries().empty() || std::find(all.begin(), all.end(), chosen) != all.end();
}

}  // namespace

// As a catalogue's rules become the output of a record of the job file.
void requireList(const Value& list, const std::string& shown,
                 const std::optional<std::string>& text) {
  require(list.isDictionary(), "the root is a dictionary");
  require(test::isPlainUtf8(shown), "what is shown is UTF-8", shown);
  require(text.has_value() == isWritable(list), "what JSON has a form for is written", shown);
  if (text) require(platform::parseJson(*text) == list, "what is written is read again", *text);
}

void requireReadList(const Value& made, bool isTooDeep, const Value& read,
                     const std::string& bytes) {
  if (isTooDeep) {
    require(read.isNothing(), "what is too deep is not read");
    return;
  }
  require(read == made, "a list is read as it was meant",
          platform::describe(made) + "\n" + platform::describe(read) + "\n" + bytes);
}

void requireChosen(const Choice& choice, const Value& rules, const std::string& product,
                   const Value& chosen) {
  const std::string told = product + "\n" + platform::describe(chosen);
  if (choice.kind == Choice::Kind::untold) {
    require(isFrom(chosen, rules), "a rule of the catalogue is chosen", told);
  } else if (choice.kind == Choice::Kind::one) {
    require(chosen == rules.at(choice.rule), "the rule that applies to the product is chosen",
            told);
  } else {
    require(chosen == Value::dictionary(), "where no rule applies to a product none is chosen",
            told);
  }
}

}  // namespace kelvane::fuzz
