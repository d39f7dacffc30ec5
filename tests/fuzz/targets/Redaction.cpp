// What a report keeps to itself: of what is known as a secret, or is one by its form or by what it
// is called, nothing is left, and all else stays.

#include "console/report/redaction/Redaction.h"

#include <cstdio>
#include <string>

#include "tests/fuzz/Bytes.h"
#include "tests/fuzz/Law.h"
#include "tests/fuzz/laws/RedactionLaws.h"

namespace kelvane::fuzz {
namespace {

using console::Redaction;

// What holds of every text, whatever is known.
std::string redacted(Redaction& redaction, const std::string& text) {
  std::string shown = redaction.applied(text);
  requireNoWwn(shown);
  requireSame(shown, redaction.applied(text), "the same text gets the same stand-ins");
  requireBeginning(redaction.applied(text, {}, text.size() / 2), shown);
  return shown;
}

void hideUser(const std::string& name, const std::string& text) {
  Redaction redaction;
  redaction.addUser(name);
  redaction.addHome("/Users/" + name);
  redaction.learn(text);
  requireHidden(name, redacted(redaction, text));
}

void keepUser(const std::string& name) {
  const std::string text = "is " + name + " here";
  Redaction redaction;
  redaction.addUser(name);
  requireSame(text, redaction.applied(text), "what is no secret stays");
}

// --- what is a secret by its form or by what it is called

struct Place {
  const char* before;
  const char* after;
  bool isPassword;  // also a secret wherever else it stands
};

constexpr Place kPlaces[] = {
    {"?token=", "&x=1", true},
    {"\"client_secret\": \"", "\", 1", true},
    {"password = ", ";", true},
    {"run --token=", " more", true},
    {"run --token ", " more", true},
    {"<key>Password</key> <string>", "</string>", true},
    {"Authorization: Bearer ", " more", false},
    {"/a?X-Amz-Signature=", "&x=1", false},
    {"x-api-key: ", " more", false},
    {"wwn = ", ";", false},
};

void hideValue(const std::string& value, const std::string& text) {
  for (const Place& place : kPlaces) {
    const std::string line = place.before + value + place.after;
    requireReplaced(place.before, place.after, Redaction().applied(line));
    if (!place.isPassword || value.size() < 4) continue;
    Redaction redaction;
    redaction.learn(line);
    requireHidden(value, redaction.applied(text + " " + value));
  }
  requireReplaced("https://", "@host/", Redaction().applied("https://ann:" + value + "@host/"));
}

void hideHome(const std::string& user, const std::string& text) {
  if (isAboveHomes(user)) return;
  for (const char* above : {"/Users/", "/home/"}) {
    const std::string folder = above + user + "/x";
    Redaction redaction;
    if (isSystemName(user)) {
      requireSame(folder, redaction.applied(folder), "what is no secret stays");
      continue;
    }
    requireReplaced("", "/x", redaction.applied(folder));
    redaction.learn(folder);
    if (isSecretName(user)) requireHidden(user, redaction.applied(text + " " + user));
  }
  // A longer path is no secret as a whole.
  constexpr std::size_t kLongestHome = 255;
  const std::string home = "/data/" + user;
  if (home.size() > kLongestHome) return;
  Redaction redaction;
  redaction.addHome(home);
  requireReplaced("in ", "/x", redaction.applied("in " + home + "/x"));
}

// --- a WWN that is known

std::string wwnOf(const std::string& text) {
  std::uint64_t number = 14'695'981'039'346'656'037U;
  for (const char byte : text)
    number = (number ^ static_cast<unsigned char>(byte)) * 1'099'511'628'211U;
  char digits[17] = {};
  std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(number));
  return digits;
}

std::string inPairs(const std::string& digits, char sign) {
  std::string pairs = digits;
  for (std::size_t at = digits.size() - 2; at > 0; at -= 2) pairs.insert(at, 1, sign);
  return pairs;
}

void hideWwn(const std::string& text) {
  const std::string wwn = wwnOf(text);
  Redaction redaction;
  redaction.addWwn(wwn);
  for (const std::string& written : {wwn, inPairs(wwn, ':'), inPairs(wwn, '-')}) {
    requireSame("[wwn-1]", redaction.applied(written), "a WWN is the same however it is written");
    std::string around = text;
    around.append(written).append(text);
    requireAbsent(written, redaction.applied(around));
  }
}

}  // namespace
}  // namespace kelvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvane;
  fuzz::Bytes bytes(data, size);
  const std::string name = bytes.part();
  const std::string text = bytes.rest();
  console::Redaction redaction;
  redaction.learn(text);
  fuzz::redacted(redaction, text);
  fuzz::hideWwn(text);
  if (!fuzz::isWord(name)) return 0;
  if (fuzz::isSecretName(name)) {
    fuzz::hideUser(name, text);
    fuzz::hideUser(name, "/Users/" + name + "/x?token=" + text + " " + name);
  } else {
    fuzz::keepUser(name);
  }
  if (fuzz::isValue(name)) fuzz::hideValue(name, text);
  fuzz::hideHome(name, text);
  return 0;
}
