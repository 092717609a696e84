#!/usr/bin/env python3
"""check_sheets.py DEVICES: every device sheet below the folder fits its schema, and a sheet with
any key renamed does not."""

import copy
import json
import pathlib
import sys
import tomllib

import jsonschema


def tables_of(value):
    """All tables within a value, itself included."""
    if isinstance(value, dict):
        yield value
        for inner in value.values():
            yield from tables_of(inner)
    elif isinstance(value, list):
        for inner in value:
            yield from tables_of(inner)


def accepts_a_misspelt_key(validator, sheet):
    """Whether the schema misses a renamed key of any table but those with free keys."""
    count = sum(1 for _ in tables_of(sheet))
    for index in range(count):
        changed = copy.deepcopy(sheet)
        table = list(tables_of(changed))[index]
        if any(table is changed.get(free) for free in ("paths", "sources", "shift_register")):
            continue
        key = next(iter(table))
        table["misspelt_" + key] = table.pop(key)
        if validator.is_valid(changed):
            return True
    return False


def main():
    folder = pathlib.Path(sys.argv[1])
    schema = json.loads((folder / "sheet.schema.json").read_text(encoding="utf-8"))
    validator = jsonschema.Draft202012Validator(schema)
    validator.check_schema(schema)
    sheets = sorted(folder.glob("*/*.toml"))
    status = 0 if sheets else 1
    for path in sheets:
        sheet = tomllib.loads(path.read_text(encoding="utf-8"))
        for error in validator.iter_errors(sheet):
            print(f"{path}: {error.json_path}: {error.message}", file=sys.stderr)
            status = 1
    if status == 0 and accepts_a_misspelt_key(validator, tomllib.loads(
            (folder / "ice40/ice40.toml").read_text(encoding="utf-8"))):
        print("the schema takes a misspelt key", file=sys.stderr)
        status = 1
    print(f"{len(sheets)} sheets")
    return status


if __name__ == "__main__":
    sys.exit(main())
