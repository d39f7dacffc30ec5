#include "console/explain/PackageFault.h"

#include "console/application/Application.h"
#include "console/job/RecordValues.h"
#include "contract/JobFile.h"

namespace kelvane::console {

using platform::Value;

std::string packageFaultOf(const Value& record, bool isCopy) {
  const Value package = memberOf(record.get(job::kInputParameters), job::kFilePath);
  if (record.get(job::kJobId) != Value(job::kUpdateSW) || !package.isString()) return {};
  const std::string& path = package.string();
  if (path.empty()) return "the path of its package is empty";
  const bool isRelative = path.front() != '/';
  std::string fault =
      isRelative ? " is relative: it is looked for in the worker's current folder" : "";
  if (!isRelative && !isCopy) fault = packageFault(path);
  return fault.empty() ? "" : "its package, " + path + "," + fault;
}

}  // namespace kelvane::console
