// What tells who someone is, where, and with which devices.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kelvane::console {

enum class Secret { user, home, wwn, credentials };

struct SecretKind {
  Secret secret;
  const char* standIn;  // "user" of "[user-1]"
  const char* what;     // in words
};

inline constexpr SecretKind kSecretKinds[] = {{Secret::user, "user", "user names"},
                                              {Secret::home, "home", "home folders"},
                                              {Secret::wwn, "wwn", "WWNs"},
                                              {Secret::credentials, "credentials", "credentials"}};

// A secret in a text.
struct FoundSecret {
  std::size_t begin = 0;
  std::size_t end = 0;
  Secret secret = Secret::credentials;
  std::string key = {};   // one for all that get one stand-in
  std::string word = {};  // what is a secret wherever else it stands; may be empty
};

using FoundSecrets = std::vector<FoundSecret>;

// What is longer is looked for no more: nobody has such a name or password.
inline constexpr std::size_t kLongestSecret = 255;

}  // namespace kelvane::console
