// The terminal view: the status as bars, drawn again in place.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "console/display/DisplayText.h"
#include "console/display/Layout.h"
#include "console/job/View.h"

namespace kelvane::console {

class TerminalView : public View {
 public:
  // The stream is not owned and must outlive the view; the size is asked for at every look.
  TerminalView(std::ostream& out, std::function<TerminalSize()> size, Charset charset,
               bool showsColours = false)
      : out_(out), size_(std::move(size)), charset_(charset), showsColours_(showsColours) {}

  void show(const Look& look) override;

 private:
  void draw(const std::vector<std::string>& lines);

  std::ostream& out_;
  std::function<TerminalSize()> size_;
  Charset charset_;
  bool showsColours_;
  std::vector<std::string> drawn_;
};

}  // namespace kelvane::console
