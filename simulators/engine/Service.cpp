#include "simulators/engine/Service.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/Exception.h"
#include "platform/File.h"
#include "simulators/support/Number.h"

namespace kelvane::simulator {

using platform::Exception;

namespace {

constexpr std::string_view kAfterScheme = "://";

// The URL's scheme, lower case; nothing of a plain path.
std::optional<std::string> schemeOf(const std::string& url) {
  const std::size_t end = url.find(kAfterScheme);
  if (end == std::string::npos || end == 0) return {};
  const std::string scheme = lowerCase(url.substr(0, end));
  const bool isScheme = std::all_of(scheme.begin(), scheme.end(), [](unsigned char c) {
    return std::isalnum(c) != 0 || c == '+' || c == '-' || c == '.';
  });
  return isScheme ? std::optional(scheme) : std::nullopt;
}

// The text with "%20" and the like as the bytes they stand for; nothing where they stand for none.
std::optional<std::string> percentDecoded(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      bytes.push_back(text[i]);
      continue;
    }
    const std::optional<std::string> byte = hexBytes(text.substr(i + 1, 2));
    if (!byte || byte->size() != 1 || byte->front() == '\0') return {};
    bytes += *byte;
    i += 2;
  }
  return bytes;
}

std::string pathOfFileUrl(const std::string& url) {
  const std::size_t hostStart = url.find(kAfterScheme) + kAfterScheme.size();
  const std::size_t pathStart = url.find('/', hostStart);
  const std::string host = lowerCase(url.substr(hostStart, pathStart - hostStart));
  if (pathStart == std::string::npos || (!host.empty() && host != "localhost")) {
    throw Exception("service " + url + ": is on another host");
  }
  const std::optional<std::string> path = percentDecoded(url.substr(pathStart));
  if (!path) throw Exception("service " + url + ": a \"%\" is not followed by a byte's two digits");
  return *path;
}

std::string pathOf(const std::string& url) {
  const std::optional<std::string> scheme = schemeOf(url);
  if (!scheme) return url;
  if (*scheme == "file") return pathOfFileUrl(url);
  throw Exception("service " + url + ": neither a path nor a file URL");
}

}  // namespace

std::string serviceFolder(const std::string& url) {
  std::string path = pathOf(url);
  std::error_code cause;
  if (std::filesystem::is_directory(path, cause)) return path;
  throw Exception("service " + path + ": " + (cause ? cause.message() : "is not a folder"));
}

std::vector<std::string> packagesOf(const std::string& service, const std::string& productId) {
  const std::string folder = service + "/" + kPackagesFolder + "/" + productId + "/";
  std::vector<std::string> paths;
  for (const std::string& name : platform::listFolder(folder)) paths.push_back(folder + name);
  std::sort(paths.begin(), paths.end());
  return paths;
}

}  // namespace kelvane::simulator
