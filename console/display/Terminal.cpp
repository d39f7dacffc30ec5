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

TerminalSize sizeOf(int terminal) {
  struct winsize window = {};
  TerminalSize size;
  if (::ioctl(terminal, TIOCGWINSZ, &window) != 0) return size;
  if (window.ws_col != 0) size.columns = window.ws_col;
  if (window.ws_row != 0) size.rows = window.ws_row;
  return size;
}

TerminalSize sizeOfStandardOutput() { return sizeOf(STDOUT_FILENO); }

// The last one stays free: some terminals begin a new line behind it.
std::size_t columnsIn(int terminal) {
  return std::max<std::size_t>(sizeOf(terminal).columns, 2) - 1;
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
  if (inTerminal) screen.columns = columnsIn(STDOUT_FILENO);
  const char* noColour = std::getenv("NO_COLOR");
  screen.colour = drawsInPlace() && (noColour == nullptr || *noColour == '\0');
  screen.json = json;
  screen.notices = &std::cerr;
  if (inTerminal && !json && ::isatty(STDIN_FILENO) == 1) {
    screen.answers = &std::cin;
    screen.answersFile = STDIN_FILENO;
  }
  return screen;
}

std::size_t columnsOfStandardError() {
  return ::isatty(STDERR_FILENO) == 1 ? columnsIn(STDERR_FILENO) : 0;
}

std::unique_ptr<View> viewOn(const Screen& screen) {
  if (screen.json) return std::make_unique<JsonView>(screen.out);
  if (!drawsInPlace()) return std::make_unique<PlainView>(screen.out, screen.charset);
  return std::make_unique<TerminalView>(screen.out, sizeOfStandardOutput, screen.charset,
                                        screen.colour);
}

}  // namespace kelvane::console
