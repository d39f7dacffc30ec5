#include "simulators/engine/ServiceFaults.h"

#include "platform/Exception.h"
#include "platform/File.h"
#include "simulators/engine/Service.h"
#include "simulators/support/Files.h"
#include "simulators/support/Number.h"
#include "simulators/support/ObjectReader.h"

namespace kelvane::simulator {

using platform::Exception;
using platform::Value;

namespace {

constexpr char kCatalogueBytes[] = "catalogue_bytes";
constexpr char kSparsePackages[] = "sparse_packages";
constexpr char kCrash[] = "crash";
constexpr char kEndlessChatter[] = "endless_chatter";
constexpr std::uint64_t kMostBytes = 1ULL << 40U;
constexpr std::uint64_t kMostLines = 1'000'000'000;
constexpr std::uint64_t kMostSeconds = 1'000'000;

void readCatalogue(ObjectReader& reader, ServiceFaults& faults) {
  using Catalogue = ServiceFaults::Catalogue;
  constexpr Catalogue kCatalogues[] = {Catalogue::whole, Catalogue::none, Catalogue::cut,
                                       Catalogue::garbage};
  faults.catalogue =
      kCatalogues[reader.choice("catalogue", {"whole", "none", "cut", "garbage"}, false)];
  if (faults.catalogue == Catalogue::cut) {
    faults.catalogueBytes = reader.number(kCatalogueBytes, kMostBytes);
  }
}

void readSparsePackages(ObjectReader& reader, ServiceFaults& faults) {
  const Value& sizes = reader.object(kSparsePackages);
  if (sizes.isNothing()) return;
  ObjectReader each(sizes, reader.nameOf(kSparsePackages));
  for (const auto& [name, size] : sizes.entries()) {
    if (name == "note") continue;
    if (!isEntryName(name)) each.refuse(name, "must be the name of a file");
    faults.sparsePackages[name] = each.number(name, kMostBytes);
  }
}

void readOutput(ObjectReader& reader, ServiceFaults& faults) {
  using Output = ServiceFaults::Output;
  constexpr Output kOutputs[] = {Output::text, Output::none, Output::notUtf8};
  faults.output = kOutputs[reader.choice("output", {"text", "none", "not_utf8"}, false)];
  faults.chatterLines = reader.number("chatter_lines", kMostLines);
  faults.endlessChatter = reader.truth(kEndlessChatter);
  if (faults.endlessChatter && faults.output == Output::none) {
    reader.refuse(kEndlessChatter, "a run without output has none");
  }
}

void readCrash(ObjectReader& reader, ServiceFaults& faults) {
  const Value& object = reader.object(kCrash);
  if (object.isNothing()) return;
  ObjectReader crash(object, reader.nameOf(kCrash));
  faults.crash = Crash{static_cast<unsigned>(crash.percent("after_percent")),
                       crash.choice("by", {"kill", "abort"}, false) == 1};
  crash.finish();
}

}  // namespace

ServiceFaults parseFaults(const Value& object, const std::string& where) {
  ServiceFaults faults;
  ObjectReader reader(object, where);
  readCatalogue(reader, faults);
  faults.missingProducts = reader.texts("missing_products");
  faults.missingFiles = reader.texts("missing_files");
  readSparsePackages(reader, faults);
  faults.seconds = static_cast<unsigned>(reader.number("seconds", kMostSeconds));
  readOutput(reader, faults);
  readCrash(reader, faults);
  faults.detached = reader.truth("detached");
  reader.finish();
  return faults;
}

ServiceFaults readFaults(const std::string& service) {
  const std::string path = service + "/" + kFaultsFile;
  if (!platform::exists(path)) return {};
  try {
    return parseFaults(readJsonObject(path));
  } catch (const Exception& caught) {
    throw Exception("service file " + path + ": " + caught.what());
  }
}

}  // namespace kelvane::simulator
