#include "simulators/make_service/ServiceMaker.h"

#include <filesystem>
#include <system_error>

#include <unistd.h>

#include "contract/Catalogue.h"
#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/Json.h"
#include "simulators/engine/Service.h"
#include "simulators/support/Files.h"

namespace kelvane::simulator {

using platform::Exception;
using platform::Value;

namespace fs = std::filesystem;

namespace {

// The folder's real path, without a slash at its end.
std::string placeOf(const std::string& folder) {
  std::error_code failed;
  fs::path place = fs::weakly_canonical(fs::absolute(folder, failed), failed);
  if (failed) throw Exception("folder " + folder + ": " + failed.message());
  return (place.has_filename() ? place : place.parent_path()).string();
}

void checkPlace(const std::string& place) {
  if (!platform::exists(place)) return;
  if (!platform::isFolder(place)) throw Exception("folder " + place + ": is not a folder");
  if (platform::listFolder(place).empty()) return;
  if (platform::exists(place + "/" + kCatalogueFile)) return;
  throw Exception("folder " + place + ": is not empty, and no service that was made before");
}

// What is there already is another rule's, and the same.
void writePackage(const PackageDescription& package, const std::string& packages) {
  if (package.files.empty()) return;
  const std::string folder = packages + "/" + package.product;
  makeFolder(folder);
  for (const auto& [name, path] : package.files) {
    std::string to = folder;
    to.append("/").append(name);
    if (!platform::exists(to)) copyEntry(path, to);
  }
}

void writeService(const Description& description, const std::string& folder) {
  makeFolder(folder);
  Value rules = Value::array();
  for (const PackageDescription& package : description.packages) {
    rules.append(package.rule);
    writePackage(package, folder + "/" + kPackagesFolder);
  }
  writeFile(folder + "/" + kCatalogueFile,
            printPropertyList(Value::dictionary({{catalogue::kRules, rules}}), description.form));
  if (description.service.isNothing()) return;
  writeFile(folder + "/" + kFaultsFile,
            platform::printJson(description.service).value_or("{}") + "\n");
}

void moveIntoPlace(const std::string& fresh, const std::string& place) {
  platform::removeTree(place);
  std::error_code failed;
  fs::rename(fresh, place, failed);
  if (failed) throw Exception("replace " + place + ": " + failed.message());
}

}  // namespace

void makeService(const Description& description, const std::string& folder) {
  const std::string place = placeOf(folder);
  checkPlace(place);
  const std::string fresh =
      fs::path(place).parent_path() / (".make-service-" + std::to_string(::getpid()));
  try {
    writeService(description, fresh);
    moveIntoPlace(fresh, place);
  } catch (const Exception&) {
    platform::removeTree(fresh);
    throw;
  }
}

}  // namespace kelvane::simulator
