// Property lists for tests, made from readable text.
#pragma once

#include <string>

namespace kelvane::test {

// A whole XML property list around the content, such as "<dict>...</dict>".
std::string xmlPropertyList(const std::string& content);
// The same list in its binary form.
std::string binaryPropertyList(const std::string& content);

}  // namespace kelvane::test
