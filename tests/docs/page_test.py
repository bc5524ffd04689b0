"""Runs the commands of a page, beginning in an empty folder.

    page_test.py PAGE PYTHON_FOLDER PROGRAM...

Runs each fenced block of `sh` and `python` in turn; all must succeed. Each line of a block of
`text` must be in what the block before it printed; a line of dots means any lines. A block
that begins with "# needs PROGRAM" is left out where that program is not installed. A comment
<!-- run: COMMAND --> is run like a block. A block begins in the folder where the last one ended.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

PAGE, MODULE = pathlib.Path(sys.argv[1]), os.path.abspath(sys.argv[2])
SKIPPED = 77
PROGRAMS = [os.path.abspath(path) for path in sys.argv[3:]]


def blocks():
    text = PAGE.read_text()
    for match in re.finditer(r"(?ms)^```(\w+)\n(.*?)^```$|^<!-- run: (.*?) -->$", text):
        yield text.count("\n", 0, match.start()) + 1, match[1] or "sh", match[2] or match[3]


def run(kind, code, folder, environment):
    """Status, output, and the folder at the end."""
    # Packages of the system are found by its own Python.
    command = {"sh": ["bash", "-euo", "pipefail", "-c"], "python": ["/usr/bin/python3", "-c"]}[kind]
    with tempfile.NamedTemporaryFile("r") as end:
        if kind == "sh":
            code = f"trap 'pwd >{end.name}' EXIT\n{code}"
        done = subprocess.run([*command, code], cwd=folder, env=environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=300)
        return done.returncode, done.stdout, end.read().strip() or folder


def missing_program(code):
    needed = re.match(r"# needs (\S+)", code)
    return needed[1] if needed and not shutil.which(needed[1]) else None


def can_run_python():
    modules = "import numpy, matplotlib"
    return subprocess.run(["/usr/bin/python3", "-c", modules], stderr=subprocess.DEVNULL)\
        .returncode == 0


def main():
    if any(kind == "python" for _, kind, _ in blocks()) and not can_run_python():
        print("skipped: numpy or matplotlib is not installed for the system's Python")
        return SKIPPED
    folder = pathlib.Path(tempfile.mkdtemp())
    path = ":".join([*(os.path.dirname(program) for program in PROGRAMS), os.environ["PATH"]])
    environment = {**os.environ, "PATH": path, "PYTHONPATH": MODULE, "MPLBACKEND": "Agg"}
    printed, count, current = "", 0, str(folder)
    try:
        for line, kind, code in blocks():
            if kind == "text":
                for expected in code.splitlines():
                    if expected.strip(".") and expected.strip() not in printed:
                        print(f"{PAGE}:{line}: not printed: {expected}\n{printed}")
                        return 1
            elif missing := missing_program(code):
                print(f"{PAGE}:{line}: skipped, {missing} is not installed")
            elif kind in ("sh", "python"):
                status, printed, current = run(kind, code, current, environment)
                count += 1
                if status != 0:
                    print(f"{PAGE}:{line}: status {status}\n{printed}")
                    return 1
    finally:
        shutil.rmtree(folder)
    print(f"{count} blocks of {PAGE.name} ran")
    return 0 if count else 1



sys.exit(main())
