#!/usr/bin/env python3
"""Holds docs/schema to what the program prints, and to what it must not print: check_schemas.py TARNOVEL SOURCE"""
import json
import pathlib
import subprocess
import sys
import tempfile
import warnings

import jsonschema

# What takes its place is not there in every version that is.
warnings.simplefilter("ignore", DeprecationWarning)
program, source = (str(pathlib.Path(argument).resolve()) for argument in sys.argv[1:3])
source = pathlib.Path(source)
schemas = {path.stem: json.loads(path.read_text()) for path in (source / "docs" / "schema").glob("*.json")}
store = {schema["$id"]: schema for schema in schemas.values()}
faults = []


def validator(name):
    schema = schemas[name]
    jsonschema.Draft202012Validator.check_schema(schema)
    resolver = jsonschema.RefResolver(schema["$id"], schema, store)
    return jsonschema.Draft202012Validator(schema, resolver=resolver)


def lines(*command, folder):
    run = subprocess.run([program, *command, "--json"], cwd=folder, capture_output=True, text=True)
    return [json.loads(line) for line in run.stdout.splitlines()]


def hold(name, values, wanted):
    if len(values) != wanted:
        faults.append(f"{name}: {len(values)} lines instead of {wanted}")
    for value in values:
        faults.extend(f"{name}: {error.json_path}: {error.message[:200]}" for error in validator(name).iter_errors(value))


def refuse(name, value):
    if validator(name).is_valid(value):
        faults.append(f"{name}: takes {json.dumps(value)[:200]}")


def main():
    sample = str(sorted((source / "samples").glob("*.jpg"))[0])
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "broken.jpg").write_text("<html>")
        export = ("export", "-o", "out", "--size", "720", sample)
        for style in ("plain", "film", "tone"):
            hold("result", lines(*export, "-t", style, folder=folder), 1)
        rich = lines(*export, "--size", "1080", "--set", "film.topLabel=x", "--set", "layers.title.rotation=3", "--set",
                     "handwritingX=0.2", "--text", "title=Oia", "gone.jpg", folder=folder)
        hold("result", rich, 3)
        hold("result", lines(*export, "--skip-existing", folder=folder), 1)
        hold("result", lines(*export, "--dry-run", "broken.jpg", folder=folder), 2)
        hold("style", [rich[0]["style"]], 1)
        hold("inspect", lines("inspect", sample, "broken.jpg", "gone.jpg", folder=folder), 3)
        refuse("result", {key: rich[0][key] for key in rich[0] if key != "bytes"})
        refuse("result", {**rich[0], "error": "x"})
        refuse("result", {**rich[2], "code": "no-such-code"})
        refuse("style", {**rich[0]["style"], "scales": 1})
        # What is listed as a field can be set to its default, and is in the schema.
        properties = schemas["style"]["properties"]
        for field in lines("fields", folder=folder):
            first, *rest = field["path"].split(".")
            known = properties.get(first, {})
            if first == "layers":
                known = known["items"]["properties"].get(rest[1], {})
            elif first == "film" and rest:
                known = known["properties"].get(rest[0], {})
            if not known:
                faults.append(f"{field['path']}: a field that the schema does not have")
            if field["default"] is not None and "ID" not in field["path"]:
                value = f"{field['path']}={json.dumps(field['default'])}"
                if not lines("export", "-o", "out", "--dry-run", "--set", value, sample, folder=folder):
                    faults.append(f"{value}: is not taken")
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


main()
