// Stand-ins for what tells who someone is, where, and with which devices.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kelvane::console {

enum class Secret { user, home, wwn, credentials };

struct SecretKind {
  Secret secret;
  const char* standIn;  // "user" of "[user-1]"
  const char* what;     // in words
};

inline constexpr SecretKind kSecretKinds[] = {
    {Secret::user, "user", "user names"},
    {Secret::home, "home", "home folders"},
    {Secret::wwn, "wwn", "WWNs"},
    {Secret::credentials, "credentials", "credentials in URLs"}};

// The same text always gets the same stand-in, numbered as they become known. A WWN is the same
// however it is written.
class Redaction {
 public:
  // What is known from elsewhere. The system's own users are no secret, nor is a text that is too
  // short to be one.
  void addUser(const std::string& name);
  void addHome(const std::string& folder);
  void addWwn(const std::string& wwn);

  // Looks for home folders, their users, and passwords in URLs, so that they are replaced wherever
  // else they stand.
  void learn(std::string_view text);

  // The text with stand-ins.
  std::string applied(std::string_view text);

  struct Count {
    std::size_t different = 0;
    std::size_t places = 0;
  };
  Count count(Secret secret) const;

 private:
  class Reading;
  struct Word {
    std::string text;
    Secret secret;
  };
  void addWord(const std::string& text, Secret secret);
  std::size_t numberOf(Secret secret, const std::string& key);
  std::string standIn(Secret secret, const std::string& key);

  std::vector<std::string> homes_;  // the longest first
  std::vector<Word> words_;         // the longest first
  std::array<std::map<std::string, std::size_t>, std::size(kSecretKinds)> numbers_;
  std::array<std::set<std::string>, std::size(kSecretKinds)> replaced_;
  std::array<std::size_t, std::size(kSecretKinds)> places_ = {};
};

}  // namespace kelvane::console
