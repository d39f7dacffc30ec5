// Secrets that are known by their form or by what they are called.
#pragma once

#include <string>
#include <string_view>

#include "console/report/redaction/Letters.h"
#include "console/report/redaction/Secret.h"

namespace kelvane::console {

// Home folders, "/users/ann" and "/home/ann": the key with one slash between two names, the word
// the user. A name with blanks ends with a "/" or a quotation mark; its first part is a name as
// well.
void findHomes(const Letters& text, FoundSecrets& found);

// 16 hexadecimal digits, also with ":" or "-" between each two.
void findWwns(const Letters& text, FoundSecrets& found);

// Who and with what in "://WHO:WHAT@host"; the word is the password. Where a colon stands before
// the first "/", what stands before the last "@" is taken for a password, as its signs may not
// have been escaped.
void findUserInformation(const Letters& text, FoundSecrets& found);

// The values of what has a telling name: "?token=...", "\"password\": \"...\"", "--secret ...",
// "Authorization: Bearer ...", "wwn = ...".
void findNamedSecrets(const Letters& text, FoundSecrets& found);

// What the value of such a name is; false where it is no secret.
bool isNameOfSecret(std::string_view name, Secret& secret);

// One text for all forms of a WWN.
std::string plainWwn(std::string_view wwn);
// Whether such a text is 16 hexadecimal digits.
bool isWwn(std::string_view plain);
// Its digits in pairs, with the sign between each two: "50:00:...".
std::string inPairs(std::string_view plain, char sign);

// The users of the system itself are no secret.
bool isSystemUser(std::string_view name);

}  // namespace kelvane::console
