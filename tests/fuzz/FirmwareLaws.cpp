#include "tests/fuzz/FirmwareLaws.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include <fmt/format.h>

#include "contract/JobFile.h"
#include "tests/dialogues/Oracle.h"
#include "tests/fuzz/Law.h"
#include "tests/support/PlainJson.h"

namespace kelvane::fuzz {
namespace {

using dialogues::Json;
using test::PlainJson;
using Given = test::FakeFramework::Given;

constexpr unsigned kNoLimit = ~0U;

// The answers that were given, call by call. Behind the last one, where a job would have gone on,
// every call succeeds and every flash is done, so that it comes to an end.
class Recorded : public dialogues::Answerer {
 public:
  explicit Recorded(const test::FakeFramework& framework) : framework_(framework) {}

  void asked(const char* function) override {
    const std::size_t at = asked_++;
    given_ = at < framework_.given.size() ? framework_.given[at] : Given{};
    if (at >= framework_.given.size()) {
      given_.progress.stage = function == std::string("zr_getCPLDProgress") ? 2 : 5;
    }
  }
  std::uint32_t status(std::uint32_t (*)(dialogues::Decider&)) override { return given_.status; }
  bool tellsCount() override { return given_.failuresTellCounts; }
  std::uint16_t product(std::size_t device, const std::string&, char& kind) override {
    const std::uint16_t product = framework_.devices.at(device).productId;
    const unsigned high = product >> 8U;
    const bool isQvxf = high == 0x48 || high == 0x49;
    const bool hasUsbImage = (high >= 0x43 && high <= 0x47) || high == 0x88;
    kind = isQvxf ? 'q' : hasUsbImage ? 'u' : high == 0x42 ? 's' : 'x';
    return product;
  }
  dialogues::Progress progress(dialogues::Progress (*)(dialogues::Decider&,
                                                       const dialogues::Progress&, bool),
                               const dialogues::Progress&, bool) override {
    return given_.progress;
  }
  std::uint32_t interfaceByte() override { return given_.interfaceByte; }
  std::uint32_t updateFlag() override { return given_.usbUpdateFlag; }
  std::string description(std::uint32_t status) override {
    const auto known = framework_.descriptions.find(status);
    if (known == framework_.descriptions.end()) return fmt::format("text of {:#x}", status);
    return known->second == nullptr ? "(null)" : known->second;
  }
  void cut(const std::string&) override {}

 private:
  const test::FakeFramework& framework_;
  std::size_t asked_ = 0;
  Given given_;
};

bool isTextOrAbsent(const PlainJson* value) {
  return value == nullptr || value->is(PlainJson::Kind::text);
}

// Whether each entry has the kinds that it is to have.
bool areEntries(const PlainJson& inputs) {
  return inputs.is(PlainJson::Kind::list) &&
         std::all_of(inputs.elements.begin(), inputs.elements.end(), [](const PlainJson& entry) {
           return entry.is(PlainJson::Kind::object) && isTextOrAbsent(entry.find(job::kWwn)) &&
                  isTextOrAbsent(entry.find(job::kFilePath));
         });
}

bool hasText(const PlainJson& record, const char* key, std::string_view text) {
  const PlainJson* const value = record.find(key);
  return value != nullptr && value->isText(text);
}

bool suppliesParameters(const PlainJson* inputs) {
  return inputs != nullptr && (inputs->is(PlainJson::Kind::object) ||
                               (inputs->is(PlainJson::Kind::list) && !inputs->elements.empty()));
}

// The place of the first record that waits and is complete, with the parameters of one before it
// where it has none of its own: meant so.
std::optional<std::size_t> placeOfJob(const PlainJson& jobs, const std::string& logId) {
  bool hasParameters = false;
  for (std::size_t i = 0; i < jobs.elements.size(); ++i) {
    const PlainJson& record = jobs.elements[i];
    if (!record.is(PlainJson::Kind::object)) return {};
    hasParameters = hasParameters || suppliesParameters(record.find(job::kInputParameters));
    if (!hasParameters || record.find(job::kJobId) == nullptr) continue;
    if (hasText(record, job::kLogId, logId) && hasText(record, job::kStateId, job::kWait)) return i;
  }
  return {};
}

std::string linesOf(const std::vector<std::string>& course) {
  return fmt::format("{}\n", fmt::join(course, "\n"));
}

}  // namespace

FirmwareLaws::FirmwareLaws(std::string_view jobFile, const std::string& logId) {
  const auto jobs = test::readPlainJson(jobFile);
  if (!jobs || !jobs->is(PlainJson::Kind::list)) return;
  const auto place = placeOfJob(*jobs, logId);
  if (!place) return;
  place_ = *place;
  const PlainJson& record = jobs->elements[place_];
  const PlainJson* const inputs = record.find(job::kInputParameters);
  if (!hasText(record, job::kJobId, job::kUpdateFW) || record.find(job::kOutput) != nullptr ||
      (inputs != nullptr && !areEntries(*inputs))) {
    return;
  }
  record_ = test::printed(record);
  // A record of no job or of the same one has a part in what becomes of it.
  for (const PlainJson& each : jobs->elements) {
    const PlainJson* const own = each.find(job::kLogId);
    isAlone_ = isAlone_ && own != nullptr && own->is(PlainJson::Kind::text) &&
               (&each == &record || !own->isText(logId));
  }
}

void FirmwareLaws::judge(const std::vector<std::string>& course,
                         const test::FakeFramework& framework, std::string_view jobFileInTheEnd,
                         bool isDisturbed) const {
  if (record_.empty()) return;
  dialogues::Form form;
  form.jobs = Json::array({Json::parse(record_)});
  for (const auto& device : framework.devices) form.wwns.push_back(device.wwn);
  form.adapters = framework.adapters;
  form.polls = kNoLimit;
  Recorded answers(framework);
  const auto dialogue = dialogues::tell(form, answers, dialogues::Told::calls);
  std::vector<std::string> expected = dialogue.events;
  const bool isKnown = isAlone_ && !isDisturbed;
  // Of a record that is gone nobody asks for the result's text.
  if (!isKnown && course.size() + 1 == expected.size()) expected.pop_back();
  requireSame(linesOf(expected), linesOf(course),
              "calls with their records follow from what the framework answers");
  if (!isKnown) return;
  const Json jobs = Json::parse(jobFileInTheEnd);
  for (const char* key : {job::kStateId, job::kResult, job::kResultStr, job::kOutput}) {
    requireSame(dialogue.job.value(key, Json()).dump(2), jobs[place_].value(key, Json()).dump(2),
                "result, text and percentages follow from what the framework answers");
  }
}

}  // namespace kelvane::fuzz
