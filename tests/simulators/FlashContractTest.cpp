// The framework's contract while flashing: every breach is journaled and refused.

#include "tests/simulators/Breach.h"

namespace kelvane::test {
namespace {

// The same where a firmware flash runs.
void expectBreachWhileFlashing(const std::string& text, const Breach& breach) {
  SimulatedWorld world;
  world.upToFirmwareStarted(world.standardImage());
  expectBreach(world, text, breach);
}

void expectBreachWithBridge(const std::string& text, const Breach& breach) {
  SimulatedWorld world;
  world.upToExamined(world.standardImage());
  world.prepareBridge();
  expectBreach(world, text, breach);
}

void expectQvxfBreach(const std::string& text, const Breach& breach) {
  SimulatedWorld world(fleetOfOneQvxf());
  world.start();
  world.readController();
  world.fillFlashParm(world.qvxfImage(), 0x4801);
  expectBreach(world, text, breach);
}

std::uint32_t check(SimulatedWorld& w) {
  return w.framework.checkFlashImage(w.address, 0, w.job.buffer.data(), &w.job.flash, &w.job.usb,
                                     &w.job.cpld, &w.job.image);
}

// --- the flash process

TEST(SimulatedContract, UnfilledFlashParmWithoutAFailure) {
  expectBreach("the product identifier in FlashParm is not the controller's",
               [](SimulatedWorld& w) {
                 w.framework.initializeFlashProcess(w.address, 0);
                 w.job.flash = {};
                 return check(w);
               });
}

TEST(SimulatedContract, CheckNeedsAFlashProcess) {
  expectBreach("no flash process is open", check);
}

TEST(SimulatedContract, CheckGetsTheFilledBuffer) {
  expectBreach("the controller information buffer is not the one that was filled last",
               [](SimulatedWorld& w) {
                 w.framework.initializeFlashProcess(w.address, 0);
                 std::vector<char> other = w.job.buffer;
                 return w.framework.checkFlashImage(w.address, 0, other.data(), &w.job.flash,
                                                    &w.job.usb, &w.job.cpld, &w.job.image);
               });
}

TEST(SimulatedContract, ImageRecordIsAsFilled) {
  expectBreach("FwImgInfo is not as the framework filled it", [](SimulatedWorld& w) {
    w.framework.initializeFlashProcess(w.address, 0);
    ++w.job.image.at0;
    return check(w);
  });
}

TEST(SimulatedContract, TransferNeedsAFlashProcess) {
  expectBreach("no flash process is open", [](SimulatedWorld& w) {
    return w.framework.transferFlashImage(w.address, 0, &w.job.flash, &w.job.usb, &w.job.cpld,
                                          &w.job.image);
  });
}

TEST(SimulatedContract, VerificationNeedsAFlashProcess) {
  expectBreach("no flash process is open", [](SimulatedWorld& w) {
    return w.framework.verifyFlashImage(w.address, 0, &w.job.flash);
  });
}

TEST(SimulatedContract, FlashNeedsAFlashProcess) {
  expectBreach("no flash process is open", [](SimulatedWorld& w) {
    return w.framework.flashImageEx(w.address, 0, 4, &w.job.flash);
  });
}

TEST(SimulatedContract, FlashNeedsATransfer) {
  expectBreach("no image has been transferred", [](SimulatedWorld& w) {
    w.framework.initializeFlashProcess(w.address, 0);
    return w.framework.flashImageEx(w.address, 0, 4, &w.job.flash);
  });
}

TEST(SimulatedContract, FlashModeIsFour) {
  expectBreach("the flash mode is not 4", [](SimulatedWorld& w) {
    w.transfer();
    return w.framework.flashImageEx(w.address, 0, 3, &w.job.flash);
  });
}

TEST(SimulatedContract, FlashProcessIsNotOpenedTwice) {
  expectBreachWhileFlashing("a flash process is still open", [](SimulatedWorld& w) {
    return w.framework.initializeFlashProcess(w.address, 0);
  });
}

TEST(SimulatedContract, ProgressNeedsAFlash) {
  expectBreach("no flash has been started", [](SimulatedWorld& w) {
    FlashProgress progress = {};
    return w.framework.getFlashProgress(w.address, 0, &progress);
  });
}

TEST(SimulatedContract, FirstProgressRecordIsZeroed) {
  expectBreachWhileFlashing("FlashProgress is not zeroed", [](SimulatedWorld& w) {
    FlashProgress progress = {};
    progress.at4[11] = 1;
    return w.framework.getFlashProgress(w.address, 0, &progress);
  });
}

// --- CPLD

TEST(SimulatedContract, CpldFlashNeedsItsProcess) {
  expectBreach("no CPLD flash process is open", [](SimulatedWorld& w) { return w.startCpld(); });
}

TEST(SimulatedContract, CpldFlashsFourthArgumentIsZero) {
  expectBreach("the fourth argument is not 0", [](SimulatedWorld& w) {
    w.openCpld();
    return w.framework.flashCPLDBin(w.address, 0, &w.job.flash, 1, &w.job.usb, &w.job.cpld,
                                    &w.job.image);
  });
}

TEST(SimulatedContract, CpldProgressNeedsAFlash) {
  expectBreach("no flash has been started", [](SimulatedWorld& w) {
    w.openCpld();
    CpldProgress progress = {};
    return w.framework.getCPLDProgress(w.address, 0, &progress);
  });
}

TEST(SimulatedContract, FirstCpldProgressRecordIsZeroed) {
  expectBreach("CpldProgress is not zeroed", [](SimulatedWorld& w) {
    w.openCpld();
    w.startCpld();
    CpldProgress progress = {};
    progress.at0[0] = 1;
    return w.framework.getCPLDProgress(w.address, 0, &progress);
  });
}

// --- QVXF

TEST(SimulatedContract, QvxfIsForQvxfControllers) {
  expectBreach("the controller takes no QVXF images", [](SimulatedWorld& w) {
    w.framework.initializeFlashProcess(w.address, 0);
    return w.framework.checkQVXFFlashImage(w.address, 0, &w.job.flash, &w.job.checkInfo);
  });
}

TEST(SimulatedContract, QvxfCheckNeedsAFlashProcess) {
  expectQvxfBreach("no flash process is open", [](SimulatedWorld& w) {
    return w.framework.checkQVXFFlashImage(w.address, 0, &w.job.flash, &w.job.checkInfo);
  });
}

TEST(SimulatedContract, QvxfCheckInfoIsZeroed) {
  expectQvxfBreach("QvxfCheckInfo is not zeroed", [](SimulatedWorld& w) {
    w.framework.initializeFlashProcess(w.address, 0);
    w.job.checkInfo.bytes[255] = 1;
    return w.framework.checkQVXFFlashImage(w.address, 0, &w.job.flash, &w.job.checkInfo);
  });
}

TEST(SimulatedContract, QvxfTransfersLastArgumentIsZero) {
  expectQvxfBreach("the last argument is not 0", [](SimulatedWorld& w) {
    w.framework.initializeFlashProcess(w.address, 0);
    return w.framework.transferQVXFFlashImage(w.address, 0, &w.job.flash, &w.job.image, 1);
  });
}

TEST(SimulatedContract, AnalysisNeedsATransfer) {
  expectQvxfBreach("no image has been transferred", [](SimulatedWorld& w) {
    return w.framework.analyzeQVXFImage(w.address, 0, &w.job.analysis);
  });
}

TEST(SimulatedContract, QvxfAnalysisIsZeroed) {
  expectQvxfBreach("QvxfAnalysis is not zeroed", [](SimulatedWorld& w) {
    w.transferQvxf(w.qvxfImage());
    w.job.analysis.bytes[0] = 1;
    return w.framework.analyzeQVXFImage(w.address, 0, &w.job.analysis);
  });
}

TEST(SimulatedContract, QvxfFlashNeedsAnAnalysis) {
  expectQvxfBreach("the image has not been analysed", [](SimulatedWorld& w) {
    w.transferQvxf(w.qvxfImage());
    return w.framework.flashQVXFImage(w.address, 0);
  });
}

TEST(SimulatedContract, QvxfProgressNeedsAFlash) {
  expectQvxfBreach("no flash has been started", [](SimulatedWorld& w) {
    FlashProgress progress = {};
    return w.framework.getFlashQVXFImageStatus(w.address, 0, &progress);
  });
}

// --- USB bridge

TEST(SimulatedContract, BridgeIsCheckedOnlyWhereThereIsOne) {
  SimulatedWorld world(fleetOfOne(R"("attached": "other")"));
  world.upToExamined(world.standardImage());
  expectBreach(world, "the controller is not attached through the USB bridge",
               [](SimulatedWorld& w) { return w.prepareBridge(); });
}

TEST(SimulatedContract, NvramIsZeroed) {
  expectBreach("UsbNvram is not zeroed", [](SimulatedWorld& w) {
    w.job.nvram.bytes[515] = 1;
    return w.framework.getNVRAM(w.address, 0, &w.job.nvram);
  });
}

TEST(SimulatedContract, BridgeFlashIsAskedForInItsRecord) {
  expectBreachWithBridge("the flash request in UsbParm is not 1", [](SimulatedWorld& w) {
    w.job.usb.flashRequest = 0;
    return w.flashBridge();
  });
}

TEST(SimulatedContract, BridgeFlashNeedsTheVersionCheck) {
  expectBreach("the version of the bridge has not been checked", [](SimulatedWorld& w) {
    w.job.usb.flashRequest = 1;
    return w.flashBridge();
  });
}

TEST(SimulatedContract, BridgeIsFlashedOutsideFlashProcesses) {
  expectBreachWithBridge("a flash process is still open", [](SimulatedWorld& w) {
    w.framework.initializeFlashProcess(w.address, 0);
    return w.flashBridge();
  });
}

TEST(SimulatedContract, PreparedNvramIsTheOneRead) {
  expectBreachWithBridge("UsbNvram is not as it was read", [](SimulatedWorld& w) {
    w.job.nvram.bytes[100] = 1;
    return w.framework.setNVRAM(w.address, 0, &w.job.flash, &w.job.usb, &w.job.nvram);
  });
}

TEST(SimulatedContract, NvramIsPreparedBeforeItIsFlashed) {
  expectBreachWithBridge("the NVRAM has not been prepared", [](SimulatedWorld& w) {
    return w.framework.flashNVRAM(w.address, 0, &w.job.nvram);
  });
}

TEST(SimulatedContract, FlashedNvramIsTheOnePrepared) {
  expectBreachWithBridge("UsbNvram is not as it was prepared", [](SimulatedWorld& w) {
    w.framework.setNVRAM(w.address, 0, &w.job.flash, &w.job.usb, &w.job.nvram);
    w.job.nvram.bytes[100] = 1;
    return w.framework.flashNVRAM(w.address, 0, &w.job.nvram);
  });
}

}  // namespace
}  // namespace kelvane::test
