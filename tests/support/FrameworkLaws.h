// What holds of every job's calls to the framework and of its sleeps, whatever was answered.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelvane::test {

// Calls as FakeFramework tells them, and sleeps ("sleep 2"), in their order; whatever else stands
// among them is not looked at.
using Course = std::vector<std::string>;

bool begins(const std::string& event, std::string_view start);
// Not of a status's description, which may be asked for anywhere.
bool isFrameworkCall(const std::string& event);

// The first law that the course breaks, in words; empty where it keeps all.
std::string brokenFrameworkLaw(const Course& course);

}  // namespace kelvane::test
