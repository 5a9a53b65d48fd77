"""Names the tests of a file as unittest's command line takes them, without running any of it."""

import ast
import pathlib
import sys

tests = {}
for node in ast.parse(pathlib.Path(sys.argv[1]).read_text()).body:
    if isinstance(node, ast.ClassDef):
        inherited = (name for base in node.bases for name in tests.get(getattr(base, "id", ""), ()))
        own = (member.name for member in node.body if getattr(member, "name", "").startswith("test_"))
        tests[node.name] = dict.fromkeys([*inherited, *own])
print(";".join(f"{group}.{name}" for group, names in tests.items() for name in names))
