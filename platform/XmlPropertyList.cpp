// expat tells the tags and texts apart, and guards against entities that multiply; what they mean
// in a property list stands here.

#include "platform/XmlPropertyList.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>

#include <expat.h>

#include "platform/PropertyList.h"
#include "platform/PropertyListDate.h"
#include "platform/Text.h"
#include "platform/ValueBuilder.h"

namespace kelvane::platform {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kDigits = "0123456789";

std::string_view trimmed(std::string_view text) {
  const std::size_t start = std::min(text.find_first_not_of(kBlanks), text.size());
  text.remove_prefix(start);
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// The whole text as a number of this base and type.
template <typename Number>
std::optional<Number> wholeNumber(std::string_view text, int base) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

// A number of 64 bits, with or without a sign, decimal or, behind "0x", hexadecimal.
Value integerIn(std::string_view text) {
  text = trimmed(text);
  const bool isNegative = text.substr(0, 1) == "-";
  if (isNegative || text.substr(0, 1) == "+") text.remove_prefix(1);
  const bool isHexadecimal = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
  if (isHexadecimal) text.remove_prefix(2);
  const auto number = wholeNumber<std::uint64_t>(text, isHexadecimal ? 16 : 10);
  if (!number) return {};
  if (!isNegative || *number == 0) return Value::number(std::to_string(*number));
  constexpr std::uint64_t kLowest = std::uint64_t{1} << 63U;  // of the signed numbers, without sign
  if (*number > kLowest) return {};
  return Value::number(std::string("-").append(std::to_string(*number)));
}

// Decimal, or one of the words for what is not finite.
Value realIn(std::string_view text) {
  const std::string digits(trimmed(text));
  if (digits.empty() || digits.find_first_of("xXpP") != std::string::npos) return {};
  char* end = nullptr;
  const double number = std::strtod(digits.c_str(), &end);
  if (*end != '\0') return {};
  return Value::number(shortestText(number));
}

// "2026-01-31T23:59:59Z"
Value dateIn(std::string_view text) {
  const std::string date(trimmed(text));
  constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
  if (date.size() != kForm.size()) return {};
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const bool isDigit = kDigits.find(date[i]) != std::string_view::npos;
    if (kForm[i] == '0' ? !isDigit : date[i] != kForm[i]) return {};
  }
  const std::optional<Date> found = dateFromText(date);
  return found ? Value(*found) : Value();
}

int sextetOf(char character) {
  static constexpr std::string_view kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::size_t found = kAlphabet.find(character);
  return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

// Base64, with blanks and line breaks anywhere.
Value dataIn(std::string_view text) {
  std::string digits;
  std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
               [](char c) { return kBlanks.find(c) == std::string_view::npos; });
  if (digits.size() % 4 != 0) return {};
  for (int padding = 0; padding < 2 && !digits.empty() && digits.back() == '='; ++padding) {
    digits.pop_back();
  }
  std::string bytes;
  unsigned bits = 0;
  unsigned held = 0;  // how many of them are not written yet
  for (const char digit : digits) {
    const int sextet = sextetOf(digit);
    if (sextet < 0) return {};
    bits = bits << 6U | static_cast<unsigned>(sextet);
    held += 6;
    if (held < 8) continue;
    held -= 8;
    bytes += static_cast<char>(bits >> held & 0xFFU);
  }
  return Value::data(std::move(bytes));
}

Value stringOf(std::string_view text) { return text; }

// An element that holds text alone, and what that means; nothing where it means nothing.
struct Leaf {
  std::string_view name;
  Value (*valueOf)(std::string_view text);
};
constexpr Leaf kLeaves[] = {
    {"string", stringOf},
    {"integer", integerIn},
    {"real", realIn},
    {"date", dateIn},
    {"data", dataIn},
    {"true", [](std::string_view) { return Value::boolean(true); }},
    {"false", [](std::string_view) { return Value::boolean(false); }},
    {"key", stringOf},
};

const Leaf* leafOf(std::string_view name) {
  const auto* found = std::find_if(std::begin(kLeaves), std::end(kLeaves),
                                   [name](const Leaf& leaf) { return leaf.name == name; });
  return found == std::end(kLeaves) ? nullptr : found;
}

struct FreeParser {
  void operator()(XML_Parser parser) const { ::XML_ParserFree(parser); }
};

class Reader {
 public:
  // Whatever encoding the text names for itself, it is UTF-8, or what its byte order mark says.
  Reader() : parser_(::XML_ParserCreate("UTF-8")) {
    if (parser_ == nullptr) throw std::bad_alloc();
    ::XML_SetUserData(parser_.get(), this);
    ::XML_SetElementHandler(parser_.get(), onStart, onEnd);
    ::XML_SetCharacterDataHandler(parser_.get(), onText);
    ::XML_SetEntityDeclHandler(parser_.get(), onEntity);
    ::XML_SetSkippedEntityHandler(parser_.get(), onSkippedEntity);
  }

  Value read(std::string_view bytes) {
    constexpr std::size_t kMostAtOnce = std::size_t{1} << 30U;
    bool isLast = false;
    while (!isLast) {
      const std::string_view part = bytes.substr(0, kMostAtOnce);
      bytes.remove_prefix(part.size());
      isLast = bytes.empty();
      const XML_Status status =
          ::XML_Parse(parser_.get(), part.data(), static_cast<int>(part.size()), isLast ? 1 : 0);
      if (hasNoMemory_ || ::XML_GetErrorCode(parser_.get()) == XML_ERROR_NO_MEMORY) {
        throw std::bad_alloc();
      }
      if (status != XML_STATUS_OK) return {};
    }
    return builder_.take();
  }

 private:
  // Does a step of the reading; stops the parser where that is not possible. No exception may pass
  // through the parser.
  template <typename Step>
  static void step(void* self, Step step) {
    auto& reader = *static_cast<Reader*>(self);
    bool isDone = false;
    try {
      isDone = !reader.isStopped_ && step(reader);
    } catch (const std::bad_alloc&) {
      reader.hasNoMemory_ = true;
    }
    if (isDone) return;
    reader.isStopped_ = true;
    ::XML_StopParser(reader.parser_.get(), XML_FALSE);
  }

  static void onStart(void* self, const XML_Char* name, const XML_Char** /*attributes*/) {
    step(self, [name](Reader& reader) { return reader.start(name); });
  }
  static void onEnd(void* self, const XML_Char* name) {
    step(self, [name](Reader& reader) { return reader.end(name); });
  }
  static void onText(void* self, const XML_Char* text, int length) {
    step(self, [text, length](Reader& reader) {
      return reader.text({text, static_cast<std::size_t>(length)});
    });
  }
  // No property list declares entities, or needs those that are declared elsewhere.
  static void onEntity(void* self, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                       const XML_Char*, const XML_Char*, const XML_Char*) {
    step(self, [](Reader&) { return false; });
  }
  static void onSkippedEntity(void* self, const XML_Char*, int) {
    step(self, [](Reader&) { return false; });
  }

  bool start(std::string_view name) {
    if (leaf_ != nullptr || hasRoot_) return false;
    if (name == "plist") return !builder_.isOpen() && !std::exchange(hasPlist_, true);
    if (name == "dict") return builder_.open(Value::dictionary());
    if (name == "array") return builder_.open(Value::array());
    leaf_ = leafOf(name);
    text_.clear();
    return leaf_ != nullptr;
  }

  bool text(std::string_view text) {
    if (leaf_ == nullptr) return trimmed(text).empty();
    text_ += text;
    return true;
  }

  bool end(std::string_view name) {
    if (name == "plist") return true;
    if (leaf_ == nullptr) {
      const bool isClosed = builder_.close();
      hasRoot_ = !builder_.isOpen();
      return isClosed;
    }
    const Leaf& leaf = *std::exchange(leaf_, nullptr);
    if (leaf.name == "key") return builder_.key(text_);
    Value value = leaf.valueOf(text_);
    return !value.isNothing() && builder_.add(std::move(value));
  }

  std::unique_ptr<std::remove_pointer_t<XML_Parser>, FreeParser> parser_;
  ValueBuilder builder_{kPropertyListDepthLimit};
  const Leaf* leaf_ = nullptr;  // the one that is open
  std::string text_;            // of it
  bool hasPlist_ = false;
  bool hasRoot_ = false;
  bool isStopped_ = false;
  bool hasNoMemory_ = false;
};

}  // namespace

Value parseXmlPropertyList(std::string_view bytes) {
  bytes.remove_prefix(std::min(bytes.find_first_not_of(kBlanks), bytes.size()));
  return Reader().read(bytes);
}

}  // namespace kelvane::platform
