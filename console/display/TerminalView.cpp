#include "console/display/TerminalView.h"

#include <algorithm>
#include <cstddef>

#include "console/display/Colour.h"
#include "console/display/JobText.h"
#include "console/display/Wrapping.h"

namespace kelvane::console {
namespace {

constexpr char kEraseLineEnd[] = "\x1b[K";
constexpr char kEraseBelow[] = "\x1b[J";

std::string linesUp(std::size_t count) {
  return count == 0 ? "" : "\r\x1b[" + std::to_string(count) + "A";
}

}  // namespace

void TerminalView::show(const Look& look) {
  const std::vector<std::string> lines = statusLines(look, size_(), charset_);
  if (lines == drawn_) return;
  draw(lines);
  // Below the lines that are drawn again: it may be as long as it likes.
  if (look.status.isFinished()) {
    const Colour colour = look.status.hasSucceeded() ? Colour::green : Colour::red;
    const std::size_t columns = std::max<std::size_t>(size_().columns, 1);
    for (const std::string& line : wrapped(resultLine(look.status, charset_), columns)) {
      out_ << coloured(line, colour, showsColours_) << '\n';
    }
  }
  out_.flush();
}

void TerminalView::draw(const std::vector<std::string>& lines) {
  out_ << linesUp(drawn_.size());
  for (const std::string& line : lines) out_ << line << kEraseLineEnd << '\n';
  out_ << kEraseBelow;
  drawn_ = lines;
}

}  // namespace kelvane::console
