// A job file and a log, as somebody may have sent them, through all that the console shows of them.
// No file steers the terminal, whatever it holds, and none makes an error that was not foreseen.

#include <clocale>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <string>

#include <expat.h>
#include <sys/mman.h>
#include <unistd.h>

#include "console/commands/Check.h"
#include "console/commands/Explain.h"
#include "console/commands/Guard.h"
#include "console/commands/Jobs.h"
#include "console/commands/ShowLog.h"
#include "console/display/Wrapping.h"
#include "console/job/ExitCode.h"
#include "console/report/ReportPage.h"
#include "platform/Json.h"
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
  const fuzz::Sent sent;
  sent.jobFile.fill(bytes.part());
  sent.log.fill(bytes.rest());
  fuzz::showAll(sent, {.columns = columns, .charset = charset});
  fuzz::showAll(sent, {.json = true});
  fuzz::report(sent);
  return 0;
}
