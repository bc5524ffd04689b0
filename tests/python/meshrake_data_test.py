"""Tests meshrake_data with data sets of all domains, text and binary, truncated, cut and damaged.

    meshrake_data_test.py MODULE_FOLDER MESHRAKE MAKE_PROBLEM
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
import unittest.mock

try:
    import numpy
except ImportError:
    print("skipped: numpy is not installed (Debian's python3-numpy)")
    sys.exit(77)

MODULE, MESHRAKE, MAKE_PROBLEM = (os.path.abspath(path) for path in sys.argv[1:4])
sys.path.insert(0, MODULE)
import meshrake_data  # noqa: E402

DOMAINS = ["pm", "dual", "olf", "frac", "chan", "well", "tile"]
WHOLE_PM = "tecplot mode\nend\nwrite pm domain file\nend\n"
BOX = ("tecplot mode\nend\nwrite pm domain file\ntruncate pm domain\n0 300\n0 300\n"
       "-1e20 1e20\nend\nend\n")


class BothForms(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp())
        subprocess.run(
            [MAKE_PROBLEM, "--prefix", "t", "--nx", "5", "--ny", "4", "--layers", "3", "--times",
             "3", "--variables", "all", "--domains", ",".join(DOMAINS[1:]), "--species",
             "Head,Nitrate,Heat:heat", cls.folder / "problem"],
            check=True, stdout=subprocess.DEVNULL)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    def run_program(self, name, control):
        """Returns a folder with the plot files of a run with this control text."""
        folder = self.folder / name
        shutil.copytree(self.folder / "problem", folder)
        (folder / "t.plot.control").write_text(control)
        subprocess.run([MESHRAKE], cwd=folder, check=True, capture_output=True)
        return folder

    def pair(self, name, control):
        return (self.run_program(name + "_text", control),
                self.run_program(name + "_binary", control.replace("tecplot mode", "tecplot binary mode")))

    def assert_equal(self, text, binary):
        for data in (text, binary):
            self.assertTrue(data.aux.pop("Date_Created"))
        for one in ("title", "aux", "variables", "units"):
            self.assertEqual(getattr(text, one), getattr(binary, one))
        numpy.testing.assert_array_equal(text.times, binary.times)
        numpy.testing.assert_array_equal(text.connectivity, binary.connectivity)
        for zone in range(len(text.zones)):
            for v, name in enumerate(text.variables):
                centred = binary.is_cell_centred(v, zone)
                self.assertEqual(text.is_cell_centred(v, zone), centred)
                a, b = text.values(v, zone), binary.values(numpy.int64(v), zone)
                self.assertEqual(a.dtype, b.dtype, name)
                numpy.testing.assert_array_equal(a, b, name)
                shape = binary.zones[zone]
                self.assertEqual(len(b), shape.elements if centred else shape.nodes)

    def test_all_domains(self):
        control = "tecplot mode\nend\n" + "".join(
            f"write {domain} domain file\nend\n" for domain in DOMAINS)
        text, binary = self.pair("all", control)
        for domain in DOMAINS:
            with self.subTest(domain):
                a = meshrake_data.open(text / f"to.{domain}.dat")
                b = meshrake_data.open(binary / f"to.{domain}.szplt")
                self.assertEqual(list(a.times), [0, 3600, 7200])
                self.assert_equal(a, b)
                for last in (-1, b.zones[0].nodes - 1):
                    expected = [b["Z", time][last] for time in b.times]
                    numpy.testing.assert_array_equal(a.series("Z", last), expected)
                    numpy.testing.assert_array_equal(b.series("Z", last), expected)
                with self.assertRaises(IndexError):
                    a.series("Z", a.zones[0].nodes)
                with self.assertRaises(KeyError):
                    b["Z", 1]
                with self.assertRaises(KeyError):
                    b["no such variable", 0]

    def test_truncated_set(self):
        text, binary = self.pair("box", BOX)
        a, b = meshrake_data.open(text / "to.pm.dat"), meshrake_data.open(binary / "to.pm.szplt")
        self.assertLess(0, b.zones[0].nodes)
        self.assertLess(b.connectivity.max(), b.zones[0].nodes)
        self.assert_equal(a, b)
        b.zones[1].cell_centred[0] = True
        with self.assertRaises(meshrake_data.Damaged):
            b.series("X", 0)

    def test_cut_and_damaged_sets(self):
        text, binary = self.pair("cut", WHOLE_PM)
        path = text / "to.pm.dat"
        os.truncate(path, path.stat().st_size - 1)
        self.assertEqual(list(meshrake_data.open(path).times), [0, 3600])

        path = binary / "to.pm.szplt"
        whole = path.read_bytes()
        for length in (8, 40, 4000, len(whole) // 2, len(whole) - 4):
            path.write_bytes(whole[:length])
            with self.assertRaises(meshrake_data.Damaged, msg=length):
                meshrake_data.open(path)
        # The names of so many variables are a hole of the file.
        path.write_bytes(whole[:whole.index(b"X\0\0\0\0\0\0\0") - 4] + b"\xff\xff\xff\x7f")
        os.truncate(path, 9 << 30)
        with self.assertRaises(meshrake_data.Damaged):
            meshrake_data.open(path)
        path.write_bytes(b"no data set\n")
        with self.assertRaises(meshrake_data.Damaged):
            meshrake_data.open(path)

    def read_all(self, path):
        """Reads all of a data set that may be damaged; true if it is refused."""
        try:
            data = meshrake_data.open(path)
            for z in range(len(data.zones)):
                data.connectivity_of(z)
                for v in range(len(data.variables)):
                    data.values(v, z)
        except meshrake_data.Damaged as fault:
            self.assertTrue(str(fault).startswith(str(path)), fault)
            return True
        return False

    def test_changed_words(self):
        path = self.run_program("words", WHOLE_PM.replace("mode", "binary mode")) / "to.pm.szplt"
        whole = path.read_bytes()
        data = meshrake_data.open(path).zones[0].columns[0].offset
        # The headers and the beginning of the data, without the padding between them.
        positions = [*range(8, 2400, 12), *range(data - 1200, data, 12)]
        refused = 0
        for value in (-2, 2**31 - 1):
            word = value.to_bytes(4, "little", signed=True)
            for at in positions:
                with path.open("r+b") as file:
                    file.seek(at)
                    file.write(word)
                with self.subTest(value=value, at=at):
                    refused += self.read_all(path)
                with path.open("r+b") as file:
                    file.seek(at)
                    file.write(whole[at : at + 4])
        self.assertLess(len(positions) // 2, refused)

    def test_zones_that_a_run_adds_while_the_file_is_opened(self):
        path = self.run_program("added", WHOLE_PM.replace("mode", "binary mode")) / "to.pm.szplt"
        times = list(meshrake_data.open(path).times)
        before = [path.stat().st_size - 4]  # without the end of the last zone
        getsize = os.path.getsize
        with unittest.mock.patch("os.path.getsize", lambda p: before.pop() if before else getsize(p)):
            self.assertEqual(list(meshrake_data.open(path).times), times)

    def test_changed_lines(self):
        path = self.run_program("lines", WHOLE_PM) / "to.pm.dat"
        whole = path.read_bytes()
        for before, after in [
                (b"TITLE", b"title"), (b"VARAUXDATA 1 ", b"VARAUXDATA 99 "),
                (b"SOLUTIONTIME=0", b"SOLUTIONTIME=x"), (b"NODES=", b"NODES=9"),
                (b"ELEMENTS=", b"ELEMENTS=1"), (b"ZONETYPE=FEBRICK", b"ZONETYPE=FETETRAHEDRON"),
                (b"VARLOCATION=([4", b"VARLOCATION=([99"),
                (b"VARLOCATION=([4", b"VARLOCATION=([,4"),
                (b"VARSHARELIST=([1", b"VARSHARELIST=([0"),
                (b"VARSHARELIST=([1,", b"VARSHARELIST=(["), (b"DT=(DOUBLE", b"DT=(DUOBLE"),
                (b"DT=(DOUBLE,", b"DT=("), (b"DT=(DOUBLE", b"DT=(LONGINT"),
                (b"ZONE T=", b"ZONE T=" + 512 * b" ")]:
            with self.subTest(before, after=after):
                self.assertIn(before, whole)
                path.write_bytes(whole.replace(before, after))
                refused = self.read_all(path)
                self.assertTrue(refused or meshrake_data.open(path).zones == [])
        path.write_bytes(whole)
        zone = meshrake_data.open(path).zones[0]
        for array, field in [(zone.columns[0], 26 * b"*"), (zone.columns[3], b" **********"),
                             (zone.columns[3], b" 9999999999"), (zone.element_lists, 11 * b"x")]:
            with self.subTest(field):
                path.write_bytes(
                    whole[: array.offset] + field + whole[array.offset + len(field) :])
                self.assertTrue(self.read_all(path))
                if array is zone.columns[0]:
                    with self.assertRaises(meshrake_data.Damaged):
                        meshrake_data.open(path).series("X", 0)
        path.write_bytes(whole.replace(b", NODES=", b", NODES=" + 30 * b"9"))
        self.assertEqual(meshrake_data.open(path).zones, [])

    def test_xarray(self):
        try:
            import xarray  # noqa: F401
        except ImportError:
            self.skipTest("xarray is not installed")
        data = meshrake_data.open(self.run_program("xarray", WHOLE_PM) / "to.pm.dat")
        converted = data.to_xarray()
        self.assertEqual(len(converted), len(data.variables))
        second = data.variables.index("Head", data.variables.index("Head") + 1)
        numpy.testing.assert_array_equal(converted["Head (2)"][1], data.values(second, 1))
        head = converted["Head"]
        self.assertEqual(head.dims, ("time", "node"))
        numpy.testing.assert_array_equal(head.sel(time=3600.0), data["Head", 3600.0])


unittest.main(argv=sys.argv[:1])
