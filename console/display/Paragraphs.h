// Text for people: a heading and labelled paragraphs below it, fitted to the screen.
#pragma once

#include <string>
#include <vector>

#include "console/display/Colour.h"
#include "console/display/Screen.h"

namespace kelvane::console {

struct Paragraph {
  std::string label;  // ASCII
  std::string text;
};

// Of the heading what stands before its first colon, or all of it, is coloured where the screen
// shows colours.
struct Heading {
  std::string text;
  Colour colour = Colour::green;
};

// Shows the heading, and each paragraph that has a text, wrapped to the screen's columns and
// indented behind its label. Texts are as the files have them; they are shown safely.
void showParagraphs(const Heading& heading, const std::vector<Paragraph>& paragraphs,
                    const Screen& screen);

// Shows lines of text, each wrapped to the screen's columns.
void showLines(const std::vector<std::string>& lines, const Screen& screen);

// Shows a line of what is said meanwhile, which is no answer; where the answers are to be alone
// (`isApart`) not among them. Machines are told nothing.
void showNotice(const std::string& line, bool isApart, const Screen& screen);

}  // namespace kelvane::console
