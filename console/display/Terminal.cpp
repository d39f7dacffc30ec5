#include "console/display/Terminal.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "console/display/JsonView.h"
#include "console/display/PlainView.h"
#include "console/display/TerminalView.h"

namespace kelvane::console {
namespace {

TerminalSize sizeOfStandardOutput() {
  struct winsize window = {};
  TerminalSize size;
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0) return size;
  if (window.ws_col != 0) size.columns = window.ws_col;
  if (window.ws_row != 0) size.rows = window.ws_row;
  return size;
}

// Whether the terminal follows the cursor sequences that drawing in place needs.
bool drawsInPlace() {
  const char* kind = std::getenv("TERM");
  return ::isatty(STDOUT_FILENO) == 1 && kind != nullptr && std::strcmp(kind, "dumb") != 0;
}

}  // namespace

Charset charsetOfLocale() {
  std::setlocale(LC_CTYPE, "");
  return std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0 ? Charset::utf8 : Charset::ascii;
}

Screen screenOfStandardOutput(std::ostream& out, bool json) {
  const bool inTerminal = ::isatty(STDOUT_FILENO) == 1;
  Screen screen = {out};
  screen.charset = charsetOfLocale();
  if (inTerminal) screen.columns = std::max<std::size_t>(sizeOfStandardOutput().columns, 2) - 1;
  const char* noColour = std::getenv("NO_COLOR");
  screen.colour = drawsInPlace() && (noColour == nullptr || *noColour == '\0');
  screen.json = json;
  if (inTerminal && !json && ::isatty(STDIN_FILENO) == 1) {
    screen.answers = &std::cin;
    screen.answersFile = STDIN_FILENO;
  }
  return screen;
}

std::unique_ptr<View> viewOn(const Screen& screen) {
  if (screen.json) return std::make_unique<JsonView>(screen.out);
  if (!drawsInPlace()) return std::make_unique<PlainView>(screen.out, screen.charset);
  return std::make_unique<TerminalView>(screen.out, sizeOfStandardOutput, screen.charset,
                                        screen.colour);
}

}  // namespace kelvane::console
