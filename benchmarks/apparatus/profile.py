"""Where the worker's time goes, as perf sees it."""

import os
import re
import subprocess
import sys


def _short(name):
    """A function's name without what stands in angle brackets, and without our namespaces."""
    while (shorter := re.sub(r"<[^<>]*>", "", name)) != name:
        name = shorter
    return re.sub(r"kelvane::|platform::|\(anonymous namespace\)::", "", name)


def profile_row(row, world):
    """The row's name and title, and its costliest functions with their parts of the whole."""
    print(f"{row.name}: {row.title} ...", file=sys.stderr, flush=True)
    row.prepare(world)
    row.before_run(world)
    record = world.root / "perf.data"
    subprocess.run(["perf", "record", "-q", "-F", "999", "-o", str(record),
                    *row.command(world)], check=True, stdout=subprocess.DEVNULL,
                   env={**os.environ, **row.environment})
    row.check(world)
    report = subprocess.run(["perf", "report", "--stdio", "-q", "-i", str(record), "--no-children",
                             "-F", "overhead,sym", "--percent-limit", "2"], check=True, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
    world.clear()
    lines = re.findall(r"^ *([\d.]+%) +\[(.)\] (.*?) *$", report, re.MULTILINE)
    shown = [f"{share:>8}  {'kernel: ' if where == 'k' else ''}{_short(name)}"
             for share, where, name in lines]
    return "\n".join([f"{row.name}: {row.title}", *shown])
