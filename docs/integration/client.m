// Adds a job to Kelvane's job file, starts the worker, and follows the job to its end.
//
//   client SHARED_FOLDER BUNDLE COMMAND PARAMETERS [SECONDS]
//
// PARAMETERS is the job's "input_parameters" as JSON, SECONDS the time between two looks (2).
// Prints a line per change. The exit status is 0 where the job is FREE with the result 0, 1 where
// it is not, 2 where it was not added.
//
// Needs Foundation and ps. Written for automatic reference counting:
//   clang -fobjc-arc -framework Foundation client.m -o client

#import <Foundation/Foundation.h>

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

static NSString* const kJobFile = @"utility/command/BGPLog.json";
static NSString* const kWorker = @"Contents/Resources/Kelvane";
static const int kAttempts = 10;

static void refuse(NSString* why) {
  fprintf(stderr, "client: %s\n", [why UTF8String]);
  exit(2);
}

static void say(NSString* text) {
  printf("%s\n", [text UTF8String]);
  fflush(stdout);
}

// The records of a job file that the worker can work with; nil with the reason where it is none.
static NSArray* recordsIn(NSData* text, NSString** why) {
  NSError* damage = nil;
  id records =
      text == nil ? nil : [NSJSONSerialization JSONObjectWithData:text options:0 error:&damage];
  *why = @"the job file is damaged, or no list";
  if (![records isKindOfClass:[NSArray class]]) return nil;
  *why = @"the job file has a record that keeps every job from being updated";
  for (id record in records) {
    if (![record isKindOfClass:[NSDictionary class]]) return nil;
    id logId = [record objectForKey:@"log_id"];
    if (logId != nil && ![logId isKindOfClass:[NSString class]]) return nil;
  }
  return records;
}

// One at a time among those who lock; the system takes the lock back from whoever ends.
static int lockBeside(NSString* jobFile) {
  NSString* path = [[jobFile stringByResolvingSymlinksInPath] stringByAppendingString:@".lock"];
  const int lock = open([path fileSystemRepresentation], O_RDONLY | O_CREAT | O_CLOEXEC, 0666);
  if (lock < 0 || flock(lock, LOCK_EX) != 0) refuse(@"the job file cannot be locked");
  return lock;
}

// In one step: a reader finds the old bytes or the new ones.
static BOOL replaceFile(NSString* path, NSData* text) {
  NSString* real = [path stringByResolvingSymlinksInPath];
  NSString* folder = [real stringByDeletingLastPathComponent];
  NSString* pattern = [folder stringByAppendingPathComponent:@".submit-XXXXXX"];
  char* new = strdup([pattern fileSystemRepresentation]);
  const int descriptor = mkstemp(new);
  struct stat old;
  BOOL done = NO;
  if (descriptor >= 0) {
    NSFileHandle* file = [[NSFileHandle alloc] initWithFileDescriptor:descriptor closeOnDealloc:NO];
    done = stat([real fileSystemRepresentation], &old) == 0;
    @try {
      [file writeData:text];
    } @catch (NSException* failed) {
      done = NO;
    }
    done = done && fsync(descriptor) == 0 && fchmod(descriptor, old.st_mode & 07777) == 0;
    close(descriptor);
    done = done && rename(new, [real fileSystemRepresentation]) == 0;
    if (!done) unlink(new);
  }
  free(new);
  return done;
}

static NSData* bytes(const char* text) { return [NSData dataWithBytes:text length:strlen(text)]; }

// The file's bytes up to its last "]", without the blanks before it.
static NSMutableData* headOf(NSData* text) {
  const char* all = [text bytes];
  NSUInteger end = [text length];
  while (end > 0 && all[end - 1] != ']') --end;
  if (end > 0) --end;
  while (end > 0 && strchr(" \t\r\n", all[end - 1]) != NULL) --end;
  return [NSMutableData dataWithBytes:all length:end];
}

// The other records stay as they are, to the byte: the new one goes before the last "]".
static void addRecord(NSString* jobFile, NSDictionary* record) {
  NSData* added = [NSJSONSerialization dataWithJSONObject:record options:0 error:NULL];
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    NSString* why = nil;
    NSData* before = [NSData dataWithContentsOfFile:jobFile];
    NSArray* records = recordsIn(before, &why);
    if (records == nil) refuse(why);
    NSMutableData* text = headOf(before);
    [text appendData:bytes([records count] == 0 ? "\n" : ",\n")];
    [text appendData:added];
    [text appendData:bytes("\n]\n")];
    // A parser that passes over what follows the list is not taken in.
    if ([recordsIn(text, &why) count] != [records count] + 1) refuse(@"the job file is damaged");
    if (![before isEqual:[NSData dataWithContentsOfFile:jobFile]]) continue;
    if (!replaceFile(jobFile, text)) refuse(@"the job file cannot be written");
    if ([recordsIn([NSData dataWithContentsOfFile:jobFile], &why) containsObject:record]) return;
  }
  refuse(@"another program keeps writing the job file");
}

static BOOL workerRuns(NSString* shared) {
  NSTask* list = [[NSTask alloc] init];
  NSPipe* pipe = [NSPipe pipe];
  [list setLaunchPath:@"/bin/ps"];
  [list setArguments:@[ @"-Aww", @"-o", @"args=" ]];
  [list setStandardOutput:pipe];
  [list launch];
  NSData* listed = [[pipe fileHandleForReading] readDataToEndOfFile];
  [list waitUntilExit];
  NSString* lines = [[NSString alloc] initWithData:listed encoding:NSISOLatin1StringEncoding];
  NSString* folder = [NSString stringWithCString:[shared UTF8String]
                                        encoding:NSISOLatin1StringEncoding];
  BOOL runs = NO;
  for (NSString* line in [lines componentsSeparatedByString:@"\n"]) {
    NSString* trimmed =
        [line stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceCharacterSet]];
    const NSRange name = [line rangeOfString:[kWorker stringByAppendingString:@" "]];
    if (name.location == NSNotFound) continue;
    if ([trimmed hasSuffix:[@" " stringByAppendingString:folder]]) runs = YES;
  }
  return runs;
}

static NSTask* startWorker(NSString* worker, NSString* logId, NSString* shared,
                           NSString* complaints) {
  NSFileManager* files = [NSFileManager defaultManager];
  [files createFileAtPath:complaints contents:[NSData data] attributes:nil];
  NSTask* task = [[NSTask alloc] init];
  [task setLaunchPath:worker];
  [task setArguments:@[ logId, shared ]];
  [task setCurrentDirectoryPath:@"/"];
  [task setStandardInput:[NSFileHandle fileHandleWithNullDevice]];
  [task setStandardOutput:[NSFileHandle fileHandleWithNullDevice]];
  [task setStandardError:[NSFileHandle fileHandleForWritingAtPath:complaints]];
  [task launch];
  return task;
}

static NSDictionary* findRecord(NSString* jobFile, NSString* logId) {
  NSString* why = nil;
  for (NSDictionary* record in recordsIn([NSData dataWithContentsOfFile:jobFile], &why)) {
    if ([[record objectForKey:@"log_id"] isEqual:logId]) return record;
  }
  return nil;
}

static NSString* describe(NSDictionary* record) {
  if (record == nil) return @"the record cannot be found";
  id state = [record objectForKey:@"state_id"];
  if ([state isEqual:@"FREE"]) {
    return [NSString stringWithFormat:@"FREE %@ %@", [record objectForKey:@"result"],
                                      [record objectForKey:@"resultStr"]];
  }
  NSMutableArray* words = [NSMutableArray arrayWithObject:state];
  id output = [record objectForKey:@"output"];
  if (![output isKindOfClass:[NSArray class]]) output = @[];
  for (NSDictionary* entry in output) {
    id percentage = [entry objectForKey:@"total_percentage"];
    if (percentage != nil) [words addObject:[percentage description]];
  }
  return [words componentsJoinedByString:@" "];
}

// Until the worker has ended. Whether the job has succeeded.
static BOOL follow(NSTask* worker, NSString* jobFile, NSString* logId, double seconds) {
  NSMutableString* shown = [NSMutableString string];
  BOOL runs = YES;
  while (runs) {
    @autoreleasepool {
      [NSThread sleepForTimeInterval:seconds];
      runs = [worker isRunning];  // before the look, so that the last write is seen
      NSString* now = describe(findRecord(jobFile, logId));
      if (![now isEqual:shown]) say(now);
      [shown setString:now];
    }
  }
  return [shown hasPrefix:@"FREE 0 "];
}

static NSTask* submit(NSString* shared, NSString* worker, NSDictionary* record,
                      NSString* complaints) {
  NSString* jobFile = [shared stringByAppendingString:kJobFile];
  NSString* logId = [record objectForKey:@"log_id"];
  if (![[NSFileManager defaultManager] isExecutableFileAtPath:worker]) refuse(@"no worker there");
  const int lock = lockBeside(jobFile);
  if (workerRuns(shared)) refuse(@"a worker runs on this shared folder");
  addRecord(jobFile, record);
  say([@"added " stringByAppendingString:logId]);
  NSTask* task = startWorker(worker, logId, shared, complaints);
  close(lock);
  return task;
}

static NSString* absolutePath(NSString* path) {
  NSString* here = [[NSFileManager defaultManager] currentDirectoryPath];
  if (![path isAbsolutePath]) path = [here stringByAppendingPathComponent:path];
  return [path stringByStandardizingPath];
}

static int run(NSArray* given) {
  NSString* shared = [absolutePath([given objectAtIndex:1]) stringByAppendingString:@"/"];
  NSString* worker = [[given objectAtIndex:2] stringByAppendingPathComponent:kWorker];
  NSString* logId = [[NSUUID UUID] UUIDString];
  NSString* complaints = [NSString stringWithFormat:@"%@utility/logs/worker-%@.err", shared, logId];
  NSData* json = [[given objectAtIndex:4] dataUsingEncoding:NSUTF8StringEncoding];
  id parameters = [NSJSONSerialization JSONObjectWithData:json options:0 error:NULL];
  if (parameters == nil) refuse(@"the parameters are no JSON");

  NSTask* task = submit(shared, worker, @{
    @"log_id" : logId,
    @"job_id" : [given objectAtIndex:3],
    @"state_id" : @"WAIT",
    @"input_parameters" : parameters
  }, complaints);
  const double seconds = [given count] > 5 ? [[given objectAtIndex:5] doubleValue] : 2;
  const BOOL succeeded =
      follow(task, [shared stringByAppendingString:kJobFile], logId, seconds);
  if ([[NSData dataWithContentsOfFile:complaints] length] == 0) {
    [[NSFileManager defaultManager] removeItemAtPath:complaints error:NULL];
  }
  return succeeded ? 0 : 1;
}

int main(void) {
  @autoreleasepool {
    NSArray* given = [[NSProcessInfo processInfo] arguments];
    if ([given count] < 5 || [given count] > 6) {
      refuse(@"client SHARED_FOLDER BUNDLE COMMAND PARAMETERS [SECONDS]");
    }
    return run(given);
  }
}
