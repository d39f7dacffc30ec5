#include <optional>
#include <utility>

#include "console/report/redaction/SecretForms.h"

namespace kelvane::console {
namespace {

constexpr std::string_view kStart = "://";

// What stands behind "://".
struct Address {
  std::size_t begin = 0;
  std::size_t endOfHost = 0;                 // before the path
  std::size_t end = 0;                       // where the address ends, or another one begins
  std::optional<std::size_t> colon = {};     // the first one before the path
  std::optional<std::size_t> atInHost = {};  // the last "@" before the path
  std::optional<std::size_t> at = {};        // the last "@"
};

Address addressAt(const Letters& text, std::size_t begin) {
  constexpr std::string_view kEnds = " \"<>\n";
  constexpr std::string_view kEndsOfHost = "/?#";
  Address address{.begin = begin};
  bool isInHost = true;
  std::size_t place = begin;
  for (; kEnds.find(text.at(place)) == std::string_view::npos; ++place) {
    const char sign = text.at(place);
    if (sign == ':' && text.startsWith(place, kStart)) break;
    if (isInHost && kEndsOfHost.find(sign) != std::string_view::npos) {
      isInHost = false;
      address.endOfHost = place;
    }
    if (isInHost && sign == ':' && !address.colon) address.colon = place;
    if (isInHost && sign == '@') address.atInHost = place;
    if (sign == '@') address.at = place;
  }
  address.end = place;
  if (isInHost) address.endOfHost = place;
  return address;
}

// Whether digits alone stand there.
bool isPort(const Letters& text, std::size_t begin, std::size_t end) {
  while (begin < end && isDigit(text.at(begin))) ++begin;
  return begin == end;
}

// Where who and with what end. What has a colon, no "@", and no port is an address that was cut.
std::optional<std::size_t> endOfUser(const Letters& text, const Address& address) {
  if (!address.colon) return address.atInHost;
  if (address.at) return address.at;
  const bool isNumberedHost = text.at(address.begin) == '[';
  if (isNumberedHost || isPort(text, *address.colon + 1, address.endOfHost)) return std::nullopt;
  return address.endOfHost;
}

}  // namespace

void findUserInformation(const Letters& text, FoundSecrets& found) {
  for (std::size_t at = text.findAny(":", 0); at < text.size();) {
    if (!text.startsWith(at, kStart)) {
      at = text.findAny(":", at + 1);
      continue;
    }
    const Address address = addressAt(text, at + kStart.size());
    const std::optional<std::size_t> end = endOfUser(text, address);
    if (end && *end > address.begin) {
      std::string password;
      if (address.colon && *address.colon < *end) password = text.part(*address.colon + 1, *end);
      found.push_back({address.begin, *end, Secret::credentials, text.part(address.begin, *end),
                       std::move(password)});
    }
    at = text.findAny(":", address.end);
  }
}

}  // namespace kelvane::console
