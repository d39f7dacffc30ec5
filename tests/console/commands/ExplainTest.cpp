// The sub-command explain.

#include <filesystem>

#include "console/commands/Explain.h"
#include "console/explain/ResultCodes.h"
#include "console/job/ExitCode.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/console/ConsoleWorld.h"
#include "tests/console/explain/LogOfFlashes.h"
#include "tests/console/job/LogLines.h"

namespace kelvane::console {
namespace {

using platform::Value;

class Explain : public ConsoleWorld {
 protected:
  int run(const std::string& subject) {
    options.subject = subject;
    return runHere(explain, options);
  }
  // A finished download with this log id in a shared folder.
  void addJob(const std::string& logId) {
    options.sharedFolder = folder / "shared";
    folder.write("shared/utility/logs/TarselVistrelUtility.txt", "");
    folder.write(test::kJobFile, R"([{"log_id": ")" + logId +
                                     R"(", "job_id": "downloadOnlineUpdateFile", "state_id": "FREE",
                                       "result": 0, "resultStr": "no error"}])");
  }

  ExplainOptions options;
};

TEST_F(Explain, ACodeInHexadecimalDigits) {
  EXPECT_EQ(run("0x0402"), kSuccess);
  EXPECT_EQ(shown.str(),
            "result 1026 (0x0402), kZorDeviceNotFound: the device was not found\n"
            "  means      No controller has the WWN of an entry, or the job had no input "
            "parameters. The controllers after it were not started.\n"
            "  who acts   user\n"
            "  to do      Switch the enclosure on, check its cable and the WWN, letter by letter.\n"
            "  try again  yes\n");
}

TEST_F(Explain, EveryKnownCodeInDecimalDigits) {
  for (const ResultCode& code : resultCodes()) {
    shown.str("");
    EXPECT_EQ(run(std::to_string(code.code)), kSuccess);
    EXPECT_NE(shown.str().find(code.name), std::string::npos);
    EXPECT_NE(shown.str().find(code.meaning), std::string::npos);
    EXPECT_NE(shown.str().find(code.advice), std::string::npos);
  }
}

TEST_F(Explain, ABare259IsExplainedForBothCommands) {
  screen.json = true;
  EXPECT_EQ(run("259"), kSuccess);
  const Value all = platform::parseJson(shown.str());
  ASSERT_EQ(all.count(), 2U);
  EXPECT_EQ(all.at(0).get("note"), Value("This is so for downloadOnlineUpdateFile alone."));
  EXPECT_EQ(all.at(1).get("subject"),
            Value("result 259 (0x0103): a status of the controller framework's own"));
  EXPECT_EQ(all.at(1).get("note"), Value("This is so for updateFW."));
}

TEST_F(Explain, ANumberThatIsInNoTableIsAStatusOfTheFramework) {
  EXPECT_EQ(run("0x8052"), kNotFound);
  EXPECT_EQ(shown.str().substr(0, shown.str().find('\n')),
            "result 32850 (0x8052): a status of the controller framework's own");
  EXPECT_NE(shown.str().find("Read the job's resultStr"), std::string::npos);
  EXPECT_EQ(shown.str().find("note"), std::string::npos);
}

TEST_F(Explain, ANumberThatIsNoJobEitherSaysSo) {
  addJob("17");
  EXPECT_EQ(run("18"), kNotFound);
  EXPECT_NE(shown.str().find("note       No job of the job file has this log id.\n"),
            std::string::npos);
}

TEST_F(Explain, ALogIdThatTheLogAloneShowsIsNoCode) {
  options.sharedFolder = folder / "shared";
  folder.write(test::kJobFile, "[]");
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", test::writtenLine("3", "A1", 50));
  EXPECT_EQ(run("3"), kNotFound);
  EXPECT_EQ(shown.str(), "");
  EXPECT_NE(messages.str().find(". The log shows it: give list, show, explain or report "),
            std::string::npos)
      << messages.str();
  EXPECT_EQ(run("0x0003"), kNotFound);
  EXPECT_EQ(shown.str().find("The log shows it"), std::string::npos);
}

TEST_F(Explain, AStatusByItsName) {
  EXPECT_EQ(run("kZorDeviceNotFound"), kSuccess);
  EXPECT_EQ(shown.str().rfind("result 1026 (0x0402), kZorDeviceNotFound: ", 0), 0U);
  shown.str("");
  EXPECT_EQ(run("kzorflashfailed"), kSuccess);
  EXPECT_EQ(shown.str().rfind("result 32852 (0x8054), ", 0), 0U);
}

TEST_F(Explain, ACodeWithoutItsPrefixIsToldFromALogId) {
  addJob("17");
  EXPECT_EQ(run("8050"), kNotFound);
  EXPECT_NE(
      shown.str().find("note       No job of the job file has this log id. 8050: did you mean "
                       "0x8050?\n"),
      std::string::npos)
      << shown.str();
  EXPECT_EQ(run("402"), kNotFound);
  EXPECT_NE(shown.str().find("402: did you mean 0x0402?\n"), std::string::npos);
}

TEST_F(Explain, WhatIsNeitherIsNotFound) {
  for (const char* subject :
       {"seventeen", "0x", "0x8050x", "4294967296", "-1", " 1", "0x100000000"}) {
    messages.str("");
    EXPECT_EQ(run(subject), kNotFound);
    EXPECT_EQ(messages.str(), "kelvane-console: \"" + std::string(subject) +
                                  "\" is no result code; for a log id name the shared folder\n");
  }
  EXPECT_EQ(shown.str(), "");
}

TEST_F(Explain, ALogIdThatIsNotThereIsNotFound) {
  addJob("17");
  EXPECT_EQ(run("seventeen"), kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: no job seventeen in " + (folder / test::kJobFile) +
                                ", and it is no result code\n");
}

TEST_F(Explain, AJob) {
  addJob("17");
  EXPECT_EQ(run("17"), kSuccess);
  EXPECT_EQ(shown.str(),
            "job 17 (downloadOnlineUpdateFile): finished with result 0 (0x0000), kZorSuccess: no "
            "error\n"
            "  means      Every package is there; the output has the paths.\n"
            "  who acts   nobody\n"
            "  try again  no\n"
            "  note       The log has no lines of this job.\n");
}

TEST_F(Explain, ALogIdWinsOverACodeAndSaysHowToAskForThat) {
  addJob("259");
  EXPECT_EQ(run("259"), kSuccess);
  EXPECT_EQ(shown.str().rfind("job 259 (downloadOnlineUpdateFile): ", 0), 0U);
  EXPECT_NE(shown.str().find("\"explain 0x0103\" explains the result of that number."),
            std::string::npos);
  shown.str("");
  EXPECT_EQ(run("0x0103"), kSuccess);
  EXPECT_EQ(shown.str().rfind("result 259 (0x0103), kFileNotFound", 0), 0U);
}

TEST_F(Explain, AJobOfFilesThatWereMailed) {
  addJob("17");
  options = {};
  options.copy = {.jobFile = folder / test::kJobFile};
  EXPECT_EQ(run("17"), kSuccess);
  EXPECT_EQ(shown.str(),
            "job 17 (downloadOnlineUpdateFile): finished with result 0 (0x0000), kZorSuccess: no "
            "error\n"
            "  means      Every package is there; the output has the paths.\n"
            "  who acts   nobody\n"
            "  try again  no\n"
            "  note       The log is not at hand. This is a copy: neither workers nor the files "
            "that the job names were looked for.\n");
  EXPECT_EQ(run("18x"), kNotFound);
  EXPECT_EQ(messages.str(), "kelvane-console: no job 18x in " + (folder / test::kJobFile) +
                                ", and it is no result code\n");
}

TEST_F(Explain, AJobOfALogAlone) {
  options.copy.logFile = folder.write(
      "log.txt", "[14:03:07] [a.cpp][1][run][debug] currentJobArray = " +
                     platform::describe(platform::parseJson(R"([{"log_id": "17", "state_id": "FREE",
                         "job_id": "downloadOnlineUpdateFile", "result": 0}])")) +
                     "\n");
  EXPECT_EQ(run("17"), kSuccess);
  EXPECT_EQ(shown.str().rfind("job 17 (downloadOnlineUpdateFile): finished with result 0 ", 0), 0U);
  EXPECT_NE(shown.str().find("looked for. The record is as the log shows it last.\n"),
            std::string::npos);
  options.copy.logFile = folder.write("empty.txt", "");
  EXPECT_EQ(run("17"), kNotFound);
  EXPECT_EQ(run("0x0402"), kSuccess);
}

TEST_F(Explain, ALineOfTheLogOfAnyLengthIsShownFromItsBeginning) {
  addJob("17");
  const std::string step = test::logLine("getPackage", "package " + std::string(20'000, 'x'));
  folder.write("shared/utility/logs/TarselVistrelUtility.txt",
               test::takenLines("17", "downloadOnlineUpdateFile") + step);
  EXPECT_EQ(run("17"), kSuccess);
  EXPECT_NE(shown.str().find("getPackage: package xxx"), std::string::npos);
  EXPECT_NE(shown.str().find("xxx… (200"), std::string::npos);
  EXPECT_LT(shown.str().size(), 10'000U);
}

TEST_F(Explain, AMissingLogIsToldInANote) {
  addJob("17");
  std::filesystem::remove(folder / "shared/utility/logs/TarselVistrelUtility.txt");
  EXPECT_EQ(run("17"), kSuccess);
  EXPECT_NE(shown.str().find("TarselVistrelUtility.txt does not exist"), std::string::npos);
}

TEST_F(Explain, ADamagedJobFileHidesJobsButNoCodes) {
  addJob("17");
  folder.write(test::kJobFile, "[");
  EXPECT_EQ(run("seventeen"), kJobFileFailed);
  EXPECT_EQ(messages.str(), "kelvane-console: " + (folder / test::kJobFile) +
                                " is not JSON: line 1, column 2: unexpected end of input; expected "
                                "'[', '{', or a literal. It is left "
                                "as it is; see \"kelvane-console check\"\n");
  EXPECT_EQ(run("0x0402"), kSuccess);
}

TEST_F(Explain, WithoutASubjectItIsBadUsage) {
  EXPECT_EQ(run(""), kBadUsage);
  EXPECT_EQ(messages.str(), "kelvane-console: the code or log id is missing\n");
}

}  // namespace
}  // namespace kelvane::console
