"""One mutant, built and tested. Started by tree.py in a mount namespace of its own, where all that
it does to the tree goes into memory, and ends with it:

    trial.py TREE SCRATCH STAGES SECONDS [SOURCE] <its mutated text

STAGES is how many of the stages of tests are asked, SECONDS what each room has. Prints what became of
the mutant as JSON."""

import json
import os
import resource
import subprocess
import sys
import time
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

from bite.rooms import STAGES, targets  # noqa: E402

_BUILDING = 900  # seconds
_MEMORY = 4 << 30
_OUTPUT = 64 << 10
# What the tests that become another user, take another root folder, look at other processes or end
# them need.
_RIGHTS = ("CAP_SETUID", "CAP_SETGID", "CAP_DAC_OVERRIDE", "CAP_DAC_READ_SEARCH", "CAP_FOWNER",
           "CAP_FSETID", "CAP_CHOWN", "CAP_KILL", "CAP_SYS_CHROOT", "CAP_SYS_PTRACE")


def lay_over(tree, scratch):
    """Hides the tree behind a copy in memory of what is changed in it."""
    _mount("-t", "tmpfs", "-o", "size=3g", "tmpfs", scratch)
    for name in ("upper", "work"):
        os.mkdir(f"{scratch}/{name}")
    _mount("-t", "overlay", "-o",
           f"lowerdir={tree},upperdir={scratch}/upper,workdir={scratch}/work", "overlay", tree)


def _mount(*arguments):
    subprocess.run(["mount", *arguments], check=True)


class Sandbox:
    """A system that can be read, and where nothing but a folder for temporary files can be written;
    without a network, and with no other processes."""

    def __init__(self, tree, scratch):
        self._tree = tree
        self._output = f"{scratch}/output"

    def build(self, targets):
        """Whether something was built, and nothing where that failed."""
        ended = self._run(["ninja", "-C", f"{self._tree}/build", "-j", "1", *targets], _BUILDING,
                          ["--bind", self._tree, self._tree])
        if ended != 0:
            return None
        return "no work to do" not in self.output()

    def test(self, room, seconds):
        """The exit status; nothing where it did not end."""
        program = f"{self._tree}/build/{room.program}"
        return self._run([program, "--gtest_brief=1", "--gtest_fail_fast"], seconds,
                         ["--chdir", os.path.dirname(program)])

    def output(self):
        with open(self._output, "rb") as output:
            output.seek(max(0, os.path.getsize(self._output) - _OUTPUT))
            return output.read().decode(errors="replace")

    def _run(self, command, seconds, options):
        kept_in = ["bwrap", "--ro-bind", "/", "/", "--dev", "/dev", "--proc", "/proc",
                   "--size", str(1 << 30), "--perms", "1777", "--tmpfs", "/tmp",
                   "--unshare-pid", "--unshare-net", "--unshare-ipc",
                   "--die-with-parent", "--new-session",
                   # Also where the project is itself a folder for temporary files.
                   "--ro-bind", self._tree, self._tree,
                   "--setenv", "HOME", "/tmp", "--setenv", "TMPDIR", "/tmp", *options]
        if os.geteuid() == 0:
            for right in _RIGHTS:
                kept_in += ["--cap-add", right]
        else:
            kept_in = ["setpriv", "--inh-caps=-all", "--ambient-caps=-all", *kept_in]
        with open(self._output, "wb") as output:
            try:
                return subprocess.run(kept_in + command, timeout=seconds, check=False,
                                      stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                      preexec_fn=_limit).returncode
            except subprocess.TimeoutExpired:
                return None


def _limit():
    resource.setrlimit(resource.RLIMIT_AS, (_MEMORY, _MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def _failed_test(output):
    """The first that the output names, or how it ends."""
    for line in output.splitlines():
        if line.startswith("[  FAILED  ] ") and " (" in line:
            return line.split("] ")[1].split(" (")[0].split(",")[0]
    return (output.strip().splitlines() or ["nothing was said"])[-1][:200]


def tried(sandbox, stages, seconds):
    """What became of the tree as it is: the outcome, what caught it, how long each room took."""
    took = {}
    for stage in stages:
        built = sandbox.build(targets([stage]))
        if built is None:
            return {"outcome": "not compiling", "by": _failed_test(sandbox.output()), "took": took}
        if not built and seconds.get("all") is None:
            continue  # nothing in this stage holds the change
        for room in stage:
            start = time.monotonic()
            status = sandbox.test(room, seconds.get(room.name) or seconds["all"])
            took[room.name] = round(time.monotonic() - start, 1)
            if status is None:
                return {"outcome": "timed out", "by": room.name, "took": took}
            if status != 0:
                by = f"{room.name}: {_failed_test(sandbox.output())}"
                return {"outcome": "caught", "by": by, "took": took}
    return {"outcome": "survived", "by": "", "took": took}


def main():
    tree, scratch, stages, seconds, *source = sys.argv[1:]
    lay_over(tree, scratch)
    if source:
        Path(tree, source[0]).write_text(sys.stdin.read())
    sandbox = Sandbox(tree, scratch)
    print(json.dumps(tried(sandbox, STAGES[:int(stages)], json.loads(seconds))))


main()
