#!/usr/bin/env python3
"""check_layers.py [ROOT]: fails, naming each line, when an include goes against the layers.

Two tables say what may include what: AREAS for the top folders, ORDER for what stands inside them.
docs/architecture.md shows ORDER as it stands here; --order prints it.

Headers are included from the root of their area: "pll_prop.h" (include/ and h/), "search/ranking.h"
(pll/), "app/lint/rules.h", "advice/numbers/rational.h". Tests, benchmarks and examples include their
own headers by bare name. The library uses no header but its own and those of C++ and C; of other
libraries, advice/ uses headers in its sources alone, so that no host needs them.
"""
import os
import re
import sys

# What the files of a folder may include besides their own folder; the longest folder that fits counts.
PUBLIC = ("h", "include")
AREAS = {
    "h": (),
    "include": ("h",),
    "pll": PUBLIC,
    "advice": PUBLIC,
    "app": PUBLIC + ("advice",),
    "examples": PUBLIC + ("advice",),
    "bench": PUBLIC + ("pll", "advice"),
    "fuzz": PUBLIC + ("advice", "app", "tests"),
    "tests/advice": PUBLIC + ("advice", "tests/support"),
    "tests/api": PUBLIC,
    "tests/cli": PUBLIC + ("tests/support",),
    "tests/install": PUBLIC,
    "tests/model": PUBLIC + ("tests/support",),
    "tests/support": PUBLIC,
    "tests": PUBLIC + ("pll", "advice", "app", "tests"),
}

# Inside an area, what stands further right may include what stands further left; what shares a place
# may not include each other. A folder that has no place may not be. A star is any other name.
ORDER = """\
include/  pll_info.h, pll_outcome.h < pll.h < pll_prop.h, pll_util.h, pll_manager.h < *
pll/      platform < device < loop < clocks < placing, filter < search < shortcuts, listing < synthesis
pll/      clocks < database
advice/   numbers < sheets < request < limits < verdict < answer < verify, primitive < why, devices
app/      numbers < output, words < source, devices < request < answer < json, lint < reports, primitive < command < main.cpp
"""

# Headers with a name like those of C, which are of the system or of the compiler.
SYSTEM_HEADERS = {"fcntl.h", "unistd.h", "xmmintrin.h"}

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"\n]*)"|<([^>\n]*)>)', re.MULTILINE)


def read_order(text):
    """For each area, the places of ORDER: name -> names that it may include."""
    places = {}
    for line in text.splitlines():
        area, chain = line.split(None, 1)
        below = places.setdefault(area.rstrip("/"), {})
        lower = set()
        for step in chain.split("<"):
            names = [name.strip() for name in step.split(",")]
            for name in names:
                below.setdefault(name, set()).update(lower)
            for name in names:
                lower |= {name} | below[name]
    return places


def area_of(path):
    parts = path.split("/")
    return next(area for area in ("/".join(parts[:2]), parts[0]) if area in AREAS)


def place_of(path, area, places):
    """The name in ORDER under which a file stands; None when it has no place."""
    name = path[len(area) + 1 :].split("/")[0]
    if name in places[area]:
        return name
    return "*" if "*" in places[area] else None


class TREE:
    def __init__(self, root):
        self.root = root
        self.places = read_order(ORDER)
        self.files = []
        for top in sorted({area.split("/")[0] for area in AREAS}):
            for folder, _, names in os.walk(os.path.join(root, top)):
                inside = os.path.relpath(folder, root)
                self.files += [f"{inside}/{n}" for n in names if n.endswith((".h", ".cpp"))]
        self.files.sort()
        self.by_path = set(self.files)
        own = ("tests/", "bench/", "examples/", "fuzz/")
        self.by_name = {p.rsplit("/", 1)[1]: p for p in self.files if p.startswith(own)}

    def resolve(self, name):
        """The path of a header of ours, or None."""
        for path in (f"include/{name}", f"h/{name}", f"pll/{name}", name):
            if path in self.by_path and not (path == name and name.split("/")[0] not in ("app", "advice")):
                return path
        return self.by_name.get(name)

    def breach_of_own(self, path, name):
        header = self.resolve(name)
        if header is None:
            return f'"{name}" is no header of this tree'
        area, to = area_of(path), area_of(header)
        if to != area:
            fits = any(to == a or to.startswith(a + "/") for a in AREAS[area])
            return None if fits else f"{area}/ may not include {header}"
        if area not in self.places:
            return None
        here, there = (place_of(p, area, self.places) for p in (path, header))
        if here is None or there is None or here == there and here not in ("*",) and "/" in header[len(area) + 1 :]:
            return None
        if there in self.places[area][here]:
            return None
        return f"{area}/{here} may not include {header}"

    @staticmethod
    def breach_of_system(path, name):
        area = area_of(path)
        foreign = "/" in name and not name.startswith("sys/") or "." in name and name not in SYSTEM_HEADERS and not name.startswith("sys/")
        if foreign and (area in ("h", "include", "pll") or area == "advice" and path.endswith(".h")):
            return f"<{name}> is not of C++ or C"
        return None

    def check(self):
        """Number of includes, and the breaches as texts."""
        includes, breaches = 0, []
        for path in self.files:
            area = area_of(path)
            if area in self.places and place_of(path, area, self.places) is None:
                breaches.append(f"{path}:1: stands in no folder of the order of {area}/")
                continue
            with open(os.path.join(self.root, path), encoding="utf-8") as file:
                text = file.read()
            for match in INCLUDE.finditer(text):
                includes += 1
                own, system = match.groups()
                breach = self.breach_of_own(path, own) if own is not None else self.breach_of_system(path, system)
                if breach:
                    line = text.count("\n", 0, match.start()) + 1
                    breaches.append(f"{path}:{line}: {breach}")
        return includes, breaches


def shows_order(root):
    """Whether the page of the architecture shows the order as it stands here, if there is one."""
    path = os.path.join(root, "docs", "architecture.md")
    if not os.path.exists(path):
        return True
    with open(path, encoding="utf-8") as file:
        return "".join(f"    {line}\n" for line in ORDER.splitlines()) in file.read()


def main(words):
    if words == ["--order"]:
        print(ORDER, end="")
        return 0
    root = words[0] if words else os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
    includes, breaches = TREE(root).check()
    for breach in breaches:
        print(breach, file=sys.stderr)
    if not shows_order(root):
        print("docs/architecture.md does not show the order of the layers (--order)", file=sys.stderr)
        return 1
    if includes == 0:
        print(f"check_layers.py: no includes found below {root}", file=sys.stderr)
        return 1
    if breaches:
        print(f"{len(breaches)} includes go against the layers", file=sys.stderr)
        return 1
    print(f"{includes} includes keep to the layers")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
