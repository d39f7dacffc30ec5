#include "console/display/TerminalView.h"

#include "console/display/Colour.h"
#include "console/display/JobText.h"

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
    out_ << coloured(resultLine(look.status, charset_), colour, showsColours_) << '\n';
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
