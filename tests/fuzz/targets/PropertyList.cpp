// Property lists, XML and binary, as they are and as they are written of what the bytes make; and
// the catalogue that one may be, with the packages chosen from it.

#include "platform/PropertyList.h"

#include <optional>
#include <string>
#include <vector>

#include "contract/Catalogue.h"
#include "contract/JobFile.h"
#include "platform/Json.h"
#include "platform/Text.h"
#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/ListWriter.h"
#include "tests/fuzz/MadeList.h"
#include "tests/fuzz/Selection.h"
#include "tests/fuzz/WorkerInMemory.h"
#include "tests/fuzz/laws/ListLaws.h"

namespace kelvane::fuzz {
namespace {

using platform::Value;

constexpr char kFolder[] = "/dl";
constexpr char kCatalogue[] = "/dl/catalogue.plist";

Value askedFor(const std::string& product) {
  return Value::dictionary(
      {{job::kProductId, product}, {job::kFolder, kFolder}, {job::kVersion, "asked"}});
}

// The parameters with what the rule tells of the package, and the path where it lies.
Value descriptionOf(const std::string& product, const Value& rule,
                    const std::optional<std::string>& path) {
  Value description = askedFor(product);
  if (rule.has(catalogue::kVersion)) description.set(job::kVersion, rule.get(catalogue::kVersion));
  if (rule.has(catalogue::kSize)) description.set(job::kSize, rule.get(catalogue::kSize));
  if (rule.has(catalogue::kHash)) description.set(job::kHash, rule.get(catalogue::kHash));
  if (path) description.set(job::kFilePath, *path);
  return description;
}

void choose(const std::string& bytes, const Value& catalogue) {
  WorkerInMemory world;
  world.disk.put(kCatalogue, bytes);
  world.disk.put("/dl/FW_T3.img", "");
  world.disk.put("/dl/p.bin", "");
  Kelvane worker(world.host);
  worker.init(kSharedFolder);
  const std::vector<std::string> products = {"other", "sw", "t2", "", "t3", "other", "SW"};
  Value all = Value::array();
  Value chosen = Value::array();
  for (const std::string& product : products) {
    all.append(askedFor(product));
    chosen.append(worker.getUpdateEngineDataInDownloadFolder(askedFor(product)));
    const Value& rules = catalogue.get(catalogue::kRules);
    requireChosen(chosenRule(plainRules(rules), product, "sw", test::FakeHost().version), rules,
                  product, chosen.at(chosen.count() - 1));
  }
  const auto paths =
      describedPaths(products, plainRules(chosen), kFolder,
                     [&](const std::string& path) { return world.disk.find(path) != nullptr; });
  Value expected = Value::array();
  for (std::size_t i = 0; i < paths.size(); ++i) {
    expected.append(descriptionOf(products[i], chosen.at(i), paths[i]));
  }
  const Value described = worker.getDownloadFileData(all, {});
  requireSame(platform::describe(expected), platform::describe(described),
              "a description tells of the chosen package and where it lies");
}

void judgeWritten(const Value& made, const std::string& bytes) {
  requireReadList(made, depthOfList(made) > platform::kPropertyListDepthLimit,
                  platform::parsePropertyList(bytes), bytes);
}

// What was made of the bytes, written in both forms.
void judgeForms(const Value& made, Bytes& style) {
  judgeWritten(made, binaryList(made, style));
  if (hasXmlForm(made)) judgeWritten(made, xmlList(made, style));
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  const std::string bytes = fuzz::Bytes(data, size).rest();
  const platform::Value list = platform::parsePropertyList(bytes);
  if (!list.isNothing()) {
    fuzz::requireList(list, platform::describe(list), platform::printJson(list));
  }
  if (list.has(catalogue::kRules)) fuzz::choose(bytes, list);

  fuzz::Bytes listBytes(data, size);
  fuzz::judgeForms(fuzz::madeList(listBytes), listBytes);
  fuzz::Bytes ruleBytes(data, size);
  const platform::Value rules = fuzz::madeCatalogue(ruleBytes);
  fuzz::judgeForms(rules, ruleBytes);
  fuzz::choose(fuzz::binaryList(rules, ruleBytes), rules);
  return 0;
}
