#include "platform/PropertyList.h"

#include <string_view>

#include "platform/BinaryPropertyList.h"
#include "platform/Exception.h"
#include "platform/File.h"
#include "platform/XmlPropertyList.h"

namespace kelvane::platform {
namespace {

std::string_view withoutByteOrderMark(std::string_view bytes) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  if (bytes.substr(0, kMark.size()) == kMark) bytes.remove_prefix(kMark.size());
  return bytes;
}

Value parseEitherForm(std::string_view bytes) {
  return isBinaryPropertyList(bytes) ? parseBinaryPropertyList(bytes) : parseXmlPropertyList(bytes);
}

}  // namespace

Value parsePropertyList(std::string_view bytes) {
  Value root = parseEitherForm(withoutByteOrderMark(bytes));
  return root.isDictionary() ? root : Value();
}

Value readPropertyList(const std::string& path, ParsedBytes& last) {
  try {
    return last.valueOfFile(path);
  } catch (const Exception&) {
    return {};
  }
}

Value readPropertyList(const std::string& path) {
  ParsedBytes nothing(parsePropertyList);
  return readPropertyList(path, nothing);
}

}  // namespace kelvane::platform
