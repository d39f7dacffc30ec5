#include "console/explain/ImageNote.h"

#include "console/checks/ImageChecks.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

std::string imageNote(const Value& record, const FailedController& failed, bool isCopy) {
  const Value& inputs = record.get(job::kInputParameters);
  if (!inputs.isArray() || failed.index >= inputs.count()) return {};
  const Value& input = inputs.at(failed.index);
  if (!input.isDictionary() || !input.has(job::kFilePath)) return "its image: none is given";
  if (!input.get(job::kFilePath).isString()) return "its image: file_path is no string";
  const std::string& path = input.get(job::kFilePath).string();
  std::string note = "its image: " + path + (isCopy ? "" : imageFault(path));
  if (failed.product.empty()) return note;
  return note.append("; product 0x")
      .append(failed.product)
      .append(" takes ")
      .append(failed.isQvxf ? "QVXF images" : "standard images");
}

}  // namespace kelvane::console
