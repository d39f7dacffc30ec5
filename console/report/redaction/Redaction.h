// Stand-ins for what tells who someone is, where, and with which devices.
#pragma once

#include <array>
#include <cstddef>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "console/report/redaction/Letters.h"
#include "console/report/redaction/Secret.h"
#include "console/report/redaction/WordFinder.h"

namespace kelvane::console {

// The same text, in whatever capitals, always gets the same stand-in. They are numbered as they are
// replaced, WWNs as they become known. A WWN is the same however it is written.
class Redaction {
 public:
  // What is known from elsewhere. The system's own users are no secret, nor is a text that is too
  // short to be one.
  void addUser(std::string_view name);
  void addHome(std::string_view folder);
  void addWwn(std::string_view wwn);

  // Looks for home folders, their users, passwords and WWNs, so that they are replaced wherever
  // else they stand. `name` is what the text is the value of; empty where it stands for itself.
  void learn(std::string_view text, std::string_view name = {});

  // The text with stand-ins; of a text that goes on behind what is shown of it so many bytes, and
  // no part of a secret that stands at that border.
  std::string applied(std::string_view text, std::string_view name = {},
                      std::size_t shown = kWithoutLimit);

  struct Count {
    std::size_t different = 0;
    std::size_t places = 0;
  };
  Count count(Secret secret) const;

  // How often a letter, or a place among the known words, was looked at so far: this grows with the
  // texts and no faster, whatever stands in them.
  std::size_t looks() const { return looks_ + words_.looks(); }

 private:
  void addPassword(std::string_view password);
  // With the known words, or without any.
  FoundSecrets secretsIn(std::string_view text, std::string_view name, WordFinder* words);
  std::size_t numberOf(Secret secret, const std::string& key);
  std::string standIn(Secret secret, const std::string& key);

  WordFinder words_;
  std::array<std::map<std::string, std::size_t>, std::size(kSecretKinds)> numbers_;
  std::array<std::set<std::string>, std::size(kSecretKinds)> replaced_;
  std::array<std::size_t, std::size(kSecretKinds)> places_ = {};
  std::size_t looks_ = 0;
};

}  // namespace kelvane::console
