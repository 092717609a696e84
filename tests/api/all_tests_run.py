#!/usr/bin/env python3
"""all_tests_run.py TREE BUILD: fails, naming each, when a test that stands in a source is not among
those that ctest runs, or when no source speaks of a golden file."""
import json
import pathlib
import re
import subprocess
import sys

TEST = re.compile(r"^TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)


def names_that_run(build):
    command = ["ctest", "--test-dir", str(build), "--show-only=json-v1"]
    listed = json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)
    names = set()
    for test in listed["tests"]:
        # INSTANCE/SUITE.NAME/PARAMETER of a test with parameters.
        name = re.sub(r"\s*# GetParam.*", "", test["name"])
        suite, dot, rest = name.partition(".")
        names.add(suite.rsplit("/", 1)[-1] + dot + rest.split("/", 1)[0])
    return names


def main():
    tree, build = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    running = names_that_run(build)
    sources = sorted((tree / "tests").rglob("*.cpp"))
    texts = {source: source.read_text(encoding="utf-8") for source in sources}
    tests = [(source, ".".join(names)) for source, text in texts.items() for names in TEST.findall(text)]
    failures = [f"{source.relative_to(tree)}: {name} does not run" for source, name in tests if name not in running]

    everything = "\n".join(texts.values())
    golden = sorted((tree / "tests" / "golden").iterdir())
    failures += [f"{file.relative_to(tree)}: no test compares it" for file in golden if f'"{file.name}"' not in everything]

    for failure in failures:
        print(failure, file=sys.stderr)
    if not tests or not golden:
        print(f"{len(tests)} tests and {len(golden)} golden files found", file=sys.stderr)
        return 1
    if not failures:
        print(f"{len(tests)} tests run, {len(golden)} golden files are compared")
    return 1 if failures else 0


sys.exit(main())
