#!/usr/bin/env python3
"""export_test.py PLLCALC: what export writes for each family is read by free tools for hardware
languages, and verify finds in it the very clocks that synth promised."""

import json
import pathlib
import subprocess
import sys
import tempfile

REQUESTS = [
    ("xc7-plle2:-2", "100", ["25", "10@270"]),
    ("xc7-mmcme2:-1", "100", ["88.75", "50"]),
    ("xcu-mmcme3:-1", "100", ["125@45,duty=25"]),
    ("xcup-mmcme4:-1", "100", ["125"]),
    ("xc6-pll:-1", "50", ["32"]),
    ("ecp5", "25", ["pix=125", "250@90"]),
    ("ecp5", "25", ["125", "250", "25", "62.5"]),
    ("nexus", "125", ["75"]),
    ("nexus", "18", ["24", "36", "36", "72", "78", "39"]),
    ("ice40", "12", ["48"]),
    ("ice40", "12", ["48", "48@90"]),
    ("gw1nr-9c", "27", ["126", "126@45,duty=25", "42"]),
    ("gw2a-18", "27", ["16"]),
]


def run(arguments, directory, statuses=(0,)):
    done = subprocess.run(arguments, cwd=directory, capture_output=True, text=True, check=False)
    if done.returncode not in statuses:
        sys.exit(f"{' '.join(map(str, arguments))}: exit status {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def export(program, directory, language, suffix, request, extra):
    device, clock, outputs = request
    words = [program, "export", "--as", language, "--in", clock, "--module", "clocks", *extra]
    words += ["--device", device] if device else []
    for output in outputs:
        words += ["--out", output]
    path = directory / f"clocks{suffix}"
    path.write_text(run(words, directory), encoding="utf-8")
    return path


def compile_all(program, directory, request):
    verilog = export(program, directory, "verilog", ".v", request, ["--body"])
    run(["iverilog", "-g2005", "-Wall", "-o", "clocks.vvp", verilog], directory)
    run(["verilator", "--lint-only", "-Wall", "--top-module", "clocks", verilog], directory)
    system = export(program, directory, "systemverilog", ".sv", request, ["--body"])
    run(["verilator", "--lint-only", "-Wall", "--top-module", "clocks", system], directory)
    vhdl = export(program, directory, "vhdl", ".vhd", request, [])
    run(["ghdl", "-a", "--std=08", vhdl], directory)
    return verilog


def compare(program, directory, request, verilog):
    device, clock, outputs = request
    words = [program, "synth", "--format", "json", "--device", device, "--in", clock]
    for output in outputs:
        words += ["--out", output]
    promised = json.loads(run(words, directory))
    words = [program, "verify", verilog, "--format", "json", "--device", device, "--input", clock]
    found = json.loads(run(words, directory))["instances"]
    if len(found) != 1 or found[0]["legal"] != "legal" or found[0]["notes"]:
        sys.exit(f"{device}: {found}")
    by_name = {each["name"].split(" ")[0]: each for each in found[0]["outputs"]}
    for output in promised["outputs"]:
        said = by_name[output["made_by"]]
        for key in ("frequency_hz", "phase_deg", "duty_percent"):
            if said[key] is not None and said[key] != output[key]:
                sys.exit(f"{device} {output['made_by']}: {key} {said[key]} for {output[key]}")


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    for request in REQUESTS:
        with tempfile.TemporaryDirectory() as name:
            directory = pathlib.Path(name)
            compare(program, directory, request, compile_all(program, directory, request))
    with tempfile.TemporaryDirectory() as name:
        directory = pathlib.Path(name)
        compile_all(program, directory, ("", "27", ["pix=148.5", "74.25"]))
        for language, wanted in [("xdc", "-period 40.000 [get_ports clk_in]"),
                                 ("sdc", "create_clock -name clk_in"),
                                 ("lpf", 'FREQUENCY PORT "clk_in" 25 MHZ;'),
                                 ("pcf", "set_frequency clk_in 25"), ("cst", 'IO_LOC "clk_in"')]:
            text = export(program, directory, language, ".txt", ("ecp5", "25", ["125"]), []).read_text()
            if wanted not in text:
                sys.exit(f"{language}: {text}")
        own = directory / "own.txt"
        own.write_text("{{module}} of {{primitive}} at {{input_mhz}}\n", encoding="utf-8")
        words = ["--template", own]
        text = export(program, directory, "verilog", ".txt", ("ecp5", "25", ["125"]), words).read_text()
        if text != "clocks of EHXPLLL at 25\n":
            sys.exit(text)
        own.write_text("{{modul}}\n", encoding="utf-8")
        run([program, "export", "--device", "ecp5", "--in", "25", "--out", "125", "--template", own],
            directory, (4,))
        run([program, "export", "--as", "ada", "--in", "25", "--out", "125"], directory, (2,))
    print("ok")


if __name__ == "__main__":
    main()
