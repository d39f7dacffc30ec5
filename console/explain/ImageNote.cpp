#include "console/explain/ImageNote.h"

#include "console/checks/ImageChecks.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

std::string imageNote(const Value& record, const FailedController& failed, bool isCopy) {
  const Value& inputs = record.get(job::kInputParameters);
  if (!inputs.isArray() || failed.index >= inputs.count()) return {};
  const Value& input = inputs.at(failed.index);
  std::string note = failed.wwn + ": its image: ";
  if (!input.isDictionary() || !input.has(job::kFilePath)) return note + "none is given";
  if (!input.get(job::kFilePath).isString()) return note + "file_path is no string";
  const std::string& path = input.get(job::kFilePath).string();
  note += path.empty() ? "the path" : path;
  note += imageFaultOf(input.get(job::kFilePath), isCopy);
  if (failed.product.empty()) return note;
  return note.append("; product 0x")
      .append(failed.product)
      .append(" takes ")
      .append(failed.isQvxf ? "QVXF images" : "standard images");
}

}  // namespace kelvane::console
