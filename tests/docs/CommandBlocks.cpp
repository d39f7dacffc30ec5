#include "tests/docs/CommandBlocks.h"

#include "tests/support/LogLine.h"

namespace kelvane::docs {
namespace {

constexpr char kIndent[] = "    ";
constexpr char kPrompt[] = "$ ";

bool startsWith(const std::string& text, const std::string& beginning) {
  return text.rfind(beginning, 0) == 0;
}

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool announcesOutput(const std::string& prose) {
  return endsWith(prose, " prints:") || endsWith(prose, " print:");
}

// Goes through a page line by line.
class Reader {
 public:
  Reader(const std::string& page, const std::string& text)
      : page_(page), lines_(test::splitLines(text)) {}

  std::vector<CommandBlock> read() {
    while (at_ < lines_.size()) {
      const std::string& line = lines_[at_];
      if (startsWith(line, "```")) {
        readFence();
      } else if (startsWith(line, kIndent) && (at_ == 0 || lines_[at_ - 1].empty())) {
        readIndented();
      } else {
        if (!line.empty()) prose_ = line;
        ++at_;
      }
    }
    return blocks_;
  }

 private:
  void readFence() {
    const std::string opening = lines_[at_++];
    std::string text;
    for (; at_ < lines_.size() && !startsWith(lines_[at_], "```"); ++at_) {
      text += lines_[at_] + "\n";
    }
    ++at_;
    if (opening == "```sh") blocks_.push_back({page_, text, ""});
    if (opening == "```text" && announcesOutput(prose_) && !blocks_.empty()) {
      blocks_.back().shown = text;
    }
    prose_.clear();
  }

  void readIndented() {
    CommandBlock block{page_, "", ""};
    const bool isTranscript = startsWith(lines_[at_], kIndent + std::string(kPrompt));
    bool isCommand = true;
    for (; at_ < lines_.size() && startsWith(lines_[at_], kIndent); ++at_) {
      std::string line = lines_[at_].substr(sizeof(kIndent) - 1);
      const bool hasPrompt = startsWith(line, kPrompt);
      if (hasPrompt) line.erase(0, sizeof(kPrompt) - 1);
      if (isTranscript) isCommand = hasPrompt || (isCommand && continues_);
      (isCommand ? block.text : block.shown) += line + "\n";
      continues_ = endsWith(line, "\\");
    }
    blocks_.push_back(block);
  }

  std::string page_;
  std::vector<std::string> lines_;
  std::size_t at_ = 0;
  std::string prose_;  // the last line of it since the last fence
  bool continues_ = false;
  std::vector<CommandBlock> blocks_;
};

}  // namespace

std::vector<CommandBlock> commandBlocks(const std::string& page, const std::string& text) {
  return Reader(page, text).read();
}

}  // namespace kelvane::docs
