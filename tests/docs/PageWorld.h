// The world that the pages' examples are set in, with the real worker: their settings, an update
// engine, an application to be replaced, a controller and its image.
//
// The pages speak of /Users/ann/ and /Applications/; both stand below the test's own folder.
#pragma once

#include <string>

#include "tests/end_to_end/Installation.h"

namespace kelvane::docs {

// One of the examples of docs/job-file.md: whole job files, as the page shows them.
struct WorkedExample {
  std::string before;
  std::string during;
  std::string after;
};
WorkedExample workedExample(const std::string& command);

// A log with every time and line number replaced by the same one: what is left is comparable.
std::string comparableLog(const std::string& log);

class PageWorld : public Installation {
 protected:
  PageWorld();

  // The page's text with the test's paths, and the test's text with the page's.
  std::string here(const std::string& pageText) const;
  std::string asOnPage(const std::string& text) const;
  // Puts the job file in place, as the page shows it, and runs its one job.
  void run(const std::string& jobFile) const;
  // Every version that the worker wrote, as a page would show it.
  std::vector<std::string> writtenVersions() const;
  // The worker's log so far, as a page would show it, in comparable form.
  std::string writtenLog() const { return comparableLog(asOnPage(log())); }

 private:
  void writeSettings() const;
  void writeEngine() const;
};

}  // namespace kelvane::docs
