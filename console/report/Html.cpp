#include "console/report/Html.h"

#include <algorithm>

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

// So much of what is left out is kept behind what is shown: no secret is longer.
constexpr std::size_t kBehindTheBorder = 4096;
constexpr std::size_t kRoomAtFirst = 64UL * 1024;

// No further than so many bytes, and not within a character.
std::size_t borderIn(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text.size();
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0U) == 0x80U) --most;
  return most;
}

// How much of the text has room once it is escaped.
std::size_t fitting(std::string_view text, std::size_t room) {
  std::size_t size = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    size += escapedCharacter(text[at]).size();
    if (size > room) return borderIn(text, at);
  }
  return text.size();
}

}  // namespace

std::string escapedHtml(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char& character : text) escaped += escapedCharacter(character);
  return escaped;
}

std::size_t escapedSize(std::string_view text) {
  std::size_t size = 0;
  for (const char& character : text) size += escapedCharacter(character).size();
  return size;
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

void Html::text(std::string_view text, const Showing& showing) {
  const bool isShort = text.size() <= showing.most;
  const std::string_view kept = isShort ? text : text.substr(0, showing.most + kBehindTheBorder);
  Piece piece{.kind = Kind::text,
              .text = displayLines(withoutTabs(kept), Charset::utf8),
              .name = showing.name};
  piece.shown = borderIn(piece.text, showing.most);
  piece.leftOut = piece.text.size() - piece.shown + text.size() - kept.size();
  pieces_.push_back(std::move(piece));
}

void Html::label(const char* element, std::string_view words, const Attributes& attributes) {
  open(element, attributes);
  this->words(words);
  close();
}

void Html::element(const char* name, std::string_view text, const Attributes& attributes,
                   const Showing& showing) {
  open(name, attributes);
  this->text(text, showing);
  close();
}

void Html::append(const Html& other) {
  pieces_.insert(pieces_.end(), other.pieces_.begin(), other.pieces_.end());
  markupSize_ += other.markupSize_;
}

void Html::giveRoom(std::size_t bytes) { pieces_.push_back({.kind = Kind::room, .shown = bytes}); }

std::vector<Html::Text> Html::texts() const {
  std::vector<Text> found;
  for (const Piece& piece : pieces_) {
    if (piece.kind == Kind::text) found.push_back(textOf(piece));
  }
  return found;
}

std::string Html::printed(const Filter& filter) const {
  std::string page;
  std::size_t room = kRoomAtFirst;
  for (const Piece& piece : pieces_) {
    if (piece.kind == Kind::markup) page += piece.text;
    if (piece.kind == Kind::text) print(piece, filter, room, page);
    if (piece.kind == Kind::room) room = piece.shown;
  }
  return page;
}

void Html::print(const Piece& piece, const Filter& filter, std::size_t& room, std::string& page) {
  const std::string shown = filter ? filter(textOf(piece)) : piece.text.substr(0, piece.shown);
  const std::size_t end = fitting(shown, room);
  const std::string escaped = escapedHtml(std::string_view(shown).substr(0, end));
  room -= escaped.size();
  page += escaped;
  const std::size_t leftOut = piece.leftOut + shown.size() - end;
  if (leftOut == 0) return;
  page.append(" ... (").append(std::to_string(leftOut));
  page.append(leftOut == 1 ? " byte is left out)" : " bytes are left out)");
}

void Html::markup(std::string text) {
  markupSize_ += text.size();
  if (!pieces_.empty() && pieces_.back().kind == Kind::markup) {
    pieces_.back().text += text;
  } else {
    pieces_.push_back({.text = std::move(text)});
  }
}

}  // namespace kelvane::console
