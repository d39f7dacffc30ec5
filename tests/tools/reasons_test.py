"""Lists of what need not be mended."""

import tempfile
import unittest
from pathlib import Path

import here  # noqa: F401
from bite import reasons
from bite.failure import Failure

_ENTRY = """[[odd]]
file = "a.cpp"
line = "~~ = b[0];"
reason = "As it is."
"""


class Lists(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self._folder = Path(folder.name)
        self.addCleanup(setattr, reasons, "_FOLDER", reasons._FOLDER)
        reasons._FOLDER = self._folder

    def read(self, text):
        (self._folder / "odd.toml").write_text(text)
        return reasons.Reasons("odd", ("file", "line"))

    def test_an_entry_stands_for_what_fits_it_alone(self):
        found = self.read(_ENTRY)
        self.assertEqual(found.of(file="a.cpp", line="int a = b[0];"), "As it is.")
        self.assertIsNone(found.of(file="a.cpp", line="int a = b[0]; // c"))
        self.assertIsNone(found.of(file="aXcpp", line="int a = b[0];"))
        found.require_all_used()

    def test_one_that_fits_nothing_is_a_mistake(self):
        found = self.read(_ENTRY)
        found.of(file="b.cpp", line="int a = b[0];")
        with self.assertRaisesRegex(Failure, "a.cpp: ~~ = b"):
            found.require_all_used()

    def test_one_without_a_reason_is_a_mistake(self):
        with self.assertRaises(Failure):
            self.read(_ENTRY.replace("As it is.", " "))
        with self.assertRaises(Failure):
            self.read(_ENTRY.replace("reason", "cause"))


unittest.main()
