#include "console/report/Html.h"

#include "console/display/DisplayText.h"

namespace kelvane::console {
namespace {

std::string_view escapedCharacter(const char& character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {&character, 1};
  }
}

std::string startOf(const char* element, const Html::Attributes& attributes) {
  std::string start = "<";
  start += element;
  for (const auto& [name, value] : attributes) {
    start.append(" ").append(name).append("=\"").append(escapedHtml(value)).append("\"");
  }
  return start;
}

// Tabulators are blanks: they steer nothing, but would become replacement characters.
std::string withoutTabs(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (const char character : text) {
    if (character == '\t') {
      plain += "    ";
    } else {
      plain += character;
    }
  }
  return plain;
}

}  // namespace

std::string escapedHtml(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char& character : text) escaped += escapedCharacter(character);
  return escaped;
}

void Html::open(const char* element, const Attributes& attributes) {
  std::string start = startOf(element, attributes);
  start += ">";
  markup(std::move(start));
  open_.push_back(element);
}

void Html::close() {
  std::string end = "</";
  end.append(open_.back()).append(">");
  open_.pop_back();
  markup(std::move(end));
}

void Html::lone(const char* element, const Attributes& attributes) {
  std::string start = startOf(element, attributes);
  start += "/>";
  markup(std::move(start));
}

void Html::words(std::string_view text) { markup(escapedHtml(text)); }

void Html::text(std::string_view text) {
  pieces_.push_back({displayLines(withoutTabs(text), Charset::utf8), false});
}

void Html::label(const char* element, std::string_view words, const Attributes& attributes) {
  open(element, attributes);
  this->words(words);
  close();
}

void Html::element(const char* name, std::string_view text, const Attributes& attributes) {
  open(name, attributes);
  this->text(text);
  close();
}

void Html::append(const Html& other) {
  pieces_.insert(pieces_.end(), other.pieces_.begin(), other.pieces_.end());
}

std::vector<std::string_view> Html::texts() const {
  std::vector<std::string_view> found;
  for (const Piece& piece : pieces_) {
    if (!piece.isMarkup) found.emplace_back(piece.text);
  }
  return found;
}

std::string Html::printed(const Filter& filter) const {
  std::string page;
  for (const Piece& piece : pieces_) {
    if (piece.isMarkup) {
      page += piece.text;
    } else {
      page += escapedHtml(filter ? filter(piece.text) : piece.text);
    }
  }
  return page;
}

void Html::markup(std::string text) {
  if (!pieces_.empty() && pieces_.back().isMarkup) {
    pieces_.back().text += text;
  } else {
    pieces_.push_back({std::move(text), true});
  }
}

}  // namespace kelvane::console
