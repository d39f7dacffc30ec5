// What a report keeps to itself, by what its page in docs says of it.
#pragma once

#include <string>

namespace kelvane::fuzz {

// Of letters, digits and "_" alone, as short as what is looked for.
bool isWord(const std::string& text);
// The system's own names are no secret, nor is one that is too short to be one.
bool isSystemName(const std::string& name);
// What homes are in: "/home/users/x" may be somebody's in two ways.
bool isAboveHomes(const std::string& name);
bool isSecretName(const std::string& name);
// Whether a password or the like may be this word: it does not say that there is none, and is not
// the name of a way to log in.
bool isValue(const std::string& word);

// Of a secret that is known no whole word is left, in whatever capitals; of one of eight characters
// or more not even within a longer word.
void requireHidden(const std::string& word, const std::string& shown);
// Nowhere, in whatever capitals.
void requireAbsent(const std::string& text, const std::string& shown);
// 16 hexadecimal digits, also in pairs. Beside a stand-in they may be the rest of more of them.
void requireNoWwn(const std::string& shown);
// A text that goes on behind what is shown of it is the beginning of the whole one.
void requireBeginning(const std::string& beginning, const std::string& shown);
// A stand-in and nothing else stands between the two.
void requireReplaced(const std::string& before, const std::string& after, const std::string& shown);

}  // namespace kelvane::fuzz
