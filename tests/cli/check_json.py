"""Holds JSON against the schemas of docs/schema/.

usage: check_json.py SCHEMA_FOLDER < lines

Each line of standard input is the name of a schema, a tab, and a JSON text. Prints what does not fit, and exits with 1
where something does not, or with 3 where Python's jsonschema is missing.
"""

import json
import pathlib
import sys

try:
    import jsonschema
except ImportError:
    print("Python's jsonschema is missing; install it with: apt-get install python3-jsonschema")
    sys.exit(3)


def validators(folder):
    """A validator for each schema. References between them lead to files of the folder."""
    schemas = {path.name: json.loads(path.read_text()) for path in folder.glob("*.json")}
    for schema in schemas.values():
        jsonschema.Draft202012Validator.check_schema(schema)
    return {
        name.removesuffix(".json"): jsonschema.Draft202012Validator(
            schema, resolver=jsonschema.RefResolver("", schema, store=schemas)
        )
        for name, schema in schemas.items()
    }


def no_constant(name):
    raise ValueError(name + " is no JSON")


def no_double_keys(pairs):
    keys = [key for key, _ in pairs]
    if len(keys) != len(set(keys)):
        raise ValueError("a key comes twice")
    return dict(pairs)


def main():
    known = validators(pathlib.Path(sys.argv[1]))
    failed = False
    for line in filter(None, sys.stdin.buffer.read().decode("utf-8").split("\n")):
        name, _, text = line.partition("\t")
        try:
            value = json.loads(text, parse_constant=no_constant, object_pairs_hook=no_double_keys)
            faults = [error.message for error in known[name].iter_errors(value)]
        except (ValueError, KeyError) as error:
            faults = [repr(error)]
        for fault in faults:
            failed = True
            print(f"{name}: {fault}\n  in {text}")
    return 1 if failed else 0


sys.exit(main())
