"""Compares the kinds of findings in docs/check.md with those of the sources.

    findings_test.py ROOT
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
# A kind is a member of a record of a finding, or the argument of a function that adds one.
KIND = re.compile(r'(?:kind = |(?:addFinding|add|findingAt)\(\s*work,\s*|(?:add|end)\(|CellState::\w+,\s*)'
                  r'"(\w+)"')

used = {kind for source in (ROOT / "companion" / "check").glob("*.cpp")
        for kind in KIND.findall(source.read_text())}
page = (ROOT / "docs" / "check.md").read_text().split("## Findings")[1]
described = {kind for line in page.splitlines() if line.startswith("| `")
             for kind in re.findall(r"`(\w+)`", line.split("|")[1])}
for kind in sorted(used - described):
    print(f"docs/check.md does not describe {kind}")
for kind in sorted(described - used):
    print(f"docs/check.md describes {kind}, which no source has")
print(f"{len(used)} kinds of findings")
sys.exit(used != described or not used)
