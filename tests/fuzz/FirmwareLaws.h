// What holds of a whole firmware job: all of it follows from the job and from what the framework
// answered. The oracle of tests/dialogues tells it of the answers as they were given.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/FakeFramework.h"

namespace kelvane::fuzz {

// The job file at the job's start, and the job that runs.
class FirmwareLaws {
 public:
  FirmwareLaws(std::string_view jobFile, const std::string& logId);

  // Every call with its arguments and every sleep, in their order, is what follows, up to the last
  // call where the job's record is `disturbed`; and where it is not, so is what the record holds in
  // the end: output, result and text. Of a job that told an error nothing is known, nor of one
  // whose input has other kinds than it is to have.
  void judge(const std::vector<std::string>& course, const test::FakeFramework& framework,
             std::string_view jobFileInTheEnd, bool isDisturbed) const;

 private:
  std::string record_;  // as JSON; empty where no job runs that can be told of
  std::size_t place_ = 0;
  bool isAlone_ = true;
};

}  // namespace kelvane::fuzz
