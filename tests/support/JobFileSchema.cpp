#include "tests/support/JobFileSchema.h"

#include <fstream>
#include <memory>
#include <stdexcept>

#include <nlohmann/json.hpp>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

namespace kelvane::test {
namespace {

using Adapter = valijson::adapters::NlohmannJsonAdapter;

nlohmann::json readSchema() {
  std::ifstream file(KELVANE_JOB_FILE_SCHEMA);
  if (!file) throw std::runtime_error("open " KELVANE_JOB_FILE_SCHEMA);
  return nlohmann::json::parse(file);
}

std::unique_ptr<valijson::Schema> compile(const nlohmann::json& document) {
  auto schema = std::make_unique<valijson::Schema>();
  valijson::SchemaParser().populateSchema(Adapter(document), *schema);
  return schema;
}

std::unique_ptr<valijson::Schema> compileWaitingJob() {
  nlohmann::json document;
  document["allOf"] = {{{"$ref", "#/definitions/waitingJob"}}};
  document["definitions"] = readSchema().at("definitions");
  return compile(document);
}

std::string describe(const valijson::ValidationResults::Error& error) {
  std::string place;
  for (const std::string& step : error.context) place += step;
  return place + ": " + error.description;
}

std::vector<std::string> validate(const valijson::Schema& schema, const std::string& text) {
  const nlohmann::json document = nlohmann::json::parse(text, nullptr, false);
  if (document.is_discarded()) return {"not JSON: " + text};
  valijson::ValidationResults results;
  valijson::Validator().validate(schema, Adapter(document), &results);
  std::vector<std::string> violations;
  for (const auto& error : results) violations.push_back(describe(error));
  return violations;
}

}  // namespace

// The schemas are compiled once: the unit tests hold thousands of versions against them.

std::vector<std::string> validateJobFile(const std::string& text) {
  static const std::unique_ptr<valijson::Schema> schema = compile(readSchema());
  return validate(*schema, text);
}

std::vector<std::string> validateWaitingJob(const std::string& text) {
  static const std::unique_ptr<valijson::Schema> schema = compileWaitingJob();
  return validate(*schema, text);
}

}  // namespace kelvane::test
