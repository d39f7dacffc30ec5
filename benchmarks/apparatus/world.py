"""A bundle with the real worker and a shared folder, both in one folder that is removed at the end."""

import json
import os
import shutil
import tempfile
from pathlib import Path

LOG_ID = "17"
WWN = "50000000000000A1"
CATALOGUE = "Offers"


class World:
    def __init__(self, build, disk="/tmp"):
        self._build = Path(build).resolve()
        self._built = {}
        # The worker looks for its bundle two levels below the root; this folder is the second.
        self.root = Path(tempfile.mkdtemp(prefix="kelvane-benchmark-", dir=disk)).resolve()
        if len(self.root.parts) != 3:
            self.remove()
            raise SystemExit(f"run: {disk} does not stand directly below the root")
        self.shared = self.root / "shared"
        self.job_file = self.shared / "utility/command/BGPLog.json"
        self.log = self.shared / "utility/logs/TarselVistrelUtility.txt"
        self.shared_settings = self.shared / "utility/config/setting.json"
        self.settings = self.root / "Contents/Resources/Config/setting.json"
        self.worker = self.root / "Contents/Resources/Kelvane"
        self.engine = self.root / "Contents/Resources/EngineRunner"
        self.download = self.shared / "engine"  # where the update engine would leave its files
        self.area = self.shared / "tmp/OnlineUpdate/FW"
        self.floor_folder = self.root / "floor"
        self._make()

    def _make(self):
        for folder in (self.job_file.parent, self.log.parent, self.shared_settings.parent,
                       self.settings.parent, self.area, self.floor_folder,
                       self.root / "Contents/Frameworks"):
            folder.mkdir(parents=True, exist_ok=True)
        shutil.copy(self.built("Kelvane"), self.worker)
        shutil.copy(self.built("libkelvane_instant_framework.so"),
                    self.root / "Contents/Frameworks/libZORAPI.so")
        # All that the engine would bring is there already.
        self.engine.symlink_to("/bin/true")
        self.settings.write_text(json.dumps({"online_update_plist_name": CATALOGUE,
                                             "product_id_sw": "sw"}))
        self.shared_settings.write_text(json.dumps({"AppPath": str(self.root)}))

    def built(self, name):
        """A program of the build tree."""
        if name not in self._built:
            self._built[name] = self._find(name)
        return self._built[name]

    def _find(self, name):
        found = sorted(path for path in self._build.rglob(name) if path.is_file())
        if not found:
            raise SystemExit(f"run: {self._build} has no {name}; build it with\n"
                             "  cmake --build --preset default --target benchmark_programs")
        return found[0]

    def worker_command(self, log_id=LOG_ID):
        return [str(self.worker), log_id, f"{self.shared}/"]

    def start_afresh(self, jobs):
        """The state before a run: what the last one wrote has reached the disk, or is gone."""
        self.log.write_bytes(b"")
        self.job_file.write_text(jobs)
        os.sync()

    def ended_job(self):
        """The record of the job that was run."""
        return next(job for job in json.loads(self.job_file.read_text())
                    if job["log_id"] == LOG_ID)

    def clear(self):
        """Removes what a row has put beside the bundle."""
        for folder in (self.download, self.area, self.floor_folder):
            shutil.rmtree(folder, ignore_errors=True)
        for folder in (self.area, self.floor_folder):
            folder.mkdir(parents=True)

    def remove(self):
        shutil.rmtree(self.root, ignore_errors=True)
