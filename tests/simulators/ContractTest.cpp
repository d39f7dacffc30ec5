// The framework's contract up to the examined image: every breach is journaled and refused.

#include <cstring>

#include "tests/simulators/Breach.h"

namespace kelvane::test {
namespace {

void expectBreachAtStart(const std::string& text, const Breach& breach) {
  SimulatedWorld world;
  world.start();
  expectBreach(world, text, breach);
}

std::uint32_t fetchInfo(SimulatedWorld& w, const CtrlInfoRequest& request, std::uint32_t size) {
  return w.framework.getControllerInfo(0, 0, &request, w.job.buffer.data(), size);
}

TEST(SimulatedContract, InitParmHoldsTheFixedWords) {
  SimulatedWorld world;
  expectBreach(world, "InitParm does not hold exactly the fixed words", [](SimulatedWorld& w) {
    InitParm parm = initialParameters();
    parm.at168[103] = 1;
    return w.framework.initialize(&parm);
  });
}

TEST(SimulatedContract, DiscoveryComesAfterInitialising) {
  SimulatedWorld world;
  expectBreach(world, "called before zr_initialize",
               [](SimulatedWorld& w) { return w.framework.discover(0); });
}

TEST(SimulatedContract, ControllersComeAfterDiscovery) {
  SimulatedWorld world;
  const InitParm parm = initialParameters();
  world.framework.initialize(&parm);
  expectBreach(world, "called before zr_discover", [](SimulatedWorld& w) {
    std::uint32_t count = 0;
    return w.framework.getNumberOfHBA(&count);
  });
}

TEST(SimulatedContract, DiscoveryTakesZero) {
  expectBreachAtStart("the argument is not 0",
                      [](SimulatedWorld& w) { return w.framework.discover(1); });
}

TEST(SimulatedContract, SubsystemInfoIsZeroed) {
  expectBreachAtStart("SubsystemInfo is not zeroed", [](SimulatedWorld& w) {
    SubsystemInfo info = {};
    info.at192[383] = 1;
    return w.framework.getSubsystemInfo({}, 0, &info);
  });
}

TEST(SimulatedContract, WwnStringIsZeroed) {
  SimulatedWorld world;
  world.start();
  WwnString text = {};
  text.text[31] = 'x';
  const std::string wwn(8, '\0');
  world.framework.getStringWWN(&text, wwn.data());
  EXPECT_EQ(world.journal.violations(), std::vector<std::string>{"WwnString is not zeroed"});
  EXPECT_STREQ(text.text, "");
}

TEST(SimulatedContract, AddressesAreKnown) {
  expectBreachAtStart("no controller has this address", [](SimulatedWorld& w) {
    return w.framework.finalizeFlashProcess(ControllerAddress{1, 0, 0, 0}, 0);
  });
}

TEST(SimulatedContract, PastDiscoveryTheSubsystemNumberIsZero) {
  SimulatedWorld world(
      R"({"controllers":[{"wwn":"500a098000000002","product_id":2,"firmware":"1","cpld":"1",
         "usb_bridge":"1","listed_as":"subsystem"}]})");
  world.start();
  expectBreach(world, "no controller has this address", [](SimulatedWorld& w) {
    return w.framework.finalizeFlashProcess(ControllerAddress{0, 0, 1, 0}, 0);
  });
}

TEST(SimulatedContract, SubsystemsAreNotListedByTheirOwnCount) {
  SimulatedWorld world(
      R"({"controllers":[
        {"wwn":"500a098000000001","product_id":1,"firmware":"1","cpld":"1","usb_bridge":"1"},
        {"wwn":"500a098000000003","product_id":1,"firmware":"1","cpld":"1","usb_bridge":"1"},
        {"wwn":"500a098000000002","product_id":2,"firmware":"1","cpld":"1","usb_bridge":"1",
         "listed_as":"subsystem"}]})");
  world.start();
  expectBreach(world, "no controller has this address", [](SimulatedWorld& w) {
    SubsystemInfo info = {};
    return w.framework.getSubsystemInfo(ControllerAddress{0, 0, 1, 0}, 0, &info);
  });
}

TEST(SimulatedContract, ReservedBitsAreZero) {
  expectBreachAtStart("reserved bits of the address are not 0", [](SimulatedWorld& w) {
    return w.framework.finalizeFlashProcess(ControllerAddress{0, 1, 0, 0}, 0);
  });
}

TEST(SimulatedContract, SelIsZero) {
  expectBreachAtStart("sel is not 0",
                      [](SimulatedWorld& w) { return w.framework.finalizeFlashProcess({}, 1); });
}

TEST(SimulatedContract, CtrlInfoRequestIsExact) {
  expectBreachAtStart("CtrlInfoRequest does not hold exactly the fixed words",
                      [](SimulatedWorld& w) { return fetchInfo(w, {}, ZOR_CONTROLLER_INFO_SIZE); });
}

TEST(SimulatedContract, InfoBufferHasItsSize) {
  expectBreachAtStart("the size of the buffer is not 65535", [](SimulatedWorld& w) {
    return fetchInfo(w, controllerInfoRequest(), 4096);
  });
}

TEST(SimulatedContract, InfoBufferIsZeroed) {
  expectBreachAtStart("the controller information buffer is not zeroed", [](SimulatedWorld& w) {
    w.job.buffer.back() = 1;
    return fetchInfo(w, controllerInfoRequest(), ZOR_CONTROLLER_INFO_SIZE);
  });
}

TEST(SimulatedContract, PagesAreLocatedInTheFilledBuffer) {
  expectBreach("the buffer is not the one that was filled last", [](SimulatedWorld& w) {
    std::vector<char> other(ZOR_CONTROLLER_INFO_SIZE);
    void* page = nullptr;
    return w.framework.locateBufferCtrlInfo(other.data(), ZOR_CONTROLLER_INFO_SIZE, 0, 0, &page);
  });
}

TEST(SimulatedContract, ThereAreTwoPages) {
  expectBreach("there is no page of this number", [](SimulatedWorld& w) {
    void* page = nullptr;
    return w.framework.locateBufferCtrlInfo(w.job.buffer.data(), ZOR_CONTROLLER_INFO_SIZE, 0, 2,
                                            &page);
  });
}

TEST(SimulatedContract, PageLocatorsThirdArgumentIsZero) {
  expectBreach("the third argument is not 0", [](SimulatedWorld& w) {
    void* page = nullptr;
    return w.framework.locateBufferCtrlInfo(w.job.buffer.data(), ZOR_CONTROLLER_INFO_SIZE, 1, 0,
                                            &page);
  });
}

TEST(SimulatedContract, InterfaceInfoIsZeroed) {
  expectBreachAtStart("DeviceInterfaceInfo is not zeroed", [](SimulatedWorld& w) {
    DeviceInterfaceInfo info = {};
    info.at33 = 1;
    return w.framework.getCurrentDeviceInterface({}, 0, &info);
  });
}

TEST(SimulatedContract, RecordsAreThere) {
  expectBreach("FlashParm is missing", [](SimulatedWorld& w) {
    FwImgInfo image = {};
    return w.framework.getFDLImageInfo(nullptr, &image);
  });
}

// --- examining the image

TEST(SimulatedContract, ImageIsExaminedForAController) {
  expectBreachAtStart("called before zr_getControllerInfo", [](SimulatedWorld& w) {
    w.fillFlashParm(w.standardImage(), 0x4301);
    return w.framework.getFDLImageInfo(&w.job.flash, &w.job.image);
  });
}

TEST(SimulatedContract, FwImgInfoIsZeroed) {
  expectBreach("FwImgInfo is not zeroed", [](SimulatedWorld& w) {
    return w.framework.getFDLImageInfo(&w.job.flash, &w.job.image);
  });
}

TEST(SimulatedContract, CpldParmIsZeroed) {
  expectBreach("CpldParm is not zeroed", [](SimulatedWorld& w) {
    return w.framework.getCPLDImageInfo(&w.job.flash, &w.job.cpld, &w.job.image, w.job.page0,
                                        w.job.page1);
  });
}

TEST(SimulatedContract, PagesAreThoseLocated) {
  expectBreach("page 1 is not as it was located", [](SimulatedWorld& w) {
    CpldParm cpld = {};
    return w.framework.getCPLDImageInfo(&w.job.flash, &cpld, &w.job.image, w.job.page0,
                                        w.job.page0);
  });
}

TEST(SimulatedContract, UsbParmIsZeroed) {
  expectBreach("UsbParm is not zeroed", [](SimulatedWorld& w) {
    return w.framework.getUSBImageInfo(&w.job.flash, &w.job.usb);
  });
}

TEST(SimulatedContract, FlashParmNamesTheControllersProduct) {
  expectBreach("the product identifier in FlashParm is not the controller's",
               [](SimulatedWorld& w) {
                 w.job.flash.productId = 0x4302;
                 return w.framework.getUSBImageInfo(&w.job.flash, &w.job.usb);
               });
}

TEST(SimulatedContract, FlashParmsByteOneIsZero) {
  expectBreach("byte 1 of FlashParm is not 0", [](SimulatedWorld& w) {
    w.job.flash.at1 = 1;
    return w.framework.getUSBImageInfo(&w.job.flash, &w.job.usb);
  });
}

TEST(SimulatedContract, FlashParmsOtherFieldsAreZero) {
  expectBreach("a field of FlashParm is not 0", [](SimulatedWorld& w) {
    w.job.flash.at308[3] = 1;
    return w.framework.getUSBImageInfo(&w.job.flash, &w.job.usb);
  });
}

TEST(SimulatedContract, PathEnds) {
  expectBreach("the path in FlashParm does not end", [](SimulatedWorld& w) {
    std::memset(&w.job.flash.rpf_uTransfer, 'a', sizeof w.job.flash.rpf_uTransfer);
    return w.framework.getUSBImageInfo(&w.job.flash, &w.job.usb);
  });
}

}  // namespace
}  // namespace kelvane::test
