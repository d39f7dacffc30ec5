#include <algorithm>
#include <iterator>
#include <string_view>

#include "console/report/redaction/SecretForms.h"

namespace kelvane::console {
namespace {

constexpr std::string_view kHomesOfAll[] = {"/users", "/home"};
constexpr std::string_view kSystemUsers[] = {"root",    "wheel", "daemon", "nobody",
                                             "nogroup", "staff", "shared", "guest"};
constexpr int kMostBlanks = 3;  // in a name

// What a name ends with besides a blank.
bool endsName(const Letters& text, std::size_t at) {
  constexpr std::string_view kEnds = "/\\\"<>|;,:()[]{}=\n";
  const char sign = text.at(at);
  if (sign != '\'') return kEnds.find(sign) != std::string_view::npos;
  return !isLetter(text.at(at + 1)) || !isLetter(text.at(at + 2));  // not that of "o'neil"
}

struct NameInPath {
  std::size_t begin = 0;
  std::size_t endOfWord = 0;  // the first blank, or the end
  std::size_t end = 0;
};

NameInPath nameAt(const Letters& text, std::size_t begin) {
  NameInPath name{begin, 0, begin};
  int blanks = 0;
  for (; name.end < begin + kLongestSecret && !endsName(text, name.end); ++name.end) {
    if (text.at(name.end) != ' ') continue;
    if (++blanks == 1) name.endOfWord = name.end;
    if (blanks > kMostBlanks) break;
  }
  if (blanks == 0) name.endOfWord = name.end;
  return name;
}

// Whether all of it is the name: what follows shows that it goes no further.
bool isWhole(const Letters& text, const NameInPath& name) {
  constexpr std::string_view kClear = "/\"'";
  return name.end > name.endOfWord && kClear.find(text.at(name.end)) != std::string_view::npos &&
         text.at(name.end - 1) != ' ';
}

// Behind the slashes between two names, "//" and "/./" among them; the place itself where there are
// none.
std::size_t behindSlashes(const Letters& text, std::size_t at) {
  if (text.at(at) != '/') return at;
  while (text.at(at) == '/' || text.startsWith(at, "./")) ++at;
  return at;
}

// A full stop behind the name ends a sentence.
std::size_t withoutStop(const Letters& text, const NameInPath& name) {
  constexpr std::string_view kStops = ".!?";
  std::size_t end = name.endOfWord;
  if (text.at(end) == '/') return end;
  while (end > name.begin && kStops.find(text.at(end - 1)) != std::string_view::npos) --end;
  return end;
}

void findHomeAt(const Letters& text, std::size_t at, std::string_view above, FoundSecrets& found) {
  const std::size_t begin = behindSlashes(text, at + above.size());
  if (begin == at + above.size()) return;
  const NameInPath name = nameAt(text, begin);
  const auto add = [&](std::size_t end) {
    const std::string user = text.part(begin, end);
    std::string key(above);
    found.push_back({at, end, Secret::home, key.append("/").append(user), user});
  };
  const std::size_t end = withoutStop(text, name);
  if (end == begin || isSystemUser(text.part(begin, end))) return;
  if (isWhole(text, name)) add(name.end);
  add(end);
}

}  // namespace

bool isSystemUser(std::string_view name) {
  return std::find(std::begin(kSystemUsers), std::end(kSystemUsers), inSmallLetters(name)) !=
         std::end(kSystemUsers);
}

void findHomes(const Letters& text, FoundSecrets& found) {
  for (std::size_t at = text.findAny("/", 0); at < text.size(); at = text.findAny("/", at + 1)) {
    for (const std::string_view above : kHomesOfAll) {
      if (text.startsWith(at, above)) findHomeAt(text, at, above, found);
    }
  }
}

}  // namespace kelvane::console
