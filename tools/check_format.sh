#!/usr/bin/env bash
# Fails, naming the places, when a source is not in the form of .clang-format.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

if ! command -v clang-format >/dev/null; then
    echo "check_format.sh: clang-format is not installed" >&2
    exit 1
fi
mapfile -t sources < <(tools/list_sources.sh cpp h)
if [[ ${#sources[@]} -eq 0 ]]; then
    echo "check_format.sh: no sources found" >&2
    exit 1
fi
if ! findings=$(clang-format --dry-run -Werror "${sources[@]}" 2>&1); then
    echo "These lines are not in the form of .clang-format; ./dev format rewrites them:" >&2
    sed -nE 's/^([^ :]+:[0-9]+):[0-9]+: error: .*/\1/p' <<<"$findings" | uniq >&2
    exit 1
fi
echo "${#sources[@]} files are well formed"
