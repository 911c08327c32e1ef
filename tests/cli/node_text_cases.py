#!/usr/bin/env python3
"""export, apply, diff, check, history and restore as an operator runs them: outputs, errors and exit
statuses, and every export valid against the format's JSON Schema."""
import json
import os
import re
import shutil
import sqlite3
import subprocess
import sys

import jsonschema

editor, work, schema_path = sys.argv[1:4]
shutil.rmtree(work, ignore_errors=True)
os.makedirs(work)
root = os.path.join(work, "root")
env = {k: v for k, v in os.environ.items() if k not in ("DBN_DATABASE", "DISPLAY", "WAYLAND_DISPLAY")}
failures = []


def run(*args):
    done = subprocess.run([editor, *args], capture_output=True, text=True, env=env)
    return done.returncode, done.stdout, done.stderr


def expect(args, status, out=None, err=None):
    code, stdout, stderr = run(*args)
    problem = []
    if code != status:
        problem.append(f"exit status {code}, expected {status}")
    if out is not None and not re.search(out, stdout, re.S):
        problem.append(f"standard output does not match {out!r}: {stdout!r}")
    if err is not None and not re.search(err, stderr, re.S):
        problem.append(f"standard error does not match {err!r}: {stderr!r}")
    if err is None and stderr:
        problem.append(f"unexpected standard error: {stderr!r}")
    if problem:
        failures.append(f"{args}: {'; '.join(problem)}")
    return stdout


def write(name, document):
    path = os.path.join(work, name)
    with open(path, "w", encoding="utf-8") as file:
        file.write(document if isinstance(document, str) else json.dumps(document, indent=2))
    return path


run("init", "--data-root", root)
validator = jsonschema.Draft202012Validator(json.load(open(schema_path, encoding="utf-8")))

for partition in ("1", "2"):
    text = expect(["export", "--data-root", root, "1", partition], 0, out=r'^\{\n  "format": "dbn-nodes"')
    for error in validator.iter_errors(json.loads(text)):
        failures.append(f"export of partition {partition} breaks the schema: {error.message}")

exported = os.path.join(work, "nodes.json")
expect(["export", "--data-root", root, "1", "1", "--output", exported], 0, out="^$")
text = open(exported, encoding="utf-8").read()
if text != expect(["export", "--data-root", root, "1", "1"], 0):
    failures.append("export --output and standard output differ")
expect(["export", "--data-root", root, "1", "1", "2"], 0, out=r'"number": 2,.*"label": "Sales directory"')
expect(["export", "--data-root", root, "1", "1", "9"], 1,
       err=r"^dbn-node-editor: DBN 9 does not exist in configuration 1, partition 1\n$")
expect(["export", "--data-root", root, "1"], 2, err=r"^dbn-node-editor: export needs CONFIG PARTITION")

expect(["apply", "--data-root", root, exported], 0,
       out=r"^DBN 0: unchanged\nDBN 1: unchanged\nDBN 2: unchanged\n3 nodes: 0 created, 0 changed, 3 unchanged; nothing to write\n$")

document = json.loads(text)
document["nodes"][2]["label"] = "Sales desk"
changed = write("changed.json", document)
expect(["diff", "--data-root", root, changed], 0,
       out=r'DBN 2: changed: label\n  label: "Sales directory" -> "Sales desk"\n.*nothing written \(dry run\)\n$')
expect(["apply", "--dry-run", "--data-root", root, changed], 0, out=r"DBN 2: changed: label\n.*nothing written")
expect(["apply", "--data-root", root, changed], 0, out=r"DBN 2: changed: label\n.*1 changed, 2 unchanged; written\n$")
expect(["apply", "--data-root", root, changed], 0, out=r"nothing to write\n$")

document["nodes"][1]["stages"][0]["minDigits"] = 12
document["nodes"][1]["label"] = 'A "quoted" label'
bad = write("bad.json", document)
expect(["apply", "--data-root", root, bad], 1,
       err=r"bad.json: nodes\[1\]\.stages\[0\]\.minDigits: 12 is outside 1 to 9\n.*bad.json: nodes\[1\]\.label: Double quotes.*refused; nothing was written\n$")
malformed = write("malformed.json", '{\n  "format": "dbn-nodes",\n  oops\n}\n')
expect(["apply", "--data-root", root, malformed], 1, err=r"malformed.json: line 3, column 3: malformed JSON")
expect(["apply", "--data-root", root, os.path.join(work, "none.json")], 1, err=r"none.json: cannot be read\n$")
expect(["apply", "--data-root", root], 2, err=r"^dbn-node-editor: apply needs FILE")

# Hostile files: each refused with what is wrong, nothing read that need not be.
deep = write("deep.json", '{"format": "dbn-nodes", "nodes": [{"label": ' + "[" * 50000 + "]" * 50000 + "}]}")
big = os.path.join(work, "big.json")
with open(big, "wb") as file:
    file.truncate(65 * 1024 * 1024)
with_twice = text.replace('"retryLimit": 3,', '"retryLimit": 3, "retryLimit": 4,', 1)
hostile = [
    (deep, r"deep.json: nodes\[0\]\.label\[0\]\[0\]\[0\]: is nested deeper than a node file goes"),
    (write("huge.json", text.replace('"retryLimit": 3', '"retryLimit": 1e400', 1)),
     r"huge.json: line \d+, column 21: the number 1e400 is beyond the range of numbers\n"),
    (write("twice.json", with_twice), r'twice.json: nodes\[1\]: the key "retryLimit" is given twice\n'),
    ("/dev/zero", r"/dev/zero: is a device, not a file\n$"),
    (work, r": is a folder, not a file\n$"),
    (big, r"big.json: is larger than 64 MB"),
    (write("other.json", text.replace('"partition": 1', '"partition": 2', 1)),
     r"other.json: partition: the file names configuration 1, partition 2, but its nodes are those of configuration 1, partition 1\n"),
]
for path, message in hostile:
    for command in ("apply", "diff"):
        expect([command, "--data-root", root, path], 1, err=message)
os.remove(big)

# Values beyond 16 bits: check reads them as the editor shows them and says
# so; an export of them applies back unchanged.
database = sqlite3.connect(next(os.path.join(folder, name) for folder, _, names in os.walk(root)
                                for name in names if name == "NewDB.mdb"))
database.execute("UPDATE Node_DBN SET MaxMatch = 40000, DigitTimeout = 9223372036854775807 WHERE PartID = 1 AND NodeNumber = 1")
database.commit()
expect(["check", "--data-root", root, "1", "1", "1"], 0, out=r"^Directory check of DBN 1",
       err=r"^dbn-node-editor: Stored settings of DBN 1 outside their range are shown as: MaxMatch 40000 -> 9\.\n$")
wide = os.path.join(work, "wide.json")
expect(["export", "--data-root", root, "1", "1", "--output", wide], 0)
expect(["apply", "--data-root", root, wide], 0, out=r"0 changed, 3 unchanged; nothing to write\n$")

# A damaged history row is named and hides no other.
base = open(wide, encoding="utf-8").read()
write("label.json", base.replace('"label": "Staff directory"', '"label": "First"', 1))
expect(["apply", "--data-root", root, os.path.join(work, "label.json")], 0)
write("label.json", base.replace('"label": "Staff directory"', '"label": "Second"', 1))
expect(["apply", "--force", "--data-root", root, os.path.join(work, "label.json")], 0)
first, second = [row[0] for row in database.execute(
    "SELECT EntryID FROM Node_History WHERE PartID = 1 AND NodeNumber = 1 ORDER BY EntryID")]
database.execute(f"UPDATE Node_History SET Changes = '{{' WHERE EntryID = {first}")
database.commit()
expect(["history", "--data-root", root, "1", "1", "1"], 0,
       out=rf"^{second} .*saved\n    NodeDescription: .*\n{first} .*saved\n    entry {first} cannot be read: its list of changes is not valid\n$")
expect(["restore", "--data-root", root, "1", "1", "1", str(first)], 1,
       err=rf"History entry {first} cannot be read: its list of changes is not valid\. Nothing was restored\.")
database.close()

if failures:
    print("\n".join(failures))
    sys.exit(1)
