#include "console/explain/PackageFault.h"

#include "console/application/Application.h"
#include "console/job/RecordValues.h"
#include "contract/JobFile.h"
#include "platform/File.h"

namespace kelvane::console {

using platform::Value;

namespace {

Value packageOf(const Value& record) {
  return memberOf(record.get(job::kInputParameters), job::kFilePath);
}

}  // namespace

std::string packageFaultOf(const Value& record, bool isCopy) {
  const Value package = packageOf(record);
  if (record.get(job::kJobId) != Value(job::kUpdateSW) || !package.isString()) return {};
  const std::string& path = package.string();
  if (path.empty()) return "the path of its package is empty";
  const bool isRelative = path.front() != '/';
  std::string fault =
      isRelative ? " is relative: it is looked for in the worker's current folder" : "";
  if (!isRelative && !isCopy) fault = packageFault(path);
  return fault.empty() ? "" : "its package, " + path + "," + fault;
}

bool hasPackage(const Value& record) {
  const std::string path = stringOf(packageOf(record));
  return path.starts_with('/') && platform::exists(path);
}

}  // namespace kelvane::console
