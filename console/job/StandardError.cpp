#include "console/job/StandardError.h"

#include <filesystem>
#include <sstream>
#include <string_view>
#include <system_error>

#include "contract/Paths.h"
#include "platform/Exception.h"
#include "platform/File.h"

namespace kelvane::console {
namespace {

constexpr char kSink[] = "/dev/null";
constexpr char kPrefix[] = "standard-error-";
constexpr std::size_t kLongestName = 255;  // in bytes, on every system

bool isPlain(char character) {
  constexpr std::string_view kPlain =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz._-";
  return kPlain.find(character) != std::string_view::npos;
}

std::string asName(const std::string& logId) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string name;
  for (const char character : logId) {
    if (isPlain(character)) {
      name += character;
      continue;
    }
    const auto byte = static_cast<unsigned char>(character);
    name.append({'%', kDigits[byte / 16U], kDigits[byte % 16U]});
  }
  return name;
}

}  // namespace

std::string standardErrorPath(const std::string& sharedFolder, const std::string& logId) {
  const std::string name = kPrefix + asName(logId) + ".txt";
  if (name.size() > kLongestName) return {};
  return sharedFolder + paths::kLogFolder + name;
}

std::string makeStandardError(const std::string& sharedFolder, const std::string& logId) {
  std::string path = standardErrorPath(sharedFolder, logId);
  if (path.empty() || !platform::makeFolders(sharedFolder + paths::kLogFolder) ||
      !platform::createEmptyFile(path)) {
    return kSink;
  }
  return path;
}

std::vector<std::string> standardErrorOf(const std::string& sharedFolder,
                                         const std::string& logId) {
  std::vector<std::string> lines;
  try {
    std::istringstream text(platform::readFile(standardErrorPath(sharedFolder, logId)));
    for (std::string line; std::getline(text, line);) lines.push_back(line);
  } catch (const platform::Exception&) {
    return {};
  }
  return lines;
}

std::vector<std::string> standardErrorInShort(const std::string& sharedFolder,
                                              const std::string& logId) {
  constexpr std::size_t kMost = 10;
  std::vector<std::string> lines = standardErrorOf(sharedFolder, logId);
  if (lines.empty()) return lines;
  const std::size_t more = lines.size() > kMost ? lines.size() - kMost : 0;
  lines.resize(lines.size() - more);
  if (more != 0) lines.push_back("... " + std::to_string(more) + " more");
  lines.push_back("(kept in " + standardErrorPath(sharedFolder, logId) + ")");
  return lines;
}

void discardSilence(const std::string& sharedFolder, const std::string& logId) {
  const std::string path = standardErrorPath(sharedFolder, logId);
  if (platform::fileSize(path) == 0) discardStandardError(sharedFolder, logId);
}

void discardStandardError(const std::string& sharedFolder, const std::string& logId) {
  std::error_code untold;
  std::filesystem::remove(standardErrorPath(sharedFolder, logId), untold);
}

}  // namespace kelvane::console
