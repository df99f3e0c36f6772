#!/usr/bin/env python3
"""What scripts/mutate changes in a file, and what it leaves alone."""
import os
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))))
sys.path.insert(0, os.path.join(ROOT, "scripts"))

from mutation.operators import candidates
from mutation.source import Source


def changed(text, log_text=False):
    """Every changed text with the operator that made it; the lines that differ only."""
    source = Source("a.cpp", text)
    result = set()
    for mutant in candidates(source, log_text):
        mutated = mutant.apply(text)
        assert mutated != text and mutated.count("\n") == text.count("\n"), mutant
        lines = [new.strip() for old, new in zip(text.split("\n"), mutated.split("\n")) if old != new]
        result.add((mutant.operator, " ".join(line for line in lines if line)))
    return result


def body(*statements):
    """Changes of a function's statements, without the early return at its beginning."""
    text = "void F(int a) {\n" + "".join(f"    {s}\n" for s in statements) + "}\n"
    return changed(text) - {("early return", "void F(int a) { return;")}


class Operators(unittest.TestCase):
    def test_conditions(self):
        self.assertEqual(body("if (a) {", "}"), {("condition negated", "if (!(a)) {")})
        self.assertEqual(body("if (!a) {", "}"), {("condition negated", "if (a) {")})
        self.assertEqual(body("while (Next(a)) {", "}"), {("condition negated", "while (!(Next(a))) {")})
        self.assertEqual(body("if (const int b = a; b) {", "}"), {("condition negated", "if (const int b = a; !(b)) {")})
        self.assertEqual(body("if (const auto* b = G()) {", "}"), set())
        self.assertEqual(body("b = a && c;"), {("condition changed", "b = a || c;"), ("assignment removed", ";")})

    def test_a_condition_of_one_comparison_is_changed_once(self):
        self.assertEqual(body("if (a == b) {", "}"), {("comparison shifted", "if (a != b) {")})
        self.assertEqual(body("if (a < b) {", "}"),
                         {("comparison shifted", "if (a <= b) {"), ("condition negated", "if (!(a < b)) {")})

    def test_comparisons(self):
        for old, new in (("<", "<="), ("<=", "<"), (">", ">="), (">=", ">"), ("==", "!="), ("!=", "==")):
            self.assertIn(("comparison shifted", f"const bool b = a {new} c;"), body(f"const bool b = a {old} c;"))
        self.assertEqual(body("std::vector<int> b;"), set())
        self.assertEqual(changed("template <typename Class>\nstd::unique_ptr<Class> Make();\n"), set())

    def test_calls_and_assignments(self):
        self.assertEqual(body("Call(a);"), {("call removed", ";")})
        self.assertEqual(body("object.Call(a)->Again();"), {("call removed", ";")})
        self.assertEqual(body("b = a;"), {("assignment removed", ";")})
        self.assertEqual(body("b += a;"), {("assignment removed", ";"), ("operator changed", "b -= a;")})
        self.assertEqual(body("int b(a);", "Type b{a};", "Type& b = a;", "auto b = a;"), set(), "declarations")
        self.assertEqual(body("result.reserve(a);"), set(), "nothing could notice it")
        self.assertIn(("call removed", ";"), changed("void F() {\n    std::sort(a,\n              b);\n    return;\n}\n"))

    def test_statements_behind_labels_and_in_lambdas(self):
        text = "void F() {\n    switch (a) {\n        case kA:\n            Call();\n            break;\n    }\n}\n"
        self.assertIn(("call removed", ";"), changed(text))
        self.assertIn(("jump removed", ";"), changed(text))
        self.assertIn(("call removed", "Run([] { ; });"), changed("void F() {\n    Run([] { Call(); });\n}\n"))

    def test_returns(self):
        self.assertEqual(changed("int F() {\n    return G();\n}\n"), {("early return", "return {};")})
        self.assertIn(("early return", "int F() { return {};"), changed("int F() {\n    G();\n    return 0;\n}\n"))
        self.assertIn(("early return", "Class::Class() : a_(b) { return;"),
                      changed("Class::Class() : a_(b) {\n    G();\n}\n"))
        self.assertIn(("early return", "Class::~Class() { return;"), changed("Class::~Class() {\n    G();\n}\n"))
        self.assertIn(("early return", "const Type* F(int a) const { return {};"),
                      changed("const Type* F(int a) const {\n    G();\n    return a_;\n}\n"))
        self.assertIn(("early return", "void F() override { return; G(); }"), changed("struct A {\n    void F() override { G(); }\n};\n"))

    def test_constants(self):
        self.assertEqual(body("const int b = 9;"), {("constant off by one", "const int b = 10;")})
        self.assertEqual(body("const int b = 0xFFu;"), {("constant off by one", "const int b = 0x100u;")})
        self.assertEqual(body("const int b = 10'000;"), {("constant off by one", "const int b = 10001;")})
        self.assertEqual(body("const double b = 0.5;"), {("constant off by one", "const double b = 1.5;")})
        self.assertEqual(body("const bool b = true;"), {("constant changed", "const bool b = false;")})
        self.assertEqual(changed("constexpr int kTable[] = {\n    1,\n};\n"), {("constant off by one", "2,")})

    def test_literals(self):
        self.assertEqual(body('const auto b = L"a\\"b";'), {("literal changed", 'const auto b = L"a\\"bx";')})
        self.assertEqual(body("const char b = 'a';"), {("literal changed", "const char b = 'b';")})
        self.assertEqual(body("const char b = '\\n';"), {("literal changed", "const char b = '\\1';")})

    def test_log_lines_go_as_a_whole(self):
        text = 'void F() {\n    LogLine(4, L"F", L"text: ", a + 1);\n}\n'
        self.assertEqual({operator for operator, _ in changed(text)}, {"call removed", "early return"})
        self.assertIn("literal changed", {operator for operator, _ in changed(text, log_text=True)})

    def test_what_is_left_alone(self):
        self.assertEqual(changed('#include "a.h"\n#define A 1 + \\\n    2\n// if (a) {\n/* b = 1;\n */\n\n'), set())
        self.assertEqual(changed("using A = B<1>;\nstatic_assert(sizeof(A) == 4);\n"), set())
        self.assertEqual(changed("[[nodiscard]] int F(int a);\nenum class A { kB, kC };\n"), set())


if __name__ == "__main__":
    unittest.main()
