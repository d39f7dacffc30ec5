#include "simulators/engine/Engine.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

#include "contract/Catalogue.h"
#include "platform/Exception.h"
#include "platform/PropertyList.h"
#include "simulators/engine/Items.h"
#include "simulators/engine/Progress.h"
#include "simulators/engine/Service.h"
#include "simulators/engine/ServiceFaults.h"
#include "simulators/engine/TargetFolder.h"
#include "simulators/support/Files.h"
#include "simulators/support/ObjectReader.h"

namespace kelvane::simulator {

using platform::Exception;
using platform::Value;

namespace {

constexpr unsigned kStep = 25;    // percent between two lines
constexpr unsigned kWhole = 100;  // percent
constexpr std::size_t kLinesPerItem = kWhole / kStep;
constexpr std::size_t kOtherLines = 3;  // what is asked, what is offered, that it is done

// The catalogue's name in the product settings, which stand beside the executable.
std::string catalogueName(const platform::Host& host) {
  const Value folder = host.executableFolder();
  if (folder.isNothing()) throw Exception("settings: the executable's folder is not known");
  const std::string path = folder.string() + "/Config/setting.json";
  try {
    const Value settings = readJsonObject(path);
    const std::string name = ObjectReader(settings, "").text("online_update_plist_name");
    if (!isEntryName(name)) throw Exception("online_update_plist_name: must be a file's name");
    return name + ".plist";
  } catch (const Exception& caught) {
    throw Exception("settings " + path + ": " + caught.what());
  }
}

// Goes on in a child, once this process has ended: only then is the pipe's last writing end closed.
void detach() {
  int ends[2] = {-1, -1};
  const pid_t child = ::pipe(ends) == 0 ? ::fork() : -1;
  if (child < 0) throw Exception(std::string("detach: ") + std::strerror(errno));
  if (child > 0) ::_exit(0);
  ::close(ends[1]);
  char byte = 0;
  while (::read(ends[0], &byte, 1) < 0 && errno == EINTR) {
  }
  ::close(ends[0]);
}

[[noreturn]] void die(const Crash& crash) {
  const rlimit noDump = {0, 0};
  ::setrlimit(RLIMIT_CORE, &noDump);
  if (!crash.byAbort) std::raise(SIGKILL);
  std::abort();
}

class Run {
 public:
  Run(const EngineArguments& arguments, const std::string& catalogue, const std::string& service,
      const ServiceFaults& faults, platform::Host& host)
      : faults_(faults),
        target_(arguments.folder),
        cataloguePath_(target_ / catalogue),
        first_(catalogueItems(service, catalogue, faults)),
        then_(arguments.withPackages ? packageItems(service, arguments.productId, faults)
                                     : std::vector<Item>()),
        progress_(faults, host, itemCount() * kLinesPerItem + kOtherLines) {}

  void run(const std::string& question) {
    progress_.tell(question);
    for (const Item& item : first_) deliver(item);
    progress_.tell(offers());
    for (const Item& item : then_) deliver(item);
    if (faults_.crash) die(*faults_.crash);
    progress_.chatter();
    progress_.tell("done");
  }

 private:
  std::size_t itemCount() const { return first_.size() + then_.size(); }

  std::string offers() const {
    if (first_.empty()) return "there is no catalogue";
    const Value list = platform::readPropertyList(cataloguePath_);
    const Value& rules = list.get(catalogue::kRules);
    if (!rules.isArray()) return "the catalogue cannot be read";
    return "packages in the catalogue: " + std::to_string(rules.count());
  }

  // How much of the next item is there when the engine crashes, in percent: every item has an equal
  // share of the run.
  unsigned reached() const {
    if (!faults_.crash) return kWhole;
    const std::size_t reached = faults_.crash->percent * itemCount();
    const std::size_t before = delivered_ * kWhole;
    return static_cast<unsigned>(std::min<std::size_t>(reached - before, kWhole));
  }

  void deliver(const Item& item) {
    const unsigned most = reached();
    for (unsigned percent = kStep; percent < kWhole && percent <= most; percent += kStep) {
      tellPercent(item, percent);
    }
    if (most > 0) put(item, most);
    if (most < kWhole) die(*faults_.crash);
    tellPercent(item, kWhole);
    ++delivered_;
  }

  void put(const Item& item, unsigned percent) const {
    target_.put(item.name, [&](const std::string& path) {
      item.write(path);
      if (percent < kWhole) TargetFolder::cut(path, percent);
    });
  }

  void tellPercent(const Item& item, unsigned percent) {
    progress_.tell(item.name + ": " + std::to_string(percent) + "%");
  }

  const ServiceFaults& faults_;
  TargetFolder target_;
  std::string cataloguePath_;
  std::vector<Item> first_;  // the catalogue
  std::vector<Item> then_;   // the packages
  std::size_t delivered_ = 0;
  Progress progress_;
};

}  // namespace

void runEngine(const EngineArguments& arguments, platform::Host& host) {
  const std::string catalogue = catalogueName(host);
  const std::string service = serviceFolder(arguments.url);
  const ServiceFaults faults = readFaults(service);
  if (faults.detached) detach();
  Run(arguments, catalogue, service, faults, host)
      .run("asking " + service + " for " + arguments.productId + ", version " + arguments.version +
           " is installed");
}

}  // namespace kelvane::simulator
