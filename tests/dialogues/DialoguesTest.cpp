#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dialogues/Proof.h"

namespace kelvane::dialogues {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

}  // namespace
}  // namespace kelvane::dialogues
