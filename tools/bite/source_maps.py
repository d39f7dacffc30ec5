"""What was reached of sources, by the compiler's own source maps: lines, and both sides of each
branch."""

import json
import subprocess
from bisect import bisect_right
from collections import defaultdict
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True, order=True)
class Place:
    """A line, or one side of a branch in it."""
    path: str
    line: int
    column: int
    kind: str  # "line", "true", "false"


def reached(objects, profile, build, wanted):
    """How often each place of the sources that are `wanted` was reached."""
    exported = [_export(objects, profile, form) for form in ("lcov", "text")]
    lines = _lines(exported[0], build, wanted)
    return {**lines, **_branches(json.loads(exported[1]), build, wanted)}


def _export(objects, profile, form):
    others = [part for path in objects[1:] for part in ("-object", str(path))]
    return subprocess.run(
        ["llvm-cov-16", "export", f"-format={form}", "-instr-profile", str(profile),
         str(objects[0]), *others], check=True, capture_output=True, text=True).stdout


def _source(path, build):
    """The project's source; empty for those of others. Programs do not tell where they were built, so
    that the maps name sources as though they stood in the build folder."""
    try:
        return str(Path(path).relative_to(build))
    except ValueError:
        return ""


def _lines(records, build, wanted):
    counts, path = {}, ""
    for record in records.splitlines():
        key, _, value = record.partition(":")
        if key == "SF":
            path = _source(value, build)
        elif key == "DA" and wanted(path):
            line, count = value.split(",")[:2]
            counts[Place(path, int(line), 0, "line")] = int(count)
    return counts


def _branches(exported, build, wanted):
    """The instances of a template count together."""
    counts = defaultdict(int)
    for source in exported["data"][0]["files"]:
        path = _source(source["filename"], build)
        if not wanted(path):
            continue
        segments = sorted(source["segments"])
        decided = [branch for branch in source["branches"] if not _is_decided(branch, segments)]
        for line, column, _, _, whenTrue, whenFalse, *_ in decided:
            counts[Place(path, line, column, "true")] += whenTrue
            counts[Place(path, line, column, "false")] += whenFalse
    return dict(counts)


def _is_decided(branch, segments):
    """Whether the compiler knows the outcome: neither side counts, though the condition is met."""
    line, column, _, _, whenTrue, whenFalse, *_ = branch
    if whenTrue or whenFalse:
        return False
    before = bisect_right(segments, [line, column, float("inf")])
    return before > 0 and segments[before - 1][2] > 0
