#include "platform/Json.h"

#include <cctype>
#include <cstddef>
#include <utility>

#include <nlohmann/json.hpp>

#include "platform/Utf8.h"
#include "platform/ValueBuilder.h"

namespace kelvane::platform {
namespace {

// Takes the reader's events; every one returns whether to go on.
class Events : public nlohmann::json_sax<nlohmann::json> {
 public:
  Value take() { return builder_.take(); }

  bool null() override { return builder_.add(Value::null()); }
  bool boolean(bool truth) override { return builder_.add(Value::boolean(truth)); }

  bool number_integer(number_integer_t number) override {
    // Only negative numbers come here, and a zero among them was written "-0".
    return builder_.add(number == 0 ? Value::number("-0") : Value::integer(number));
  }
  bool number_unsigned(number_unsigned_t number) override {
    return builder_.add(Value::number(std::to_string(number)));
  }
  bool number_float(number_float_t /*number*/, const string_t& digits) override {
    return builder_.add(Value::number(digits));
  }
  bool string(string_t& text) override { return builder_.add(Value(std::move(text))); }
  bool binary(binary_t& /*bytes*/) override { return false; }

  bool start_object(std::size_t /*count*/) override { return builder_.open(Value::dictionary()); }
  bool start_array(std::size_t /*count*/) override { return builder_.open(Value::array()); }
  bool end_object() override { return builder_.close(); }
  bool end_array() override { return builder_.close(); }
  bool key(string_t& name) override { return builder_.key(std::move(name)); }

  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    return false;
  }

 private:
  ValueBuilder builder_{kJsonDepthLimit};
};

enum class Form { lines, oneLine };

class Printer {
 public:
  explicit Printer(Form form) : form_(form) {}

  void reserveFor(const Value& value) {
    if (form_ == Form::oneLine || !value.isArray()) return;
    text_.reserve(value.expectedSize(Value::Form::jsonInside));
  }

  // Appends the value; false where JSON has no form for it.
  bool print(const Value& value, int level) {
    switch (value.kind()) {
      case Value::Kind::null:
        text_ += "null";
        return true;
      case Value::Kind::boolean:
        text_ += value.truth() ? "true" : "false";
        return true;
      case Value::Kind::number:
        return printNumber(value.digits());
      case Value::Kind::string:
        return printString(value.string());
      case Value::Kind::array:
      case Value::Kind::dictionary:
        return printContainer(value, level);
      case Value::Kind::nothing:
      case Value::Kind::data:
      case Value::Kind::date:
        break;
    }
    return false;
  }

  std::string take() { return std::move(text_); }

 private:
  void startLine(int level) {
    if (form_ == Form::oneLine) return;
    text_ += '\n';
    text_.append(static_cast<std::size_t>(level) * 2, ' ');
  }

  bool printNumber(const std::string& digits) {
    text_ += digits;  // "nan" and "inf" are numbers, but not in JSON: they do not end in a digit
    return !digits.empty() && std::isdigit(static_cast<unsigned char>(digits.back())) != 0;
  }

  bool printString(const std::string& text) {
    static constexpr char kHex[] = "0123456789abcdef";
    text_ += '"';
    for (const char character : text) {
      switch (character) {
        case '"':
          text_ += "\\\"";
          break;
        case '\\':
          text_ += "\\\\";
          break;
        case '\b':
          text_ += "\\b";
          break;
        case '\f':
          text_ += "\\f";
          break;
        case '\n':
          text_ += "\\n";
          break;
        case '\r':
          text_ += "\\r";
          break;
        case '\t':
          text_ += "\\t";
          break;
        default:
          if (const auto byte = static_cast<unsigned char>(character); byte < 0x20) {
            text_ += "\\u00";
            text_ += kHex[byte >> 4U];
            text_ += kHex[byte & 0xFU];
          } else {
            text_ += character;
          }
      }
    }
    text_ += '"';
    return isUtf8(text);
  }

  // Those of the job file's records that an update leaves alone remember their text.
  bool printContainer(const Value& container, int level) {
    const bool isRemembered = form_ == Form::lines && level == 1;
    if (isRemembered) {
      if (const std::string* text = container.rememberedText(Value::Form::jsonInside)) {
        text_ += *text;
        return true;
      }
    }
    const std::size_t start = text_.size();
    if (!(container.isArray() ? printArray(container, level) : printDictionary(container, level))) {
      return false;
    }
    if (isRemembered) container.rememberPart(Value::Form::jsonInside, text_, start);
    return true;
  }

  bool printArray(const Value& array, int level) {
    if (level == kJsonDepthLimit) return false;
    text_ += '[';
    const char* separator = "";
    for (const Value& element : array.elements()) {
      text_ += std::exchange(separator, ",");
      startLine(level + 1);
      if (!print(element, level + 1)) return false;
    }
    if (array.count() != 0) startLine(level);
    text_ += ']';
    return true;
  }

  bool printDictionary(const Value& dictionary, int level) {
    if (level == kJsonDepthLimit) return false;
    text_ += '{';
    const char* separator = "";
    for (const auto& [key, value] : dictionary.entries()) {
      text_ += std::exchange(separator, ",");
      startLine(level + 1);
      if (!printString(key)) return false;
      text_ += form_ == Form::oneLine ? ":" : ": ";
      if (!print(value, level + 1)) return false;
    }
    if (!dictionary.entries().empty()) startLine(level);
    text_ += '}';
    return true;
  }

  Form form_;
  std::string text_;
};

std::optional<std::string> printed(const Value& value, Form form) {
  Printer printer(form);
  printer.reserveFor(value);
  if (!printer.print(value, 0)) return std::nullopt;
  return printer.take();
}

}  // namespace

Value parseJson(std::string_view text) {
  // The reader takes a NUL byte for the end of the text; in JSON it stands nowhere.
  if (text.find('\0') != std::string_view::npos) return {};
  Events events;
  const bool whole = nlohmann::json::sax_parse(text.begin(), text.end(), &events);
  return whole ? events.take() : Value();
}

std::optional<std::string> printJson(const Value& value) { return printed(value, Form::lines); }

std::optional<std::string> printJsonLine(const Value& value) {
  return printed(value, Form::oneLine);
}

}  // namespace kelvane::platform
