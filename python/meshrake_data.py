"""Reads the data sets that meshrake writes, text (.dat) and binary (.szplt), with numpy alone.

    import meshrake_data
    data = meshrake_data.open("catchmento.pm.szplt")
    data.times                       # output times, NaN for a zone without one
    data.variables                   # names of the columns
    data.units["Head"]               # "(m)"
    data["Head", 3600.0]             # values at all nodes or elements at an output time
    data.series("Head", 16)          # values of node 16, counted from 0, at all output times
    data.connectivity                # elements by corners, node numbers from 0

A column can be specified by its number, from 0, if its name occurs twice. Arrays of a binary data
set are mapped into memory, so only the used parts are read. Arrays of a text data set are located
by the width of their columns and converted on each access. An incomplete zone, in the data set of a
run that continues or was killed, is omitted.
"""

import dataclasses
import os
import re

import numpy

__all__ = ["open", "DataSet", "Zone"]

ROW = 5  # values in a row of a text array
FIELD = {"<f8": 26, "<f4": 26, "<i4": 11}  # bytes of a value in a text array
TYPES = {1: "<f4", 2: "<f8", 3: "<i4"}  # number of a type in a binary data set
TYPE_WORDS = {"SINGLE": "<f4", "DOUBLE": "<f8", "LONGINT": "<i4"}
CORNERS = {1: 2, 3: 4, 4: 4, 5: 8}  # by zone type: lines, quadrilaterals, tetrahedra, bricks
ZONE_TYPES = {"FELINESEG": 1, "FEQUADRILATERAL": 3, "FETETRAHEDRON": 4, "FEBRICK": 5}


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
        self.size = os.path.getsize(self.path)
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
        """All columns as an xarray.Dataset with the dimensions time, node and element."""
        import xarray

        columns = {}
        for name in self.variables:
            dimension = "element" if self.is_cell_centred(name) else "node"
            values = numpy.stack([self.values(name, z) for z in range(len(self.zones))])
            attributes = {"units": self.units[name]} if name in self.units else {}
            columns[name] = (("time", dimension), values, attributes)
        return xarray.Dataset(columns, coords={"time": self.times}, attrs={"title": self.title})

    def _column(self, name):
        if isinstance(name, int):
            return name
        try:
            return self.variables.index(name)
        except ValueError:
            raise KeyError(f"{self.path}: no variable {name!r}") from None

    def _read(self, array):
        if 0 in array.shape:
            return numpy.empty(array.shape, array.type)
        if self.binary:
            return numpy.memmap(self.path, array.type, "r", array.offset, array.shape)
        with _open_file(self.path, "rb") as file:
            file.seek(array.offset)
            data = file.read(_text_bytes(array))
        return _parse(array, data)

    def _read_one(self, array, index):
        if self.binary:
            return self._read(array)[index]
        width = FIELD[array.type]
        row, column = divmod(index, ROW)
        with _open_file(self.path, "rb") as file:
            file.seek(array.offset + row * (ROW * width + 1) + column * width)
            return _convert(file.read(width), width, array.type)[0]


_open_file = __builtins__["open"] if isinstance(__builtins__, dict) else __builtins__.open


# Text data sets


def _text_bytes(array):
    """Bytes of an array as rows of a text data set, each with its line feed."""
    width = FIELD[array.type]
    if len(array.shape) == 2:  # element lists: a row for each element
        return array.shape[0] * (array.shape[1] * width + 1)
    rows, rest = divmod(array.shape[0], ROW)
    return rows * (ROW * width + 1) + (rest * width + 1 if rest else 0)


def _convert(data, width, type):
    return numpy.frombuffer(data, f"S{width}").astype(type)


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


def _numbers(line, key):
    """The numbers in KEY=([1,2,3]...) of a zone line."""
    match = re.search(rf"{key}=\(\[([\d,]*)\]", line)
    return [int(number) for number in match[1].split(",")] if match else []


def _scan_text(data_set):
    with _open_file(data_set.path, "rb") as file:
        while line := file.readline():
            text = _decode(line).rstrip("\n")
            if text.startswith("TITLE = "):
                data_set.title = text[9:-1]
            elif text.startswith("VARIABLES = "):
                data_set.variables = text[13:-1].split('","')
            elif match := re.match(r'DATASETAUXDATA (\S+)="(.*)"$', text):
                data_set.aux[match[1]] = match[2]
            elif match := re.match(r'VARAUXDATA (\d+) Units="(.*)"$', text):
                data_set.units[data_set.variables[int(match[1]) - 1]] = match[2]
            elif text.startswith("ZONE "):
                zone, end = _scan_text_zone(data_set, file, text)
                if end > data_set.size:
                    return
                data_set.zones.append(zone)
    if not data_set.variables:
        raise Damaged(f"{data_set.path}: no data set of meshrake")


def _scan_text_zone(data_set, file, text):
    """The zone of a zone line, and the position of its end; the file is at that position."""
    match = re.match(
        r'ZONE T="(.*?)"(?:, SOLUTIONTIME=([^,]*))?, DATAPACKING=BLOCK, NODES=(\d+), '
        r"ELEMENTS=(\d+), ZONETYPE=(\w+)(.*)$", text)
    types = re.match(r"DT=\((.*)\)\s*$", _decode(file.readline()))
    if not match or match[5] not in ZONE_TYPES or not types:
        raise Damaged(f"{data_set.path}: byte {file.tell()}: not a zone of meshrake")
    type, rest = ZONE_TYPES[match[5]], match[6]
    nodes, elements = int(match[3]), int(match[4])
    centred = [False] * len(data_set.variables)
    for number in _numbers(rest, "VARLOCATION"):
        centred[number - 1] = True
    shared = set(_numbers(rest, "VARSHARELIST"))
    columns = []
    for v, word in enumerate(types[1].split(",")):
        if v + 1 in shared:
            columns.append(data_set.zones[0].columns[v])
        else:
            columns.append(_skip_text_array(
                file, (elements if centred[v] else nodes,), TYPE_WORDS[word]))
    if "CONNECTIVITYSHAREZONE=1" in rest:
        element_lists = data_set.zones[0].element_lists
    else:
        element_lists = _skip_text_array(file, (elements, CORNERS[type]), "<i4")
    time = float(match[2]) if match[2] else float("nan")
    return Zone(match[1], time, type, nodes, elements, centred, columns, element_lists), file.tell()


def _skip_text_array(file, shape, type):
    """The array whose comment line, if it has one, is next."""
    offset = file.tell()
    while (line := file.readline()).startswith(b"#"):
        offset += len(line)
    array = Array(offset, shape, type)
    file.seek(offset + _text_bytes(array))
    return array


# Binary data sets


class _Words:
    """The file as 32-bit words, of which all parts of a header consist."""

    def __init__(self, data_set):
        self.path = data_set.path
        self.words = numpy.memmap(data_set.path, "<i4", "r", 0, (data_set.size // 4,))
        self.position = 0

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
                return _decode(window[: ends[0]].astype("u1").tobytes())
            if len(window) < size:
                raise EOFError
            size *= 8

    def require(self, holds, what):
        if not holds:
            raise Damaged(f"{self.path}: byte {4 * self.position}: {what}")


def _scan_binary(data_set):
    words = _Words(data_set)
    try:
        words.take(4)  # magic, byte order, file type
        data_set.title = words.text()
        data_set.variables = [words.text() for _ in range(words.one())]
        headers = _scan_headers(data_set, words)
    except EOFError:
        raise Damaged(f"{data_set.path}: the header is incomplete") from None
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
            headers.append(_scan_header(data_set, words))
        elif marker == 799:
            name, _, value = words.text(), words.one(), words.text()
            if name != "_":  # the padding for later headers
                data_set.aux[name] = value
        elif marker == 899:
            variable = data_set.variables[words.one()]
            name, _, data_set.units[variable] = words.text(), words.one(), words.text()
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
    centred = list(words.take(count) == 1) if words.one() else [False] * count
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
    words.require(list_share < earlier and (shares < earlier).all(), "shares with a later zone")
    words.take(2 * int((shares < 0).sum()), "<f8")  # least and greatest values
    for v in range(count):
        words.require(int(types[v]) in TYPES, "an unknown type")
        if shares[v] >= 0:
            zone.columns.append(data_set.zones[shares[v]].columns[v])
            continue
        shape = (zone.elements if zone.cell_centred[v] else zone.nodes,)
        zone.columns.append(_skip_array(words, shape, TYPES[int(types[v])]))
    if list_share >= 0:
        zone.element_lists = data_set.zones[list_share].element_lists
    else:
        zone.element_lists = _skip_array(words, (zone.elements, CORNERS[zone.type]), "<i4")
    return zone


def _skip_array(words, shape, type):
    array = Array(4 * words.position, shape, type)
    words.take(int(numpy.prod(shape)), type)
    return array
