#include "console/Terminal.h"

#include <clocale>
#include <cstdlib>
#include <cstring>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "console/PlainView.h"
#include "console/TerminalView.h"

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

std::unique_ptr<View> viewOfStandardOutput(std::ostream& out, Charset charset) {
  if (!drawsInPlace()) return std::make_unique<PlainView>(out, charset);
  return std::make_unique<TerminalView>(out, sizeOfStandardOutput, charset);
}

}  // namespace kelvane::console
