"""Checks every example scene against the scene format's schema: validate_examples.py SCHEMA EXAMPLES"""

import json
import pathlib
import sys

import jsonschema

schema = json.loads(pathlib.Path(sys.argv[1]).read_text())
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)

scenes = sorted(pathlib.Path(sys.argv[2]).glob("*.json"))
problems = [
    f"{scene.name}: {error.json_path}: {error.message}"
    for scene in scenes
    for error in validator.iter_errors(json.loads(scene.read_text()))
]
# Keys that the program would ignore are misspelt ones, in our own examples.
known = set(schema["properties"]), set(schema["$defs"]["ping"]["properties"])
for scene in scenes:
    document = json.loads(scene.read_text())
    problems += [f"{scene.name}: unknown key {key}" for key in set(document) - known[0]]
    for ping in document.get("notifications", []):
        problems += [f"{scene.name}: unknown key {key}" for key in set(ping) - known[1]]

wrong = [{"title": 5}, {"maxVisible": 5.5}, {"playing": 1}, {"notifications": [3]}, {"notifications": [{"color": 3}]}, []]
problems += [f"the schema accepts {document}" for document in wrong if validator.is_valid(document)]

print("\n".join(problems) or f"{len(scenes)} scenes are valid")
sys.exit(bool(problems) or not scenes)
