#include "tests/support/PropertyLists.h"

#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include <plist/plist.h>

namespace kelvane::test {

std::string xmlPropertyList(const std::string& content) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n" + content +
         "\n</plist>\n";
}

std::string binaryPropertyList(const std::string& content) {
  const std::string xml = xmlPropertyList(content);
  plist_t list = nullptr;
  ::plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &list);
  if (list == nullptr) throw std::runtime_error("not a property list: " + content);
  char* bytes = nullptr;
  std::uint32_t length = 0;
  ::plist_to_bin(list, &bytes, &length);
  std::string binary(bytes, length);
  std::free(bytes);
  ::plist_free(list);
  return binary;
}

}  // namespace kelvane::test
