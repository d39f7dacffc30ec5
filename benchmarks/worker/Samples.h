// What the benchmarks work on: job files, catalogues, and the worker itself.
#pragma once

#include <optional>
#include <string>

#include "Kelvane.h"
#include "tests/support/FakeHost.h"
#include "tests/support/TempFolder.h"

namespace kelvane::benchmarks {

// The progress entry of the running job, with a percentage.
platform::Value progress();

// A job file of so many records, of about 500 bytes each; the running job, "17", is the last.
std::string jobFile(std::size_t records);

// The contents of a catalogue of so many rules; each has a product of its own, "product-N".
std::string catalogue(std::size_t rules);

// A worker that is set up in a folder, with its log, and whose product settings are `settings`.
class WorkerInFolder {
 public:
  explicit WorkerInFolder(const std::string& jobs, const std::string& settings = "{}");
  ~WorkerInFolder();

  Kelvane& worker() { return *worker_; }
  std::string path(const std::string& name) const { return folder_ / name; }
  const test::TempFolder& folder() const { return folder_; }
  void emptyLog() const;

 private:
  test::TempFolder folder_;
  test::FakeHost host_;
  std::optional<Kelvane> worker_;
};

}  // namespace kelvane::benchmarks
