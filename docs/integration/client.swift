// Adds a job to Kelvane's job file, starts the worker, and follows the job to its end.
//
//   client SHARED_FOLDER BUNDLE COMMAND PARAMETERS [SECONDS]
//
// PARAMETERS is the job's "input_parameters" as JSON, SECONDS the time between two looks (2).
// Prints a line per change. The exit status is 0 where the job is FREE with the result 0, 1 where
// it is not, 2 where it was not added.
//
// Needs Foundation (macOS 10.15.4 or later) and ps:
//   swiftc client.swift -o client

import Foundation

let jobFilePath = "utility/command/BGPLog.json"
let workerPath = "Contents/Resources/Kelvane"
let attempts = 10

struct Refused: Error {
  let why: String
}

/// At once, also where the output is no terminal.
func say(_ text: String, on output: FileHandle = FileHandle.standardOutput) {
  output.write(Data((text + "\n").utf8))
}

func contents(of path: String) throws -> Data {
  return try Data(contentsOf: URL(fileURLWithPath: path))
}

/// The records of a job file that the worker can work with.
func records(in text: Data) throws -> [[String: Any]] {
  guard let all = (try? JSONSerialization.jsonObject(with: text)) as? [Any] else {
    throw Refused(why: "the job file is damaged, or no list")
  }
  return try all.map { (element: Any) throws -> [String: Any] in
    guard let record = element as? [String: Any],
      record["log_id"] == nil || record["log_id"] is String
    else {
      throw Refused(why: "the job file has a record that keeps every job from being updated")
    }
    return record
  }
}

/// One at a time among those who lock; the system takes the lock back from whoever ends.
func lock(beside jobFile: String) throws -> Int32 {
  let path = URL(fileURLWithPath: jobFile).resolvingSymlinksInPath().path + ".lock"
  let lock = open(path, O_RDONLY | O_CREAT | O_CLOEXEC, 0o666)
  guard lock >= 0, flock(lock, LOCK_EX) == 0 else {
    throw Refused(why: "the job file cannot be locked")
  }
  return lock
}

/// In one step: a reader finds the old bytes or the new ones.
func replace(_ path: String, by text: Data) throws {
  let target = URL(fileURLWithPath: path).resolvingSymlinksInPath()
  let folder = target.deletingLastPathComponent()
  let new = folder.appendingPathComponent(".submit-" + UUID().uuidString)
  let old = try FileManager.default.attributesOfItem(atPath: target.path)
  let permissions: Any = old[.posixPermissions] ?? NSNumber(value: 0o600)
  let attributes: [FileAttributeKey: Any] = [.posixPermissions: permissions]
  guard FileManager.default.createFile(atPath: new.path, contents: nil, attributes: attributes)
  else {
    throw Refused(why: "the job file's folder cannot be written")
  }
  do {
    let file = try FileHandle(forWritingTo: new)
    try file.write(contentsOf: text)
    try file.synchronize()
    try file.close()
    guard rename(new.path, target.path) == 0 else {
      throw Refused(why: "the job file cannot be replaced")
    }
  } catch {
    try? FileManager.default.removeItem(at: new)
    throw error
  }
}

/// The other records stay as they are, to the byte: the new one goes before the last "]".
func add(_ record: [String: Any], to jobFile: String) throws {
  let added = try JSONSerialization.data(withJSONObject: record)
  for _ in 0..<attempts {
    let before = try contents(of: jobFile)
    let count = try records(in: before).count
    let end = before.lastIndex(of: UInt8(ascii: "]")) ?? before.startIndex
    var text = Data(before[..<end])
    while let last = text.last, " \t\r\n".utf8.contains(last) {
      text.removeLast()
    }
    text.append(contentsOf: (count == 0 ? "\n" : ",\n").utf8)
    text.append(added)
    text.append(contentsOf: "\n]\n".utf8)
    // A parser that passes over what follows the list is not taken in.
    guard try records(in: text).count == count + 1 else {
      throw Refused(why: "the job file is damaged")
    }
    if try contents(of: jobFile) != before {
      continue
    }
    try replace(jobFile, by: text)
    let written = try records(in: contents(of: jobFile))
    if written.contains(where: { NSDictionary(dictionary: $0).isEqual(to: record) }) {
      return
    }
  }
  throw Refused(why: "another program keeps writing the job file")
}

func workerRuns(on shared: String) throws -> Bool {
  let list = Process()
  let pipe = Pipe()
  list.executableURL = URL(fileURLWithPath: "/bin/ps")
  list.arguments = ["-Aww", "-o", "args="]
  list.standardOutput = pipe
  try list.run()
  let listed = String(decoding: pipe.fileHandleForReading.readDataToEndOfFile(), as: UTF8.self)
  list.waitUntilExit()
  return listed.split(separator: "\n").contains(where: { line in
    line.contains(workerPath + " ")
      && line.trimmingCharacters(in: .whitespaces).hasSuffix(" " + shared)
  })
}

func start(_ worker: String, _ logId: String, _ shared: String, complaints: String) throws
  -> Process
{
  FileManager.default.createFile(atPath: complaints, contents: nil)
  let process = Process()
  process.executableURL = URL(fileURLWithPath: worker)
  process.arguments = [logId, shared]
  process.currentDirectoryURL = URL(fileURLWithPath: "/")
  process.standardInput = FileHandle.nullDevice
  process.standardOutput = FileHandle.nullDevice
  process.standardError = try FileHandle(forWritingTo: URL(fileURLWithPath: complaints))
  try process.run()
  return process
}

func find(_ logId: String, in jobFile: String) -> [String: Any]? {
  guard let text = try? contents(of: jobFile), let all = try? records(in: text) else {
    return nil
  }
  return all.first(where: { $0["log_id"] as? String == logId })
}

func describe(_ record: [String: Any]?) -> String {
  guard let record = record, let state = record["state_id"] as? String else {
    return "the record cannot be found"
  }
  if state == "FREE" {
    let result = record["result"] ?? "?"
    let text = record["resultStr"] ?? "?"
    return "FREE \(result) \(text)"
  }
  let entries = record["output"] as? [[String: Any]] ?? []
  let percentages = entries.compactMap { $0["total_percentage"] as? Int }
  return ([state] + percentages.map { "\($0)" }).joined(separator: " ")
}

/// Until the worker has ended. Whether the job has succeeded.
func follow(_ worker: Process, _ logId: String, in jobFile: String, seconds: Double) -> Bool {
  var shown = ""
  var runs = true
  while runs {
    Thread.sleep(forTimeInterval: seconds)
    runs = worker.isRunning  // before the look, so that the last write is seen
    let now = describe(find(logId, in: jobFile))
    if now != shown {
      say(now)
    }
    shown = now
  }
  return shown.hasPrefix("FREE 0 ")
}

/// The worker's process, started on the record.
func submit(_ record: [String: Any], _ logId: String, _ shared: String, _ worker: String,
  complaints: String) throws -> Process
{
  guard FileManager.default.isExecutableFile(atPath: worker) else {
    throw Refused(why: "no worker there")
  }
  let descriptor = try lock(beside: shared + jobFilePath)
  defer { close(descriptor) }
  if try workerRuns(on: shared) {
    throw Refused(why: "a worker runs on this shared folder")
  }
  try add(record, to: shared + jobFilePath)
  say("added \(logId)")
  return try start(worker, logId, shared, complaints: complaints)
}

func run(_ given: [String]) throws -> Int32 {
  let shared = URL(fileURLWithPath: given[1]).standardizedFileURL.path + "/"
  let worker = given[2] + "/" + workerPath
  let logId = UUID().uuidString
  let complaints = shared + "utility/logs/worker-\(logId).err"
  let record: [String: Any] = [
    "log_id": logId,
    "job_id": given[3],
    "state_id": "WAIT",
    "input_parameters": try JSONSerialization.jsonObject(with: Data(given[4].utf8)),
  ]
  let process = try submit(record, logId, shared, worker, complaints: complaints)
  let seconds = given.count > 5 ? Double(given[5]) ?? 2 : 2
  let succeeded = follow(process, logId, in: shared + jobFilePath, seconds: seconds)
  if (try? contents(of: complaints))?.isEmpty == true {
    try? FileManager.default.removeItem(atPath: complaints)
  }
  return succeeded ? 0 : 1
}

let given = CommandLine.arguments
if given.count < 5 || given.count > 6 {
  say("client SHARED_FOLDER BUNDLE COMMAND PARAMETERS [SECONDS]", on: FileHandle.standardError)
  exit(2)
}
do {
  exit(try run(given))
} catch let refused as Refused {
  say("client: \(refused.why)", on: FileHandle.standardError)
  exit(2)
} catch {
  say("client: \(error.localizedDescription)", on: FileHandle.standardError)
  exit(2)
}
