#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the schema of desk files: that it takes the desks that come with the project and refuses
what the reader refuses, as far as a schema can see it, and that it knows the same widgets."""

import json
import pathlib
import sys

try:
    import jsonschema
except ImportError:
    sys.exit("check_desk_files.py: Python's jsonschema is missing; Debian has it as python3-jsonschema")

ROOT = pathlib.Path(__file__).resolve().parents[2]
DESKS = ROOT / "data/desk"
SCHEMA = DESKS / "desk.schema.json"
BAD_DESKS = ROOT / "tests/desk/bad_desks.json"
MODELS = ROOT / "platform/standalone/widget/wing_models.json"


def check_examples(validator):
    """What is wrong with the desks that come with the project."""
    names = sorted(path for path in DESKS.glob("*.json") if path != SCHEMA)
    if not names:
        yield f"{DESKS}: there are no desks"
    for path in names:
        desk = json.loads(path.read_text())
        if desk.get("$schema") != SCHEMA.name:
            yield f"{path.name}: does not name its schema"
        for error in validator.iter_errors(desk):
            yield f"{path.name}: {error.json_path}: {error.message}"


def is_refused(validator, text):
    try:
        return not validator.is_valid(json.loads(text))
    except json.JSONDecodeError:
        return True


def check_bad_desks(validator):
    """Which bad desks are refused and should not be, or the other way round."""
    table = json.loads(BAD_DESKS.read_text())
    if not any(row["schema"] for row in table) or all(row["schema"] for row in table):
        yield f"{BAD_DESKS.name}: has not both kinds"
    for row in table:
        if is_refused(validator, "\n".join(row["text"])) != row["schema"]:
            yield f"{row['what']}: is {'not ' if row['schema'] else ''}refused by the schema"


def check_models(schema):
    """Whether the schema has the models that there are."""
    listed = schema["properties"]["widgets"]["items"]["properties"]["model"]["enum"]
    there_are = [row["name"] for row in json.loads(MODELS.read_text())]
    if listed != there_are:
        yield f"widget models: the schema has {listed}, there are {there_are}"


def main():
    schema = json.loads(SCHEMA.read_text())
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    problems = [*check_examples(validator), *check_bad_desks(validator), *check_models(schema)]
    print("\n".join(problems) or "desk files: the schema is in order")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
