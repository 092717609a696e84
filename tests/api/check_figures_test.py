#!/usr/bin/env python3
"""check_figures_test.py SCRIPT: each limit of the figures is found from both sides in a made-up tree."""
import contextlib
import importlib.util
import io
import pathlib
import sys
import tempfile

PLAIN = {
    "include/pll.h": "// one\nint a;\n",
    "h/base.h": "// one\nint b;\n",
    "pll/loop/a.h": "// one\nint c;\n",
    "pll/loop/a.cpp": "// one\nint d;\n",
}


def lines(count, first="// one"):
    return "\n".join([first] + ["int a;"] * (count - 1)) + "\n"


def function(length, head="int f()"):
    return "// one\n" * 9 + head + "\n{\n" + "    g();\n" * length + "}\n"


KEEPS, BREAKS = 0, 1
CASES = [
    # what, status, file, its text
    ("a plain tree", KEEPS, "app/a.cpp", ""),
    ("a long file", KEEPS, "pll/loop/b.cpp", lines(450).replace("int a;", "int a;  // why")),
    ("one line more", BREAKS, "pll/loop/b.cpp", lines(451).replace("int a;", "int a;  // why")),
    ("a long test", KEEPS, "tests/unit/a_test.cpp", lines(700)),
    ("one line more of a test", BREAKS, "tests/unit/a_test.cpp", lines(701)),
    ("a long function", KEEPS, "app/a.cpp", function(60)),
    ("one line more of a function", BREAKS, "app/a.cpp", function(61)),
    ("cases do not count", KEEPS, "app/a.cpp", function(60).replace("}", "    case A::B:  // why\n    break;\n}")),
    ("a long class", KEEPS, "app/a.cpp", function(61, "class A")),
    ("half of a public header", KEEPS, "include/pll.h", lines(2)),
    ("less than half", BREAKS, "h/other.h", lines(10)),
    ("enough of a private header", KEEPS, "pll/loop/a.h", lines(3)),
    ("too little of it", BREAKS, "pll/loop/a.h", lines(4)),
    ("enough of a source", KEEPS, "pll/loop/a.cpp", lines(11)),
    ("too little of a source", BREAKS, "pll/loop/a.cpp", lines(12)),
    ("a comment in a text is none", BREAKS, "pll/loop/a.cpp", lines(10, 'f("//");')),
    ("a comment behind code is one", KEEPS, "pll/loop/a.cpp", lines(10, 'f("//");  // why')),
    ("blank lines do not count", KEEPS, "pll/loop/a.cpp", lines(11) + "\n" * 5),
]


def load(path):
    spec = importlib.util.spec_from_file_location("check_figures", path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def main():
    sys.dont_write_bytecode = True
    script = load(sys.argv[1])
    script.GROWING.clear()
    failures = 0
    for what, expected, file, text in CASES:
        with tempfile.TemporaryDirectory() as folder:
            for name, content in (PLAIN | {file: text}).items():
                path = pathlib.Path(folder) / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(content, encoding="utf-8")
            with contextlib.redirect_stdout(io.StringIO()), contextlib.redirect_stderr(io.StringIO()):
                found = script.main([folder])
        if found != expected:
            print(f"{what}: exit status {found} instead of {expected}", file=sys.stderr)
            failures += 1
    return 1 if failures else 0


sys.exit(main())
