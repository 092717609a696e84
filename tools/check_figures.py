#!/usr/bin/env python3
"""check_figures.py [--list] [ROOT]: fails, naming each, when a file or function is too long or when
too few lines of a folder carry a comment. --list shows the figures of each folder.

Lengths are those of all C++ of the tree; lines that hold nothing but a case or a break do not count,
since a switch names every enumerator. A line carries a comment when it has a // outside of texts;
blank lines do not count. Public headers are what hosts include, private ones what the library
includes alone.
"""
import pathlib
import re
import sys

MOST_LINES_OF_A_FILE = 450
MOST_LINES_ELSEWHERE = 700  # outside pll/: contracts, tables of options and of cases
LIBRARY = ("h", "pll")
MOST_LINES_OF_A_FUNCTION = 60

# Kind, the files of it, the least share of lines with a comment in each folder.
KINDS = (
    ("public headers", ("include/*.h", "h/*.h"), 0.50),
    ("private headers", ("pll/**/*.h",), 0.30),
    ("sources", ("pll/**/*.cpp",), 0.09),
)

# Folders that are still below that: their share may only grow, and then leaves this table.
GROWING = {
    ("public headers", "h"): 0.41,
    ("private headers", "pll/database"): 0.15,
    ("private headers", "pll/database/watch"): 0.25,
    ("private headers", "pll/platform"): 0.28,
    ("private headers", "pll/search"): 0.24,
    ("private headers", "pll/shortcuts"): 0.23,
    ("sources", "pll/database"): 0.05,
    ("sources", "pll/database/files"): 0.06,
    ("sources", "pll/database/watch"): 0.03,
    ("sources", "pll/filter"): 0.08,
    ("sources", "pll/search"): 0.07,
    ("sources", "pll/synthesis"): 0.08,
    ("sources", "pll/shortcuts"): 0.08,
}
FOLDERS = ("h", "include", "pll", "advice", "app", "bench", "examples", "fuzz", "tests")

TEXT = re.compile(r'"(?:\\.|[^"\\])*"' + r"|'(?:\\.|[^'\\])*'")
CASE = re.compile(r"\s*(?:case [\w:]+:|break;)\s*(?://.*)?$")
NO_FUNCTION = re.compile(r"^(?:class|struct|union|enum|namespace|extern)\b|=\s*$")


def carries_comment(line):
    return "//" in TEXT.sub("", line)


def share_of(files):
    """Lines with a comment, and lines that are not blank."""
    commented = lines = 0
    for file in files:
        for line in file.read_text(encoding="utf-8").splitlines():
            lines += bool(line.strip())
            commented += carries_comment(line)
    return commented, lines


def functions_of(text):
    """(line, lines between its braces) of each function that stands in no class."""
    lines = text.splitlines()
    start = None
    for number, line in enumerate(lines):
        if line == "{":
            head = number - 1
            while head > 0 and lines[head - 1] and not lines[head - 1].startswith(("//", "#", "}")):
                head -= 1
            is_function = not any(NO_FUNCTION.search(part) for part in lines[head:number])
            start = number if is_function else None
        elif line.startswith("}") and start is not None:
            yield start + 1, sum(CASE.match(line) is None for line in lines[start + 1 : number])
            start = None


def breaches_of_lengths(root):
    for folder in FOLDERS:
        most = MOST_LINES_OF_A_FILE if folder in LIBRARY else MOST_LINES_ELSEWHERE
        for file in sorted((root / folder).rglob("*")):
            if file.suffix not in (".h", ".cpp"):
                continue
            text = file.read_text(encoding="utf-8")
            name, lines = file.relative_to(root), text.count("\n")
            if lines > most:
                yield f"{name}: {lines} lines instead of at most {most}"
            for line, length in functions_of(text):
                if length > MOST_LINES_OF_A_FUNCTION:
                    yield f"{name}:{line}: a function of {length} lines instead of at most {MOST_LINES_OF_A_FUNCTION}"


def files_by_folder(root, patterns):
    folders = {}
    for file in sorted(file for pattern in patterns for file in root.glob(pattern)):
        folders.setdefault(file.parent.relative_to(root).as_posix(), []).append(file)
    return folders


def breaches_of_shares(root, show):
    for kind, patterns, wanted in KINDS:
        all_commented = all_lines = 0
        for folder, files in sorted(files_by_folder(root, patterns).items()):
            commented, lines = share_of(files)
            least = GROWING.get((kind, folder), wanted)
            if show:
                print(f"{kind:16} {folder:20} {commented:5} of {lines:5} lines {commented / max(lines, 1):6.1%}")
            if commented < least * lines:
                yield f"{folder}: {commented} of {lines} lines of {kind} carry a comment, less than {least:.0%}"
            all_commented, all_lines = all_commented + commented, all_lines + lines
        print(f"{kind}: {all_commented} of {all_lines} lines carry a comment")
        if all_lines == 0:
            yield f"{kind}: none found"


def main(words):
    rest = [word for word in words if word != "--list"]
    root = pathlib.Path(rest[0] if rest else pathlib.Path(__file__).resolve().parent.parent)
    breaches = list(breaches_of_lengths(root)) + list(breaches_of_shares(root, "--list" in words))
    for breach in breaches:
        print(breach, file=sys.stderr)
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
