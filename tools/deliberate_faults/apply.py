#!/usr/bin/env python3
"""The table of deliberate faults.

    apply.py check SOURCE [NAME...]    prints the names; status 1 if a row does not match the source
    apply.py sync ROOT SOURCE          makes SOURCE a copy of the files of ROOT
    apply.py one SOURCE NAME           replaces the previous fault in SOURCE by that of one row
    apply.py none SOURCE               removes the previous fault

A row of faults.txt has a name in brackets, the file, a description, the old text in lines that
begin with "-" and the new text in lines that begin with "+". The old text must occur exactly once
in that file or, if the file has moved, in the whole source. White space is ignored.
"""

import pathlib
import re
import subprocess
import sys

TABLE = pathlib.Path(__file__).with_name("faults.txt")
PRODUCT = ("companion", "meshrake", "tecio", "tvncommon")


def read_table():
    rows = {}
    row = None
    for number, line in enumerate(TABLE.read_text().splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        if line.startswith("["):
            name = line.strip("[]")
            if name in rows:
                sys.exit(f"{TABLE}:{number}: the name {name} occurs twice")
            row = rows[name] = {"file": "", "what": "", "-": [], "+": []}
        elif line[0] in "-+":
            row[line[0]].append(line[1:])
        else:
            key, text = line.split(":", 1)
            row[key] = text.strip()
    return rows


def occurrences(source, row):
    """List of all occurrences of the old text: (file, (begin, end))."""
    words = [re.escape(word) for line in row["-"] for word in line.split()]
    pattern = re.compile(r"\s+".join(words))
    stated = source / row["file"]
    files = [stated] if stated.is_file() else []
    found = [(file, match.span()) for file in files for match in pattern.finditer(file.read_text())]
    if not found:
        files = [file for folder in PRODUCT for file in sorted((source / folder).rglob("*.[ch]*"))]
        found = [(file, match.span()) for file in files
                 for match in pattern.finditer(file.read_text())]
    return found


def check(source, names):
    rows = read_table()
    good = True
    for name in names or rows:
        found = occurrences(source, rows[name]) if name in rows else None
        if found is None:
            sys.exit(f"no row has the name {name}")
        if len(found) != 1:
            print(f"STALE      {name}: the old text occurs {len(found)} times", file=sys.stderr)
            good = False
            continue
        print(name)
    return 0 if good else 1


def sync(root, source):
    listed = subprocess.run(["git", "-C", root, "ls-files", "-coz", "--exclude-standard"],
                            check=True, capture_output=True, text=True).stdout
    names = {name for name in listed.split("\0") if name and (root / name).is_file()}
    # Only files that differ are written, so that the build is incremental.
    for name in names:
        copy = source / name
        data = (root / name).read_bytes()
        if copy.is_file() and copy.read_bytes() == data:
            continue
        copy.parent.mkdir(parents=True, exist_ok=True)
        copy.write_bytes(data)
        copy.chmod((root / name).stat().st_mode)
    for file in source.rglob("*"):
        if file.is_file() and str(file.relative_to(source)) not in names:
            file.unlink()
    (source.parent / "faulty").unlink(missing_ok=True)
    return 0


# "faulty" and "original", next to the source folder, hold the name of the file with a fault and its
# contents without it.
def apply_none(source):
    faulty, original = source.parent / "faulty", source.parent / "original"
    if faulty.is_file():
        (source / faulty.read_text()).write_text(original.read_text())
        faulty.unlink()
    return 0


def apply_one(source, name):
    apply_none(source)
    row = read_table()[name]
    (file, (begin, end)), = occurrences(source, row)
    text = file.read_text()
    (source.parent / "original").write_text(text)
    (source.parent / "faulty").write_text(str(file.relative_to(source)))
    file.write_text(text[:begin] + "\n".join(row["+"]).strip() + text[end:])
    print(row["what"])
    return 0


def main():
    command, *arguments = sys.argv[1:]
    if command == "check":
        return check(pathlib.Path(arguments[0]), arguments[1:])
    if command == "sync":
        return sync(pathlib.Path(arguments[0]), pathlib.Path(arguments[1]))
    if command == "none":
        return apply_none(pathlib.Path(arguments[0]))
    return apply_one(pathlib.Path(arguments[0]), arguments[1])


sys.exit(main())
