#include "console/report/HistoryDrawing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/Text.h"

namespace kelvane::console {
namespace {

// Within the drawing's area, which is stretched to the room there is.
constexpr int kWidth = 1000;
constexpr int kHeight = 100;
// Outside of it, in pixels: texts are not stretched.
constexpr int kTop = 24;
constexpr int kAreaHeight = 160;
constexpr int kWholeHeight = 206;
// Of the width on a phone; what has no room has its name in the table alone.
constexpr double kPerCharacter = 0.025;

// More have no room beside one another.
constexpr std::size_t kMostDrawn = 400;

using Percentage = int HistoryPoint::*;

// Every second one, every third, as many as have room, and the last one.
template <typename Item>
void thinOut(std::vector<Item>& items) {
  const std::size_t step = items.size() / kMostDrawn + 1;
  if (step == 1) return;
  std::vector<Item> some;
  for (std::size_t i = 0; i + 1 < items.size(); i += step) some.push_back(std::move(items[i]));
  some.push_back(std::move(items.back()));
  items = std::move(some);
}

ControllerHistory thinnedOut(ControllerHistory controller) {
  thinOut(controller.points);
  thinOut(controller.phases);
  thinOut(controller.marks);
  thinOut(controller.silences);
  return controller;
}

double partOf(JobTime time, JobTime length) {
  return length.count() == 0
             ? 0.0
             : static_cast<double>(time.count()) / static_cast<double>(length.count());
}

// With one digit behind the point, whatever the locale.
std::string decimal(double number) {
  const auto tenths = std::lround(number * 10);
  return platform::format("%ld.%ld", tenths / 10, tenths % 10);
}

std::string across(JobTime time, JobTime length) { return decimal(partOf(time, length) * kWidth); }

std::string percentAcross(JobTime time, JobTime length) {
  return decimal(partOf(time, length) * 100) + "%";
}

std::string upwards(int percent) { return std::to_string(kHeight - percent); }

// A step for each change: between two of them nothing was known to change.
std::string lineThrough(const ControllerHistory& controller, Percentage percentage,
                        JobTime length) {
  std::string line;
  int before = 0;
  for (const HistoryPoint& point : controller.points) {
    const std::string x = across(point.at, length);
    line.append(x).append(",").append(upwards(before)).append(" ");
    before = point.*percentage;
    line.append(x).append(",").append(upwards(before)).append(" ");
  }
  return line.append(across(controller.end, length)).append(",").append(upwards(before));
}

bool isUsed(const ControllerHistory& controller, Percentage percentage) {
  return std::any_of(controller.points.begin(), controller.points.end(),
                     [&](const HistoryPoint& point) { return point.*percentage > 0; });
}

void drawBand(Html& page, const char* kind, JobTime from, JobTime to, JobTime length) {
  const double width = partOf(to, length) - partOf(from, length);
  page.lone("rect", {{"class", kind},
                     {"x", across(from, length)},
                     {"y", "0"},
                     {"width", decimal(width * kWidth)},
                     {"height", std::to_string(kHeight)}});
}

void drawLine(Html& page, const char* kind, const ControllerHistory& controller,
              Percentage percentage, JobTime length) {
  if (!isUsed(controller, percentage)) return;
  page.lone("polyline", {{"class", kind}, {"points", lineThrough(controller, percentage, length)}});
}

void drawArea(Html& page, const ControllerHistory& controller, JobTime length) {
  page.open("svg", {{"y", std::to_string(kTop)},
                    {"width", "100%"},
                    {"height", std::to_string(kAreaHeight)},
                    {"viewBox", "0 0 1000 100"},
                    {"preserveAspectRatio", "none"}});
  for (std::size_t i = 0; i < controller.phases.size(); ++i) {
    const HistoryPhase& phase = controller.phases[i];
    drawBand(page, i % 2 == 0 ? "phase even" : "phase odd", phase.from, phase.to, length);
  }
  for (const HistorySilence& silence : controller.silences) {
    drawBand(page, "silence", silence.from, silence.to, length);
  }
  for (const char* y : {"0", "50", "100"}) {
    page.lone("line", {{"class", "grid"}, {"x1", "0"}, {"x2", "1000"}, {"y1", y}, {"y2", y}});
  }
  drawLine(page, "line cpld", controller, &HistoryPoint::cpld, length);
  drawLine(page, "line firmware", controller, &HistoryPoint::firmware, length);
  drawLine(page, "line total", controller, &HistoryPoint::total, length);
  page.close();
}

void drawText(Html& page, const char* kind, const std::string& x, int y, const std::string& anchor,
              const std::string& text) {
  page.label("text", text,
             {{"class", kind}, {"x", x}, {"y", std::to_string(y)}, {"text-anchor", anchor}});
}

bool hasRoom(const std::string& name, JobTime lasts, JobTime length) {
  return partOf(lasts, length) >= kPerCharacter * static_cast<double>(name.size());
}

// Names of phases, and how long silences are, where there is room for them.
void drawNames(Html& page, const ControllerHistory& controller, JobTime length) {
  for (const HistoryPhase& phase : controller.phases) {
    if (!hasRoom(phase.name, phase.to - phase.from, length)) continue;
    drawText(page, "name", percentAcross(phase.from, length), kTop - 8, "start", phase.name);
  }
  for (const HistorySilence& silence : controller.silences) {
    const JobTime lasts = silence.to - silence.from;
    const std::string text = lengthText(lasts).insert(0, "no change ");
    if (!hasRoom(text, lasts, length)) continue;
    drawText(page, "quiet", percentAcross(silence.from + lasts / 2, length),
             kTop + kAreaHeight - 10, "middle", text);
  }
}

const char* signOf(MarkKind kind) {
  switch (kind) {
    case MarkKind::retry:
      return "\xE2\x86\xBB";  // an arrow in a circle
    case MarkKind::fault:
      return "\xE2\x9C\x95";  // a cross
    case MarkKind::done:
      return "\xE2\x9C\x93";  // a tick
  }
  return "";
}

const char* classOf(MarkKind kind) {
  if (kind == MarkKind::retry) return "mark retry";
  return kind == MarkKind::fault ? "mark fault" : "mark done";
}

// So that all of the sign is within the drawing.
std::string anchorAt(double part) {
  if (part < 0.04) return "start";
  return part > 0.96 ? "end" : "middle";
}

int heightAt(const ControllerHistory& controller, JobTime time) {
  int total = 0;
  for (const HistoryPoint& point : controller.points) {
    if (point.at <= time) total = point.total;
  }
  const int y = kTop + kAreaHeight - kAreaHeight * total / 100;
  return std::clamp(y + 6, kTop + 16, kTop + kAreaHeight - 4);
}

void drawMarks(Html& page, const ControllerHistory& controller, JobTime length) {
  for (const HistoryMark& mark : controller.marks) {
    drawText(page, classOf(mark.kind), percentAcross(mark.at, length),
             heightAt(controller, mark.at), anchorAt(partOf(mark.at, length)), signOf(mark.kind));
  }
}

void drawAxes(Html& page, const FlashHistory& history) {
  drawText(page, "axis", "0", kTop + 12, "start", "100%");
  drawText(page, "axis", "0", kTop + kAreaHeight / 2 - 4, "start", "50%");
  constexpr int kBelow = kTop + kAreaHeight + 16;
  drawText(page, "axis", "0", kBelow, "start", clockAt(history, JobTime(0)));
  drawText(page, "axis", "50%", kBelow, "middle", lengthText(history.length / 2));
  drawText(page, "axis", "100%", kBelow, "end", clockAt(history, history.length));
}

void explainSigns(Html& page, const ControllerHistory& controller) {
  page.open("figcaption");
  const auto key = [&page](const char* kind, const char* words) {
    page.label("span", words, {{"class", kind}});
    page.words(" ");
  };
  if (isUsed(controller, &HistoryPoint::cpld)) key("key cpld", "CPLD");
  if (isUsed(controller, &HistoryPoint::firmware)) key("key firmware", "firmware");
  key("key total", "total");
  if (!controller.silences.empty()) key("key silence", "no change for a minute or more");
  for (const auto& [kind, words] :
       {std::pair(MarkKind::retry, " tried again"), std::pair(MarkKind::fault, " failed"),
        std::pair(MarkKind::done, " completed")}) {
    if (std::none_of(controller.marks.begin(), controller.marks.end(),
                     [kind = kind](const HistoryMark& mark) { return mark.kind == kind; })) {
      continue;
    }
    std::string text = signOf(kind);
    text += words;
    key(classOf(kind), text.c_str());
  }
  page.close();
}

// --- the table

struct Row {
  JobTime at;
  int order;  // of rows at one time
  std::string cpld, firmware, total, what;
};

std::string percent(int number) { return std::to_string(number) + "%"; }

std::vector<Row> rowsOf(const ControllerHistory& controller) {
  std::vector<Row> rows;
  for (const HistoryPhase& phase : controller.phases) {
    rows.push_back({phase.from, 0, "", "", "", phase.name + " begins"});
  }
  for (const HistoryPoint& point : controller.points) {
    rows.push_back(
        {point.at, 1, percent(point.cpld), percent(point.firmware), percent(point.total), ""});
  }
  for (const HistoryMark& mark : controller.marks) {
    rows.push_back({mark.at, 2, "", "", "", mark.text});
  }
  for (const HistorySilence& silence : controller.silences) {
    std::string what = "no change until ";
    what.append(lengthText(silence.to)).append(", for ");
    what.append(lengthText(silence.to - silence.from)).append("; ");
    what.append(std::to_string(silence.lines)).append(" entries of the log meanwhile");
    rows.push_back({silence.from, 3, "", "", "", what});
  }
  std::stable_sort(rows.begin(), rows.end(), [](const Row& one, const Row& other) {
    return one.at != other.at ? one.at < other.at : one.order < other.order;
  });
  return rows;
}

void addRow(Html& page, const FlashHistory& history, const Row& row) {
  page.open("tr");
  page.label("th", lengthText(row.at), {{"scope", "row"}});
  for (const std::string& cell : {clockAt(history, row.at), row.cpld, row.firmware, row.total}) {
    page.label("td", cell);
  }
  page.element("td", row.what);
  page.close();
}

}  // namespace

std::string lengthText(JobTime time) {
  const auto seconds = static_cast<long>(time.count());
  if (seconds < 3600) return platform::format("%ld:%02ld", seconds / 60, seconds % 60);
  return platform::format("%ld:%02ld:%02ld", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

std::string inWords(const ControllerHistory& controller) {
  std::string text;
  const auto add = [&text](const std::vector<std::string>& what) {
    if (!text.empty()) text += "; ";
    for (const std::string& piece : what) text += piece;
  };
  for (const HistoryPhase& phase : controller.phases) {
    add({phase.name, " from ", lengthText(phase.from), " to ", lengthText(phase.to)});
  }
  for (const HistorySilence& silence : controller.silences) {
    add({"no change for ", lengthText(silence.to - silence.from), " from ",
         lengthText(silence.from)});
  }
  for (const HistoryMark& mark : controller.marks)
    add({"at ", lengthText(mark.at), " ", mark.text});
  // The first one is that of the start. A worker that cannot write tells no others.
  if (controller.points.size() > 1) {
    add({"total ", percent(controller.points.back().total), " at last"});
  } else if (!controller.points.empty()) {
    add({"no percentages"});
  }
  return text;
}

void drawHistory(Html& page, const FlashHistory& history, std::size_t number) {
  const ControllerHistory controller = thinnedOut(history.controllers.at(number));
  const JobTime length = std::max(history.length, JobTime(1));
  const std::string title = std::to_string(number + 1).insert(0, "title");
  const std::string text = std::to_string(number + 1).insert(0, "text");
  page.open("figure");
  page.open("svg", {{"class", "plot"},
                    {"role", "img"},
                    {"width", "100%"},
                    {"height", std::to_string(kWholeHeight)},
                    {"aria-labelledby", title + " " + text}});
  page.element("title", controller.wwn + ", percentages over time", {{"id", title}});
  page.element("desc", inWords(controller), {{"id", text}});
  drawArea(page, controller, length);
  drawNames(page, controller, length);
  drawAxes(page, history);
  drawMarks(page, controller, length);
  page.close();
  explainSigns(page, controller);
  page.close();
}

void tabulateHistory(Html& page, const FlashHistory& history, const ControllerHistory& controller) {
  const std::vector<Row> rows = rowsOf(controller);
  page.open("div", {{"class", "wide"},
                    {"tabindex", "0"},
                    {"role", "region"},
                    {"aria-label", "The drawing as a table"}});
  page.open("table");
  page.open("thead");
  page.open("tr");
  for (const char* title : {"Time", "Clock", "CPLD", "Firmware", "Total", "What"}) {
    page.label("th", title, {{"scope", "col"}});
  }
  page.close();
  page.close();
  page.open("tbody");
  const std::size_t half = kMostHistoryRows / 2;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const bool isLeftOut = i >= half && i + half < rows.size();
    if (!isLeftOut) addRow(page, history, rows[i]);
    if (i != half || !isLeftOut) continue;
    page.open("tr");
    page.label("td", std::to_string(rows.size() - kMostHistoryRows) + " rows are left out here",
               {{"colspan", "6"}});
    page.close();
  }
  page.close();
  page.close();
  page.close();
}

}  // namespace kelvane::console
