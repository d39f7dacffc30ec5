"""The pieces of work that are measured. Each one is done by the worker and by the floor program."""

import os
from dataclasses import dataclass

from apparatus import catalogue, jobs
from apparatus.floor_script import FloorScript, records_of
from apparatus.world import CATALOGUE


class Row:
    """One piece of work: `series` and `size` say where it stands in a plot of growth, `units` of
    what it does how many, for a cost of each."""

    name = ""
    title = ""
    series = ""
    size = 0
    units = 1
    pairs = 5  # of runs, worker and floor
    environment = {}

    def prepare(self, world):
        """Puts there what no run changes."""

    def before_run(self, world):
        world.start_afresh(self.jobs(world))

    def jobs(self, world):
        raise NotImplementedError

    def command(self, world):
        return world.worker_command()

    def trial_environment(self):
        """That of the one run whose log the floor's script is made of."""
        return self.environment

    def fill(self, script, records, world):
        script.start()
        script.follow(records)

    def floor_script(self, world):
        records = records_of(world.log.read_bytes())
        script = FloorScript(world, records)
        self.fill(script, records, world)
        return script.write()

    def check(self, world):
        """Fails where the worker has not done the work."""
        job = world.ended_job()
        if job["state_id"] != "FREE" or job["result"] != 0:
            raise SystemExit(f"run: {self.name}: the worker's job ended as {job}")


@dataclass
class Start(Row):
    pairs: int = 100
    name = series = "start"
    title = "start, and nothing to do"

    def jobs(self, world):
        return jobs.job_file(3, jobs.firmware())

    def command(self, world):
        return world.worker_command("none")

    def check(self, world):
        if world.ended_job()["state_id"] != "WAIT":
            raise SystemExit("run: start: the worker has run a job")


@dataclass
class Updates(Row):
    records: int
    updates: int
    pairs: int = 5
    series = "updates"

    def __post_init__(self):
        self.name = f"updates-{self.records}"
        self.title = f"{self.updates:,} updates of progress, {self.records:,} records"
        self.size, self.units = self.records, self.updates
        self.environment = {"KELVANE_BENCHMARK_UPDATES": str(self.updates)}

    def jobs(self, world):
        return jobs.job_file(self.records, jobs.firmware())

    def trial_environment(self):
        return {"KELVANE_BENCHMARK_UPDATES": "3"}

    def fill(self, script, records, world):
        polls = [i for i, record in enumerate(records) if b"fp_u8Status = " in record[:120]]
        script.start()
        script.follow(records[:polls[0]])
        script.repeat(self.updates, records[polls[1]:polls[2]])
        script.follow(records[polls[-1]:])


@dataclass
class Download(Row):
    """A download job whose packages the engine has brought already."""
    products: int
    rules: int
    form: str = "xml"
    pairs: int = 5

    def numbers(self):
        return catalogue.chosen(self.rules, self.products)

    def jobs(self, world):
        products = [catalogue.product(number) for number in self.numbers()]
        return jobs.job_file(3, jobs.download(world.download, products))

    def prepare(self, world):
        world.download.mkdir()
        catalogue.write(world.download / f"{CATALOGUE}.plist", self.rules, self.form)
        for number in self.numbers():
            (world.download / catalogue.image(number)).write_bytes(b"image")

    def before_run(self, world):
        # What the last run has taken into the area becomes the engine's files again.
        if not world.download.exists():
            os.rename(world.area, world.download)
            world.area.mkdir()
        super().before_run(world)

    def fill(self, script, records, world):
        names = sorted(os.listdir(world.area))
        last = next(i for i, record in enumerate(records) if b"[readJSONFileDict]" in record[:120])
        script.start()
        script.follow(records[:last])
        script.add("spawn", world.engine)
        for name in names:
            script.add("copytree", world.download / name, world.area / f".{name}")
        script.add("sync", world.area)
        for name in names:
            script.add("rename", world.area / f".{name}", world.area / name)
        script.add("syncfolder", world.area)
        script.add("removetree", world.download)
        for _ in range(self.products):
            script.add("read", world.area / f"{CATALOGUE}.plist")
        script.follow(records[last:])

    def check(self, world):
        super().check(world)
        if world.download.exists() or not (world.area / f"{CATALOGUE}.plist").exists():
            raise SystemExit(f"run: {self.name}: the download area has not taken the files")


@dataclass
class CatalogueReading(Download):
    def __post_init__(self):
        self.series, self.size, self.units = f"catalogue-{self.form}", self.rules, self.products
        self.name = self.series
        self.title = f"{self.rules:,} rules, {self.products} products, {self.form}"


@dataclass
class Products(Download):
    def __post_init__(self):
        self.name = self.series = "products"
        self.size, self.units = self.products, 1
        self.title = f"{self.products} products, {self.rules:,} rules, {self.form}"


@dataclass
class Tree(Download):
    products: int = 1
    rules: int = 1
    files: int = 20_000

    def __post_init__(self):
        self.name = self.series = "tree"
        self.size, self.units = self.files, 1
        self.title = f"a tree of {self.files:,} files into the download area"

    def prepare(self, world):
        super().prepare(world)
        for number in range(self.files):
            folder = world.download / f"Manager.app/part-{number // 100:03d}"
            if number % 100 == 0:
                folder.mkdir(parents=True)
            (folder / f"file-{number:05d}").write_bytes(b"contents of a small file\n" * 20)


@dataclass
class File(Download):
    products: int = 1
    rules: int = 1
    mebibytes: int = 1024

    def __post_init__(self):
        self.name = self.series = "file"
        self.size, self.units = self.mebibytes, 1
        self.title = f"a file of {self.mebibytes:,} MiB into the download area"

    def prepare(self, world):
        super().prepare(world)
        block = os.urandom(1 << 20)
        with open(world.download / "package.img", "wb") as file:
            for _ in range(self.mebibytes):
                file.write(block)


@dataclass
class Log(Row):
    lines: int = 100_000
    pairs: int = 5
    name = series = "log"

    def __post_init__(self):
        self.size, self.units = self.lines, self.lines
        self.title = f"{self.lines:,} lines of the log"

    def jobs(self, world):
        return "[]"

    def command(self, world):
        return [str(world.built("log_lines")), str(world.log), str(self.lines)]

    def fill(self, script, records, world):
        script.repeat(self.lines, records[:1])

    def check(self, world):
        if len(records_of(world.log.read_bytes())) != self.lines:
            raise SystemExit("run: log: lines are missing")
