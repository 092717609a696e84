#!/usr/bin/env python3
"""make_tables.py [--check] DATABASE: writes the bandwidth settings tables of a device database.

For each multiplication M that the loop can have, a row is made for each loop bandwidth wanted: of
all components that the family file offers, those that come within a fifth of that bandwidth, of
these the ones with the largest phase margin, of which no more than 60 degrees count, and then
those with the largest capacitor, which filters best. What they do is computed for three corners of
the process.

The loop (F. M. Gardner, "Charge-Pump Phase-Lock Loops", IEEE Trans. Comm. COM-28, 1980): a charge
pump of current I drives a resistor R in series with a fixed capacitor C, and a small capacitor H
across both. With the VCO gain K in Hz/V, the open loop is

    G(s) = I K / M x (1 + s R C) / (s^2 (C + H) (1 + s R C H / (C + H)))

Its bandwidth is where |G| = 1, its phase margin is 180 degrees plus the phase of G there, and its
jitter peaking is the largest |G / (1 + G)| in dB.

With --check nothing is written: the status is 1 when a stored table is not what would be written.
"""
import argparse
import cmath
import itertools
import math
import pathlib
import sys

PICO, MICRO, MEGA = 1e-12, 1e-6, 1e6

# Part of one, by which components and VCO gain differ from their typical values.
CORNERS = {
    "typical": {"current": 1.00, "resistor": 1.00, "capacitor": 1.00, "gain": 1.00},
    "fast": {"current": 1.12, "resistor": 1.08, "capacitor": 0.94, "gain": 1.18},
    "slow": {"current": 0.88, "resistor": 0.92, "capacitor": 1.06, "gain": 0.82},
}

# Bandwidths wanted, in Hz; the first row of an M is the one that an automatic choice takes.
TABLES = {
    ("Sorrel", "ENHANCED_PLL"): ("V2", [9.0e5, 1.8e6, 3.5e5]),
    ("Chervil", "ENHANCED_PLL"): ("V2", [8.0e5, 1.6e6, 3.5e5]),
    ("Lovage", "FAST_PLL"): ("SIMPLE_V1", [1.3e6, 2.7e6, 5.5e5]),
    ("Lovage", "FAST_PLL_HIGH_SPEED"): ("V1", [2.0e6, 4.4e6, 9.0e5]),
    ("Tarragon", "VESTRA_PLL"): ("V1", [7.0e5, 1.3e6, 2.7e5]),
}

NEAREST = 0.20  # part by which a bandwidth may miss the one wanted
LEAST_PHASE_MARGIN = 45.0  # degrees, at every corner
ENOUGH_PHASE_MARGIN = 60.0


def read_statements(folder, name):
    """The words of each statement of a family file and its includes."""
    for line in (folder / name).read_text().splitlines():
        words = line.split("#")[0].split()
        if words and words[0] == "include":
            yield from read_statements(folder, words[1])
        elif words:
            yield words


class PllType:
    """What a family file says of one PLL type."""

    def __init__(self):
        self.limits = {}
        self.gains = {}  # MHz/V, by part

    def numbers(self, keyword):
        """The values of a list, or those of its bits."""
        words = self.limits.get(keyword) or self.limits[keyword + "_bit"]
        return sorted(int(word) for word in words)

    def largest_m(self):
        if "m_counter_high_low_max" in self.limits:
            return 2 * self.numbers("m_counter_high_low_max")[0]
        return self.numbers("m_counter_max")[0]

    def gain(self):
        return sum(self.gains.values()) / len(self.gains) * MEGA


def read_family(folder, name):
    """The PLL types of a family, by name."""
    types, current, part = {}, None, None
    for keyword, *operands in read_statements(folder, name):
        if keyword == "pll":
            current = types.setdefault(operands[0], PllType())
        elif keyword == "part":
            part = operands[0]
        elif keyword in ("vco_gain", "vco_gain_post_scale"):
            current.gains[part] = float(operands[-1])
        elif current is not None:
            current.limits[keyword] = operands
    return types


class Loop:
    """A loop with all its values, in SI units."""

    def __init__(self, m, gain, current, resistor, fixed, high):
        self.scale = current * gain / m / (fixed + high)
        self.zero = resistor * fixed
        self.pole = resistor * fixed * high / (fixed + high)

    def open_gain(self, frequency):
        s = 2j * math.pi * frequency
        return self.scale * (1 + s * self.zero) / (s * s * (1 + s * self.pole))

    def bandwidth(self):
        """|G| falls with the frequency, so halving finds where it is 1."""
        low, high = 1.0, 1e10
        while high / low > 1 + 1e-12:
            middle = math.sqrt(low * high)
            if abs(self.open_gain(middle)) > 1.0:
                low = middle
            else:
                high = middle
        return math.sqrt(low * high)

    def phase_margin(self, bandwidth):
        return math.degrees(math.pi + cmath.phase(self.open_gain(bandwidth)) % (2 * math.pi)) % 360

    def jitter_peaking(self, bandwidth):
        """The peak is single and below the bandwidth or not far above; its logarithm is narrowed."""
        low, high = math.log(bandwidth * 1e-3), math.log(bandwidth * 10)
        for _ in range(100):
            third = (high - low) / 3
            left, right = low + third, high - third
            if self.closed_gain(left) < self.closed_gain(right):
                low = left
            else:
                high = right
        return 20 * math.log10(self.closed_gain(low))

    def closed_gain(self, log_frequency):
        gain = self.open_gain(math.exp(log_frequency))
        return abs(gain / (1 + gain))


class Table:
    """The rows of one PLL type."""

    def __init__(self, pll, form, targets):
        self.form = form
        self.targets = targets
        self.gain = pll.gain()
        self.fixed = pll.numbers("loop_filter_fixed_capacitor")[0]
        self.largest_m = pll.largest_m()
        self.post_scale = pll.numbers("vco_post_scale_counter_max")[0]
        capacitors = (
            pll.numbers("loop_filter_capacitor")
            if form == "V2"
            else pll.numbers("loop_filter_capacitor_default")
        )
        self.components = list(
            itertools.product(
                pll.numbers("charge_pump_current"), pll.numbers("loop_filter_resistor"), capacitors
            )
        )

    def loop(self, m, components, corner):
        current, resistor, capacitor = components
        factor = CORNERS[corner]
        return Loop(
            m,
            self.gain * factor["gain"],
            current * MICRO * factor["current"],
            resistor * factor["resistor"],
            self.fixed * PICO * factor["capacitor"],
            capacitor * PICO * factor["capacitor"],
        )

    def loops(self, m, components):
        """The loop at each corner, with its bandwidth."""
        for corner in CORNERS:
            loop = self.loop(m, components, corner)
            yield loop, loop.bandwidth()

    def is_near(self, m, components, target):
        """Whether the bandwidth can be the one wanted, by I R K / (2 pi M), which is close to it."""
        current, resistor, _ = components
        estimate = current * MICRO * resistor * self.gain / (2 * math.pi * m)
        return 0.6 < estimate / target < 1.5

    def best(self, m, target):
        """The components that suit best, the first of equals; None when none fit."""
        best, best_rank = None, (LEAST_PHASE_MARGIN,)
        for components in self.components:
            if not self.is_near(m, components, target):
                continue
            bandwidth = self.loop(m, components, "typical").bandwidth()
            if abs(bandwidth / target - 1) > NEAREST:
                continue
            margin = min(loop.phase_margin(found) for loop, found in self.loops(m, components))
            rank = (min(margin, ENOUGH_PHASE_MARGIN), components[2], margin)
            if rank > best_rank:
                best, best_rank = components, rank
        return best

    def multiplications(self):
        """Counts of M, and behind a post-scale their multiples."""
        scales = range(1, self.post_scale + 1)
        counts = range(1, self.largest_m + 1)
        return sorted({count * scale for count in counts for scale in scales})

    def rows(self):
        for m in self.multiplications():
            found = [self.best(m, target) for target in self.targets]
            for components in dict.fromkeys(found):
                if components is not None:
                    yield m, components

    def write_row(self, m, components):
        current, resistor, capacitor = components
        text = f"{capacitor:>2} " if self.form == "V2" else ""
        text += f"{m:>3} {current:>3} {resistor:>5}"
        if self.form != "SIMPLE_V1":
            for loop, bandwidth in self.loops(m, components):
                text += f"  {loop.phase_margin(bandwidth):5.1f} {bandwidth / MEGA:7.4f}"
                text += f" {loop.jitter_peaking(bandwidth):5.2f}"
        return text + "\n"

    def write(self, family, type_name):
        """The whole file. The reader skips what follows the format word, and the line of titles."""
        titles = "C/pF " if self.form == "V2" else ""
        titles += "M I/uA R/ohm"
        if self.form != "SIMPLE_V1":
            titles += " (margin/deg bandwidth/MHz peaking/dB) typical, fast, slow"
        head = f"{self.form} {family} {type_name}: loop-filter settings, made by make_tables.py"
        return f"{head}\n{titles}\n" + "".join(self.write_row(*row) for row in self.rows())


def make_tables(database):
    """The path and text of each table of a database."""
    for family, folder_name, file_name in read_statements(database, "ddb_pll_path.txt"):
        folder = database / folder_name
        for type_name, pll in read_family(folder, file_name).items():
            table_file = pll.limits["bandwidth_settings_table_file"][0]
            if table_file != "unused":
                table = Table(pll, *TABLES[family, type_name])
                yield folder / table_file, table.write(family, type_name)


def main():
    parser = argparse.ArgumentParser(description="Writes the tables of a device database.")
    parser.add_argument("--check", action="store_true", help="compare instead of writing")
    parser.add_argument("database", type=pathlib.Path)
    arguments = parser.parse_args()
    status = 0
    for path, text in make_tables(arguments.database):
        if not arguments.check:
            path.write_text(text)
        elif not path.exists() or path.read_text() != text:
            print(f"{path}: not what make_tables.py writes", file=sys.stderr)
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
