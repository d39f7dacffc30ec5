#include "tests/dialogues/Oracle.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <fmt/format.h>

namespace kelvane::dialogues {
namespace {

using Status = std::uint32_t;
using StatusOf = Status (*)(Decider&);
using ProgressOf = Progress (*)(Decider&, const Progress&, bool);

// Answers that a decider draws.
class Drawn : public Answerer {
 public:
  explicit Drawn(Decider& decider) : decider_(decider) {}

  void asked(const char*) override {}
  Status status(StatusOf kind) override { return kind(decider_); }
  bool tellsCount() override { return decider_.branch(2) != 0; }
  std::uint16_t product(std::size_t, const std::string& kinds, char& kind) override {
    return productIdentifier(decider_, kinds, kind);
  }
  Progress progress(ProgressOf kind, const Progress& before, bool isLast) override {
    return kind(decider_, before, isLast);
  }
  std::uint32_t interfaceByte() override { return dialogues::interfaceByte(decider_); }
  std::uint32_t updateFlag() override { return dialogues::updateFlag(decider_); }
  std::string description(Status status) override {
    const char* meaningful = textOf(status);
    return meaningful != nullptr ? meaningful : fmt::format("text of {:#x}", status);
  }
  void cut(const std::string& state) override { decider_.cut(state); }

 private:
  Decider& decider_;
};

// One entry of the input parameters, with the records that are its own: each is zero at the entry's
// start, and is handed on as the framework's calls leave it.
struct Entry {
  bool hasController = false;
  std::string id;    // of the controller, in the list of those discovered
  Json progress;     // the entry with its percentages
  std::string path;  // of the image
  std::string named = "0000 ";
  std::string examined = "0";
  bool hasCpldParm = false;
  std::string image = "zeroed";
  std::string usbCheck = "0";
  std::string usbRequest = "0";
  std::string nvram = "zeroed";
  Progress flashProgress = {};
  std::string cpldEnd = "none";  // how the CPLD's flash ended

  std::string flashParm() const { return fmt::format("flash[{} {}]", named, examined); }
  std::string fwImgInfo() const { return fmt::format("image[{}]", image); }
  std::string cpldParm() const { return hasCpldParm ? "cpld[c1]" : "cpld[zeroed]"; }
  std::string usbNvram() const { return fmt::format("nvram[{}]", nvram); }
  std::string usbParm() const {
    if (usbCheck == "0" && usbRequest == "0") return "usb[zeroed]";
    return fmt::format("usb[{} {}]", usbCheck, usbRequest);
  }
  std::string allParms() const {
    return fmt::format("{}, {}, {}, {}", flashParm(), usbParm(), cpldParm(), fwImgInfo());
  }
};

// One call of a straight sequence: what it is shown behind the address, and where its failure
// leads.
enum class Failure { noted, plain };
struct Row {
  const char* call;
  std::string (*shown)(const Entry& entry);
  Failure failure;
  const char* lineBefore;
  const char* lineOnFailure;
};

class Oracle {
 public:
  Oracle(const Form& form, Answerer& answerer, Told told)
      : form_(form), answerer_(answerer), tellsAll_(told == Told::all), file_(form.jobs) {}

  Dialogue tell() {
    run();
    dialogue_.job = file_.job();
    return std::move(dialogue_);
  }

 private:
  // --- what can be seen from outside

  void event(std::string text) { dialogue_.events.push_back(std::move(text)); }
  void line(const char* function, const std::string& message) {
    if (tellsAll_) event(fmt::format("log {}: {}", function, message));
  }
  void say(const std::string& message) { line("updateFW", message); }
  void sayOfCpld(const std::string& message) { line("flashCPLD", message); }

  Answer& called(const char* function, const std::string& arguments) {
    event(fmt::format("{}({})", function, arguments));
    dialogue_.answers.push_back({function, {}});
    answerer_.asked(function);
    return dialogue_.answers.back().answer;
  }
  Status call(const char* function, const std::string& arguments, StatusOf statusOf) {
    Answer& answer = called(function, arguments);
    return answer.status = answerer_.status(statusOf);
  }
  // A call to the entry's controller.
  Status ask(const char* function, const std::string& shown, StatusOf statusOf) {
    return call(function, addressed(shown), statusOf);
  }
  std::string addressed(const std::string& shown) const {
    return fmt::format("{}/0, 0{}{}", *address_, shown.empty() ? "" : ", ", shown);
  }
  std::string describe(Status status) {
    called("getErrorDescription", fmt::format("{:#x}", status));
    return answerer_.description(status);
  }

  // --- the job file: every update is a reading, a line with what was read and one with what is to
  // be, and a writing

  void readFile(const char* function) {
    if (!tellsAll_) return;
    event("read");
    line(function, fmt::format("currentJobArray = {}", file_.shownText()));
  }
  void updateFile(const Json& changes) {
    readFile("updateJSONFile");
    file_.change(changes);
    if (!tellsAll_) return;
    line("updateJSONFile", fmt::format("updateJSONFile, newJobArray = {}", file_.shownText()));
    line("writeJSONFile", fmt::format("writeJSONFile, newArray = {}", file_.shownText()));
    line("writeJSONFile",
         fmt::format("writeJSONFile, _BGPPath = {}utility/command/BGPLog.json", kShared));
    event(fmt::format("write {}", file_.text()));
  }

  // The entry with these percentages over every progress entry of its WWN.
  void publish(Json update, const char* part, unsigned percentage, unsigned total) {
    update[part] = percentage;
    update["total_percentage"] = total;
    readFile("updateFWUpdateStatus");
    Json output = file_.job().value("output", Json::array());
    bool found = false;
    for (Json& entry : output) {
      if (entry["wwn"] != update["wwn"]) continue;
      setAll(entry, update);
      found = true;
    }
    if (found) updateFile({{"output", output}});
  }
  void publishFlash(Entry& entry, unsigned percentage, unsigned total) {
    publish(entry.progress, "fw_percentage", percentage, total);
    entry.progress["fw_percentage"] = percentage;
    entry.progress["total_percentage"] = total;
  }

  // --- the job

  void run() {
    readFile("run");
    for (const Json& record : form_.jobs) offer(record);
    Json record = file_.job();
    setAll(record, {{"result", 0}, {"resultStr", "no error"}});
    say(fmt::format("updateFW start, inputDict = {}", shown(record)));
    if (!record.contains("input_parameters")) {
      status_ = 0x0402;
    } else {
      start(record);
      for (const Json& input : record["input_parameters"]) take(input);
    }
    finish();
  }

  // A record without parameters is offered with those of the one before it.
  void offer(const Json& record) {
    const Json inputs = record.value("input_parameters", Json::array());
    if (!inputs.empty()) offered_ = inputs.front();
    line("run", fmt::format("logId = {}, inputParmsDict = {}, stateId = {}. jobId = {}",
                            shown(record["log_id"]), shown(offered_), shown(record["state_id"]),
                            shown(record["job_id"])));
  }

  void start(const Json& record) {
    Json output = Json::array();
    for (Json entry : record["input_parameters"]) {
      if (!entry.contains("wwn") || !entry.contains("file_path")) continue;
      setAll(entry, {{"fw_percentage", 0}, {"cpld_percentage", 0}, {"total_percentage", 0}});
      output.push_back(entry);
    }
    if (!output.empty()) {
      Json changes = record;
      setAll(changes, {{"output", output}, {"state_id", "RUN"}});
      updateFile(changes);
    }
    discover();
  }

  void discover() {
    call("zr_initialize", "fixed words", ignoredStatus);
    status_ = call("zr_discover", "0", judgedStatus);
    std::size_t adapters = 0;
    std::size_t subsystems = 0;
    if (status_ == 0) {
      if (count("zr_getNumberOfHBA", plainStatus).second) adapters = form_.adapters;
      const auto [status, isTold] = count("zr_getNumberOfSubsystem", judgedStatus);
      status_ = status;
      if (isTold) subsystems = form_.wwns.size() - form_.adapters;
    }
    for (std::size_t i = 0; i < adapters + subsystems; ++i) {
      const std::string at = i < adapters ? fmt::format("{}/0", i) : fmt::format("0/{}", i);
      status_ = call("zr_getSubsystemInfo", fmt::format("{}, 0, zeroed", at), judgedStatus);
      if (status_ != 0) continue;
      called("decod_getStringWWN", "zeroed, wwn");
      listed_.emplace_back(form_.wwns[i], i);
    }
  }

  // The status, and whether the number was told, which also a call that fails may do.
  std::pair<Status, bool> count(const char* function, StatusOf statusOf) {
    Answer& answer = called(function, "0");
    answer.status = answerer_.status(statusOf);
    if (answer.status != 0 && answerer_.tellsCount()) answer.value = 1;
    return {answer.status, answer.status == 0 || answer.value != 0};
  }

  void finish() {
    readFile("readJSONFileDict");
    Json record = file_.job();
    const std::string text = describe(status_);
    setAll(record, {{"result", status_}, {"resultStr", text}, {"state_id", "FREE"}});
    updateFile(record);
    say(fmt::format("updateAllFW end, retDict = {}", shown(record)));
  }

  // --- one entry

  void take(const Json& input) {
    // What an entry can tell of those before it. Which failure it was only matters for its note and
    // for the result: behind a failure nothing is asked whose answer counts. Percentages are no
    // more than what stands in the job file, which every update reads.
    state_ = fmt::format("entry {} {} {} {} {} {} {}", ++entries_, status_ == 0, pageKind_,
                         address_.value_or("none"), fmt::join(listedIds(), ","), qvxfChecked_,
                         qvxfAnalysed_);
    answerer_.cut(state_);
    Entry entry;
    if (status_ == 0) find(entry, input);
    if (pageKind_ == kNoPage) return close();
    say(fmt::format("pPage0->ci_ProductID = {:x}", product_));
    if (isQvxf()) {
      takeQvxf(entry);
    } else {
      takeStandard(entry);
    }
  }

  std::vector<std::size_t> listedIds() const {
    std::vector<std::size_t> ids;
    for (const auto& device : listed_) ids.push_back(device.second);
    return ids;
  }

  void find(Entry& entry, const Json& input) {
    status_ = 0x0402;
    entry.progress = input;
    for (const auto& [wwn, id] : listed_) {
      if (!input.contains("wwn") || input["wwn"] != wwn) continue;
      entry.hasController = true;
      entry.id = std::to_string(id);
      entry.path = input.value("file_path", "").substr(0, 255);
      entry.path.resize(std::min(entry.path.find('\0'), entry.path.size()));
      address_ = entry.id;
      say(idAndPath(entry));
      return readPages();
    }
  }

  // The page that was located last stays where it is, and shows what the buffer now holds.
  void readPages() {
    Answer& answer =
        called("zr_getControllerInfo", fmt::format("{}, 0, request, zeroed, 65535", *address_));
    status_ = answer.status = answerer_.status(judgedStatus);
    product_ = 0;
    char kind = kPlainKind;
    const std::string kinds = entries_ == 1 ? form_.firstKinds : "usqx";
    if (status_ == 0) {
      answer.value = product_ = answerer_.product(std::stoul(*address_), kinds, kind);
    }
    say(fmt::format("zr_getControllerInfo(), u32Ret = {:x}", status_));
    if (pageKind_ != kNoPage) pageKind_ = kind;
    if (status_ != 0) return;
    status_ = call("decod_locateBufferCtrlInfo", "buffer, 65535, 0, 0", judgedStatus);
    if (status_ != 0) return;
    pageKind_ = kind;
    status_ = call("decod_locateBufferCtrlInfo", "buffer, 65535, 0, 1", judgedStatus);
  }

  static std::string idAndPath(const Entry& entry) {
    return fmt::format("devId = {}, filePath = {}", entry.id,
                       entry.progress.value("file_path", "(null)"));
  }
  bool isQvxf() const { return pageKind_ == 'q'; }
  void nameImage(Entry& entry) const {
    entry.named = fmt::format("{:04x} {}", product_, entry.path);
  }

  // The end of an entry that failed: what could be open is closed, and the status stays.
  void close() {
    if (!address_) return;
    ask("zr_finalizeFlashProcess", "", ignoredStatus);
    if (isQvxf()) ask("zr_finializeQVXFImage", "", ignoredStatus);
  }
  void noteAndClose() {
    if (status_ == 0x8050) say("There is another flash process running.");
    close();
  }

  // --- a QVXF controller

  void takeQvxf(Entry& entry) {
    nameImage(entry);
    say(fmt::format("rpf.rpf_uTransfer.rpf_u8ImageFilePath = {}", entry.path));
    if (status_ == 0 && startsQvxf(entry)) return follow(entry);
    say(fmt::format("u32Ret is not 0, u32Ret = 0x{:x}", status_));
    close();
    close();
  }

  // Each only after the success of the one before it; the flash process is closed between the
  // transfer and the analysis, whatever the transfer gave.
  bool startsQvxf(const Entry& entry) {
    const std::string flash = entry.flashParm();
    const auto succeeds = [this](const char* function, const std::string& shown) {
      status_ = ask(function, shown, judgedStatus);
      say(fmt::format("[WRONG] {} = 0x{:x}", function, status_));
      return status_ == 0;
    };
    if (!succeeds("zr_initializeFlashProcess", "")) return false;
    const char* checkInfo = std::exchange(qvxfChecked_, true) ? "used" : "zeroed";
    if (!succeeds("zr_checkQVXFFlashImage", fmt::format("{}, {}", flash, checkInfo))) return false;
    const bool transferred =
        succeeds("zr_transferQVXFFlashImage", fmt::format("{}, image[zeroed], 0", flash));
    ask("zr_finalizeFlashProcess", "", ignoredStatus);
    if (!transferred) return false;
    const char* analysis = std::exchange(qvxfAnalysed_, true) ? "used" : "zeroed";
    return succeeds("zr_analyzeQVXFImage", analysis) && succeeds("zr_flashQVXFImage", "");
  }

  // --- any other controller

  void takeStandard(Entry& entry) {
    if (status_ == 0) examineAndFlashCpld(entry);
    if (status_ != 0 && !isTolerated(entry)) return noteAndClose();
    // What the rest can tell of the CPLD's flash. How many polls it took, and how far they came, is
    // left in the job file alone.
    answerer_.cut(fmt::format("{} flash {} {} {} {} {}", state_, pageKind_, status_, entry.cpldEnd,
                              entry.image, entry.usbParm()));
    status_ = ask("zr_initializeFlashProcess", "", judgedStatus);
    if (status_ != 0) return noteAndClose();
    if (pageKind_ == kPlainKind) {
      status_ = 0x8055;
      return close();
    }
    static const Row kRows[] = {
        {"zr_checkFlashImage",
         [](const Entry& e) { return fmt::format("buffer, {}", e.allParms()); }, Failure::noted,
         nullptr, nullptr},
        {"zr_transferFlashImage", [](const Entry& e) { return e.allParms(); }, Failure::noted,
         "Start transferring image, please wait ...", nullptr},
        {"zr_verifyFlashImage", [](const Entry& e) { return e.flashParm(); }, Failure::plain,
         "Flash image has been successfully transferred", "Image format is invalid."},
        {"zr_flashImageEx", [](const Entry& e) { return fmt::format("4, {}", e.flashParm()); },
         Failure::plain, nullptr, nullptr},
    };
    for (const Row& row : kRows) {
      if (row.lineBefore != nullptr) say(row.lineBefore);
      status_ = ask(row.call, row.shown(entry), judgedStatus);
      if (status_ == 0) continue;
      if (row.lineOnFailure != nullptr) say(row.lineOnFailure);
      return row.failure == Failure::noted ? noteAndClose() : close();
    }
    follow(entry);
  }

  void examineAndFlashCpld(Entry& entry) {
    nameImage(entry);
    status_ = call("zr_getFDLImageInfo",
                   fmt::format("{}, {}", entry.flashParm(), entry.fwImgInfo()), judgedStatus);
    entry.examined = "f1";
    entry.image = "fd 0";
    if (status_ != 0) return;
    status_ = call("zr_getCPLDImageInfo",
                   fmt::format("{}, {}, {}, page0, page1", entry.flashParm(), entry.cpldParm(),
                               entry.fwImgInfo()),
                   judgedStatus);
    entry.hasCpldParm = true;
    entry.image = "fd cd";
    if (status_ != 0) return;
    if (pageKind_ == 'u') readUsbImage(entry);
    if (status_ == 0) status_ = flashCpld(entry);
  }

  void readUsbImage(Entry& entry) {
    say("zr_getUSBImageInfo() ....\n");
    status_ = call("zr_getUSBImageInfo", fmt::format("{}, {}", entry.flashParm(), entry.usbParm()),
                   judgedStatus);
    if (status_ == 0) entry.usbCheck = "fffffff0";
    say(fmt::format("usb_u32checkUSB: {}\n", status_ == 0 ? 0xFFFFFFF0 : 0));
  }

  // Of an entry without a controller nothing is asked.
  bool isTolerated(const Entry& entry) {
    if (!entry.hasController) return false;
    const std::string text = describe(status_);
    return text == "unsupported management command" || text == "the version of CPLD is up to date";
  }

  // --- the CPLD

  // The status is the closing call's, whatever became of the flash.
  Status flashCpld(Entry& entry) {
    sayOfCpld("flashCPLD start");
    sayOfCpld(idAndPath(entry));
    if (ask("zr_initializeCPLDProcess", "", plainStatus) != 0) {
      entry.cpldEnd = "not opened";
    } else {
      startCpld(entry);
    }
    const Status status = ask("zr_finalizeCPLDProcess", "", judgedStatus);
    sayOfCpld("flashCPLD end");
    return status;
  }

  void startCpld(Entry& entry) {
    const std::string parms = fmt::format("{}, 0, {}, {}, {}", entry.flashParm(), entry.usbParm(),
                                          entry.cpldParm(), entry.fwImgInfo());
    const Status status = ask("zr_flashCPLDBin", parms, cpldStartStatus);
    if (status == 0 || status == 0x8058) {
      sayOfCpld("Start transferring CPLD image, please wait ...");
      sayOfCpld("Start flashing CPLD, please wait ...");
      return pollCpld(entry);
    }
    entry.cpldEnd = "not started";
    if (status == 0x8050) return sayOfCpld("There is another flash process running.");
    if (describe(status) != "the version of CPLD is up to date") return;
    sayOfCpld("the version of CPLD is up to date");
    entry.cpldEnd = "current";
    publish(entry.progress, "cpld_percentage", 100, 50);
  }

  void pollCpld(Entry& entry) {
    Progress record = {};
    unsigned retries = 0;
    unsigned percentage = 0;
    for (unsigned poll = 1;; ++poll) {
      const bool hasFailed = read("zr_getCPLDProgress", cpldProgress, poll, true, record);
      sayOfCpld(fmt::format("progress.rdcp_u8Status = {}, progress.rdcp_u8Stage = {}",
                            record.status, record.stage));
      if (record.status == 0 && record.stage == 2) {
        sayOfCpld("  ... 100 percent completed... ");
        publish(entry.progress, "cpld_percentage", 100, 50);
        entry.cpldEnd = "done";
        return;
      }
      if (record.status == 1 || record.status == 2) {
        entry.cpldEnd = "flash error";
        return sayOfCpld("Flash Error");
      }
      if (record.status == 0) {
        if (record.retries != retries) {
          sayOfCpld(fmt::format("Found error, try to flash CPLD again, retry {} times...",
                                record.retries));
        } else if (record.stage <= 1) {
          percentage = (record.percent + (record.stage == 1 ? 100U : 0U)) / 2;
          sayOfCpld(fmt::format("  ...{:4} percent completed... ", percentage));
        }
        publish(entry.progress, "cpld_percentage", percentage, percentage / 2);
      }
      retries = record.retries;
      event("sleep 2");
      if (!hasFailed) continue;
      entry.cpldEnd = "read failed";
      return;
    }
  }

  // Reads into the record; whether that failed, in which case it may have been left as it was.
  bool read(const char* function, ProgressOf progressOf, unsigned poll, bool showsRetries,
            Progress& record) {
    std::string before = fmt::format("{} {} {}", record.status, record.stage, record.percent);
    bool isZero = before == "0 0 0";
    if (showsRetries) {
      before += fmt::format(" {}", record.retries);
      isZero = isZero && record.retries == 0;
    }
    Answer& answer = called(
        function, addressed(fmt::format("progress[{}]", isZero ? std::string("zeroed") : before)));
    answer.progress = answerer_.progress(progressOf, record, poll == form_.polls);
    record = answer.progress;
    return record.callStatus != 0;
  }

  // --- the flash itself, and the closing

  void follow(Entry& entry) {
    say("Start flashing image, please wait ...");
    const char* function = isQvxf() ? "zr_getFlashQVXFImageStatus" : "zr_getFlashProgress";
    Progress& record = entry.flashProgress;
    for (unsigned poll = 1;; ++poll) {
      read(function, flashProgress, poll, false, record);
      status_ = record.callStatus;
      say(fmt::format("fshProg.fp_u8Status = {}, fshProg.fp_u8Stage = {}", record.status,
                      record.stage));
      if (record.status == 0 && record.stage == 5) {
        say("  ... 100 percent completed...");
        say("Flash Completed.");
        break;
      }
      if (record.status == 1 || record.status == 3) {
        say("Flash Error");
        status_ = 0x8054;
        break;
      }
      publishFlash(entry, record.percent, 50U + record.percent / 2U);
      event("sleep 2");
      if (status_ != 0) return close();
    }
    publishFlash(entry, 100, 100);
    if (status_ != 0) return close();
    closeFlashed(entry);
  }

  // What fails here is not closed once more.
  void closeFlashed(Entry& entry) {
    if (isQvxf()) {
      ask("zr_finalizeFlashProcess", "", ignoredStatus);
      status_ = ask("zr_finializeQVXFImage", "", judgedStatus);
      if (status_ == 0) say("ignore upgrade usb fw");
      return;
    }
    status_ = ask("zr_finalizeFlashProcess", "", judgedStatus);
    if (status_ == 0) status_ = updateBridge(entry);
  }

  // --- the USB bridge: only the interface query and the flash calls can fail the job

  Status updateBridge(Entry& entry) {
    Answer& interface = called("zr_getCurrentDeviceInterface", addressed("zeroed"));
    interface.status = answerer_.status(usbStatus);
    if (interface.status != 0) return interface.status;
    interface.value = answerer_.interfaceByte();
    if (interface.value != 1) return 0;

    const auto [status, flag] = checkVersion(entry);
    if (status == 0x4027) {
      say("thunderbolt device detected, end _flashUSBFW process");
    } else if (status != 0) {
      say("unknown error, end usb fw update process");
    } else if (flag == 0) {
      say("usbfwupdatecheck = 0, same usb fw version");
      say("same usb fw version, won't flash");
    } else {
      say(fmt::format("usbfwupdatecheck = {}, different usb fw version, update usb fw", flag));
      say("start _flashUSBFW, flashing Usb fw...");
      const Status last = flashBridge(entry);
      return last == 0x0105 ? 0 : last;
    }
    return 0;
  }

  // The NVRAM is read whether or not the versions differ.
  std::pair<Status, std::int32_t> checkVersion(Entry& entry) {
    Answer& answer =
        called("zr_mac_checkUSBFWVersion", addressed(fmt::format("{}, 0", entry.usbParm())));
    answer.status = answerer_.status(usbStatus);
    answer.value = answerer_.updateFlag();
    const auto flag = static_cast<std::int32_t>(answer.value);
    if (answer.status != 0) return {answer.status, flag};
    const Status read = ask("zr_mac_getNVRAM", entry.usbNvram(), usbStatus);
    entry.nvram = "a1";
    return {read, flag};
  }

  // The status of the last call made.
  Status flashBridge(Entry& entry) {
    entry.usbRequest = "1";
    say("qvxflash start zr_mac_flashUSBFWbin\n");
    const std::string parms = fmt::format("{}, {}", entry.flashParm(), entry.usbParm());
    Status status = ask("zr_mac_flashUSBFWbin", parms, usbStatus);
    if (status != 0 && status != 0x4027) return status;
    status = ask("zr_mac_setNVRAM", fmt::format("{}, {}", parms, entry.usbNvram()), usbStatus);
    if (status != 0) return status;
    entry.nvram = "a2";
    say("qvxflash -u usb start zr_mac_flashNVRAM\n");
    return ask("zr_mac_flashNVRAM", entry.usbNvram(), usbStatus);
  }

  static constexpr char kNoPage = '-';
  static constexpr char kPlainKind = 'x';  // none of those that have a path of their own

  const Form& form_;
  Answerer& answerer_;
  bool tellsAll_;
  JobFileModel file_;
  Dialogue dialogue_;
  Json offered_;
  unsigned entries_ = 0;
  std::string state_;  // at the entry's start, as far as it matters from there on
  Status status_ = 0;  // carried from entry to entry
  std::vector<std::pair<std::string, std::size_t>> listed_;
  // Of the controller found last: an entry without one goes on with these.
  std::optional<std::string> address_;
  char pageKind_ = kNoPage;
  std::uint16_t product_ = 0;
  bool qvxfChecked_ = false;
  bool qvxfAnalysed_ = false;
};

}  // namespace

Dialogue tell(const Form& form, Answerer& answerer, Told told) {
  return Oracle(form, answerer, told).tell();
}

Dialogue tell(const Form& form, Decider& decider) {
  Drawn answerer(decider);
  return tell(form, answerer, Told::all);
}

}  // namespace kelvane::dialogues
