#include "console/commands/OnlineUpdate.h"

#include "console/checks/CatalogueChecks.h"
#include "console/commands/Arguments.h"
#include "console/commands/Given.h"
#include "console/commands/JobEnd.h"
#include "console/job/ExitCode.h"
#include "contract/JobFile.h"
#include "platform/File.h"
#include "platform/Value.h"

namespace kelvane::console {

using platform::Value;

namespace {

// The version that is asked for where none is given: below all others.
constexpr char kNoVersion[] = "0";

// The console's own for the engine.
std::string usualFolder(const std::string& sharedFolder) {
  return absolutePath(asPrefix(sharedFolder) + kConsolesEngineFolder, "shared folder");
}

std::string engineFolder(const JobOptions& job, const EngineOptions& engine) {
  if (engine.folder.empty()) return usualFolder(job.sharedFolder);
  std::string folder = absolutePath(engine.folder, "folder");
  requireFreeFolder(folder, job.sharedFolder);
  return folder;
}

Value productParameters(const std::string& product, const std::string& version,
                        const std::string& url, const std::string& folder) {
  requireText(product, "the product");
  requireText(version, "the version of " + product);
  requireText(url, "the service's URL");
  return Value::dictionary({{job::kProductId, product},
                            {job::kVersion, version},
                            {job::kUrl, url},
                            {job::kFolder, folder}});
}

Value downloadParameters(const DownloadOptions& options, const std::string& folder) {
  if (options.products.empty()) throw Failure(kBadUsage, "no product is given");
  Value all = Value::array();
  for (const std::string& product : options.products) {
    const std::size_t sign = product.find('=');
    const std::string version = sign == std::string::npos ? kNoVersion : product.substr(sign + 1);
    all.append(productParameters(product.substr(0, sign), version, options.engine.url, folder));
  }
  return all;
}

// --- the sub-commands

constexpr char kUrl[] = "--url";
constexpr char kFolder[] = "--folder";
constexpr char kProduct[] = "product";
constexpr char kVersion[] = "version";
constexpr char kProducts[] = "products";

// Those of every job, and the engine's.
std::vector<Option> engineJobOptions() {
  std::vector<Option> options = jobOptions();
  options.push_back(
      {.names = {kUrl}, .valueName = "URL", .description = "The update service", .required = true});
  options.push_back({.names = {kFolder},
                     .kind = ValueKind::folder,
                     .valueName = "FOLDER",
                     .description = "An empty folder for the update engine, which is removed "
                                    "afterwards, if not one below the shared folder"});
  return options;
}

EngineOptions engineOptionsOf(const Given& given) {
  return {.url = given.text(kUrl), .folder = given.text(kFolder)};
}

int runQuery(const Given& given, const Surroundings& surroundings) {
  return query({.job = jobOptionsOf(given),
                .engine = engineOptionsOf(given),
                .product = given.text(kProduct),
                .version = given.text(kVersion)},
               surroundings);
}

int runDownload(const Given& given, const Surroundings& surroundings) {
  return download({.job = jobOptionsOf(given),
                   .engine = engineOptionsOf(given),
                   .products = given.texts(kProducts)},
                  surroundings);
}

}  // namespace

void requireFreeFolder(const std::string& folder, const std::string& sharedFolder) {
  if (platform::exists(folder) && !platform::isFolder(folder)) {
    throw Failure(kBadUsage, "folder " + folder + " is a file");
  }
  if (platform::listFolder(folder).empty() ||
      isConsolesEngineFolder(folder, asPrefix(sharedFolder))) {
    return;
  }
  throw Failure(kBadUsage,
                "folder " + folder + " is not empty: it would be removed with everything in it");
}

int query(const QueryOptions& options, const Surroundings& surroundings) {
  const std::string folder = engineFolder(options.job, options.engine);
  const Value inputs =
      productParameters(options.product, options.version.empty() ? kNoVersion : options.version,
                        options.engine.url, folder);
  const std::optional<Look> finished =
      runJob(options.job, job::kGetOnlineUpdateData, inputs, surroundings);
  return finished ? endOfJob(*finished, options.job.sharedFolder, surroundings.screen) : kSuccess;
}

int download(const DownloadOptions& options, const Surroundings& surroundings) {
  const Value inputs = downloadParameters(options, engineFolder(options.job, options.engine));
  const std::optional<Look> finished =
      runJob(options.job, job::kDownloadOnlineUpdateFile, inputs, surroundings);
  return finished ? endOfJob(*finished, options.job.sharedFolder, surroundings.screen) : kSuccess;
}

Command queryCommand() {
  return {.name = "query",
          .description = "Ask the update service which packages it offers",
          .options = engineJobOptions(),
          .arguments = {{.names = {kProduct},
                         .kind = ValueKind::product,
                         .valueName = "PRODUCT",
                         .description = "The product that is asked for",
                         .required = true},
                        {.names = {kVersion},
                         .valueName = "VERSION",
                         .description = "The version that is there now, if any"}},
          .footer =
              "Example:\n"
              "  kelvane-console query --shared ~/Shared --bundle /Manager/Manager.app \\\n"
              "    --url file:///srv/updates manager 1.0.0",
          .run = runQuery};
}

Command downloadCommand() {
  return {
      .name = "download",
      .description = "Fetch packages from the update service",
      .options = engineJobOptions(),
      .arguments = {{.names = {kProducts},
                     .kind = ValueKind::product,
                     .valueName = "PRODUCT[=VERSION]",
                     .description = "Products to look for; the first one's packages are fetched",
                     .required = true,
                     .repeated = true}},
      .footer =
          "Example:\n"
          "  kelvane-console download --shared ~/Shared --bundle /Manager/Manager.app \\\n"
          "    --url file:///srv/updates manager=2.0.0",
      .run = runDownload};
}

}  // namespace kelvane::console
