#!/usr/bin/env bash
# dev_test.sh DEV: what the script says of itself, and when it cannot install what it needs.
set -euo pipefail

dev=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
chmod 755 "$work"

fail() {
    echo "dev_test.sh: $*" >&2
    exit 1
}

# expect STATUS TEXT COMMAND...: ends with the status and says the text.
expect() {
    local wanted=$1 text=$2 said status=0
    shift 2
    said=$("$@" 2>&1) || status=$?
    [[ $status -eq $wanted ]] || fail "$*: status $status instead of $wanted: $said"
    [[ $said == *"$text"* ]] || fail "$*: '$text' is missing in: $said"
}

# A Debian on which nothing is installed and nothing can be: apt-get fails, and there is no sudo.
mkdir "$work/tree" "$work/bin"
cp "$dev" "$work/tree/dev"
printf '#!/bin/sh\nexit 1\n' >"$work/bin/dpkg-query"
printf '#!/bin/sh\nexit 1\n' >"$work/bin/apt-get"
chmod 755 "$work/bin/"* "$work/tree" "$work/tree/dev"
for tool in bash env dirname cat; do
    ln -s "$(command -v "$tool")" "$work/bin/$tool"
done
bare=(env -i "PATH=$work/bin" "$work/tree/dev")

for command in demo test lint format bench flow peers coverage fuzz soak help; do
    expect 0 "  $command" "${bare[@]}" help
done
expect 0 "usage: ./dev COMMAND" "${bare[@]}"
expect 2 "usage: ./dev COMMAND" "${bare[@]}" tset

if [[ $EUID -eq 0 ]]; then
    expect 1 "dev: apt-get could not install: cmake " "${bare[@]}" demo
    bare=(setpriv --reuid 65534 --regid 65534 --clear-groups "${bare[@]}")
fi
for command in demo test lint format bench coverage soak; do
    expect 1 "You are not root and there is no sudo. As root, run:" "${bare[@]}" "$command"
    expect 1 "    apt-get install " "${bare[@]}" "$command"
done

# With sudo, apt-get runs through it.
printf '#!/bin/sh\necho "sudo called: $*"\nexit 1\n' >"$work/bin/sudo"
chmod 755 "$work/bin/sudo"
expect 1 "sudo called: env DEBIAN_FRONTEND=noninteractive apt-get -q update" "${bare[@]}" demo
expect 1 "dev: apt-get could not install: cmake " "${bare[@]}" demo
echo "dev_test.sh: ok"
