"""Whether the machine had other things to do."""

import os
import resource
from pathlib import Path

TICKS = os.sysconf("SC_CLK_TCK")


def _busy():
    """The processors' time in programs and in the kernel for them, and what other machines on the
    same processors had of it, in seconds since the start. Interruptions are left out: those of the
    disk are the work's own."""
    with open("/proc/stat") as file:
        user, nice, system, _, _, _, _, stolen = map(int, file.readline().split()[1:9])
    return (user + nice + system + stolen) / TICKS


def _kernel_threads():
    """What of it each kernel thread had, in seconds, by its number: they write to the disk what the
    work has left to them."""
    had = {}
    for file in Path("/proc").glob("[0-9]*/stat"):
        try:
            fields = file.read_text().rpartition(")")[2].split()
        except OSError:
            continue  # it has ended
        if fields[1] == "2":  # the parent of all kernel threads
            had[file.parent.name] = (int(fields[11]) + int(fields[12])) / TICKS
    return had


def _own():
    return sum(used.ru_utime + used.ru_stime
               for used in (resource.getrusage(resource.RUSAGE_SELF),
                            resource.getrusage(resource.RUSAGE_CHILDREN)))


class Watch:
    """The time that others had of the processors whenever it was on: `with watch: ...`."""

    def __init__(self):
        self._load = os.getloadavg()[0]
        self._seconds = self._others = 0

    def __enter__(self):
        self._wall, self._busy, self._own = os.times().elapsed, _busy(), _own()
        self._threads = _kernel_threads()

    def __exit__(self, *_):
        self._seconds += os.times().elapsed - self._wall
        threads = sum(had - self._threads.get(number, 0)
                      for number, had in _kernel_threads().items())
        self._others += _busy() - self._busy - (_own() - self._own) - threads

    def seen(self):
        others = max(self._others, 0) / max(self._seconds, 0.01)
        return {"load_before": self._load, "seconds": self._seconds, "others": others}


def warning(seen):
    """What is to be said of a busy machine; nothing of a quiet one."""
    if seen["others"] < 0.15 and seen["load_before"] < 1.5:
        return None
    return (f"The machine was busy: the load was {seen['load_before']:.2f} before, and others took "
            f"{seen['others']:.2f} of a processor meanwhile. Do not trust the figures.")
