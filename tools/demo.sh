#!/usr/bin/env bash
# demo.sh PLLCALC: a wish to a real chip and the text of its primitive; three requests of a board
# designer and one that is impossible, with the answers; then a device of the sample database,
# requests to it, and the row of its table that they take.
set -euo pipefail

if [[ $# -ne 1 || ! -x $1 ]]; then
    echo "usage: demo.sh PLLCALC" >&2
    exit 2
fi
pllcalc=$(realpath "$1")
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# show STATUS TITLE WORD...: runs a request, which must end with the status.
show() {
    local expected=$1 title=$2 status=0
    shift 2
    printf '\n=== %s\n\n$ pllcalc %s\n\n' "$title" "$*"
    "$pllcalc" "$@" || status=$?
    if [[ $status -ne $expected ]]; then
        echo "demo.sh: exit status $status instead of $expected" >&2
        exit 1
    fi
}

show 0 "Two clocks of an iCE40 chip from its 12 MHz oscillator" \
    synth --device ice40 --in 12MHz --out usb=48MHz --out cpu=24MHz

show 0 "The same as an instance of the chip's primitive" \
    export --as verilog --device ice40 --in 12MHz --out usb=48MHz --out cpu=24MHz

show 0 "A video clock pair from a 27 MHz oscillator, the second in quadrature, and its half" \
    synth --in 27MHz --out 148.5MHz --out 148.5MHz,phase=90 --out 74.25MHz

show 0 "An audio clock from the video crystal: not exact, but within 50 ppm" \
    synth --in 27MHz --out 24.576MHz --tolerance 50ppm

show 0 "A clock whose spectrum is spread by half a percent" \
    synth --in 100MHz --out 50MHz --spread 0.5% --spread-rate 30kHz

show 1 "Video and audio clocks from one PLL: impossible, with what is missed" \
    synth --in 27MHz --out 148.5MHz --out 24.576MHz

database=(--database data/sample)
device=("${database[@]}" --family Chervil --part CH30-6)

show 0 "A family of invented devices, from the sample database" \
    devices "${database[@]}" --family Chervil

show 0 "One of these devices: all that the database knows of its PLL" device "${device[@]}"

show 0 "The video clocks from this device, whose loop filter is set by a table" \
    synth "${device[@]}" --in 27MHz --out 148.5MHz --out 74.25MHz --bandwidth high

show 0 "Which row of the table that took, and why" \
    table "${device[@]}" --in 27MHz --out 148.5MHz --out 74.25MHz --bandwidth high

show 0 "The same clocks for a board that takes a device of another family too" \
    synth "${device[@]}" --migrate Sorrel:SR20-7 --in 27MHz --out 148.5MHz --out 74.25MHz
