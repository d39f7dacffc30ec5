// A controller's percentages over time, drawn, and the same as a table.
#pragma once

#include <string>

#include "console/report/FlashHistory.h"
#include "console/report/Html.h"

namespace kelvane::console {

// "1:05", "1:00:05"
std::string lengthText(JobTime time);

// The drawing in words: "firmware from 0:40; no change for 10:00 at 0:50 ...".
std::string inWords(const ControllerHistory& controller);

// The controller that is the `number`-th one of the history, which it is a part of and which the
// worker has come to: all drawings of a job have one time axis. Of more changes than have room
// beside one another some are drawn.
void drawHistory(Html& page, const FlashHistory& history, std::size_t number);

// What the drawing shows, row by row; of more rows than these the middle is left out.
inline constexpr std::size_t kMostHistoryRows = 400;
void tabulateHistory(Html& page, const FlashHistory& history, const ControllerHistory& controller);

}  // namespace kelvane::console
