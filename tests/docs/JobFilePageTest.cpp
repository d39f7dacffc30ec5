// docs/job-file.md names what the contract lays down, all of it and nothing else.

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "contract/JobFile.h"
#include "platform/Json.h"
#include "platform/PropertyList.h"
#include "tests/docs/Page.h"

namespace kelvane::docs {
namespace {

using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

using Names = std::set<std::string>;

Names asSet(const std::vector<std::string>& names) { return {names.begin(), names.end()}; }
Names keys() { return {std::begin(job::kKeys), std::end(job::kKeys)}; }

std::string jobFilePage() { return readSource("docs/job-file.md"); }

std::vector<std::string> commandHeadings() {
  std::vector<std::string> found;
  const std::string commands = section(jobFilePage(), "## The commands, by example");
  for (std::size_t at = commands.find("\n### "); at != std::string::npos;
       at = commands.find("\n### ", at + 1)) {
    found.push_back(commands.substr(at + 5, commands.find('\n', at + 1) - at - 5));
  }
  return found;
}

// The names under "properties", at any depth.
void collectProperties(const nlohmann::json& schema, Names& found) {
  if (schema.is_object() && schema.contains("properties")) {
    for (const auto& [name, property] : schema.at("properties").items()) found.insert(name);
  }
  if (!schema.is_structured()) return;
  for (const auto& part : schema) collectProperties(part, found);
}

TEST(JobFilePage, NamesEveryKeyAndNoOther) {
  EXPECT_EQ(asSet(namesOf(tableRows(section(jobFilePage(), "## Keys")))), keys());
}

TEST(JobFilePage, NamesEveryStateAndNoOther) {
  EXPECT_EQ(asSet(namesOf(tableRows(section(jobFilePage(), "## States")))),
            Names(std::begin(job::kStates), std::end(job::kStates)));
}

TEST(JobFilePage, QuotesTheTextOfSuccess) {
  EXPECT_THAT(section(jobFilePage(), "## States"),
              HasSubstr(std::string("\"") + job::kNoError + "\""));
}

TEST(JobFilePage, TellsTheLimitsOfTheReaders) {
  EXPECT_THAT(section(jobFilePage(), "## How the worker writes"),
              HasSubstr("at most " + std::to_string(platform::kJsonDepthLimit) + " levels deep"));
  EXPECT_THAT(section(jobFilePage(), "## The catalogue"),
              HasSubstr("At most " + std::to_string(platform::kPropertyListDepthLimit) +
                        " containers may stand inside one another"));
  EXPECT_TRUE(platform::parseJson("[1e400]").isNothing());
}

TEST(JobFilePage, HasAnExampleForEveryCommandInTheirOrder) {
  EXPECT_THAT(commandHeadings(), ElementsAreArray(job::kCommands));
}

TEST(JobFileSchema, DescribesEveryKeyAndNoOther) {
  Names found;
  collectProperties(nlohmann::json::parse(readSource("docs/job-file.schema.json")), found);
  EXPECT_EQ(found, keys());
}

TEST(JobFileSchema, HasTheIdentityAndTheDefinitionThatThePageNames) {
  const auto schema = nlohmann::json::parse(readSource("docs/job-file.schema.json"));
  const std::string told = section(jobFilePage(), "## The schema");
  EXPECT_THAT(told, HasSubstr("`" + schema.at("$id").get<std::string>() + "`"));
  const std::size_t fence = told.find("```json\n") + 8;
  const auto wrapper = nlohmann::json::parse(told.substr(fence, told.find("```", fence) - fence));
  const std::string reference = wrapper.at("$ref").get<std::string>();
  EXPECT_TRUE(schema.contains(nlohmann::json::json_pointer(reference.substr(1)))) << reference;
}

TEST(JobFileSchema, KnowsEveryCommand) {
  const auto schema = nlohmann::json::parse(readSource("docs/job-file.schema.json"));
  const auto& definitions = schema.at("definitions");
  for (const char* place :
       {"/record/if/properties/job_id/enum", "/waitingJob/properties/job_id/enum"}) {
    EXPECT_THAT(definitions.at(nlohmann::json::json_pointer(place)).get<std::vector<std::string>>(),
                ElementsAreArray(job::kCommands));
  }
}

}  // namespace
}  // namespace kelvane::docs
