// What holds for every version of the job file that the worker puts in place, whatever the file
// held before and whatever was answered to the worker; read apart from the platform.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "tests/support/PlainJson.h"

namespace kelvane::fuzz {

class JobFileLaws {
 public:
  explicit JobFileLaws(std::string logId) : logId_(std::move(logId)) {}

  // Someone else has written the file while the job ran: what of the job's own record may change,
  // and whether it is there at all, is no longer known.
  void disturb() { isDisturbed_ = true; }
  bool isDisturbed() const { return isDisturbed_; }

  // The file is about to be replaced.
  void judge(std::string_view before, std::string_view after);

  // How many were put in place.
  int versions() const { return versions_; }
  // Whether the job was begun, and not finished; false where that is no longer known.
  bool isLeftRunning() const;
  // Of the job's record, in the version put in place last: "RUN", "FREE"; empty before the first.
  const std::string& state() const { return state_; }

 private:
  void judgeOwn(const test::PlainJson& was, const test::PlainJson& is, bool isAlone,
                std::string_view text);

  std::string logId_;
  std::string state_;
  int versions_ = 0;
  bool isDisturbed_ = false;
};

}  // namespace kelvane::fuzz
