"""What counts as a small mistake, and what does not."""

import unittest

import here  # noqa: F401
from bite.mutants import mutants_of


def changes(source):
    return [mutant.change() for mutant in mutants_of("a.cpp", source)]


def mutated(source):
    return [mutant.applied_to(source) for mutant in mutants_of("a.cpp", source)]


class Mutants(unittest.TestCase):
    def test_a_comparison_takes_or_loses_its_limit(self):
        self.assertEqual(mutated("a = b < c;"), ["a = b <= c;"])
        self.assertEqual(mutated("a = b >= c;"), ["a = b > c;"])
        self.assertEqual(mutated("a = b == c;"), ["a = b != c;"])

    def test_brackets_of_a_template_are_no_comparison(self):
        self.assertEqual(changes("std::vector<int> a;"), [])

    def test_a_condition_is_turned_round(self):
        self.assertIn("void f() {if (!(a)) b(); }", mutated("void f() {if (a) b(); }"))
        self.assertIn("condition: ! -> nothing", changes("x = !a;"))

    def test_a_condition_that_names_something_is_left_alone(self):
        self.assertNotIn("condition", " ".join(changes("if (auto a = b; a.c) d.e;")))

    def test_numbers_grow_by_one(self):
        self.assertEqual(changes("a = 9U;"), ["constant: 9U -> 10U"])
        self.assertEqual(changes("a = 0xFF;"), ["constant: 0xFF -> 0x100"])
        self.assertEqual(changes("a = 0777;"), ["constant: 0777 -> 01000"])
        self.assertEqual(changes("a = 1'000;"), ["constant: 1'000 -> 1001"])

    def test_a_text_gets_a_character(self):
        self.assertEqual(mutated('a = "b";'), ['a = "b~";'])
        self.assertEqual(mutated('a = "b:";'), ['a = "~b:";'])
        self.assertEqual(changes('extern "C" {}'), [])

    def test_calls_assignments_and_ways_out_are_dropped(self):
        self.assertEqual(mutated("{ a.b(c); }"), ["{ ; }"])
        self.assertEqual(mutated("{ a = b; }"), ["{ ; }"])
        self.assertEqual(mutated("{ ++a; }"), ["{ ; }"])
        self.assertEqual(mutated("{ return; }"), ["{ ; }"])
        self.assertEqual(mutated("case a: break; "), ["case a: ; "])

    def test_declarations_are_not_dropped(self):
        self.assertEqual(changes("{ Type name(argument); }"), [])
        self.assertEqual(changes("{ A& operator=(const A&) = delete; }"), [])
        self.assertEqual(changes("{ A(const A&) = delete; }"), [])

    def test_what_follows_a_colon_of_a_condition_is_no_statement(self):
        self.assertEqual(changes("{ return a ? b : c(); }"),
                         ["dropped return: return a ? b : c() -> nothing"])

    def test_comments_directives_and_static_assertions_are_not_touched(self):
        self.assertEqual(changes("// a = 1;\n/* b < c */\n#define A 1\nstatic_assert(a == 1);"), [])

    def test_equal_changes_of_one_line_are_told_apart(self):
        self.assertEqual(changes("a = 0 + b + 0;\na = 0;"),
                         ["constant: 0 -> 1 (1 of 2)", "operator: + -> - (1 of 2)",
                          "operator: + -> - (2 of 2)", "constant: 0 -> 1 (2 of 2)",
                          "dropped assignment: a = 0 -> nothing", "constant: 0 -> 1"])

    def test_it_is_told_where_a_mutant_stands(self):
        source = "int a;\n\n  int b = 7;  // why\n"
        mutant, = mutants_of("a.cpp", source)
        self.assertEqual(mutant.described(), "a.cpp:3: constant: 7 -> 8")
        self.assertEqual(mutant.line_of(source), "int b = 7;  // why")
        leaving = "case a:\n  break;\n"
        self.assertEqual(mutants_of("a.cpp", leaving)[0].line_of(leaving), "case a: break;")
        self.assertIn("-  int b = 7;  // why\n+  int b = 8;  // why", mutant.diff(source))


unittest.main()
