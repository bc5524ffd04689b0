"""Compares docs/messages.md with the sources: no message may be missing in either of them.

    messages_test.py ROOT

The sources compose a message from literals and values. Here a value is <>, and so is a part whose
text depends on a condition. The page has <what it is> in its place, and <br> for a line break.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
PAGE = ROOT / "docs" / "messages.md"
FOLDERS, COMPANION = ["meshrake", "tecio", "tvncommon"], ["companion"]

LITERAL = r'"(?:[^"\\]|\\.)*"'
TOKEN = re.compile(LITERAL + r"|'(?:[^'\\]|\\.)*'|.", re.S)

# Functions that show a text: the number of the argument that has it, and what is shown before and
# after it.
READING = "Error reading file: <> "
BANNERS = {"fatalError": (0,), "input_error": (0,), "warningMsg": (0,), "fatalErrorStat": (1,),
           "input_error_stat": (1,), "warningMsgStat": (1,), "errorCallback": (0,),
           "checkFile": (1, "", "<>"), "checkFileOpen": (1, "Failed to open file: "),
           "badContents": (1, READING), "endRun": (2,), "badElement": (1, "<>: element <> of <>"),
           "check": (1, "", " <> domain. File: <>"), "report": (0, "", " <>"),
           "reportFallback": (0, "", " <>"), "elementOutside": (0, "", "<>"),
           "valueOutside": (0, "", "<>"), "outsideFaces": (0, "", "<>")}
# Texts that are the argument of a lambda above.
PASSED_ON = ("what", "what + moved")
LINES = {name: (0,) for name in ("write_string", "writeScreen", "writeEcho", "write",
                                 "normalExitStop")}
# Of meshrake-tool. Faults of data sets that are read have one row for all.
FAILURES = {"runtime_error": (0,), "RequiredError": (0, "", "<>"), "writeError": (0,)}
# Functions that return the end of a message, and what is shown before and after it.
ENDS = {"openFailure": ("Failed to open file: ", ""), "reasonOf": ("<> <> domain. ", "<>")}
# Messages that are composed in another way, and the literal that the sources have.
OTHERS = {"Allocation failed: <>": "Allocation failed: ",
          "Failed to open file: <>": "Failed to open file: ", "Internal error": "Internal error\\n",
          "There was 1 warning raised.": "", "No warnings were raised.": "",
          "There were <> warnings raised.": " warnings raised.", "---- Normal exit ----": "",
          "<> of <> observation points": " observation points", "Truncated mesh": "",
          "Full mesh (no truncation)": ""}


def arguments(text, begin):
    """The arguments of a call whose parenthesis opens before `begin`."""
    depth, found = 0, [""]
    for token in TOKEN.finditer(text, begin):
        depth += (token[0] in "([{") - (token[0] in ")]}")
        if depth < 0:
            return [argument.strip() for argument in found]
        if token[0] == "," and depth == 0:
            found.append("")
        else:
            found[-1] += token[0]
    return []


def form(expression):
    """The literals of a sum, with <> for each value."""
    expression = re.sub(rf"std::string(?:_view)?\(({LITERAL})\)", r"\1", expression)
    expression = re.sub(r'"\s+"', "", expression)
    terms, depth = [""], 0
    for token in TOKEN.findall(expression):
        depth += (token in "([{") - (token in ")]}")
        if token == "+" and depth == 0:
            terms.append("")
        else:
            terms[-1] += token
    whole = ""
    for term in filter(None, map(str.strip, terms)):
        whole += term[1:-1] if re.fullmatch(LITERAL, term) else "<>"
    return whole.replace("\\n", "\n").replace('\\"', '"')


def normal(text):
    return " ".join(re.sub("(<[^<>]*>)+", "<>", text).split())


def sources(folders=FOLDERS + COMPANION):
    for folder in folders:
        for path in sorted((ROOT / folder).rglob("*.[ch]pp")):
            yield path.relative_to(ROOT), re.sub(r"//.*", "", path.read_text())


def composed_before(name, text):
    """The first text that the variable `name` gets in the function before the end of `text`."""
    first = re.search(rf"\b{name} = (.*?);", text[text.rfind("\n}\n") + 1:], re.S)
    return first[1] + " + rest" if first and " " in form(first[1]) else name


def shown_by(functions, folders=FOLDERS):
    """The messages of all calls of these functions."""
    call = re.compile(r"(?<!\w)(%s)\(" % "|".join(functions))
    for path, text in sources(folders):
        for match in call.finditer(text):
            index, before, after = (*functions[match[1]], "", "")[:3]
            given = arguments(text, match.end())
            # The function that has this call, or the declaration that this is.
            within = re.findall(r"(?m)^[\w\[].*?\b(\w+)\(", text[:match.end()])
            if index >= len(given) or within and within[-1] in functions:
                continue
            expression = given[index]
            if re.fullmatch(r"\w+", expression):
                expression = composed_before(expression, text[:match.start()])
            literals = form(expression)
            if re.search("[A-Za-z]", literals.replace("<>", "")):
                yield normal(before + literals + after)
            elif functions is BANNERS and match[1] != "checkFileOpen" and \
                    expression not in PASSED_ON:
                yield f"{path}: {match[0]}{expression}), whose text was not found"


def returned_by(functions):
    for path, text in sources():
        for name, (before, after) in functions.items():
            body = re.search(rf"(?ms)^\S.*\b{name}\(.*?\) {{$.*?^}}$", text)
            for part in re.findall(r"return (.*?);", body[0], re.S) if body else []:
                if " " in form(part).strip():
                    yield normal(before + form(part) + after)


def others():
    every = "".join(text for _, text in sources())
    return {message for message, literal in OTHERS.items() if (literal or message) in every}


def rows():
    """The cells of all rows of tables in the page."""
    for line in PAGE.read_text().splitlines():
        if line.startswith("| `"):
            yield [cell.strip() for cell in line.strip("|").split(" | ")]
        elif re.match(r"\| -?\d", line):
            yield [cell.strip() for cell in line.strip("|").split(" |")]


def plain(cell):
    return cell.replace("`", "")


def in_page(cell):
    return normal(plain(cell).replace("<br>", " "))


def statuses():
    source = {path.as_posix(): text for path, text in sources()}
    texts = re.findall(r'\{(-?\d+), "([^"]*)"\}', source["tvncommon/diagnostics/error.cpp"])
    numbers = re.findall(r"constexpr int \w+ = (-?\d+);", source["tecio/status.hpp"] +
                         source["tvncommon/io/io_layer.hpp"].split("int ok = 0;")[1])
    return {**{number: "" for number in numbers}, **dict(texts)}


def titles():
    every = "".join(text for _, text in sources())
    return set(map(normal, re.findall(r"\*\*\* +[A-Z ,]+[A-Z] +\*\*\*", every)))


def compare(what, in_sources, on_page):
    for message in sorted(in_sources - on_page):
        print(f"{what} missing in {PAGE.name}: {message}")
    for message in sorted(on_page - in_sources):
        print(f"{what} of {PAGE.name} that no source has: {message}")
    return in_sources == on_page


def main():
    cells = list(rows())
    numbered = {row[0]: plain(row[1]) for row in cells if not row[0].startswith("`")}
    titled = {in_page(row[0]) for row in cells if row[0].startswith("`***")}
    messages = {in_page(row[0]) for row in cells if row[0].startswith("`")} - titled
    found = {*shown_by(BANNERS), *shown_by(LINES), *shown_by(FAILURES, COMPANION), *returned_by(ENDS),
             *others()}
    good = [compare("message", found, messages), compare("title", titles(), titled),
            compare("status", set(statuses().items()), set(numbered.items()))]
    print(f"{len(found)} messages, {len(statuses())} status numbers")
    return 0 if all(good) else 1


sys.exit(main())
