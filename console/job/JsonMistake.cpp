#include "console/job/JsonMistake.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <nlohmann/json.hpp>

#include "platform/Json.h"
#include "platform/Utf8.h"

namespace kelvane::console {
namespace {

constexpr int kOutOfRange = 406;            // the reader's number for this mistake
constexpr std::size_t kLongestNumber = 40;  // bytes; of a longer one the start is shown

// Where the text stands before this position, counted from 1.
std::string placeAt(std::string_view before) {
  const auto lines = std::count(before.begin(), before.end(), '\n');
  const std::string_view line = before.substr(before.rfind('\n') + 1);
  const auto characters = std::count_if(line.begin(), line.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
  });
  return "line " + std::to_string(lines + 1) + ", column " + std::to_string(characters + 1);
}

// The bracket that opens one array or object too many; the text is sound up to there.
std::string placeOfDepth(std::string_view text) {
  int depth = 0;
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char sign = text[i];
    if (inString && sign == '\\') {
      ++i;
    } else if (sign == '"') {
      inString = !inString;
    } else if (!inString && (sign == '[' || sign == '{')) {
      if (++depth > platform::kJsonDepthLimit) return placeAt(text.substr(0, i));
    } else if (!inString && (sign == ']' || sign == '}')) {
      --depth;
    }
  }
  return {};
}

// Takes the reader's events up to the first mistake.
class FirstMistake : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit FirstMistake(std::string_view text) : text_(text) {}
  const std::string& number() const { return number_; }
  const std::string& text() const { return mistake_; }

  bool null() override { return takeScalar(); }
  bool boolean(bool /*truth*/) override { return takeScalar(); }
  bool number_integer(number_integer_t /*number*/) override { return takeScalar(); }
  bool number_unsigned(number_unsigned_t /*number*/) override { return takeScalar(); }
  bool number_float(number_float_t /*number*/, const string_t& /*digits*/) override {
    return takeScalar();
  }
  bool string(string_t& /*text*/) override { return takeScalar(); }
  bool binary(binary_t& /*bytes*/) override { return true; }
  bool start_object(std::size_t /*count*/) override { return open(); }
  bool start_array(std::size_t /*count*/) override { return open(); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }
  bool key(string_t& /*name*/) override { return true; }

  // The position is behind the token.
  bool parse_error(std::size_t position, const std::string& token,
                   const nlohmann::detail::exception& mistake) override {
    const std::size_t last = std::min(position - std::min<std::size_t>(position, 1), text_.size());
    mistake_ = placeAt(text_.substr(0, last)) + ": " + reasonOf(mistake.what());
    if (mistake.id != kOutOfRange) return false;
    const std::string shown =
        token.size() > kLongestNumber ? token.substr(0, kLongestNumber) + "..." : token;
    const std::size_t start = position - std::min(position, token.size());
    number_ = "the number " + shown + " in " + placeAt(text_.substr(0, start));
    return false;
  }

 private:
  // What the reader's message has behind its own name and place.
  static std::string reasonOf(const std::string& message) {
    const std::size_t dash = message.find(" - ");
    return dash == std::string::npos ? message : message.substr(dash + 3);
  }

  bool takeScalar() {
    if (depth_ > 0) return true;
    mistake_ = "line 1: a single value stands at the top; expected an array or an object";
    return false;
  }
  bool open() {
    if (++depth_ <= platform::kJsonDepthLimit) return true;
    mistake_ = placeOfDepth(text_);
    mistake_.append(": nested deeper than ").append(std::to_string(platform::kJsonDepthLimit));
    mistake_ += " arrays and objects";
    return false;
  }
  bool close() {
    --depth_;
    return true;
  }

  std::string_view text_;
  std::string number_;
  std::string mistake_;
  int depth_ = 0;
};

}  // namespace

std::string jsonMistake(const std::string& text) {
  FirstMistake mistake(text);
  nlohmann::json::sax_parse(text, &mistake);
  return mistake.text();
}

std::string whyNoJson(const std::string& text) {
  if (text.empty()) return " is not JSON: it is empty";
  if (const std::string number = numberOutOfRange(text); !number.empty()) {
    return " cannot be read: " + number + " is beyond the range of a double";
  }
  std::string why = " is not JSON: ";
  const std::string mistake = jsonMistake(text);
  if (!platform::isUtf8(text)) {
    why += "it is not UTF-8";
    return mistake.empty() ? why : why.append(": ").append(mistake);
  }
  return why += mistake.empty() ? "it holds a NUL byte" : mistake;
}

std::string numberOutOfRange(const std::string& text) {
  FirstMistake mistake(text);
  nlohmann::json::sax_parse(text, &mistake);
  return mistake.number();
}

}  // namespace kelvane::console
