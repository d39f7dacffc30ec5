// How often a controller is asked how far its flash is.
#pragma once

namespace kelvane {

inline constexpr unsigned kPollSeconds = 2;

}  // namespace kelvane
