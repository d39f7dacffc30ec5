// Property lists, XML and binary; and the catalogue that one may be, with the packages chosen from
// it.

#include "platform/PropertyList.h"

#include <string>
#include <vector>

#include "contract/Catalogue.h"
#include "contract/JobFile.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/WorkerInMemory.h"
#include "tests/support/PlainUtf8.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

constexpr char kCatalogue[] = "/dl/catalogue.plist";

// Whether JSON has a form for it.
bool isWritable(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::data:
    case Value::Kind::date:
      return false;
    case Value::Kind::number:
      return value.digits().find_first_of("in") == std::string::npos;  // "inf", "nan"
    case Value::Kind::array:
      for (const Value& element : value.elements()) {
        if (!isWritable(element)) return false;
      }
      return true;
    case Value::Kind::dictionary:
      for (const auto& [key, inner] : value.entries()) {
        if (!isWritable(inner)) return false;
      }
      return true;
    default:
      return true;
  }
}

void judgeList(const Value& list) {
  require(list.isDictionary(), "the root is a dictionary");
  const std::string shown = platform::describe(list);
  require(test::isPlainUtf8(shown), "what is shown is UTF-8", shown);
  // As a catalogue's rules become the output of a record of the job file.
  const auto text = platform::printJson(list);
  require(text.has_value() == isWritable(list), "what JSON has a form for is written", shown);
  if (text) require(platform::parseJson(*text) == list, "what is written is read again", *text);
}

// A rule of the catalogue, or none.
bool isFrom(const Value& chosen, const Value& catalogue) {
  if (chosen.entries().empty()) return true;
  for (const Value& rule : catalogue.get(catalogue::kRules).elements()) {
    if (rule == chosen) return true;
  }
  return false;
}

void choose(const std::string& bytes, const Value& catalogue) {
  WorkerInMemory world;
  world.disk.put(kCatalogue, bytes);
  Kelvane worker(world.host);
  worker.init(kSharedFolder);
  Value all = Value::array();
  for (const char* product : {"sw", "t3", "other", ""}) {
    const Value parameters = Value::dictionary({{job::kProductId, product}, {job::kFolder, "/dl"}});
    const Value chosen = worker.getUpdateEngineDataInDownloadFolder(parameters);
    require(chosen.isDictionary() && isFrom(chosen, catalogue), "a rule of the catalogue is chosen",
            platform::describe(chosen));
    all.append(parameters);
  }
  const Value described = worker.getDownloadFileData(all, {});
  require(described.count() <= all.count(), "no product is described twice");
  for (const Value& one : described.elements()) {
    require(one.has(job::kProductId) && one.has(job::kFolder), "a description keeps its parameters",
            platform::describe(one));
  }
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  const std::string bytes = fuzz::Bytes(data, size).rest();
  const platform::Value list = platform::parsePropertyList(bytes);
  if (list.isNothing()) return 0;
  fuzz::judgeList(list);
  if (list.has(catalogue::kRules)) fuzz::choose(bytes, list);
  return 0;
}
