// An installation whose jobs are reported, with a clock that the worker's sleeps move.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "tests/end_to_end/SupportInstallation.h"

namespace kelvane {

class ReportInstallation : public SupportInstallation {
 protected:
  ReportInstallation() { environment["KELVANE_TEST_TIME"] = "1798000000"; }

  // A waiting firmware job, 17, over controllers A1, B2 and C3, each with these faults of its
  // flashes.
  using Faults = std::array<std::string, 3>;
  void writeThree(const Faults& faults) const;
  void flashThree(const Faults& faults) const;

  // The report of the job, as the console writes it.
  std::string report(const std::string& logId = "17",
                     const std::vector<std::string>& options = {}) const;
};

}  // namespace kelvane
