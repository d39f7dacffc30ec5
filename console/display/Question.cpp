#include "console/display/Question.h"

#include <string>

namespace kelvane::console {

bool confirmed(const std::string& question, const Screen& screen) {
  if (screen.answers == nullptr) return true;
  screen.out << displayText(question, screen.charset) << " [y/N] " << std::flush;
  std::string answer;
  std::getline(*screen.answers, answer);
  return answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes";
}

}  // namespace kelvane::console
