#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iterator>

#include <fmt/format.h>

#include "tests/fuzz/Characters.h"
#include "tests/fuzz/ListNumber.h"
#include "tests/fuzz/ListWriter.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

bool isXmlCharacter(char32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  return character != 0xFFFE && character != 0xFFFF;
}

bool isXmlText(const std::string& text) {
  const std::u32string characters = charactersOf(text);
  return std::all_of(characters.begin(), characters.end(), isXmlCharacter);
}

std::string base64Of(const std::string& bytes) {
  static constexpr char kSextets[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t left = std::min<std::size_t>(bytes.size() - i, 3);
    std::uint32_t triple = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      triple = triple << 8U | (j < left ? static_cast<unsigned char>(bytes[i + j]) : 0U);
    }
    for (std::size_t j = 0; j < 4; ++j) {
      text += j <= left ? kSextets[triple >> (18 - 6 * j) & 0x3FU] : '=';
    }
  }
  return text;
}

// "2026-01-31T23:59:59Z"
std::string dateText(std::int64_t seconds) {
  namespace chrono = std::chrono;
  const auto days = chrono::floor<chrono::days>(chrono::seconds(seconds));
  const chrono::year_month_day date{chrono::sys_days(days)};
  const std::int64_t rest = seconds - chrono::seconds(days).count();
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                     rest / 3600, rest / 60 % 60, rest % 60);
}

class XmlWriter {
 public:
  explicit XmlWriter(Bytes& style) : style_(style) {}

  std::string list(const Value& root) {
    static constexpr const char* kHeads[] = {
        "", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n", "\xEF\xBB\xBF",
        "<?xml version=\"1.0\"?><!DOCTYPE plist PUBLIC \"-//LIST\" \"list.dtd\">\n"};
    text_ = kHeads[style_.pick(4)];
    text_ += style_.flag() ? "<plist version=\"1.0\">" : "<plist>";
    gap();
    add(root);
    gap();
    return text_ + "</plist>\n";
  }

 private:
  void add(const Value& value) {
    switch (value.kind()) {
      case Value::Kind::boolean:
        return leaf(value.truth() ? "true" : "false", "");
      case Value::Kind::number:
        return number(value.digits());
      case Value::Kind::string:
        return leaf("string", escaped(value.string()));
      case Value::Kind::data:
        return leaf("data", data(value.bytes()));
      case Value::Kind::date:
        return leaf("date", dateText(value.date().secondsSince1970));
      default:
        return container(value);
    }
  }

  void gap() {
    static constexpr const char* kGaps[] = {"", "\n", "\t", " \r\n", "<!-- <dict> -->"};
    text_ += kGaps[style_.pick(5)];
  }

  void leaf(const std::string& name, const std::string& content) {
    if (content.empty() && !style_.flag()) {
      text_ += "<" + name + "/>";
    } else {
      text_ += "<" + name + ">" + content + "</" + name + ">";
    }
  }

  void container(const Value& value) {
    const std::string name = value.isArray() ? "array" : "dict";
    text_ += "<" + name + ">";
    gap();
    if (value.isArray()) {
      for (const Value& element : value.elements()) {
        add(element);
        gap();
      }
    } else {
      for (const auto& [key, inner] : value.entries()) {
        leaf("key", escaped(key));
        gap();
        add(inner);
        gap();
      }
    }
    text_ += "</" + name + ">";
  }

  void number(const std::string& digits) {
    if (!isListInteger(digits)) {
      return leaf("real", fmt::format("{:.17g}", std::strtod(digits.c_str(), nullptr)));
    }
    if (digits[0] == '-' || style_.pick(4) != 1) return leaf("integer", digits);
    leaf("integer", fmt::format("0x{:X}", std::strtoull(digits.c_str(), nullptr, 10)));
  }

  std::string data(const std::string& bytes) {
    std::string text = base64Of(bytes);
    const bool isBroken = style_.flag();
    for (std::size_t i = 7; isBroken && i < text.size(); i += 9) text.insert(i, "\n\t");
    return text;
  }

  std::string escaped(const std::string& text) {
    const unsigned way = style_.pick(4);
    if (way == 1 && text.find('\r') == std::string::npos) return marked(text);
    std::string all;
    for (const char32_t character : charactersOf(text)) {
      const auto code = static_cast<std::uint32_t>(character);
      if (way == 2) {
        all += fmt::format("&#x{:x};", code);
      } else if (way == 3 || character == '\r') {
        all += fmt::format("&#{};", code);
      } else if (character == '<' || character == '&' || character == '>') {
        all += character == '<' ? "&lt;" : character == '&' ? "&amp;" : "&gt;";
      } else {
        all += utf8Of(character);
      }
    }
    return all;
  }

  // As text that holds no markup; what would end it is cut in two.
  static std::string marked(const std::string& text) {
    std::string all = text;
    for (std::size_t at = 0; (at = all.find("]]>", at)) != std::string::npos;) {
      all.insert(at + 2, "]]><![CDATA[");
      at += 3;
    }
    return "<![CDATA[" + all + "]]>";
  }

  Bytes& style_;
  std::string text_;
};

}  // namespace

bool hasXmlForm(const Value& value) {
  if (value.isString()) return isXmlText(value.string());
  if (value.isArray()) {
    return std::all_of(value.elements().begin(), value.elements().end(), hasXmlForm);
  }
  if (!value.isDictionary()) return true;
  return std::all_of(value.entries().begin(), value.entries().end(), [](const auto& entry) {
    return isXmlText(entry.first) && hasXmlForm(entry.second);
  });
}

std::string xmlList(const Value& value, Bytes& style) { return XmlWriter(style).list(value); }

}  // namespace kelvane::fuzz
