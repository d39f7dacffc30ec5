"""Whether the machine had other things to do."""

import os
import resource


def _busy():
    """All processors' time that was not idle, in seconds since the start."""
    with open("/proc/stat") as file:
        ticks = [int(field) for field in file.readline().split()[1:9]]
    idle = ticks[3] + ticks[4]
    return (sum(ticks) - idle) / os.sysconf("SC_CLK_TCK")


def _own():
    return sum(used.ru_utime + used.ru_stime
               for used in (resource.getrusage(resource.RUSAGE_SELF),
                            resource.getrusage(resource.RUSAGE_CHILDREN)))


class Watch:
    """From its making on, the time that others had of the processors."""

    def __init__(self):
        self._load = os.getloadavg()[0]
        self._busy, self._own, self._wall = _busy(), _own(), os.times().elapsed

    def seen(self):
        wall = max(os.times().elapsed - self._wall, 0.01)
        others = max(_busy() - self._busy - (_own() - self._own), 0)
        return {"load_before": self._load, "seconds": wall, "others": others / wall}


def warning(seen):
    """What is to be said of a busy machine; nothing of a quiet one."""
    if seen["others"] < 0.15 and seen["load_before"] < 1.5:
        return None
    return (f"The machine was busy: the load was {seen['load_before']:.2f} before, and others took "
            f"{seen['others']:.2f} of a processor meanwhile. Do not trust the figures.")
