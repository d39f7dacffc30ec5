"""A copy of the project with a build tree of its own, in which mutants are built and tested, each in
a layer above it that is gone afterwards."""

import fcntl
import json
import os
import subprocess
import tempfile
from pathlib import Path

from bite.failure import Failure
from bite.rooms import STAGES, targets

PROJECT = Path(__file__).resolve().parent.parent.parent
_FOLDER = PROJECT / "build/mutation"
# Neither optimised nor with what only a debugger needs: it is built far more often than run.
_OPTIONS = ["-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -g0", "-DKELVANE_BUILD_TESTS=ON",
            "-DCMAKE_COMPILE_WARNING_AS_ERROR=ON", "-DKELVANE_JOINED_SOURCES=OFF",
            "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld",
            "-DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld"]
_LONGEST = 1800  # seconds for a room without a mutant


class Tree:
    """One process at a time has it."""

    def __init__(self, stages=len(STAGES), folder=_FOLDER):
        folder.mkdir(parents=True, exist_ok=True)
        self._lock = open(folder / "lock", "w")
        try:
            fcntl.flock(self._lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError as taken:
            raise Failure("another mutate is running") from taken
        self._tree = folder / "tree"
        self._scratch = folder
        self._stages = stages
        self._seconds = {"all": _LONGEST}

    def prepare(self):
        """Builds what is there without a mistake, and raises where its tests do not pass. What its
        tests take is what those of mutants get, and much more."""
        self._copy()
        build = self._tree / "build"
        _run("cmake", "-S", self._tree, "-B", build, "-G", "Ninja", *_OPTIONS)
        _run("ninja", "-C", build, "-j", os.cpu_count(), *targets(STAGES[:self._stages]))
        whole = self._try([], "")
        if whole["outcome"] != "survived":
            raise Failure(f"without a mutant the tests do not pass: {whole['by']}")
        self._seconds = {room: 10 * took + 30 for room, took in whole["took"].items()}
        return whole["took"]

    def try_mutant(self, path, text):
        return self._try([path], text)

    def _copy(self):
        names = subprocess.run(["git", "ls-files", "-z"], cwd=PROJECT, check=True,
                               capture_output=True, text=True).stdout.split("\0")
        known = {name for name in names if name and (PROJECT / name).is_file()}
        for name in known:
            _copy_if_other(PROJECT / name, self._tree / name)
        for path in self._tree.rglob("*"):
            name = path.relative_to(self._tree)
            if name.parts[0] != "build" and path.is_file() and str(name) not in known:
                path.unlink()

    def _try(self, source, text):
        with tempfile.TemporaryDirectory(prefix="layer-", dir=self._scratch) as layer:
            ended = subprocess.run(
                [*_namespace(), "python3", str(Path(__file__).parent / "trial.py"), str(self._tree),
                 layer, str(self._stages), json.dumps(self._seconds), *source],
                input=text, capture_output=True, text=True, check=False)
        if ended.returncode != 0:
            raise Failure(f"a trial failed: {ended.stderr.strip()}")
        return json.loads(ended.stdout)


def _namespace():
    """Who is not the super user needs a kernel that lets users mount in a namespace of their own."""
    own = [] if os.geteuid() == 0 else ["--user", "--map-current-user", "--keep-caps"]
    return ["unshare", *own, "--mount", "--propagation", "private"]


def _copy_if_other(source, target):
    if target.is_file() and target.read_bytes() == source.read_bytes():
        return
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(source.read_bytes())
    target.chmod(source.stat().st_mode)


def _run(*command):
    ended = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                           stderr=subprocess.STDOUT, text=True, check=False)
    if ended.returncode != 0:
        raise Failure(f"{command[0]} failed: {ended.stdout[-4000:]}")
