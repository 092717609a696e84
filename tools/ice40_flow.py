#!/usr/bin/env python3
"""ice40_flow.py PLLCALC: from wishes to bitstreams for iCE40 with yosys, nextpnr-ice40 and icepack.
The clocks that nextpnr derives for the outputs of the exported primitive equal ours to the tenth of
a MHz that it prints."""

import json
import pathlib
import re
import subprocess
import sys
import tempfile

# Input and outputs in MHz.
WISHES = [
    ("12", ["48"]),
    ("12", ["25.125"]),
    ("12", ["48", "24"]),
    ("16", ["100", "50"]),
    ("12", ["48", "48@90"]),
]


def run(arguments, directory):
    done = subprocess.run(arguments, cwd=directory, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, arguments))}: exit status {done.returncode}\n"
                 f"{done.stdout}{done.stderr}")
    return done.stdout + done.stderr


def write_top(outputs):
    """A counter in each clock, its last bit on a pin."""
    text = "module top(input clk_in, output [%d:0] led);\n" % (outputs - 1)
    clocks = [f"clk_out{i + 1}" for i in range(outputs)]
    text += "".join(f"wire {clock};\n" for clock in clocks)
    connections = ", ".join(f".{clock}({clock})" for clock in clocks)
    text += f"clocks pll(.clk_in(clk_in), .reset(1'b0), {connections});\n"
    for i, clock in enumerate(clocks):
        text += f"reg [7:0] count{i} = 0;\nalways @(posedge {clock}) count{i} <= count{i} + 1'b1;\n"
        text += f"assign led[{i}] = count{i}[7];\n"
    return text + "endmodule\n"


def derived_clocks(log):
    """The MHz that nextpnr derives for each of our clocks."""
    found = re.findall(r"Derived frequency constraint of ([0-9.]+) MHz for net (\S+)", log)
    clocks = {}
    for frequency, net in found:
        match = re.search(r"clk_out([0-9]+)", net)
        if match:
            clocks[int(match.group(1)) - 1] = float(frequency)
    return clocks


def flow(program, directory, wish):
    clock, outputs = wish
    words = ["--device", "ice40", "--in", clock]
    for output in outputs:
        words += ["--out", output]
    promised = json.loads(run([program, "synth", "--format", "json", *words], directory))
    module = run([program, "export", "--module", "clocks", *words], directory)
    (directory / "clocks.v").write_text(module, encoding="utf-8")
    (directory / "top.v").write_text(write_top(len(outputs)), encoding="utf-8")
    constraint = run([program, "export", "--as", "pcf", *words], directory)
    (directory / "top.pcf").write_text(constraint, encoding="utf-8")
    run(["yosys", "-q", "-p", "read_verilog top.v clocks.v; synth_ice40 -top top -json top.json"],
        directory)
    log = run(["nextpnr-ice40", "--hx1k", "--package", "tq144", "--json", "top.json", "--pcf",
               "top.pcf", "--pcf-allow-unconstrained", "--asc", "top.asc"], directory)
    run(["icepack", "top.asc", "top.bin"], directory)
    derived = derived_clocks(log)
    for index, output in enumerate(promised["outputs"]):
        ours = eval_fraction(output["frequency_hz"]) / 1e6
        if index not in derived or abs(derived[index] - ours) > 0.051:
            sys.exit(f"{wish}: nextpnr derives {derived}, output {index + 1} is {ours} MHz\n{log}")
    size = (directory / "top.bin").stat().st_size
    print(f"{clock} MHz to {', '.join(outputs)}: {derived}, {size} bytes")


def eval_fraction(text):
    numerator, _, denominator = text.partition("/")
    return int(numerator) / int(denominator or 1)


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    for wish in WISHES:
        with tempfile.TemporaryDirectory() as name:
            flow(program, pathlib.Path(name), wish)
    print("ok")


if __name__ == "__main__":
    main()
