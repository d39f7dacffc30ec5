#include "simulators/make_service/Description.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "contract/Catalogue.h"
#include "platform/Exception.h"
#include "simulators/engine/ServiceFaults.h"
#include "simulators/make_service/Digest.h"
#include "simulators/support/Files.h"
#include "simulators/support/ObjectReader.h"

namespace kelvane::simulator {

using platform::Exception;
using platform::Value;

namespace fs = std::filesystem;

namespace {

constexpr char kPackages[] = "packages";
constexpr char kProduct[] = "product";
constexpr char kFiles[] = "files";
constexpr char kRule[] = "rule";
constexpr char kLeaveOut[] = "leave_out";
constexpr char kService[] = "service";

// One element of the list of packages.
class PackageReader {
 public:
  PackageReader(ObjectReader& reader, const fs::path& folder) : reader_(reader), folder_(folder) {}

  PackageDescription read() {
    package_.product = reader_.text(kProduct);
    readFiles();
    makeRule();
    return package_;
  }

 private:
  void readFiles() {
    const Value& files = reader_.object(kFiles);
    if (files.isNothing()) return;
    if (!isEntryName(package_.product)) {
      reader_.refuse(kProduct, "must be a name without \"/\", its files go into a folder of it");
    }
    ObjectReader each(files, reader_.nameOf(kFiles));
    for (const auto& [name, path] : files.entries()) {
      if (name == "note") continue;
      if (!isEntryName(name)) each.refuse(name, "must be the name of a file");
      package_.files[name] = realPath(each, name);
    }
  }

  std::string realPath(ObjectReader& files, const std::string& name) const {
    const fs::path path = folder_ / files.text(name);
    std::error_code failed;
    std::string real = fs::canonical(path, failed).string();
    if (failed) files.refuse(name, path.string() + ": " + failed.message());
    return real;
  }

  void makeRule() {
    Value& rule = package_.rule;
    rule = Value::dictionary({{catalogue::kProductId, package_.product},
                              {catalogue::kVersion, reader_.text("version")}});
    addDigest();
    addText(catalogue::kMinimumOs, "minimum_os");
    addText(catalogue::kCodebase, "codebase");
    const Value& more = reader_.object(kRule);
    if (!more.isNothing()) rule.setAll(more);
    leaveOut();
    checkForm();
  }

  void addDigest() {
    if (package_.files.empty()) return;
    const Digest digest = digestOf(package_.files);
    package_.rule.set(catalogue::kSize, Value::integer(digest.size));
    package_.rule.set(catalogue::kHash, digest.sha256);
  }

  void addText(const char* ruleKey, const char* key) {
    if (reader_.has(key)) package_.rule.set(ruleKey, reader_.text(key));
  }

  void leaveOut() {
    const std::vector<std::string> names = reader_.texts(kLeaveOut);
    for (const std::string& name : names) {
      if (!package_.rule.has(name)) reader_.refuse(kLeaveOut, "the rule has no \"" + name + "\"");
    }
    Value kept = Value::dictionary();
    for (const auto& [key, value] : package_.rule.entries()) {
      if (std::find(names.begin(), names.end(), key) == names.end()) kept.set(key, value);
    }
    package_.rule = kept;
  }

  void checkForm() const {
    try {
      printPropertyList(package_.rule, PropertyListForm::xml);
    } catch (const Exception& caught) {
      reader_.refuse(kRule, caught.what());
    }
  }

  ObjectReader& reader_;
  const fs::path& folder_;
  PackageDescription package_;
};

// Two rules of one product may deliver the same file, but not two of one name.
void checkConflicts(const ObjectReader& reader, const PackageDescription& package,
                    const std::vector<PackageDescription>& others) {
  for (const PackageDescription& other : others) {
    if (other.product != package.product) continue;
    for (const auto& [name, path] : package.files) {
      const auto found = other.files.find(name);
      if (found == other.files.end() || found->second == path) continue;
      reader.refuse(kFiles, "the product has another \"" + name + "\" already");
    }
  }
}

Description parseDescription(const Value& document, const fs::path& folder) {
  Description description;
  ObjectReader reader(document, "");
  if (reader.choice("format", {"xml", "binary"}, false) == 1) {
    description.form = PropertyListForm::binary;
  }
  if (!reader.has(kPackages)) reader.refuse(kPackages, "is missing");
  reader.each(kPackages, [&](ObjectReader& each) {
    const PackageDescription package = PackageReader(each, folder).read();
    checkConflicts(each, package, description.packages);
    description.packages.push_back(package);
  });
  description.service = reader.object(kService);
  if (!description.service.isNothing()) parseFaults(description.service, kService);
  reader.finish();
  return description;
}

}  // namespace

Description readDescription(const std::string& path) {
  try {
    return parseDescription(readJsonObject(path), fs::path(path).parent_path());
  } catch (const Exception& caught) {
    throw Exception("description " + path + ": " + caught.what());
  }
}

}  // namespace kelvane::simulator
