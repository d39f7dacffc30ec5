// The update catalogue: reading it, choosing the one package that applies to a product, and
// describing each product's download.

#include "contract/Catalogue.h"

#include <algorithm>
#include <string>
#include <vector>

#include "Kelvane.h"
#include "contract/JobFile.h"
#include "contract/Settings.h"
#include "log/iLog.h"
#include "online_update/Parameters.h"
#include "platform/File.h"
#include "platform/PropertyList.h"
#include "platform/Regex.h"
#include "platform/Text.h"

namespace kelvane {

using platform::Value;

namespace {

// Whether the rule is of no concern whatever else it holds: most of a large catalogue.
bool isOfAnother(const Value& rule, const Value& productId) {
  const Value& ruleProductId = rule.get(catalogue::kProductId);
  return ruleProductId.isString() && productId.isString() &&
         ruleProductId.string() != productId.string();
}

bool isComplete(const Value& rule) {
  return rule.has(catalogue::kProductId) && rule.has(catalogue::kVersion) &&
         rule.has(catalogue::kSize) && rule.has(catalogue::kHash);
}

// Whether the running system is at least the rule's minimum; without three parts it is not.
bool isSatisfied(const Value& rule, const platform::SystemVersion& running) {
  const Value& minimum = rule.get(catalogue::kMinimumOs);
  if (minimum.isNothing()) return false;
  static const platform::Regex threeParts("(\\w+).(\\w+).(\\w+)");
  const auto parts = threeParts.firstMatch(minimum.string());
  if (!parts) return false;
  const platform::SystemVersion wanted = {platform::leadingInteger((*parts)[1]),
                                          platform::leadingInteger((*parts)[2]),
                                          platform::leadingInteger((*parts)[3])};
  return running >= wanted;
}

// Descending, character by character: 9.0.0 stands before 10.15.0, meant so.
bool standsBefore(const Value& left, const Value& right) {
  for (const char* key : {catalogue::kMinimumOs, catalogue::kVersion}) {
    const int order = platform::compare(left.get(key), right.get(key));
    if (order != 0) return order > 0;
  }
  return false;
}

// What is carried from one description to the next.
struct Carried {
  Value expectedPath;
  Value packagePath;  // found through "Codebase"
};

// The package's file name in its "Codebase", nothing where that is no name to look for.
Value codebaseName(const Value& rule) {
  const Value& codebase = rule.get(catalogue::kCodebase);
  if (codebase.isNothing()) return {};
  const Value parts = platform::split(codebase.string(), '/');
  const Value& name = parts.at(parts.count() - 1);
  const Value pieces = platform::split(name.string(), '.');
  const std::string& extension = pieces.at(pieces.count() - 1).string();
  if (pieces.count() < 2 || extension == "dmg" || extension == "zip") return {};
  return name;
}

void setFilePath(Value& description, const Value& rule, Carried& carried) {
  if (!carried.expectedPath.isNothing() && platform::exists(carried.expectedPath.string())) {
    description.set(job::kFilePath, carried.expectedPath);
    return;
  }
  const Value name = codebaseName(rule);
  if (name.isNothing()) {
    // With a package remembered from an earlier element there is no path at all: meant so.
    if (carried.packagePath.isNothing()) description.set(job::kFilePath, "");
    return;
  }
  const std::string path = platform::format("%@/%@", description.get(job::kFolder), name);
  const bool isThere = platform::exists(path);
  carried.packagePath = isThere ? Value(path) : Value();
  description.set(job::kFilePath, isThere ? path : "");
}

void copyFromRule(Value& description, const Value& rule) {
  const std::pair<const char*, const char*> keys[] = {{catalogue::kVersion, job::kVersion},
                                                      {catalogue::kSize, job::kSize},
                                                      {catalogue::kHash, job::kHash}};
  for (const auto& [from, to] : keys) {
    if (rule.has(from)) description.set(to, rule.get(from));
  }
}

}  // namespace

// Read at every call, and parsed where it differs from the last.
Value Kelvane::rulesIn(const std::string& catalogue) {
  if (!platform::exists(catalogue)) return {};
  return platform::readPropertyList(catalogue, _catalogue).get(catalogue::kRules);
}

Value Kelvane::getPlistPath(const Value& folder) {
  try {
    return platform::format("%@/%@.plist", folder, _settingDict.get(settings::kCatalogueName));
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("getPlistPath:", caught);
    return {};
  }
}

Value Kelvane::getUpdateEngineData(const Value& record) {
  try {
    if (!record.has(job::kInputParameters) || !record.has(job::kJobId)) return {};
    const Value parameters = firstParameters(record.get(job::kInputParameters));
    const Value& folder = parameters.get(job::kFolder);
    if (folder.isNothing()) return {};
    return rulesIn(
        platform::format("%@/%@.plist", folder, _settingDict.get(settings::kCatalogueName)));
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("getUpdateEngineData:", caught);
    return {};
  }
}

Value Kelvane::getUpdateEngineDataInDownloadFolder(const Value& parameters) {
  try {
    const Value& folder = parameters.get(job::kFolder);
    if (folder.isNothing()) return Value::dictionary();
    const Value rules = rulesIn(
        platform::format("%@/%@.plist", folder, _settingDict.get(settings::kCatalogueName)));
    return selectRule(rules, parameters.get(job::kProductId));
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("getUpdateEngineDataInDownloadFolder:", caught);
    return Value::dictionary();
  }
}

Value Kelvane::selectRule(const Value& rules, const Value& productId) const {
  std::vector<Value> candidates;
  bool found = false;
  const Value* current = nullptr;
  for (const Value& rule : rules.elements()) {
    current = &rule;
    if (isOfAnother(rule, productId) || !isComplete(rule)) continue;
    if (!platform::equalStrings(rule.get(catalogue::kProductId), productId)) continue;
    found = true;
    if (!platform::equalStrings(productId, _settingDict.get(settings::kProductIdSw))) break;
    if (isSatisfied(rule, _host.systemVersion())) candidates.push_back(rule);
  }
  if (!candidates.empty()) {
    std::stable_sort(candidates.begin(), candidates.end(), standsBefore);
    return candidates.front();
  }
  // For software that no rule suits, the catalogue's last entry, whatever its product: meant so.
  return found ? *current : Value::dictionary();
}

Value Kelvane::getDownloadFileData(const Value& parameterList, const Value& downloadFolder) {
  Value descriptions = Value::array();
  try {
    Carried carried;
    for (const Value& element : parameterList.elements()) {
      Value description = element.asDictionary();
      if (!description.has(job::kProductId)) continue;
      if (!downloadFolder.isNothing()) description.set(job::kFolder, downloadFolder);
      const Value rule = getUpdateEngineDataInDownloadFolder(description);
      const Value expected = expectedPackagePath(description);
      copyFromRule(description, rule);
      if (!expected.isNothing()) carried.expectedPath = expected;
      setFilePath(description, rule, carried);
      descriptions.append(description);
    }
  } catch (const std::exception& caught) {
    KELVANE_LOG_CAUGHT("getDownloadFileData:withDownloadFolder:", caught);
  }
  return descriptions;
}

Value Kelvane::expectedPackagePath(const Value& parameters) const {
  const Value& productId = parameters.get(job::kProductId);
  const Value& folder = parameters.get(job::kFolder);
  const auto is = [&](const char* setting) {
    return platform::equalStrings(productId, _settingDict.get(setting));
  };
  if (is(settings::kProductIdTarsel2fw))
    return platform::format("%@/%s", folder, catalogue::kTarsel2Image);
  if (is(settings::kProductIdSw)) {
    return platform::format("%@/%@.app", folder, _settingDict.get(settings::kAppName));
  }
  if (is(settings::kProductIdTarsel3fw) ||
      platform::equalStrings(productId, catalogue::kUsbBridgeProduct)) {
    return platform::format("%@/%s", folder, catalogue::kTarsel3Image);
  }
  return {};
}

}  // namespace kelvane
