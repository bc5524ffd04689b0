"""Opens XDMF indexes in ParaView and compares all that it shows with the data sets themselves.

    paraview_test.py MODULE_FOLDER MESHRAKE MAKE_PROBLEM MESHRAKE_TOOL

It starts itself again in pvbatch. Without ParaView it is skipped.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

if "IN_PVBATCH" not in os.environ:
    if shutil.which("pvbatch") is None:
        print("skipped: ParaView is not installed (Debian's paraview)")
        sys.exit(77)
    os.environ["IN_PVBATCH"] = "1"
    os.execvp("pvbatch", ["pvbatch", *sys.argv])

import numpy  # noqa: E402
from paraview import servermanager, simple  # noqa: E402
from vtkmodules.util.numpy_support import vtk_to_numpy  # noqa: E402

MODULE, MESHRAKE, MAKE_PROBLEM, TOOL = (os.path.abspath(path) for path in sys.argv[1:5])
sys.path.insert(0, MODULE)
import meshrake_data  # noqa: E402

DOMAINS = ["pm", "dual", "olf", "frac", "chan", "well", "tile"]
CELL_TYPES = {1: 4, 3: 9, 4: 10, 5: 12}  # of VTK, by zone type; a line is a polyline
VECTORS = {"V": ("Vx", "Vy", "Vz"), "q": ("qx", "qy", "qz")}
# A folder and a species with characters that XML escapes, with blanks and beyond ASCII.
FOLDER, SPECIES = "Fluß & Tal <1>", "Nitrat & <Süß>"


def blocks_of(index, times=None):
    """For each time in the viewer, the blocks by name; a single data set has the name None."""
    reader = simple.XDMFReader(FileNames=[str(index)])
    reader.UpdatePipelineInformation()
    for time in times or list(reader.TimestepValues):
        reader.UpdatePipeline(time)
        shown = servermanager.Fetch(reader)
        if shown.IsA("vtkMultiBlockDataSet"):
            numbers = range(shown.GetNumberOfBlocks())
            names = [shown.GetMetaData(b).Get(shown.NAME()) for b in numbers]
            blocks = [shown.GetBlock(b) for b in numbers]
            yield time, dict(zip(names, blocks, strict=True))
        else:
            yield time, {None: shown}


def arrays_of(attributes):
    return {attributes.GetArrayName(a): vtk_to_numpy(attributes.GetArray(a))
            for a in range(attributes.GetNumberOfArrays())}


def write_set(path, nodes):
    """Two zones of lines with X, Y, Z and Head. The values of the first are a hole of the file."""
    def ints(*numbers):
        return numpy.array(numbers, "<i4").tobytes()

    def text(words):
        return ints(*words.encode(), 0)

    def reals(numbers, type="<f8"):
        return numpy.array(numbers, type).tobytes()

    values = numpy.arange(4.0 * nodes[1]).reshape(4, nodes[1])
    with path.open("wb") as file:
        file.write(b"#!TDV112" + ints(1, 0) + text("made") + ints(4))
        file.write(text("X") + text("Y") + text("Z") + text("Head"))
        for z in (0, 1):
            file.write(reals(299, "<f4") + text("pm") + ints(-1, 1) + reals((1, 2.5e7)[z]))
            file.write(ints(-1, 1, 0, 0, 0, nodes[z], z + 1, 0, 0, 0, 0))
        file.write(reals(357, "<f4"))
        begin = reals(299, "<f4") + ints(2, 2, 2, 2, 0, 0, -1)
        file.write(begin + reals([0] * 8))
        file.seek(4 * 8 * nodes[0], os.SEEK_CUR)
        file.write(ints(0, 1))
        file.write(begin + reals(values[:, [0, -1]]) + values.tobytes() + ints(0, 1, 1, 2))


class InParaView(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())

    def tearDown(self):
        shutil.rmtree(self.folder)

    def make_sets(self, name, options=(), first="", block="", last=""):
        """Binary data sets of all domains, in a folder of this name. `first` are lines of the
        first section of the control file, `block` lines of the block of pm, `last` lines after
        the blocks."""
        folder = self.folder / name
        subprocess.run([MAKE_PROBLEM, "--prefix", "t", "--nx", "5", "--ny", "4", "--layers", "3",
                        "--times", "3", *options, folder], check=True, stdout=subprocess.DEVNULL)
        control = f"tecplot binary mode\n{first}end\n"
        for domain in DOMAINS:
            control += f"write {domain} domain file\n{block if domain == 'pm' else ''}end\n"
        (folder / "t.plot.control").write_text(control + last)
        subprocess.run([MESHRAKE], cwd=folder, check=True, capture_output=True)
        return folder

    def make_index(self, *arguments):
        subprocess.run([TOOL, "xdmf", *arguments], check=True)

    def compare(self, shown, data, time):
        """A block of the viewer with the zone of this time."""
        z = data.zone_at(time)
        zone = data.zones[z]
        self.assertEqual((shown.GetNumberOfPoints(), shown.GetNumberOfCells()),
                         (zone.nodes, zone.elements))
        points = vtk_to_numpy(shown.GetPoints().GetData())
        numpy.testing.assert_array_equal(points.T, [data.values(v, z) for v in range(3)])
        cells = vtk_to_numpy(shown.GetCells().GetConnectivityArray())
        numpy.testing.assert_array_equal(cells, data.connectivity_of(z).ravel())
        types = {shown.GetCellType(c) for c in range(zone.elements)}
        self.assertEqual(types, {CELL_TYPES[zone.type]})
        arrays = [arrays_of(shown.GetPointData()), arrays_of(shown.GetCellData())]
        for name in data.variables[3:]:
            values = arrays[int(data.is_cell_centred(name, z))].pop(name)
            numpy.testing.assert_array_equal(values, data.values(name, z), name)
        for name, parts in VECTORS.items():
            if parts[0] in data.variables:
                values = arrays[1].pop(name)
                expected = [data.values(part, z) for part in parts]
                numpy.testing.assert_array_equal(values.T, expected, name)
        self.assertEqual(arrays, [{}, {}])

    def check_index(self, index, path):
        """The index of one data set; returns the data set."""
        data = meshrake_data.open(path)
        times = []
        for time, blocks in blocks_of(index):
            times.append(time)
            self.compare(blocks[None], data, time)
        self.assertEqual(times, list(data.times))
        self.assertLess(0, len(times))
        return data

    def test_all_domains(self):
        folder = self.make_sets(FOLDER, [
            "--variables", "all", "--domains", ",".join(DOMAINS), "--species",
            SPECIES + ",Heat:heat", "--coupling", "frac,well"])
        paths = {domain: folder / f"to.{domain}.szplt" for domain in DOMAINS}
        for domain, path in paths.items():
            with self.subTest(domain):
                self.make_index(path)
                data = self.check_index(folder / f"to.{domain}.xdmf", path)
                self.assertIn(SPECIES, data.variables)
        self.make_index(*paths.values())
        self.check_blocks(folder / "t.xdmf", paths, [0, 3600, 7200])

    def check_blocks(self, index, paths, times):
        sets = {domain: meshrake_data.open(path) for domain, path in paths.items()}
        shown_times = []
        for time, blocks in blocks_of(index):
            shown_times.append(time)
            self.assertEqual(list(blocks), list(sets))
            for domain, data in sets.items():
                if time in data.times:
                    self.compare(blocks[domain], data, time)
                else:
                    self.assertTrue(blocks[domain] is None or
                                    blocks[domain].GetNumberOfPoints() == 0)
        self.assertEqual(shown_times, times)

    def test_domains_with_other_times(self):
        early = self.make_sets("early", first="truncate time domain\n0 3600\nend\n")
        late = self.make_sets("late", first="truncate time domain\n3600 1e9\nend\n")
        paths = {"olf": late / "to.olf.szplt", "pm": early / "to.pm.szplt"}
        self.make_index("-o", self.folder / "both.xdmf", *paths.values())
        self.check_blocks(self.folder / "both.xdmf", paths, [0, 3600, 7200])

    def test_prisms_and_truncated_sets(self):
        box = "truncate pm domain\n0 300\n0 300\n-1e20 1e20\nend\n"
        for name, options, block in (("prisms", ["--elements", "prism"], ""), ("box", [], box)):
            with self.subTest(name):
                path = self.make_sets(name, options, block=block) / "to.pm.szplt"
                self.make_index(path)
                self.check_index(path.with_suffix(".xdmf"), path)

    def test_isopachs(self):
        """Their zones are blocks in place of times; the elevations differ from zone to zone."""
        folder = self.make_sets("plots", last="plot pm zone isopach structure\n")
        path = folder / "to.pm_Isopach.szplt"
        data = meshrake_data.open(path)
        self.make_index(path)
        [(_, blocks)] = blocks_of(path.with_suffix(".xdmf"), [0.0])
        self.assertEqual(list(blocks), [f"Isopach {number:.0f}" for number in data.times])
        for shown, number in zip(blocks.values(), data.times, strict=True):
            self.compare(shown, data, number)

    def test_mesh_that_changes(self):
        path = self.folder / "a:changing.szplt"
        write_set(path, (3, 3))
        self.make_index(path)
        self.check_index(path.with_suffix(".xdmf"), path)

    def test_unfinished_set(self):
        path = self.make_sets("unfinished", first="tecplot binary append\n") / "to.pm.szplt"
        self.assertTrue(path.with_name("to.pm.szplt.szhdr").exists())
        with path.open("ab") as file:
            file.write(b"an incomplete zone")
        self.make_index(path)
        self.check_index(path.with_suffix(".xdmf"), path)

    @unittest.skipUnless("MESHRAKE_LONG_TESTS" in os.environ, "a long test")
    def test_beyond_4_gib(self):
        """A zone of 6 GB, mostly holes of the file, and a small one after it."""
        path = self.folder / "large.szplt"
        write_set(path, (200_000_000, 3))
        self.assertLess(1 << 32, meshrake_data.open(path).zones[1].columns[0].offset)
        self.make_index(path)
        data = meshrake_data.open(path)
        for time, blocks in blocks_of(path.with_suffix(".xdmf"), [2.5e7]):
            self.compare(blocks[None], data, time)


unittest.main(argv=sys.argv[:1])
