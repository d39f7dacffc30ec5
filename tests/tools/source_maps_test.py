"""What the compiler's source maps tell of lines and branches."""

import unittest
from pathlib import Path

import here  # noqa: F401
from bite.source_maps import Place, _branches, _lines

_BUILD = Path("build/coverage")


def is_ours(path):
    return path.startswith("platform/")


def branches(found, segments):
    exported = {"data": [{"files": [{"filename": "build/coverage/platform/a.cpp", "branches": found,
                                     "segments": segments}]}]}
    return _branches(exported, _BUILD, is_ours)


class SourceMaps(unittest.TestCase):
    def test_lines_of_other_sources_are_not_told_of(self):
        records = "SF:build/coverage/platform/a.cpp\nDA:3,7\nDA:4,0\nend_of_record\n" \
                  "SF:build/coverage/tests/b.cpp\nDA:1,0\nend_of_record\nSF:/usr/c.h\nDA:1,0\n"
        self.assertEqual(_lines(records, _BUILD, is_ours),
                         {Place("platform/a.cpp", 3, 0, "line"): 7,
                          Place("platform/a.cpp", 4, 0, "line"): 0})

    def test_both_sides_of_a_branch_count(self):
        self.assertEqual(branches([[3, 5, 3, 9, 2, 0, 0, 0, 4]], [[3, 5, 2, True, True, False]]),
                         {Place("platform/a.cpp", 3, 5, "true"): 2,
                          Place("platform/a.cpp", 3, 5, "false"): 0})

    def test_the_instances_of_a_template_count_together(self):
        found = branches([[3, 5, 3, 9, 2, 0, 0, 0, 4], [3, 5, 3, 9, 0, 1, 0, 0, 4]], [])
        self.assertEqual(list(found.values()), [2, 1])

    def test_a_condition_that_is_never_met_is_missing_on_both_sides(self):
        found = branches([[3, 5, 3, 9, 0, 0, 0, 0, 4]], [[3, 5, 0, True, True, False]])
        self.assertEqual(list(found.values()), [0, 0])

    def test_one_that_the_compiler_knows_is_no_branch(self):
        self.assertEqual(branches([[3, 5, 3, 9, 0, 0, 0, 0, 4]], [[3, 1, 6, True, True, False]]), {})


unittest.main()
