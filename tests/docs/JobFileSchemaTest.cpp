// docs/job-file.schema.json: what it takes, and what it refuses.

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/job/JobFile.h"
#include "platform/Json.h"
#include "tests/support/JobFileSchema.h"
#include "tests/support/TempFolder.h"

namespace kelvane::docs {
namespace {

using platform::Value;
using ::testing::IsEmpty;
using ::testing::Not;

struct Document {
  const char* what;
  const char* text;
};

std::ostream& operator<<(std::ostream& out, const Document& document) {
  return out << document.what;
}

// --- job files

class OddJobFile : public ::testing::TestWithParam<Document> {};

TEST_P(OddJobFile, IsValid) { EXPECT_THAT(test::validateJobFile(GetParam().text), IsEmpty()); }

constexpr Document kOdd[] = {
    {"no records", "[]"},
    {"a record of another kind", R"([{"note":5,"state_id":7}])"},
    {"a command that is not known", R"([{"log_id":"1","job_id":"other","state_id":"RUN"}])"},
    {"a state that is not known", R"([{"log_id":"1","job_id":"updateFW","state_id":"run"}])"},
    {"a command that is no text", R"([{"log_id":"1","job_id":null,"state_id":"RUN"}])"},
    {"a waiting job without parameters",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"WAIT"}])"},
    {"a job without a command", R"([{"log_id":"1","state_id":"RUN"}])"},
    {"a job without a state", R"([{"log_id":"1","job_id":"updateFW"}])"},
    {"a running download of a product without an identifier",
     R"([{"log_id":"1","job_id":"downloadOnlineUpdateFile","state_id":"RUN","result":0,
          "resultStr":"no error","output":[{"productid":"p"},{}],
          "input_parameters":[{"productid":"p","version":"1","url":"u","folder":"/f"},{}]}])"},
    {"a job without a log id", R"([{"job_id":"updateFW","state_id":"RUN"}])"},
    {"numbers of any length",
     R"([{"log_id":"1","n":12345678901234567890123,"m":[1e3,-0,0.10,null,true]}])"},
    {"unknown keys in a finished job",
     R"([{"log_id":"1","job_id":"getOnlineUpdateData","state_id":"FREE","result":0,
          "resultStr":"no error","x":{"y":[]},
          "input_parameters":{"productid":"","version":"","url":"","folder":"","z":null}}])"},
    {"a firmware job that ended before it ran",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"FREE","result":1026,
          "resultStr":"the device was not found","input_parameters":[{}]}])"},
    {"the greatest of all results",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"FREE","result":4294967295,
          "resultStr":""}])"},
    {"a download without its package",
     R"([{"log_id":"1","job_id":"downloadOnlineUpdateFile","state_id":"FREE","result":259,
          "resultStr":"file is not found","output":[{"productid":"p"}],
          "input_parameters":[{"productid":"p","version":"1","url":"u","folder":"/f"},{}]}])"},
};
INSTANTIATE_TEST_SUITE_P(All, OddJobFile, ::testing::ValuesIn(kOdd));

class WrongJobFile : public ::testing::TestWithParam<Document> {};

TEST_P(WrongJobFile, IsRefused) {
  EXPECT_THAT(test::validateJobFile(GetParam().text), Not(IsEmpty()));
}

constexpr Document kWrong[] = {
    {"no JSON", "[{"},
    {"an object at the top", R"({"log_id":"1"})"},
    {"a record that is no object", R"([{"log_id":"1"},"record"])"},
    {"a log id that is a number", R"([{"log_id":17}])"},
    {"a log id that is null", R"([{"log_id":null}])"},
    {"a finished job without a result",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"FREE"}])"},
    {"a result that is a text",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"FREE","result":"0","resultStr":""}])"},
    {"a result with a fraction",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"FREE","result":0.5,"resultStr":""}])"},
    {"a result below 0",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"FREE","result":-1,"resultStr":""}])"},
    {"a result above all statuses",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"FREE","result":4294967296,
          "resultStr":""}])"},
    {"an empty list of progress entries",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"FREE","result":0,"resultStr":"",
          "output":[]}])"},
    {"a percentage that is a text",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"FREE","result":0,"resultStr":"",
          "output":[{"wwn":"A","file_path":"/a","fw_percentage":"0","cpld_percentage":0,
                     "total_percentage":0}]}])"},
    {"a percentage below 0",
     R"([{"log_id":"1","job_id":"updateFW","state_id":"FREE","result":0,"resultStr":"",
          "output":[{"wwn":"A","file_path":"/a","fw_percentage":0,"cpld_percentage":0,
                     "total_percentage":-1}]}])"},
    {"a query that has failed",
     R"([{"log_id":"1","job_id":"getOnlineUpdateData","state_id":"FREE","result":259,
          "resultStr":"file is not found",
          "input_parameters":{"productid":"","version":"","url":"","folder":""}}])"},
    {"an installation that has failed",
     R"([{"log_id":"1","job_id":"updateSW","state_id":"FREE","result":1,"resultStr":"no error",
          "input_parameters":{"file_path":"/a"},"output":{"file_path":"/a"}}])"},
};
INSTANTIATE_TEST_SUITE_P(All, WrongJobFile, ::testing::ValuesIn(kWrong));

// --- what an application adds

class WrongWaitingJob : public ::testing::TestWithParam<Document> {};

TEST_P(WrongWaitingJob, IsRefused) {
  EXPECT_THAT(test::validateWaitingJob(GetParam().text), Not(IsEmpty()));
}

constexpr Document kWrongWaiting[] = {
    {"no object", "[]"},
    {"an empty log id",
     R"({"log_id":"","job_id":"updateSW","state_id":"WAIT","input_parameters":{"file_path":""}})"},
    {"another state",
     R"({"log_id":"1","job_id":"updateSW","state_id":"RUN","input_parameters":{"file_path":""}})"},
    {"another command",
     R"({"log_id":"1","job_id":"updatesw","state_id":"WAIT","input_parameters":{"file_path":""}})"},
    {"a file path that is no text in a download",
     R"({"log_id":"1","job_id":"downloadOnlineUpdateFile","state_id":"WAIT",
         "input_parameters":[{"productid":"","version":"","url":"","folder":"","file_path":5}]})"},
    {"a percentage of one's own",
     R"({"log_id":"1","job_id":"updateFW","state_id":"WAIT",
         "input_parameters":[{"wwn":"A","file_path":"/a","fw_percentage":0}]})"},
};
INSTANTIATE_TEST_SUITE_P(All, WrongWaitingJob, ::testing::ValuesIn(kWrongWaiting));

TEST(WaitingJob, TakesAnImagePathOf255BytesAndNoLongerOne) {
  const auto job = [](std::size_t length) {
    return R"({"log_id":"1","job_id":"updateFW","state_id":"WAIT","input_parameters":[{"wwn":"A",)"
           R"("file_path":")" +
           std::string(length, 'x') + R"("}]})";
  };
  EXPECT_THAT(test::validateWaitingJob(job(255)), IsEmpty());
  EXPECT_THAT(test::validateWaitingJob(job(256)), Not(IsEmpty()));
}

TEST(WaitingJob, IsWhatTheConsoleAdds) {
  const test::TempFolder folder;
  const console::JobFile file(folder.path() + "/");
  const Value input = Value::dictionary({{"wwn", "A"}, {"file_path", "/a.img"}});
  const Value added = file.add({"", "updateFW", Value::array({input})});
  EXPECT_THAT(test::validateWaitingJob(*platform::printJson(added)), IsEmpty());
}

TEST(Violation, NamesItsPlace) {
  const auto violations = test::validateJobFile(R"([{"log_id":"1"},{"log_id":2}])");
  ASSERT_THAT(violations, Not(IsEmpty()));
  EXPECT_THAT(violations, ::testing::Contains(::testing::StartsWith("<root>[1][log_id]: ")));
}

}  // namespace
}  // namespace kelvane::docs
