// A job file and a log, as somebody may have sent them, through all that the console shows of them.
// No file steers the terminal, whatever it holds, and none makes an error that was not foreseen. A
// job is followed too, while its file becomes another one: what stands behind the log.

#include <chrono>
#include <clocale>
#include <cstdlib>
#include <functional>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>

#include <expat.h>
#include <sys/mman.h>
#include <unistd.h>

#include "console/commands/Check.h"
#include "console/commands/Explain.h"
#include "console/commands/Guard.h"
#include "console/commands/JobEnd.h"
#include "console/commands/Jobs.h"
#include "console/commands/ShowLog.h"
#include "console/display/JsonView.h"
#include "console/display/PlainView.h"
#include "console/display/TerminalView.h"
#include "console/display/Wrapping.h"
#include "console/explain/Shortfall.h"
#include "console/job/ExitCode.h"
#include "console/job/Follower.h"
#include "console/job/LogStretch.h"
#include "console/job/Places.h"
#include "console/report/ReportPage.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "platform/WriteAll.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"

namespace kelvane::fuzz {
namespace {

using console::Charset;
using console::CopyOptions;
using console::Screen;

constexpr char kLogId[] = "17";

// A file without a name on any disk.
class File {
 public:
  explicit File(const char* name) : number_(::memfd_create(name, MFD_CLOEXEC)) {
    require(number_ >= 0, "there is room for a file");
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { ::close(number_); }

  void fill(const std::string& bytes) const {
    const bool isFilled = ::ftruncate(number_, 0) == 0 && ::lseek(number_, 0, SEEK_SET) == 0 &&
                          platform::writeAll(number_, bytes);
    require(isFilled, "a file takes what is written");
  }
  std::string path() const { return "/proc/self/fd/" + std::to_string(number_); }

 private:
  int number_;
};

struct Sent {
  File jobFile{"jobs"};
  File log{"log"};
  std::string jobs = {};
  std::string laterJobs = {};  // empty: they stay
  CopyOptions options() const { return {.jobFile = jobFile.path(), .logFile = log.path()}; }
  console::Places places() const {
    return {.jobFile = jobFile.path(), .log = log.path(), .isCopy = true};
  }
};

// How wide, in which characters, and for whom.
struct Form {
  std::size_t columns = 0;
  Charset charset = Charset::utf8;
  bool json = false;
  bool isFitted = true;  // whether no line may be wider

  bool isAscii() const { return charset == Charset::ascii && !json; }
};

void requireFitting(const std::string& text, std::size_t columns) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    require(console::columnsOf(line) <= columns, "no line is wider than the screen", line);
  }
}

void requireJson(const std::string& text) {
  if (!platform::parseJson(text).isNothing()) return;  // one object or list over several lines
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    require(!platform::parseJson("[" + line + "]").isNothing(), "what machines get is JSON", line);
  }
}

void show(const Form& form, const std::function<int(const Screen&)>& command) {
  std::ostringstream out;
  std::ostringstream messages;
  const Screen screen{out, form.charset, form.json ? 0 : form.columns, false, form.json};
  const int exitCode = console::guarded(
      messages, form.charset, [&] { return command(screen); }, form.columns);
  require(exitCode != console::kInternalError, "no file makes an error of another kind",
          messages.str());
  requireHarmless(out.str(), form.isAscii(), "no file steers the terminal");
  requireHarmless(messages.str(), form.charset == Charset::ascii, "no message steers the terminal");
  if (form.json) requireJson(out.str());
  if (form.isFitted && !form.json && form.columns != 0) requireFitting(out.str(), form.columns);
}

void showAll(const Sent& sent, Form form) {
  const CopyOptions copy = sent.options();
  show(form, [&](const Screen& screen) {
    return console::list({.sharedFolder = "", .copy = copy}, screen);
  });
  show(form, [&](const Screen& screen) {
    return console::list({.sharedFolder = "", .failed = true, .last = "2", .copy = copy}, screen);
  });
  show(form, [&](const Screen& screen) {
    return console::check({.sharedFolder = "", .bundle = "", .copy = copy}, screen);
  });
  show(form, [&](const Screen& screen) {
    return console::explain({.sharedFolder = "", .subject = kLogId, .copy = copy}, screen);
  });
  form.isFitted = false;  // what stands in the files as it stands there
  show(form, [&](const Screen& screen) {
    return console::show({.sharedFolder = "", .logId = kLogId, .copy = copy}, screen);
  });
  show(form, [&](const Screen& screen) {
    return console::showLog({.sharedFolder = "", .function = "", .full = true, .copy = copy},
                            screen);
  });
  show(form, [&](const Screen& screen) {
    return console::showLog(
        {.sharedFolder = "", .level = "error", .function = "", .tail = "3", .copy = copy}, screen);
  });
  show(form, [&](const Screen& screen) {
    return console::showLog({.sharedFolder = "", .function = "", .logId = kLogId, .copy = copy},
                            screen);
  });
}

// --- a job that is followed

// Between two looks a while passes; then the file is another one, and the job has no worker.
class Passing : public console::Clock, public console::Worker {
 public:
  explicit Passing(const Sent& sent) : sent_(sent) {}

  std::chrono::milliseconds now() override { return kWhile * looks_; }
  bool wait(std::chrono::milliseconds /*time*/) override {
    ++looks_;
    if (looks_ == kLater && !sent_.laterJobs.empty()) sent_.jobFile.fill(sent_.laterJobs);
    return true;
  }
  bool hasEnded() override { return looks_ >= kEnd; }
  bool isSeen() override { return looks_ % 2 == 0; }
  std::string ending() const override { return "exit status 0"; }

 private:
  static constexpr std::chrono::seconds kWhile{40};
  static constexpr int kLater = 3;
  static constexpr int kEnd = 6;

  const Sent& sent_;
  int looks_ = 0;
};

void followIn(console::View& view, const Sent& sent, const Screen& screen) {
  const console::Places places = sent.places();
  sent.jobFile.fill(sent.jobs);
  Passing passing(sent);
  const platform::Value record = console::recordAt(places, kLogId);
  console::Past past = console::pastOf(record, console::stretchIn(places, record), passing);
  past.log = [&](const platform::Value& seen) { return console::stretchIn(places, seen); };
  past.shortfall = [&](const platform::Value& seen, const console::LogStretch& log) {
    return console::shortfallAt(places, seen, log);
  };
  past.startFault = [](const platform::Value& seen) { return platform::describe(seen); };
  const auto followed = console::follow(console::JobFile::at(places.jobFile), kLogId, passing,
                                        passing, view, {}, past);
  if (followed.outcome == console::Outcome::finished) {
    console::endOfJob(followed.last, "", screen);
  }
}

// The same without what the view itself draws with: the way up to the first line, the rest of each
// line and all below the last erased.
std::string withoutDrawing(const std::string& drawn, std::size_t columns) {
  static constexpr std::string_view kEraseLineEnd = "\x1b[K";
  static const std::regex start("^(\x1b\\[J)?(\r\x1b\\[[0-9]+A)?");
  std::string text;
  std::istringstream lines(drawn);
  for (std::string line; std::getline(lines, line);) {
    line = std::regex_replace(line, start, "", std::regex_constants::format_first_only);
    if (line.ends_with(kEraseLineEnd)) {
      line.erase(line.size() - kEraseLineEnd.size());
      require(console::columnsOf(line) < columns, "no line that is drawn again is full", line);
    }
    text.append(line).append("\n");
  }
  return text;
}

void followOnTerminal(const Form& form, const Sent& sent) {
  std::ostringstream drawn;
  const auto size = [&form] { return console::TerminalSize{form.columns, 12}; };
  std::ostringstream messages;
  const int exitCode = console::guarded(messages, form.charset, [&] {
    std::ostringstream rest;
    console::TerminalView view(drawn, size, form.charset);
    followIn(view, sent, {rest, form.charset, form.columns});
    return console::kSuccess;
  });
  require(exitCode != console::kInternalError, "no job makes an error of another kind",
          messages.str());
  const std::string text = withoutDrawing(drawn.str(), form.columns);
  requireHarmless(text, form.isAscii(), "no job that is followed steers the terminal");
  requireFitting(text, form.columns);
}

void followAll(const Sent& sent, Form form) {
  form.isFitted = false;
  show(form, [&](const Screen& screen) {
    console::PlainView view(screen.out, screen.charset);
    followIn(view, sent, screen);
    return console::kSuccess;
  });
  show({.json = true}, [&](const Screen& screen) {
    console::JsonView view(screen.out);
    followIn(view, sent, screen);
    return console::kSuccess;
  });
  if (form.columns != 0) followOnTerminal(form, sent);
}

// --- a report

void requireMarkup(const std::string& page) {
  const XML_Parser parser = ::XML_ParserCreate("UTF-8");
  const auto status = ::XML_Parse(parser, page.data(), static_cast<int>(page.size()), XML_TRUE);
  ::XML_ParserFree(parser);
  require(status == XML_STATUS_OK, "a report is well-formed", page);
}

void report(const Sent& sent) {
  console::ReportMatter matter = console::gatherReport({.version = "1", .places = sent.places()});
  matter.findings = console::findingsOf(sent.places(), "");
  for (const bool isRedacted : {false, true}) {
    const std::string page = console::reportPage(matter, isRedacted).text;
    requireHarmless(page, false, "no file steers whoever looks at a report");
    require(page.find("<script") == std::string::npos, "a report has no script", page);
    requireMarkup(page);
  }
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  static const bool hasLocale = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
  fuzz::require(hasLocale, "widths of characters are known");
  fuzz::Bytes bytes(data, size);
  const std::size_t columns = bytes.flag() ? 20 + bytes.pick(181) : 0;
  const auto charset = bytes.flag() ? fuzz::Charset::ascii : fuzz::Charset::utf8;
  fuzz::Sent sent;
  sent.jobs = bytes.part();
  sent.jobFile.fill(sent.jobs);
  sent.log.fill(bytes.part());
  sent.laterJobs = bytes.rest();
  fuzz::showAll(sent, {.columns = columns, .charset = charset});
  fuzz::showAll(sent, {.json = true});
  fuzz::report(sent);
  fuzz::followAll(sent, {.columns = columns, .charset = charset});
  return 0;
}
