#!/usr/bin/env python3
"""peers.py PLLCALC LOOP [WISHES]: icepll and pllcalc on the same wishes for iCE40: the real ones of the
tests and random ones. Fails when icepll is nearer anywhere, or legal where ours is refused.
Prints a table in Markdown. LOOP is pll_device_answers, which answers in one process."""

import json
import pathlib
import random
import re
import statistics
import subprocess
import sys
import tempfile
import time
from fractions import Fraction

EXAMPLES = pathlib.Path(__file__).parent.parent / "tests/advice/real_settings.json"
SEED = 17
DEFAULT_WISHES = 1000


def timed(arguments):
    begin = time.perf_counter()
    done = subprocess.run(arguments, capture_output=True, text=True, check=False)
    return done, time.perf_counter() - begin


def ask_icepll(clock, wanted):
    """(MHz exactly, parameters) or None, and the seconds that it took."""
    done, seconds = timed(["icepll", "-i", clock, "-o", wanted])
    if done.returncode != 0:
        return None, seconds
    value = {name: int(found) for name, found in
             re.findall(r"(DIVR|DIVF|DIVQ|FILTER_RANGE): +([0-9]+)", done.stdout)}
    made = Fraction(clock) * (value["DIVF"] + 1) / ((value["DIVR"] + 1) * 2 ** value["DIVQ"])
    return (made, value), seconds


def ask_ours(program, clock, wanted):
    """(MHz exactly, met) or None, and the seconds that it took."""
    words = [program, "synth", "--device", "ice40", "--in", clock, "--out", wanted]
    done, seconds = timed([*words, "--format", "json"])
    answer = json.loads(done.stdout)
    if answer["pll"] is None or any(not limit["kept"] for limit in answer["limits"]):
        return None, seconds
    return (Fraction(answer["outputs"][0]["frequency_hz"]) / 1000000, answer["met"]), seconds


def is_legal(program, clock, parameters, directory):
    written = ", ".join(f".{name}({value})" for name, value in parameters.items())
    path = pathlib.Path(directory) / "peer.v"
    path.write_text(f"module top; SB_PLL40_CORE #({written}) p (); endmodule\n", encoding="utf-8")
    done, _ = timed([program, "verify", path, "--input", clock, "--format", "json"])
    return json.loads(done.stdout)["instances"][0]["legal"] == "legal"


def time_in_process(loop, wishes):
    """Median milliseconds of an answer, as the loop prints them."""
    lines = "".join(f"{clock} {wanted}\n" for clock, wanted in wishes)
    done = subprocess.run([loop, "ice40"], input=lines, capture_output=True, text=True, check=True)
    return done.stdout.strip()


def list_wishes(count):
    wishes = []
    for example in json.loads(EXAMPLES.read_text(encoding="utf-8")):
        if example["family"] == "iCE40" and len(example["requested_mhz"] or []) == 1:
            wishes.append((example["input_mhz"], example["requested_mhz"][0]))
    generator = random.Random(SEED)
    real = len(wishes)
    while len(wishes) < real + count:
        clock = generator.choice(["12", "16", "25", "48", "50", "100",
                                  str(generator.randint(10, 133))])
        wishes.append((clock, f"{generator.randint(16000, 275000) / 1000:.3f}"))
    return wishes


class Tally:
    def __init__(self):
        self.answered = self.legal = self.exact = 0
        self.errors = []
        self.seconds = []

    def add(self, made, wanted, legal, seconds):
        self.seconds.append(seconds)
        if made is None:
            return
        error = abs(made / Fraction(wanted) - 1)
        self.answered += 1
        self.legal += legal
        self.exact += error == 0
        self.errors.append(float(error) * 1e6)

    def row(self, name, count, in_process):
        return (f"| {name} | {self.answered} of {count} | {self.legal} | {self.exact} | "
                f"{statistics.mean(self.errors):.1f} | {max(self.errors):.1f} | "
                f"{in_process} | {statistics.median(self.seconds) * 1e3:.2f} |")


def main():
    program, loop = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
    count = int(sys.argv[3]) if len(sys.argv) > 3 else DEFAULT_WISHES
    wishes = list_wishes(count)
    theirs, ours, nearer, status = Tally(), Tally(), 0, 0
    with tempfile.TemporaryDirectory() as directory:
        for clock, wanted in wishes:
            peer, peer_seconds = ask_icepll(clock, wanted)
            mine, my_seconds = ask_ours(program, clock, wanted)
            peer_legal = peer is not None and is_legal(program, clock, peer[1], directory)
            theirs.add(peer and peer[0], wanted, peer_legal, peer_seconds)
            ours.add(mine and mine[0], wanted, True, my_seconds)
            errors = [None if each is None else abs(each[0] / Fraction(wanted) - 1)
                      for each in (peer, mine)]
            if peer_legal and (mine is None or errors[0] < errors[1]):
                print(f"{clock} to {wanted}: icepll {peer}, ours {mine}", file=sys.stderr)
                status = 1
            nearer += peer is not None and mine is not None and errors[1] < errors[0]
    print("| | answered | legal | exact | mean error, ppm | worst, ppm | in process, ms (median) "
          "| a process, ms (median) |")
    print("|---|---|---|---|---|---|---|---|")
    print(theirs.row("icepll", len(wishes), "has no such form"))
    print(ours.row("pllcalc", len(wishes), time_in_process(loop, wishes)))
    print(f"\n{len(wishes)} wishes; pllcalc is nearer in {nearer}, icepll in "
          f"{'none' if status == 0 else 'some'} where it is legal.")
    return status


if __name__ == "__main__":
    sys.exit(main())
