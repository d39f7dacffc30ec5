"""The floor's script for a piece of work, made of the log that the worker left of it."""

import re

_RECORD = re.compile(rb"^\[\d\d:\d\d:\d\d\] \[[^\]]*\]\[\d+\]\[", re.MULTILINE)

LONG = 4096


def records_of(log):
    """The log's records: each was one line to the worker, however many it shows."""
    starts = [found.start() for found in _RECORD.finditer(log)]
    return [log[start:end] for start, end in zip(starts, starts[1:] + [len(log)])]


class FloorScript:
    def __init__(self, world, records):
        self._world = world
        self._longest = max(records, key=len)
        self._lines = []
        self._bytes = bytearray()
        self._places = {}  # where what is written stands among the bytes
        self._kept(self._longest)

    def add(self, *words):
        self._lines.append(" ".join(str(word) for word in words))

    def start(self):
        for path in (self._world.shared_settings, self._world.settings):
            self.add("read", path)

    def follow(self, records):
        """What the worker read and wrote around these records of its log: it shows the job file
        after each reading, and names its path before it replaces it."""
        for record in records:
            if b"currentJobArray = " in record[:120]:
                self.add("read", self._world.job_file)
            self.add("append", self._world.log, self._kept_record(record))
            if b"_BGPPath = " in record[:120]:
                self.add("replace", self._world.job_file,
                         self._kept(self._world.job_file.read_bytes()))

    def repeat(self, times, records):
        self.add("repeat", times)
        self.follow(records)
        self.add("end")

    def write(self):
        path = self._world.floor_folder / "script"
        path.write_text("\n".join(self._lines) + "\n")
        path.with_name("script.bytes").write_bytes(self._bytes)
        return path

    def _kept_record(self, record):
        """Of those that show the job file only the longest is kept, and the others are as much of
        it as they are long: the floor would be all memory otherwise."""
        if len(record) < LONG:
            return self._kept(record)
        return f"{self._places[self._longest]} {len(record)}"

    def _kept(self, content):
        if content not in self._places:
            self._places[content] = len(self._bytes)
            self._bytes += content
        return f"{self._places[content]} {len(content)}"
