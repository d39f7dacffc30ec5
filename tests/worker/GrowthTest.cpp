// How what is asked for in memory grows with the size of the work: ten times as much may ask for
// ten times as much, and never for a hundred times.

#include <cstddef>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "log/iLog.h"
#include "platform/Json.h"
#include "tests/support/JobFiles.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/WorkerWorld.h"
#include "tests/worker/Memory.h"

namespace kelvane {
namespace {

using platform::Value;

class Growth : public test::WorkerWorld {
 protected:
  static std::size_t cost(const std::function<void()>& action) {
    const std::size_t before = test::memory::newBytes;
    action();
    return test::memory::newBytes - before;
  }

  // So many records, of which "17", the last, is the running one.
  void writeRecords(std::size_t count) const {
    Value records = Value::array();
    for (std::size_t i = 1; i < count; ++i) {
      records.append(Value::dictionary({{"log_id", "earlier-" + std::to_string(i)},
                                        {"state_id", "FREE"},
                                        {"resultStr", std::string(200, 'x')},
                                        {"output", Value::array({progress(100)})}}));
    }
    records.append(Value::dictionary({{"log_id", "17"}, {"output", Value::array({progress(0)})}}));
    writeJobs(*platform::printJson(records));
  }
  static Value progress(int percent) {
    return Value::dictionary(
        {{"wwn", "A"}, {"file_path", "/i"}, {"fw_percentage", Value::integer(percent)}});
  }
  std::size_t costOfAnUpdate(int percent) {
    return cost([&] { worker.updateFWUpdateStatus(progress(percent), "17"); });
  }

  using Form = std::string (*)(const std::string& content);

  // The folder of a catalogue of so many rules, each for a product of its own, "0" and so on.
  std::string catalogue(std::size_t rules, Form form = test::xmlPropertyList) const {
    std::string all;
    for (std::size_t i = 0; i < rules; ++i) {
      all += "<dict><key>ProductID</key><string>" + std::to_string(i) +
             "</string><key>Version</key><string>2</string><key>Size</key><integer>7</integer>"
             "<key>Hash256</key><string>h</string></dict>";
    }
    folder.write("Offers.plist", form("<dict><key>Rules</key><array>" + all + "</array></dict>"));
    return folder.path();
  }
  // The descriptions of the first so many products.
  Value descriptions(std::size_t products, const std::string& catalogueFolder) {
    Value parameters = Value::array();
    for (std::size_t i = 0; i < products; ++i) {
      parameters.append(Value::dictionary({{"productid", std::to_string(i)}}));
    }
    return worker.getDownloadFileData(parameters, catalogueFolder);
  }

  static constexpr std::size_t kAtMost = 13;  // times as much, where the work is ten times as much
};

TEST_F(Growth, AnUpdateGrowsWithTheJobFile) {
  const auto costs = [&](std::size_t records) {
    writeRecords(records);
    const std::size_t first = costOfAnUpdate(1);
    return std::pair(first, costOfAnUpdate(2));
  };
  const auto [firstOfFew, laterOfFew] = costs(100);
  const auto [firstOfMany, laterOfMany] = costs(1'000);
  EXPECT_LT(firstOfMany, kAtMost * firstOfFew);
  EXPECT_LT(laterOfMany, kAtMost * laterOfFew);
}

TEST_F(Growth, ALaterUpdateMakesOnlyWholeTextsAnew) {
  writeRecords(1'000);
  const std::size_t first = costOfAnUpdate(1);
  const std::size_t later = costOfAnUpdate(2);
  EXPECT_LT(later, first / 2);
  // The buffers of two readings, the new file's text, and the new dump's, which is the longest.
  EXPECT_LT(later, 5 * jobText().size());
}

TEST_F(Growth, ACatalogueGrowsWithItsRules) {
  worker.setSettingDict(Value::dictionary({{"online_update_plist_name", "Offers"}}));
  const auto costOf = [&](std::size_t rules, Form form) {
    const std::string there = catalogue(rules, form);
    return cost([&] { EXPECT_EQ(descriptions(1, there).at(0).get("size").digits(), "7"); });
  };
  for (const Form form : {test::xmlPropertyList, test::binaryPropertyList}) {
    const std::size_t few = costOf(100, form);
    EXPECT_LT(costOf(1'000, form), kAtMost * few);
  }
}

TEST_F(Growth, ProductsGrowWithTheirNumber) {
  worker.setSettingDict(Value::dictionary({{"online_update_plist_name", "Offers"}}));
  const std::string there = catalogue(200);
  const auto costOf = [&](std::size_t products) {
    return cost([&] { EXPECT_EQ(descriptions(products, there).count(), products); });
  };
  costOf(1);  // the catalogue is parsed
  const std::size_t few = costOf(10);
  EXPECT_LT(costOf(100), kAtMost * few);
}

TEST_F(Growth, ALaterProductDoesNotParseTheCatalogueAgain) {
  worker.setSettingDict(Value::dictionary({{"online_update_plist_name", "Offers"}}));
  for (const Form form : {test::xmlPropertyList, test::binaryPropertyList}) {
    const std::string there = catalogue(2'000, form);
    const std::size_t first = cost([&] { descriptions(1, there); });
    const std::size_t later = cost([&] { descriptions(1, there); });
    EXPECT_LT(later, first / 4);
  }
}

TEST_F(Growth, ATreeGrowsWithItsFilesAndFolders) {
  const auto costOf = [&](std::size_t folders) {
    const std::string name = "tree of " + std::to_string(folders);
    for (std::size_t i = 0; i < 10 * folders; ++i) {
      folder.write(name + "/a/" + std::to_string(i / 10) + "/b/" + std::to_string(i), "x");
    }
    // As a download comes to its place: copied, synchronised, the older one removed.
    worker.syncFiles(folder / name, folder / "area");
    return cost([&] { worker.syncFiles(folder / name, folder / "area"); });
  };
  const std::size_t few = costOf(10);
  EXPECT_LT(costOf(100), kAtMost * few);
}

TEST_F(Growth, TheLogGrowsWithItsLinesAndTheirLength) {
  const auto costOfLines = [&](std::size_t lines) {
    return cost([&] {
      for (std::size_t i = 0; i < lines; ++i) KELVANE_LOG("run:", "i = %d", static_cast<int>(i));
    });
  };
  const auto costOfLength = [&](std::size_t length) {
    const Value text(std::string(length, 'x'));
    return cost([&] { KELVANE_LOG("run:", "text = %@", text); });
  };
  EXPECT_LT(costOfLines(1'000), kAtMost * costOfLines(100));
  EXPECT_LT(costOfLength(100'000), kAtMost * costOfLength(10'000));
}

}  // namespace
}  // namespace kelvane
