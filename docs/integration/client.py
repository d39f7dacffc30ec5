#!/usr/bin/env python3
"""Adds a job to Kelvane's job file, starts the worker, and follows the job to its end.

    client.py SHARED_FOLDER BUNDLE COMMAND PARAMETERS [SECONDS]

PARAMETERS is the job's "input_parameters" as JSON, SECONDS the time between two looks (2).
Prints a line per change. The exit status is 0 where the job is FREE with the result 0, 1 where it
is not, 2 where it was not added.

Needs python3 and ps.
"""

import contextlib
import fcntl
import json
import math
import os
import stat
import subprocess
import sys
import tempfile
import uuid

JOB_FILE = "utility/command/BGPLog.json"
COMPLAINTS = "utility/logs/worker-{}.err"
WORKER = "Contents/Resources/Kelvane"
ATTEMPTS = 10


class Refused(Exception):
    pass


def read(path):
    with open(path, "rb") as file:
        return file.read()


def finite(digits):
    number = float(digits)
    if not math.isfinite(number):
        raise ValueError("a number that the worker cannot read")
    return number


def records_in(text):
    """The records of a job file that the worker can work with."""
    try:
        records = json.loads(text.decode(), parse_float=finite, parse_constant=finite)
    except (ValueError, RecursionError) as damage:
        raise Refused(f"the job file is damaged: {damage}") from damage
    if not isinstance(records, list):
        raise Refused("the job file is no list")
    for record in records:
        if not isinstance(record, dict) or not isinstance(record.get("log_id", ""), str):
            raise Refused("the job file has a record that keeps every job from being updated")
    return records


@contextlib.contextmanager
def locked(job_file):
    """One at a time among those who lock; the system takes the lock back from whoever ends."""
    lock = os.open(os.path.realpath(job_file) + ".lock", os.O_RDONLY | os.O_CREAT, 0o666)
    try:
        fcntl.flock(lock, fcntl.LOCK_EX)
        yield
    finally:
        os.close(lock)


def replace(path, text):
    """In one step: a reader finds the old bytes or the new ones."""
    path = os.path.realpath(path)
    descriptor, new = tempfile.mkstemp(prefix=".submit-", dir=os.path.dirname(path))
    try:
        with os.fdopen(descriptor, "wb") as file:
            file.write(text)
            file.flush()
            os.fsync(file.fileno())
        os.chmod(new, stat.S_IMODE(os.stat(path).st_mode))
        os.rename(new, path)
    except OSError:
        os.unlink(new)
        raise


def add(job_file, record):
    for _ in range(ATTEMPTS):
        before = read(job_file)
        separator = b",\n" if records_in(before) else b"\n"
        # The other records stay as they are, to the byte: the new one goes before the last "]".
        text = before.rstrip()[:-1].rstrip() + separator + json.dumps(record).encode() + b"\n]\n"
        if read(job_file) != before:
            continue
        replace(job_file, text)
        if record in records_in(read(job_file)):
            return
    raise Refused("another program keeps writing the job file")


def worker_runs(shared):
    listed = subprocess.run(["ps", "-Aww", "-o", "args="], stdout=subprocess.PIPE, check=True)
    lines = listed.stdout.decode(errors="replace").splitlines()
    return any(f"{WORKER} " in line and line.rstrip().endswith(f" {shared}") for line in lines)


def start(bundle, log_id, shared):
    with open(shared + COMPLAINTS.format(log_id), "wb") as complaints:
        return subprocess.Popen(
            [f"{bundle}/{WORKER}", log_id, shared],
            cwd="/",
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=complaints,
            start_new_session=True,
        )


def find(job_file, log_id):
    try:
        return next((r for r in records_in(read(job_file)) if r.get("log_id") == log_id), None)
    except (OSError, Refused):
        return None


def describe(record):
    if record is None:
        return "the record cannot be found"
    if record["state_id"] == "FREE":
        return f"FREE {record.get('result')} {record.get('resultStr')}"
    output = record.get("output")
    entries = output if isinstance(output, list) else []
    percentages = [entry["total_percentage"] for entry in entries if "total_percentage" in entry]
    return " ".join([record["state_id"], *map(str, percentages)])


def has_ended(worker, seconds):
    try:
        worker.wait(timeout=seconds)
    except subprocess.TimeoutExpired:
        return False
    return True


def follow(worker, job_file, log_id, seconds):
    """The record as it stands when the worker has ended."""
    shown = None
    while True:
        ended = has_ended(worker, seconds)  # before the look, so that the last write is seen
        record = find(job_file, log_id)
        if describe(record) != shown:
            shown = describe(record)
            print(shown, flush=True)
        if ended:
            return record


def submit(shared, bundle, record):
    """The worker's process, started on the record."""
    if not os.access(f"{bundle}/{WORKER}", os.X_OK):
        raise Refused("no worker there")
    with locked(shared + JOB_FILE):
        if worker_runs(shared):
            raise Refused("a worker runs on this shared folder")
        add(shared + JOB_FILE, record)
        print(f"added {record['log_id']}", flush=True)
        return start(bundle, record["log_id"], shared)


def run(shared, bundle, command, parameters, seconds="2"):
    interval = float(seconds)
    shared = os.path.abspath(shared) + "/"
    log_id = str(uuid.uuid4())
    record = {
        "log_id": log_id,
        "job_id": command,
        "state_id": "WAIT",
        "input_parameters": json.loads(parameters),
    }
    worker = submit(shared, bundle, record)
    ended = follow(worker, shared + JOB_FILE, log_id, interval)
    complaints = shared + COMPLAINTS.format(log_id)
    if os.path.getsize(complaints) == 0:
        os.unlink(complaints)
    succeeded = ended is not None and ended["state_id"] == "FREE" and ended.get("result") == 0
    return 0 if succeeded else 1


if __name__ == "__main__":
    if len(sys.argv) not in (5, 6):
        print(__doc__, file=sys.stderr)
        sys.exit(2)
    try:
        sys.exit(run(*sys.argv[1:]))
    except (Refused, OSError, ValueError) as why:
        print(f"client: {why}", file=sys.stderr)
        sys.exit(2)
