"""What the tool says of its mutants, and how it ends, with a tree that only says what it was told."""

import contextlib
import io
import runpy
import sys
import unittest
from unittest import mock

import here
import bite.packages
import bite.tree

_TOOL = here.TOOLS / "mutate"


class SayingTree:
    """Has these outcomes for the mutants, in turn, and no others."""

    def __init__(self, outcomes):
        self._outcomes = iter(outcomes)
        self.texts = []

    def prepare(self):
        return {"platform": 1}

    def try_mutant(self, path, text):
        self.texts.append((path, text))
        return {"outcome": next(self._outcomes), "by": "platform"}


def ended(outcomes, *arguments):
    """The exit status, what was printed, and what was tried."""
    tree = SayingTree(outcomes)
    printed = io.StringIO()
    with mock.patch.object(bite.tree, "Tree", lambda *_: tree), \
            mock.patch.object(bite.packages, "install"), \
            mock.patch.object(sys, "argv", ["mutate", "--jobs", "1", *arguments]), \
            contextlib.redirect_stdout(printed):
        try:
            runpy.run_path(str(_TOOL), run_name="__main__")
        except SystemExit as leaving:
            return leaving.code, printed.getvalue(), tree.texts
    raise AssertionError("it has not ended")


class Mutate(unittest.TestCase):
    def test_where_all_are_caught_it_ends_well(self):
        status, printed, tried = ended(["caught", "timed out"], "1", "2")
        self.assertEqual(status, 0)
        self.assertEqual(len(tried), 2)
        self.assertIn("2 caught (1 of them by the time), 0 equivalent, with a reason, 0 survived; "
                      "0 more did not compile", printed)

    def test_a_survivor_is_shown_and_is_a_failure(self):
        status, printed, tried = ended(["caught", "survived"], "1", "2")
        self.assertEqual(status, 1)
        self.assertIn("SURVIVED: #2 ", printed)
        self.assertIn("+++ ", printed)
        self.assertIn("1 survived", printed)

    def test_each_is_tried_as_its_source_with_one_mistake(self):
        _, _, tried = ended(["caught"], "1")
        path, text = tried[0]
        self.assertNotEqual(text, (here.PROJECT / path).read_text())

    def test_others_are_drawn_for_those_that_do_not_compile(self):
        status, printed, tried = ended(["not compiling", "caught", "caught"], "--count", "2",
                                       "--file", "UsbBridge.cpp")
        self.assertEqual(status, 0)
        self.assertEqual(len(tried), 3)
        self.assertIn("1 more did not compile", printed)

    def test_a_number_that_none_has_is_refused(self):
        status, _, tried = ended([], "0")
        self.assertIn("mutants have numbers from 1 to ", status)
        self.assertEqual(tried, [])


unittest.main()
