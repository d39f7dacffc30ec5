// Reports of jobs of the real worker: each says what happened, where, and what to do.

#include <gmock/gmock.h>

#include "tests/end_to_end/ReportInstallation.h"
#include "tests/support/OrdinaryUser.h"

namespace kelvane {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class Report : public ReportInstallation {};

std::size_t countOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST_F(Report, OfASuccessOnThreeControllers) {
  flashThree({});
  ASSERT_EQ(result(), 0);
  const std::string page = report();
  EXPECT_THAT(page, AllOf(HasSubstr("<strong>Done</strong> job 17 (updateFW): finished with "
                                    "result 0"),
                          HasSubstr("<dd>Every controller has its firmware.</dd>"),
                          HasSubstr("<p>No findings.</p>")));
  EXPECT_EQ(countOf(page, "<svg class=\"plot\""), 3U);
  EXPECT_EQ(countOf(page, "<td>the flash is completed</td>"), 3U);
  EXPECT_THAT(page, Not(HasSubstr("no change for")));
}

TEST_F(Report, OfACpldThatWasTriedAgain) {
  flashThree({R"({"flash": "cpld", "do": "retry", "at": 60})"});
  ASSERT_EQ(result(), 0);
  EXPECT_THAT(report(), AllOf(HasSubstr("<strong>Done</strong>"),
                              HasSubstr("<li>50000000000000A1: its CPLD&#39;s flash was tried "
                                        "again once</li>"),
                              HasSubstr("<text class=\"mark retry\""),
                              HasSubstr("<td>the CPLD&#39;s flash is tried again</td>")));
}

TEST_F(Report, OfAStallOfTenMinutes) {
  flashThree({"", R"({"flash": "firmware", "do": "stall", "at": 40, "seconds": 600})"});
  ASSERT_EQ(result(), 0);
  const std::string page = report();
  EXPECT_THAT(page, AllOf(HasSubstr("<strong>Done</strong>"),
                          HasSubstr("<li>50000000000000B2: no change for 10:0"),
                          HasSubstr("on; then it went on</li>"), HasSubstr(">no change 10:0")));
  EXPECT_EQ(countOf(page, "<rect class=\"silence\""), 1U);
}

TEST_F(Report, OfAFlashErrorAtNinetyPercent) {
  flashThree({"", R"({"flash": "firmware", "do": "fail", "at": 90})"});
  ASSERT_EQ(result(), 0x8054);
  EXPECT_THAT(
      report(),
      AllOf(HasSubstr("<strong>Failed</strong> job 17 (updateFW): finished with result 32852 "
                      "(0x8054)"),
            HasSubstr("<dd>1 done, 50000000000000B2 failed at 9"),
            HasSubstr("<dt>What to do</dt><dd>Leave the enclosure powered and update it again."),
            HasSubstr(" updateFW: Flash Error</dd>"), HasSubstr("<text class=\"mark fault\""),
            HasSubstr("<h3>50000000000000C3</h3><p>The worker did not come to it")));
}

TEST_F(Report, OfAWorkerThatWasKilled) {
  environment["KELVANE_TEST_KILL"] = "40";
  writeThree({});
  runWorker({"17", shared()});
  const std::string page = report();
  EXPECT_THAT(
      page,
      AllOf(HasSubstr("<strong>Left undone</strong> job 17 (updateFW): running, and no "
                      "worker for it is seen"),
            HasSubstr("<dd>Its worker was killed, the computer went down"),
            HasSubstr("<dt>What to do</dt><dd>Leave the enclosures powered for some "),
            HasSubstr("<dd>1 done, 50000000000000B2 stopped at "), HasSubstr("job-no-worker")));
  EXPECT_EQ(countOf(page, "<svg class=\"plot\""), 2U);
}

TEST_F(Report, OfADownloadWithoutItsPackage) {
  download({"fw3", "fw2"});
  ASSERT_EQ(result(), 259);
  EXPECT_THAT(report(),
              AllOf(HasSubstr("<strong>Failed</strong> job 17 (downloadOnlineUpdateFile): finished "
                              "with result 259 (0x0103)"),
                    HasSubstr("<li>fw2: the catalogue offers version 2.4.0, and its package was "
                              "not brought"),
                    HasSubstr("<p>Fetch packages from the update service:</p>"),
                    HasSubstr("<dt>What to do</dt>"), Not(HasSubstr("<svg"))));
}

TEST_F(Report, OfADamagedJobFile) {
  flashThree({});
  folder.write(test::kJobFile, "[{\"log_id\": \"17\",\n  \"job_id\" \"updateFW\"}]");
  EXPECT_THAT(report(), AllOf(HasSubstr("<strong>Done</strong> job 17 (updateFW)"),
                              HasSubstr("What is told here of the job is as the log shows it"),
                              HasSubstr("line 2, column "), HasSubstr("job-file-damaged"),
                              HasSubstr("50000000000000C3, percentages over time"),
                              HasSubstr("updateAllFW end, retDict = ")));
}

TEST_F(Report, OfAnInstallationWithoutPermission) {
  giveSharedFolderToEveryone();
  test::asOrdinaryUser([this] {
    return console({"update-sw", "--shared", shared(), "--bundle", bundle.path(),
                    folder / "Manager.app"})
        .err;
  });
  EXPECT_THAT(
      report("1"),
      AllOf(HasSubstr("<strong>Failed</strong> job 1 (updateSW): finished with result 0"),
            HasSubstr("but what stands at " + (folder / "Installed.app") + " is not the package: "),
            HasSubstr("<dd>Mend what the system&#39;s tools complained of, such as a "
                      "missing permission"),
            HasSubstr("<li>standard error: /bin/rm: "), HasSubstr("Permission denied</li>"),
            HasSubstr("<th scope=\"row\" class=\"path\">" + (folder / "Installed.app") +
                      "</th><td class=\"short\">folder</td><td class=\"short\">drwx")));
  EXPECT_THAT(report("1", {"--offline"}),
              AllOf(HasSubstr("<strong>Failed</strong> job 1 (updateSW): finished with result 0"),
                    HasSubstr("but the system&#39;s tools complained: &quot;/bin/rm: ")));
}

TEST_F(Report, AnEmptyLogIdIsNotTheLastJob) {
  const test::Ended ended = console({"report", "--shared", shared(), ""});
  EXPECT_EQ(ended.exitStatus, 2);
  EXPECT_EQ(ended.err, "kelvane-console: the log id is missing\n");
}

TEST_F(Report, RedactedItHoldsNoWwnAndSaysSo) {
  flashThree({"", R"({"flash": "firmware", "do": "fail", "at": 90})"});
  EXPECT_THAT(report("17", {"--redact"}),
              AllOf(Not(HasSubstr("50000000000000")), HasSubstr("<h3>[wwn-1]</h3>"),
                    HasSubstr("<dd>1 done, [wwn-2] failed at 9"), HasSubstr("WWNs 3 (")));
}

TEST_F(Report, TellsVersionsSettingsAndPermissions) {
  flashThree({});
  EXPECT_THAT(report(),
              AllOf(HasSubstr("<th scope=\"row\" class=\"short\">framework</th>"),
                    HasSubstr("<td class=\"path\">" + framework()),
                    HasSubstr("<td class=\"path\">" + worker()),
                    HasSubstr("&quot;AppPath&quot;: &quot;" + bundle.path() + "&quot;"),
                    HasSubstr("<th scope=\"row\" class=\"path\">" + jobFile() +
                              "</th><td class=\"short\">file</td>"),
                    HasSubstr("&quot;online_update_plist_name&quot;: &quot;Offers&quot;")));
}

// Fifty megabytes of other jobs before this one.
TEST_F(Report, OfALongLogItIsMadeInBounds) {
  std::string others;
  for (int i = 0; i < 250000; ++i) {
    others.append("[14:03:07] [x.cpp][1][readJSONFile][debug] ").append(150, 'x').append("\n");
  }
  folder.write("shared/utility/logs/TarselVistrelUtility.txt", others);
  flashThree({});
  const std::string page = report();
  EXPECT_LT(page.size(), 3U << 20U);
  EXPECT_THAT(page, AllOf(HasSubstr("<strong>Done</strong>"), Not(HasSubstr("xxxxx"))));
}

TEST_F(Report, WithoutABundleItSaysThatItWasNotLookedAt) {
  flashThree({});
  const std::string path = folder / "report.html";
  EXPECT_EQ(console({"report", "--shared", shared(), "-o", path}).exitStatus, 0);
  EXPECT_THAT(folder.read("report.html"), HasSubstr("No bundle was given (--bundle)"));
}

}  // namespace
}  // namespace kelvane
