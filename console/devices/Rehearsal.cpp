#include "console/devices/Rehearsal.h"

#include "console/devices/Nearest.h"
#include "console/display/Words.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using framework::ListedDevice;
using platform::Value;

namespace {

class Rehearsal {
 public:
  Rehearsal(const LookingFunctions& zorapi, const Step& step)
      : zorapi_(zorapi), step_(step), discovery_(zorapi, step), devices_(discovery_.list()) {}

  Value tell(const Value& input) const {
    const Value& told = input.asDictionary();
    // The status of the last one asked is what the worker begins with.
    if (!devices_.empty() && devices_.back().status != 0) {
      return failing(told, "the device that is asked last does not answer, which ends every job: " +
                               statusText(zorapi_, devices_.back().status));
    }
    for (const ListedDevice& listed : devices_) {
      if (listed.status == 0 && listed.wwn == told.get(job::kWwn).string()) {
        return tellOf(listed, told);
      }
    }
    return unknown(told);
  }

 private:
  static Value with(Value told, const char* verdict, const std::string& why) {
    told.set(rehearsal::kVerdict, verdict);
    if (!why.empty()) told.set(rehearsal::kWhy, why);
    return told;
  }
  static Value failing(const Value& told, const std::string& why) {
    return with(told, rehearsal::kFails, why);
  }

  Value unknown(const Value& told) const {
    std::vector<std::string> known;
    std::vector<std::string> silent;
    for (const ListedDevice& listed : devices_) {
      if (listed.status == 0) {
        known.push_back(listed.wwn);
      } else {
        silent.push_back("device " + std::to_string(listed.id) + " gives " +
                         statusText(zorapi_, listed.status));
      }
    }
    std::string why = "no controller has this WWN, letter by letter; found are ";
    why += known.empty() ? "none" : joined(known, ", ");
    // Any of them may be the one: another controller is not suggested then.
    if (!silent.empty()) return failing(told, why + whatIsSilent(silent));
    const std::string nearest = nearestWwn(told.get(job::kWwn).string(), known);
    Value answer = failing(told, why);
    if (!nearest.empty()) answer.set(rehearsal::kNearest, nearest);
    return answer;
  }

  static std::string whatIsSilent(const std::vector<std::string>& silent) {
    return "; " + joined(silent, ", ") + " instead of a WWN, and may be the one: look at its " +
           "power and cable";
  }

  Value tellOf(const ListedDevice& listed, Value told) const {
    Refused refused{};
    const std::optional<Controller> controller = discovery_.read(listed, refused);
    if (!controller) {
      return failing(
          told, std::string(refused.function) + " gives " + statusText(zorapi_, refused.status));
    }
    told.set(device::kProductId, identifierText(controller->product));
    told.set(device::kUpdate, wayOf(controller->product));
    step_("examining the image " + told.get(job::kFilePath).string());
    return controller->product.isQvxf() ? tellOfQvxf(*controller, told)
                                        : tellOfStandard(*controller, told);
  }

  FlashParm flashParmOf(const Controller& controller, const Value& told) const {
    return framework::flashParm(controller.product, told.get(job::kFilePath).string().c_str());
  }

  // A QVXF image itself is examined only inside a flash process, which is not opened here; but one
  // that can be read as a standard image is none.
  Value tellOfQvxf(const Controller& controller, const Value& told) const {
    FlashParm flash = flashParmOf(controller, told);
    FwImgInfo image = {};
    const std::uint32_t status = zorapi_.zr_getFDLImageInfo(&flash, &image);
    if (status == 0)
      return failing(told, "it is a standard image, and the product takes QVXF ones");
    return with(told, rehearsal::kNotCertain,
                "a QVXF image is examined only when its flash begins; as a standard image it is "
                "refused: " +
                    statusText(zorapi_, status));
  }

  // The image's parts as the worker reads them before it flashes the CPLD; the first failure.
  std::uint32_t examine(const Controller& controller, FlashParm& flash) const {
    FwImgInfo image = {};
    CpldParm cpld = {};
    UsbParm usb = {};
    std::uint32_t status = zorapi_.zr_getFDLImageInfo(&flash, &image);
    if (status != 0) return status;
    status = zorapi_.zr_getCPLDImageInfo(&flash, &cpld, &image, controller.page0, controller.page1);
    if (status != 0 || !controller.product.hasUsbImage()) return status;
    return zorapi_.zr_getUSBImageInfo(&flash, &usb);
  }

  Value tellOfStandard(const Controller& controller, const Value& told) const {
    FlashParm flash = flashParmOf(controller, told);
    const std::uint32_t status = examine(controller, flash);
    const bool goesOn = framework::isTolerable(zorapi_.getErrorDescription(status));
    const std::string said =
        status == 0 ? "" : "of the image the framework says " + statusText(zorapi_, status);
    if (status != 0 && !goesOn) return failing(told, said);
    if (!controller.product.isStandard()) {
      return failing(told,
                     "the worker knows no way to flash the firmware of this product: it would "
                     "flash the CPLD and then end with " +
                         statusText(zorapi_, kZorUnsupportedProduct));
    }
    if (status == 0) return with(told, rehearsal::kFits, "");
    return with(told, rehearsal::kNotCertain, said + ", and the worker goes on in spite of it");
  }

  const LookingFunctions& zorapi_;
  const Step& step_;
  Discovery discovery_;
  std::vector<ListedDevice> devices_;
};

}  // namespace

Value rehearse(const Value& inputs, const LookingFunctions& zorapi, const Step& step) {
  const Rehearsal rehearsal(zorapi, step);
  Value all = Value::array();
  for (const Value& input : inputs.elements()) all.append(rehearsal.tell(input));
  return all;
}

}  // namespace kelvane::console
