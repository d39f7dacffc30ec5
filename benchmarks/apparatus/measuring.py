"""Runs of two programs in turn, and what they took."""

import os
import re
import shutil
import statistics
import subprocess
import sys


def _measured(world, command, environment):
    """One run: CPU and wall clock in seconds, the peak of the memory in KiB."""
    out = subprocess.run([str(world.built("measure")), *command], check=True, text=True,
                         stdout=subprocess.PIPE, env={**os.environ, **environment}).stdout
    user, system, wall, peak = out.split()
    return {"cpu": float(user) + float(system), "user": float(user), "system": float(system),
            "wall": float(wall), "peak": int(peak)}


def _system_calls(command, environment):
    """How many one more run makes; nothing without strace."""
    if shutil.which("strace") is None:
        return None
    counted = subprocess.run(["strace", "-c", "-f", "-o", "/dev/stderr", *command], text=True,
                             stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                             env={**os.environ, **environment}).stderr
    totals = re.findall(r"^100\.00 +[\d.]+ +\d+ +(\d+) .*total$", counted, re.MULTILINE)
    return int(totals[-1]) if totals else None


def _medians(runs):
    return {key: statistics.median(run[key] for run in runs) for key in runs[0]}


def _written(world):
    return world.log.stat().st_size + world.job_file.stat().st_size


def _runs(row, world, sides):
    """What the runs of each side took, and how many bytes the last one of each wrote."""
    runs, written = {side: [] for side in sides}, {}
    for _ in range(row.pairs):
        for side, (command, environment) in sides.items():
            row.before_run(world)
            runs[side].append(_measured(world, command, environment))
            row.check(world)
            written[side] = _written(world)
    return runs, written


def measure_row(row, world, watch, count_calls=True):
    """The medians of both sides; the watch is on while they run, and off while their calls are
    counted, which keeps the machine busy by itself."""
    print(f"{row.name}: {row.title} ...", file=sys.stderr, flush=True)
    row.prepare(world)
    row.before_run(world)
    _measured(world, row.command(world), row.trial_environment())
    script = row.floor_script(world)
    sides = {"worker": (row.command(world), row.environment),
             "floor": ([str(world.built("floor")), str(script)], {})}
    with watch:
        runs, written = _runs(row, world, sides)
    if abs(written["worker"] - written["floor"]) > 0.01 * written["worker"]:
        raise SystemExit(f"run: {row.name}: worker and floor wrote {written} bytes")
    result = {"name": row.name, "title": row.title, "series": row.series, "size": row.size,
              "units": row.units, "pairs": row.pairs, "written": written}
    for side, (command, environment) in sides.items():
        row.before_run(world)
        calls = _system_calls(command, environment) if count_calls else None
        result[side] = {**_medians(runs[side]), "calls": calls, "runs": runs[side]}
    world.clear()
    return result
