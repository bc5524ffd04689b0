"""Reads the data sets that meshrake writes, text (.dat) and binary (.szplt), with numpy alone.

    import meshrake_data
    data = meshrake_data.open("catchmento.pm.szplt")
    data.times                       # output times, NaN for a zone without one
    data.variables                   # names of the columns
    data.units["Head"]               # "(m)"
    data["Head", 3600.0]             # values at all nodes or elements at an output time
    data.series("Head", 16)          # values of node 16, counted from 0, at all output times
    data.connectivity                # elements by corners, node numbers from 0

If a name occurs twice, a column can be specified by its number, from 0. Arrays of a binary data
set are mapped into memory, so only the used parts are read. Arrays of a text data set are located
by the width of their columns and converted on each access. An incomplete zone, in the data set of a
run that continues or was killed, is omitted. A file that is damaged or not a data set of meshrake
raises Damaged, whose message names the file and the fault.
"""

import dataclasses
import math
import operator
import os
import re

import numpy

__all__ = ["open", "DataSet", "Zone", "Damaged"]

ROW = 5  # values in a row of a text array
FIELD = {"<f8": 26, "<f4": 26, "<i4": 11}  # bytes of a value in a text array
TYPES = {1: "<f4", 2: "<f8", 3: "<i4"}  # number of a type in a binary data set
TYPE_WORDS = {"SINGLE": "<f4", "DOUBLE": "<f8", "LONGINT": "<i4"}
# By zone type: no element lists, lines, quadrilaterals, tetrahedra, bricks.
CORNERS = {0: 0, 1: 2, 3: 4, 4: 4, 5: 8}
GREATEST_VARIABLES = 1000000  # far more than a run writes; a damaged number must not take all memory
CUT_LENGTH = 512  # of a zone line in a text data set; a longer one is cut
ZONE_TYPES = {"": 0, "FELINESEG": 1, "FEQUADRILATERAL": 3, "FETETRAHEDRON": 4, "FEBRICK": 5}


class Damaged(ValueError):
    """The file is not a data set of meshrake, or is damaged."""


@dataclasses.dataclass
class Array:
    """Position of the values of a column, or of the element lists, in the file."""

    offset: int  # bytes
    shape: tuple
    type: str


@dataclasses.dataclass
class Zone:
    """One output time of the domain."""

    title: str
    time: float  # NaN without a solution time
    type: int
    nodes: int
    elements: int
    cell_centred: list  # a bool for each column
    columns: list  # an Array for each column, for a shared one that of an earlier zone
    element_lists: Array


def open(path):
    """Opens a data set. The first bytes of the file specify whether it is text or binary."""
    return DataSet(path)


class DataSet:
    """A data set: title, aux, variables, units, zones, times, and the values by (name, time)."""

    def __init__(self, path):
        self.path = os.fspath(path)
        self.size = 0
        self.mapped = None  # the bytes of a binary data set
        self.title = ""
        self.aux = {}
        self.variables = []
        self.units = {}
        self.zones = []
        with _open_file(self.path, "rb") as file:
            self.binary = file.read(8) == b"#!TDV112"
        (_scan_binary if self.binary else _scan_text)(self)
        self.times = numpy.array([zone.time for zone in self.zones])

    def __repr__(self):
        return f"<{self.path}: {len(self.zones)} zones of {len(self.variables)} variables>"

    def __getitem__(self, key):
        name, time = key
        return self.values(name, self.zone_at(time))

    def zone_at(self, time):
        """Returns the zone with this output time, from 0. Raises KeyError if there is none."""
        found = numpy.flatnonzero(numpy.isclose(self.times, time, rtol=1e-12, atol=0))
        if not len(found):
            raise KeyError(f"{self.path}: no output time {time}")
        return int(found[0])

    def is_cell_centred(self, name, zone=0):
        """True if the column has a value for each element, False for each node."""
        return self.zones[zone].cell_centred[self._column(name)]

    def values(self, name, zone):
        """Values of a column in a zone, counted from 0."""
        return self._read(self.zones[zone].columns[self._column(name)])

    def series(self, name, index):
        """Values of one node or element, counted from 0, in all zones."""
        column = self._column(name)
        if len({zone.cell_centred[column] for zone in self.zones}) > 1:
            raise Damaged(f"{self.path}: {name} has values of nodes and of elements")
        arrays = [zone.columns[column] for zone in self.zones]
        for array in arrays:
            if not -array.shape[0] <= index < array.shape[0]:
                raise IndexError(f"{self.path}: {name} has no value {index}")
        return numpy.array([self._read_one(array, index % array.shape[0]) for array in arrays])

    @property
    def connectivity(self):
        """Element lists of the first zone: elements by corners, node numbers from 0."""
        return self.connectivity_of(0)

    def connectivity_of(self, zone):
        """Element lists of a zone, counted from 0."""
        lists = self._read(self.zones[zone].element_lists)
        return lists if self.binary else lists - 1

    def to_xarray(self):
        """All columns as an xarray.Dataset with the dimensions time, node and element.

        A repeated name gets a number, as in "Head (2)".
        """
        import xarray

        columns = {}
        for v, name in enumerate(self.variables):
            dimension = "element" if self.is_cell_centred(v) else "node"
            values = numpy.stack([self.values(v, z) for z in range(len(self.zones))])
            attributes = {"units": self.units[name]} if name in self.units else {}
            unique, number = name, 1
            while unique in columns:
                number += 1
                unique = f"{name} ({number})"
            columns[unique] = (("time", dimension), values, attributes)
        return xarray.Dataset(columns, coords={"time": self.times}, attrs={"title": self.title})

    def _map(self):
        """Maps the file as it is now; one mapping for all, as each takes longer than a small read."""
        self.size = os.path.getsize(self.path)
        self.mapped = numpy.memmap(self.path, "u1", "r", 0, (self.size,))

    def _column(self, name):
        if not isinstance(name, str):
            return operator.index(name)
        try:
            return self.variables.index(name)
        except ValueError:
            raise KeyError(f"{self.path}: no variable {name!r}") from None

    def _read(self, array):
        if 0 in array.shape:
            return numpy.empty(array.shape, array.type)
        if self.binary:
            return numpy.ndarray(array.shape, array.type, self.mapped, array.offset)
        return self._read_text(array.offset, _text_bytes(array), lambda data: _parse(array, data))

    def _read_one(self, array, index):
        if self.binary:
            return self._read(array)[index]
        width = FIELD[array.type]
        row, column = divmod(index, ROW)
        offset = array.offset + row * (ROW * width + 1) + column * width
        return self._read_text(offset, width, lambda data: _convert(data, width, array.type))[0]

    def _read_text(self, offset, size, convert):
        with _open_file(self.path, "rb") as file:
            file.seek(offset)
            data = file.read(size)
        try:
            return convert(data)
        except ValueError:
            raise Damaged(f"{self.path}: from byte {offset}: a value is not a number of its type") \
                from None


_open_file = __builtins__["open"] if isinstance(__builtins__, dict) else __builtins__.open


# Text data sets


def _text_bytes(array):
    """Bytes of an array as rows of a text data set, each with its line feed."""
    width = FIELD[array.type]
    if 0 in array.shape:
        return 0
    if len(array.shape) == 2:  # element lists: a row for each element
        return array.shape[0] * (array.shape[1] * width + 1)
    rows, rest = divmod(array.shape[0], ROW)
    return rows * (ROW * width + 1) + (rest * width + 1 if rest else 0)


def _convert(data, width, type):
    fields = numpy.frombuffer(data, f"S{width}")
    if type != "<i4":
        return fields.astype(type)
    wide = fields.astype("<i8")  # the conversion to 32 bits would wrap around
    values = wide.astype(type)
    if (values != wide).any():
        raise ValueError
    return values


def _parse(array, data):
    width = FIELD[array.type]
    in_row = array.shape[1] if len(array.shape) == 2 else ROW
    rows = len(data) // (in_row * width + 1)
    whole = rows * (in_row * width + 1)
    table = numpy.frombuffer(data[:whole], "u1").reshape(rows, in_row * width + 1)[:, :-1]
    values = _convert(table.tobytes() + data[whole:].rstrip(b"\n"), width, array.type)
    return values.reshape(array.shape)


def _decode(data):
    return data.decode("utf-8", "surrogateescape")


def _damaged(file, what):
    return Damaged(f"{file.name}: before byte {file.tell()}: {what}")


def _numbers(file, line, key, count):
    """Columns, from 0, of the numbers from 1 in KEY=([1,2,3]...) of a zone line."""
    match = re.search(rf"{key}=\(\[([\d,]*)\]", line)
    try:
        numbers = [int(number) - 1 for number in match[1].split(",")] if match else []
    except ValueError:
        raise _damaged(file, f"{key} is not a list of numbers") from None
    if not all(0 <= number < count for number in numbers):
        raise _damaged(file, f"{key} has a variable that does not exist")
    return numbers


def _scan_text(data_set):
    data_set.size = os.path.getsize(data_set.path)
    with _open_file(data_set.path, "rb") as file:
        if file.read(5) != b"TITLE":
            raise Damaged(f"{data_set.path}: not a data set of meshrake")
        file.seek(0)
        while line := file.readline():
            text = _decode(line).rstrip("\n")
            if text.startswith("TITLE = "):
                data_set.title = text[9:-1]
            elif text.startswith("VARIABLES = "):
                data_set.variables = text[13:-1].split('","')
            elif match := re.match(r'DATASETAUXDATA (\S+)="(.*)"$', text):
                data_set.aux[match[1]] = match[2]
            elif match := re.match(r'VARAUXDATA (\d+) Units="(.*)"$', text):
                if not 0 < int(match[1]) <= len(data_set.variables):
                    raise _damaged(file, "a unit of a variable that does not exist")
                data_set.units[data_set.variables[int(match[1]) - 1]] = match[2]
            elif text.startswith("ZONE "):
                try:
                    data_set.zones.append(_scan_text_zone(data_set, file, text))
                except EOFError:
                    return


def _scan_text_zone(data_set, file, text):
    """The zone of a zone line; the file is at its end. Raises EOFError if it is incomplete."""
    if len(text) >= CUT_LENGTH:
        raise _damaged(file, "the zone line is cut; binary data sets have no such limit")
    match = re.match(
        r'ZONE T="(.*?)"(?:, SOLUTIONTIME=([^,]*))?, DATAPACKING=BLOCK, NODES=(\d+), '
        r"ELEMENTS=(\d+), ZONETYPE=(\w*)(.*)$", text)
    line = _decode(file.readline())
    if not line.endswith("\n"):
        raise EOFError
    types = re.match(r"DT=\((.*)\)\s*$", line)
    words = types[1].split(",") if types else []
    if not match or match[5] not in ZONE_TYPES or len(words) != len(data_set.variables) or \
            not set(words) <= TYPE_WORDS.keys():
        raise _damaged(file, "not a zone of meshrake")
    try:
        time = float(match[2]) if match[2] else float("nan")
    except ValueError:
        raise _damaged(file, "a time that is not a number") from None
    zone = Zone(match[1], time, ZONE_TYPES[match[5]], int(match[3]), int(match[4]),
                [False] * len(words), [], None)
    for number in _numbers(file, match[6], "VARLOCATION", len(words)):
        zone.cell_centred[number] = True
    shared = _numbers(file, match[6], "VARSHARELIST", len(words))
    lists_shared = "CONNECTIVITYSHAREZONE=1" in match[6]
    if (shared or lists_shared) and not data_set.zones:
        raise _damaged(file, "the first zone shares")
    for v, word in enumerate(words):
        shape, type = _shape(zone, v), TYPE_WORDS[word]
        array = data_set.zones[0].columns[v] if v in shared else \
            _skip_text_array(data_set, file, shape, type)
        if (array.shape, array.type) != (shape, type):
            raise _damaged(file, "shared values of another number or type")
        zone.columns.append(array)
    shape = (zone.elements, CORNERS[zone.type])
    zone.element_lists = data_set.zones[0].element_lists if lists_shared else \
        _skip_text_array(data_set, file, shape, "<i4")
    if zone.element_lists.shape != shape:
        raise _damaged(file, "shared element lists of another number or type")
    return zone


def _shape(zone, v):
    return (zone.elements if zone.cell_centred[v] else zone.nodes,)


def _skip_text_array(data_set, file, shape, type):
    """The array whose comment line, if it has one, is next."""
    offset = file.tell()
    array = Array(offset, shape, type)
    if 0 in shape and len(shape) == 2:
        return array
    while (line := file.readline()).startswith(b"#"):
        offset += len(line)
    array.offset = offset
    end = offset + _text_bytes(array)
    if end > data_set.size:
        raise EOFError
    file.seek(end - 1)
    if file.read(1) != b"\n":
        raise _damaged(file, "rows of another width")
    return array


# Binary data sets


class _Words:
    """The file as 32-bit words, of which all parts of a header consist."""

    def __init__(self, data_set):
        self.path = data_set.path
        self.position = 0
        self.map(data_set)

    def map(self, data_set):
        data_set._map()
        self.words = numpy.ndarray((data_set.size // 4,), "<i4", data_set.mapped)

    def take(self, count, type="<i4"):
        words = count * numpy.dtype(type).itemsize // 4
        if not 0 <= words <= len(self.words) - self.position:
            raise EOFError
        self.position += words
        return self.words[self.position - words : self.position].view(type)

    def one(self, type="<i4"):
        return self.take(1, type)[0]

    def text(self):
        size = 64
        while True:
            window = self.words[self.position : self.position + size]
            ends = numpy.flatnonzero(window == 0)
            if len(ends):
                self.position += int(ends[0]) + 1
                characters = window[: ends[0]]
                self.require(((characters > 0) & (characters < 256)).all(), "not a character")
                return _decode(characters.astype("u1").tobytes())
            if len(window) < size:
                raise EOFError
            size *= 8

    def require(self, holds, what):
        if not holds:
            raise Damaged(f"{self.path}: byte {4 * self.position}: {what}")


def _scan_binary(data_set):
    words = _Words(data_set)
    try:
        words.take(2)  # magic
        words.require(list(words.take(2)) == [1, 0], "another byte order or file type")
        data_set.title = words.text()
        count = words.one()
        words.require(0 <= count <= GREATEST_VARIABLES, "not a number of variables")
        data_set.variables = [words.text() for _ in range(count)]
        headers = _scan_headers(data_set, words)
    except EOFError:
        raise Damaged(f"{data_set.path}: the header is incomplete") from None
    words.map(data_set)  # a run may have added zones since the file was opened
    for header in headers:
        try:
            zone = _scan_binary_zone(data_set, words, header)
        except EOFError:
            raise Damaged(f"{data_set.path}: the data of a zone are incomplete") from None
        data_set.zones.append(zone)


def _scan_headers(data_set, words):
    headers = []
    while (marker := words.one("<f4")) != 357:
        if marker == 299:
            # Each zone has at least the types of its variables in its data.
            least = (len(headers) + 1) * len(data_set.variables)
            words.require(least < len(words.words), "the file is too short for its zones")
            headers.append(_scan_header(data_set, words))
        elif marker == 799:
            name = words.text()
            words.require(words.one() == 0, "a value that is not a text")
            value = words.text()
            if name != "_":  # the padding for later headers
                data_set.aux[name] = value
        elif marker == 899:
            number = words.one()
            words.require(0 <= number < len(data_set.variables), "a unit without its variable")
            words.text()
            words.require(words.one() == 0, "a unit that is not a text")
            data_set.units[data_set.variables[number]] = words.text()
        else:
            words.require(False, "an unknown record")
    return headers


def _scan_header(data_set, words):
    count = len(data_set.variables)
    title = words.text()
    _, strand = words.take(2)
    time = float(words.one("<f8"))
    if strand < 0:
        time = float("nan")
    _, type = words.take(2)
    words.require(type in CORNERS, "an unknown zone type")
    centred = (words.take(count) == 1).tolist() if words.one() else [False] * count
    words.take(2)
    nodes, elements = (int(number) for number in words.take(2))
    words.take(4)
    return Zone(title, time, int(type), nodes, elements, centred, [], None)


def _scan_binary_zone(data_set, words, zone):
    count = len(data_set.variables)
    words.require(words.one("<f4") == 299, "no data of a zone")
    types = words.take(count)
    words.require(words.one() == 0, "passive variables")
    shares = words.take(count) if words.one() else numpy.full(count, -1)
    list_share = words.one()
    earlier = len(data_set.zones)
    words.require(-1 <= list_share < earlier and ((-1 <= shares) & (shares < earlier)).all(),
                  "no zone to share with")
    words.take(2 * int((shares < 0).sum()), "<f8")  # least and greatest values
    for v in range(count):
        words.require(int(types[v]) in TYPES, "an unknown type")
        shape, type = _shape(zone, v), TYPES[int(types[v])]
        array = data_set.zones[shares[v]].columns[v] if shares[v] >= 0 else \
            _skip_array(words, shape, type)
        words.require((array.shape, array.type) == (shape, type),
                      "shared values of another number or type")
        zone.columns.append(array)
    shape = (zone.elements, CORNERS[zone.type])
    zone.element_lists = data_set.zones[list_share].element_lists if list_share >= 0 else \
        _skip_array(words, shape, "<i4")
    words.require(zone.element_lists.shape == shape,
                  "shared element lists of another number or type")
    return zone


def _skip_array(words, shape, type):
    array = Array(4 * words.position, shape, type)
    words.take(math.prod(shape), type)
    return array
