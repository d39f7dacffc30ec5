// The worker while memory cannot be had: it ends like always, and the job file is whole.

#include <filesystem>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "platform/Json.h"
#include "tests/end_to_end/OnlineInstallation.h"

namespace kelvane {
namespace {

using platform::Value;

class OutOfMemory : public OnlineInstallation {
 protected:
  OutOfMemory() {
    environment["LD_PRELOAD"] = KELVANE_MEMORY_INTERPOSER;  // alone: the other needs memory itself
    environment["KELVANE_FAULT_DONE"] = folder / "done";
    writeFleet("[]");
  }

  // Runs the job with a request failing, one in every `step` of them, until none does.
  // The first requests are the runtime's own, for the exceptions that tell of those that fail:
  // one of the worker's runtime and one of the simulated framework's.
  void expectAnEnd(const char* variable, const std::string& command, const Value& inputs,
                   int step) {
    int n = 3;
    for (;; n += step) {
      environment[variable] = std::to_string(n);
      std::filesystem::remove(folder / "done");
      writeJobs(
          *platform::printJson(Value::array({Value::dictionary({{"log_id", "17"},
                                                                {"job_id", command},
                                                                {"state_id", "WAIT"},
                                                                {"input_parameters", inputs}})})));
      const test::Ended ended = runWorker({"17", shared()});
      ASSERT_EQ(ended.exitStatus, 0) << variable << "=" << n << ": " << ended.err;
      ASSERT_EQ(jobs().at(0).get("log_id"), Value("17")) << variable << "=" << n;
      if (!std::filesystem::exists(folder / "done")) break;
    }
    EXPECT_EQ(jobs().at(0).get("state_id"), Value("FREE"));
    EXPECT_GT(n, 100);
    environment.erase(variable);
  }
  void expectAnEnd(const std::string& command, const Value& inputs) {
    expectAnEnd("KELVANE_FAULT_MEMORY", command, inputs, 17);
    expectAnEnd("KELVANE_FAULT_MEMORY_FROM", command, inputs, 43);
  }
};

TEST_F(OutOfMemory, AQueryEndsLikeAlways) { expectAnEnd("getOnlineUpdateData", parameters("fw3")); }

TEST_F(OutOfMemory, ADownloadEndsLikeAlways) {
  expectAnEnd("downloadOnlineUpdateFile", Value::array({parameters("fw3"), parameters("sw")}));
}

TEST_F(OutOfMemory, AnInstallationEndsLikeAlways) {
  expectAnEnd("updateSW", Value::dictionary({{"file_path", folder / "Manager.app"}}));
}

TEST_F(OutOfMemory, AFirmwareJobEndsLikeAlways) {
  expectAnEnd("updateFW",
              Value::array({Value::dictionary({{"wwn", "unknown"}, {"file_path", "/i"}})}));
}

}  // namespace
}  // namespace kelvane
