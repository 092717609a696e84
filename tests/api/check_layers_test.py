#!/usr/bin/env python3
"""check_layers_test.py SCRIPT: a made-up tree that keeps to the layers passes the layer check, and each
single include that does not is found."""
import contextlib
import importlib.util
import io
import pathlib
import sys
import tempfile

HEADERS = """
h/gen_string.h include/pll_info.h include/pll_prop.h include/pll_util.h include/pll_observer.h
pll/platform/arith.h pll/device/table.h pll/loop/taps.h pll/search/ranking.h pll/shortcuts/sums.h
pll/database/memory.h pll/database/files/tokens.h
advice/numbers/rational.h advice/limits/limits.h advice/why/why.h
app/output/format.h app/words/quantity.h app/lint/rules.h
tests/support/verifier.h
""".split()

KEEPS, BREAKS = 0, 1
INCLUDES = [
    # the file, and what it includes
    (KEEPS,  "h/msg_internal_error.h",      '"gen_string.h"'),
    (BREAKS, "h/msg_internal_error.h",      '"pll_info.h"'),
    (KEEPS,  "include/pll_manager.h",       '"pll.h"'),
    (BREAKS, "include/pll_manager.h",       '"pll_prop.h"'),
    (KEEPS,  "include/pll_settings.h",      '"pll_prop.h"'),
    (BREAKS, "include/pll_settings.h",      '"pll_observer.h"'),
    (BREAKS, "include/pll_basics.h",        '"platform/arith.h"'),

    (KEEPS,  "pll/search/walk.cpp",         '"pll_prop.h"'),
    (KEEPS,  "pll/search/walk.cpp",         '"search/ranking.h"'),
    (KEEPS,  "pll/search/walk.cpp",         '"platform/arith.h"'),
    (BREAKS, "pll/search/walk.cpp",         '"ranking.h"'),
    (BREAKS, "pll/search/walk.cpp",         '"shortcuts/sums.h"'),
    (KEEPS,  "pll/shortcuts/walk.cpp",      '"search/ranking.h"'),
    (BREAKS, "pll/listing/ratios.cpp",      '"shortcuts/sums.h"'),
    (BREAKS, "pll/loop/query.cpp",          '"search/ranking.h"'),
    (KEEPS,  "pll/database/index.cpp",      '"loop/taps.h"'),
    (KEEPS,  "pll/database/index.cpp",      '"database/files/tokens.h"'),
    (KEEPS,  "pll/database/files/read.cpp", '"database/memory.h"'),
    (BREAKS, "pll/database/index.cpp",      '"search/ranking.h"'),
    (BREAKS, "pll/loop/query.cpp",          '"database/memory.h"'),
    (BREAKS, "pll/flat.cpp",                '"pll_prop.h"'),
    (BREAKS, "pll/search/walk.cpp",         '"app/lint/rules.h"'),
    (BREAKS, "pll/search/walk.cpp",         '"advice/why/why.h"'),
    (BREAKS, "pll/search/walk.cpp",         '<gtest/gtest.h>'),
    (BREAKS, "pll/search/walk.cpp",         '<zlib.h>'),
    (KEEPS,  "pll/search/walk.cpp",         '<sys/stat.h>'),
    (KEEPS,  "pll/search/walk.cpp",         '<fcntl.h>'),
    (KEEPS,  "pll/search/walk.cpp",         '<vector>'),
    (BREAKS, "pll/search/walk.cpp",         '"../include/pll.h"'),
    (BREAKS, "pll/search/walk.cpp",         '"unheard_of.h"'),

    (KEEPS,  "advice/why/miss.cpp",         '"advice/limits/limits.h"'),
    (KEEPS,  "advice/why/miss.cpp",         '"pll_prop.h"'),
    (BREAKS, "advice/limits/vco.cpp",       '"advice/why/why.h"'),
    (BREAKS, "advice/verify/file.cpp",      '"advice/why/why.h"'),
    (BREAKS, "advice/why/miss.cpp",         '"search/ranking.h"'),
    (BREAKS, "advice/why/miss.cpp",         '"app/lint/rules.h"'),
    (BREAKS, "advice/extras/miss.cpp",      '"pll_prop.h"'),
    (KEEPS,  "advice/why/miss.cpp",         '<nlohmann/json.hpp>'),
    (BREAKS, "advice/why/miss.h",           '<nlohmann/json.hpp>'),

    (KEEPS,  "app/main.cpp",                '"app/lint/rules.h"'),
    (KEEPS,  "app/lint/lint.cpp",           '"app/output/format.h"'),
    (KEEPS,  "app/lint/lint.cpp",           '"advice/why/why.h"'),
    (KEEPS,  "app/lint/lint.cpp",           '<CLI/CLI.hpp>'),
    (BREAKS, "app/lint/lint.cpp",           '"rules.h"'),
    (BREAKS, "app/output/text.cpp",         '"app/lint/rules.h"'),
    (BREAKS, "app/output/text.cpp",         '"app/words/quantity.h"'),
    (BREAKS, "app/main.cpp",                '"search/ranking.h"'),
    (BREAKS, "app/second.cpp",              '"pll_prop.h"'),

    (KEEPS,  "examples/host.cpp",           '"advice/why/why.h"'),
    (BREAKS, "examples/host.cpp",           '"platform/arith.h"'),
    (KEEPS,  "bench/bench.cpp",             '"search/ranking.h"'),
    (BREAKS, "bench/bench.cpp",             '"app/lint/rules.h"'),
    (KEEPS,  "tests/unit/search_test.cpp",  '"search/ranking.h"'),
    (KEEPS,  "tests/model/model.cpp",       '"verifier.h"'),
    (BREAKS, "tests/model/model.cpp",       '"platform/arith.h"'),
    (BREAKS, "tests/support/verifier.cpp",  '"search/ranking.h"'),
    (BREAKS, "tests/cli/run_test.cpp",      '"app/lint/rules.h"'),
]


def load(path):
    spec = importlib.util.spec_from_file_location("check_layers", path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def status_of(script, tree):
    with contextlib.redirect_stdout(io.StringIO()), contextlib.redirect_stderr(io.StringIO()):
        return script.main([str(tree)])


def write(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8")


def main():
    sys.dont_write_bytecode = True
    script = load(sys.argv[1])
    failures = 0

    def expect(expected, what):
        nonlocal failures
        found = status_of(script, tree)
        if found != expected:
            print(f"{what}: exit status {found} instead of {expected}", file=sys.stderr)
            failures += 1

    with tempfile.TemporaryDirectory() as folder:
        tree = pathlib.Path(folder)
        for header in HEADERS:
            write(tree / header, "")
        expect(BREAKS, "a tree without an include")
        write(tree / "include/pll.h", '#include "pll_info.h"\n')
        expect(KEEPS, "the tree itself")
        for expected, file, included in INCLUDES:
            write(tree / file, f"#include {included}\n")
            expect(expected, f"{file} including {included}")
            (tree / file).unlink()

        page = tree / "docs/architecture.md"
        write(page, "no table\n")
        expect(BREAKS, "a page of the architecture without the order")
        write(page, "".join(f"    {line}\n" for line in script.ORDER.splitlines()))
        expect(KEEPS, "a page of the architecture with the order")
    return 1 if failures else 0


sys.exit(main())
