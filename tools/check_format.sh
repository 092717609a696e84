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
clang-format --dry-run -Werror "${sources[@]}"
echo "${#sources[@]} files are well formed"
