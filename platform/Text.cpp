#include "platform/Text.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

#include <fmt/format.h>
#include <fmt/printf.h>

#include "platform/Exception.h"

namespace kelvane::platform {
namespace {

std::string hexText(const std::string& bytes) {
  std::string text = "<";
  for (const char byte : bytes) text += fmt::format("{:02x}", static_cast<unsigned char>(byte));
  return text + ">";
}

std::string dateText(Date date) {
  using namespace std::chrono;
  const sys_seconds moment{seconds{date.secondsSince1970}};
  const sys_days day = floor<days>(moment);
  const year_month_day calendar{day};
  const hh_mm_ss clock{moment - day};
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02} +0000", static_cast<int>(calendar.year()),
                     static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()),
                     clock.hours().count(), clock.minutes().count(), clock.seconds().count());
}

// The text of anything but a container, as it stands alone.
std::string plainText(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::nothing:
      return "(null)";
    case Value::Kind::null:
      return "<null>";
    case Value::Kind::boolean:
      return value.truth() ? "1" : "0";
    case Value::Kind::number:
      return value.digits();
    case Value::Kind::string:
      return value.string();
    case Value::Kind::data:
      return hexText(value.bytes());
    case Value::Kind::date:
      return dateText(value.date());
    case Value::Kind::array:
    case Value::Kind::dictionary:
      break;
  }
  return {};
}

bool isAsciiLetterOrDigit(char character) {
  return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
         (character >= 'a' && character <= 'z');
}

// A text inside a container: bare where it is all ASCII letters and digits, else in quotes.
void appendQuoted(std::string& out, const std::string& text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), isAsciiLetterOrDigit)) {
    out += text;
    return;
  }
  out += '"';
  for (const char character : text) {
    switch (character) {
      case '"':
      case '\\':
        out += '\\';
        out += character;
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        out += character;
    }
  }
  out += '"';
}

void appendBlanks(std::string& out, std::size_t level) { out.append(4 * level, ' '); }

void appendContainer(std::string& out, const Value& container, std::size_t level);

void appendInside(std::string& out, const Value& value, std::size_t level) {
  if (value.isArray() || value.isDictionary()) {
    appendContainer(out, value, level);
  } else {
    appendQuoted(out, plainText(value));
  }
}

void appendArrayContents(std::string& out, const Value& array, std::size_t level) {
  const char* separator = "";
  for (const Value& element : array.elements()) {
    out += separator;
    separator = ",\n";
    appendBlanks(out, level + 1);
    appendInside(out, element, level + 1);
  }
  if (array.count() != 0) out += '\n';
}

void appendDictionaryContents(std::string& out, const Value& dictionary, std::size_t level) {
  std::vector<const Value::Entry*> sorted;
  for (const Value::Entry& entry : dictionary.entries()) sorted.push_back(&entry);
  std::sort(sorted.begin(), sorted.end(),
            [](const auto* left, const auto* right) { return left->first < right->first; });
  for (const Value::Entry* entry : sorted) {
    appendBlanks(out, level + 1);
    appendQuoted(out, entry->first);
    out += " = ";
    appendInside(out, entry->second, level + 1);
    out += ";\n";
  }
}

void appendFresh(std::string& out, const Value& container, std::size_t level) {
  const bool isArray = container.isArray();
  appendBlanks(out, level);
  out += isArray ? "(\n" : "{\n";
  if (isArray) {
    appendArrayContents(out, container, level);
  } else {
    appendDictionaryContents(out, container, level);
  }
  appendBlanks(out, level);
  out += isArray ? ')' : '}';
}

// Containers inside one other remember their texts: the job file's records, of which an update
// changes one.
void appendContainer(std::string& out, const Value& container, std::size_t level) {
  if (level != 1) {
    appendFresh(out, container, level);
    return;
  }
  if (const std::string* text = container.rememberedText(Value::Form::shownInside)) {
    out += *text;
    return;
  }
  const std::size_t start = out.size();
  appendFresh(out, container, level);
  container.rememberPart(Value::Form::shownInside, out, start);
}

// The placeholder for numbers of 64 bits, which a "long" of C may not hold.
std::string forWholeNumber(std::string placeholder) {
  const std::size_t size = placeholder.find('l');
  const bool isLong = size != std::string::npos && placeholder.find("ll") == std::string::npos;
  if (isLong) placeholder.insert(size, 1, 'l');
  return placeholder;
}

// One placeholder of a format, from its "%" to its conversion letter, that is not "%@".
std::string cText(const std::string& placeholder, const FormatArgument& argument) {
  if (const auto* text = std::get_if<const char*>(&argument)) {
    return fmt::sprintf(placeholder, *text == nullptr ? "(null)" : *text);
  }
  if (const auto* number = std::get_if<std::int64_t>(&argument)) {
    if (placeholder == "%d") return std::to_string(*number);  // most of them
    return fmt::sprintf(forWholeNumber(placeholder), *number);
  }
  if (const auto* number = std::get_if<std::uint64_t>(&argument)) {
    return fmt::sprintf(forWholeNumber(placeholder), *number);
  }
  throw Exception("a value stands at the placeholder \"" + placeholder + "\"");
}

// The length of the placeholder at the start of the text: up to and with its conversion letter.
std::size_t placeholderLength(std::string_view text) {
  const std::size_t end = text.find_first_not_of("0123456789.-+ #lhjzt", 1);
  return end == std::string_view::npos ? text.size() : end + 1;
}

}  // namespace

std::string shortestText(double number) { return fmt::format("{}", number); }

std::string describe(const Value& value) {
  if (!value.isArray() && !value.isDictionary()) return plainText(value);
  std::string out;
  if (value.isArray()) out.reserve(value.expectedSize(Value::Form::shownInside));
  appendContainer(out, value, 0);
  return out;
}

Value split(std::string_view text, char separator) {
  Value pieces = Value::array();
  for (;;) {
    const std::size_t end = text.find(separator);
    pieces.append(text.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

FilledFormat::FilledFormat(std::string_view format, std::span<const FormatArgument> arguments) {
  pieces_.reserve(2 * arguments.size() + 1);
  made_.reserve(arguments.size());  // so that no piece moves
  auto next = arguments.begin();
  while (!format.empty()) {
    const std::size_t plain = std::min(format.find('%'), format.size());
    if (plain > 0) pieces_.push_back(format.substr(0, plain));
    format.remove_prefix(plain);
    if (format.empty()) break;
    const std::string placeholder(format.substr(0, placeholderLength(format)));
    format.remove_prefix(placeholder.size());
    if (placeholder == "%%") {
      pieces_.emplace_back("%");
      continue;
    }
    if (next == arguments.end()) throw Exception("no argument for \"" + placeholder + "\"");
    try {
      add(placeholder, *next++);
    } catch (const fmt::format_error& error) {
      throw Exception("\"" + placeholder + "\": " + error.what());
    }
  }
}

void FilledFormat::add(const std::string& placeholder, const FormatArgument& argument) {
  if (placeholder != "%@") {
    addMade(cText(placeholder, argument));
  } else if (const auto* value = std::get_if<Value>(&argument)) {
    if (value->isString()) {
      pieces_.push_back(value->string());
    } else if (value->isArray() || value->isDictionary()) {
      addContainer(*value);
    } else {
      addMade(describe(*value));
    }
  } else if (const auto* text = std::get_if<std::string_view>(&argument)) {
    pieces_.push_back(*text);
  } else if (const auto* cString = std::get_if<const char*>(&argument)) {
    pieces_.emplace_back(*cString == nullptr ? "(null)" : *cString);
  } else {
    throw Exception("a number stands at the placeholder \"%@\"");
  }
}

void FilledFormat::addMade(std::string&& text) {
  made_.push_back(std::move(text));
  pieces_.push_back(made_.back());
}

// The text stays with the container: other lines show the same one.
void FilledFormat::addContainer(const Value& container) {
  const std::string* text = container.rememberedText(Value::Form::shownAlone);
  if (text == nullptr) {
    std::string made = describe(container);
    text = container.rememberText(Value::Form::shownAlone, made);
    if (text == nullptr) return addMade(std::move(made));
  }
  pieces_.push_back(*text);
}

std::string joined(const std::vector<std::string_view>& pieces) {
  std::size_t size = 0;
  for (const std::string_view piece : pieces) size += piece.size();
  std::string text;
  text.reserve(size);
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

std::string formatList(std::string_view format, std::span<const FormatArgument> arguments) {
  return joined(FilledFormat(format, arguments).pieces());
}

}  // namespace kelvane::platform
