// Memory as tests count or refuse it: malloc and operator new are replaced for the whole program.
#pragma once

#include <cstddef>

namespace kelvane::test::memory {

// While it is true, malloc fails for a buffer of the controller information's size.
extern bool refuseInfoBuffer;
// How many calls succeed before all later ones fail; negative: there is no end.
extern int mallocCallsLeft;
extern int newCallsLeft;

// The bytes that operator new has been asked for since the program began.
extern std::size_t newBytes;

}  // namespace kelvane::test::memory
