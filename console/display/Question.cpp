#include "console/display/Question.h"

namespace kelvane::console {

void showQuestion(const std::string& question, const Screen& screen) {
  screen.out << displayText(question, screen.charset) << " [y/N] " << std::flush;
}

bool isAgreement(std::istream& answers) {
  std::string answer;
  std::getline(answers, answer);
  return answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes";
}

}  // namespace kelvane::console
