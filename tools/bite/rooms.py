"""The rooms of tests that can tell a mutant, in the order in which they are asked."""

from dataclasses import dataclass


@dataclass(frozen=True)
class Room:
    name: str
    folder: str

    @property
    def target(self):
        return f"{self.name}_tests"

    @property
    def program(self):
        return f"tests/{self.folder}/{self.target}"


# The quick ones first: what one of them catches is not shown to the next. The rooms of one stage are
# built together.
STAGES = (
    (Room("platform", "platform"),),
    (Room("worker", "worker"),),
    (Room("growth", "worker"), Room("dialogues", "dialogues")),
    (Room("console", "console"), Room("simulators", "simulators")),
    (Room("out_of_memory", "end_to_end"), Room("end_to_end", "end_to_end")),
)
QUICK = 3  # stages whose tests run no whole programs


def targets(stages):
    return [room.target for stage in stages for room in stage]
