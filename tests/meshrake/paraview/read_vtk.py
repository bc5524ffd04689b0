"""Reads the files of meshrake_vtk with VTK's own reader and compares them with the simulator's files.

    read_vtk.py MESHRAKE_VTK MAKE_PROBLEM

Ends with status 77 if VTK is not installed."""
import os
import struct
import subprocess
import sys
import tempfile

SYSTEM_PYTHON = "/usr/bin/python3"
try:
    import vtk
except ImportError:
    if os.path.realpath(sys.executable) != os.path.realpath(SYSTEM_PYTHON) and os.path.exists(SYSTEM_PYTHON):
        os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON] + sys.argv)
    print("skipped: VTK for Python is not installed (Debian's python3-vtk9)")
    sys.exit(77)


def records(path):
    with open(path, "rb") as source:
        while frame := source.read(4):
            (length,) = struct.unpack("<i", frame)
            yield source.read(length)
            source.read(4)


def integers(payload):
    return struct.unpack("<%di" % (len(payload) // 4), payload)


def reals(payload):
    return struct.unpack("<%dd" % (len(payload) // 8), payload)


def singles(payload):
    return struct.unpack("<%df" % (len(payload) // 4), payload)


def read(path):
    reader = vtk.vtkUnstructuredGridReader()
    reader.SetFileName(path)
    reader.ReadAllScalarsOn()
    reader.ReadAllVectorsOn()
    reader.Update()
    return reader.GetOutput()


def values(data, name):
    array = data.GetArray(name)
    assert array, "no array " + name
    return [array.GetTuple(i) for i in range(array.GetNumberOfTuples())]


def expect_close(what, found, expected):
    assert len(found) == len(expected), "%s: %d values, not %d" % (what, len(found), len(expected))
    for a, b in zip(found, expected):
        assert abs(a - b) <= 1e-4 * max(abs(b), 1e-30), "%s: %g, not %g" % (what, a, b)


def check(elements, cell_type, corners):
    subprocess.run([make_problem, "--nx", "5", "--ny", "4", "--layers", "3", "--times", "1", "--elements",
                    elements, "--variables", "head,v", "--prefix", "t", "."], check=True, stdout=subprocess.DEVNULL)
    subprocess.run([meshrake_vtk], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    grid = read("to.pm.0001.vtk")
    coordinates = list(records("to.coordinates_pm"))
    xyz = reals(coordinates[1])
    nodes = integers(coordinates[0])[0]
    expect_close("points", [c for i in range(grid.GetNumberOfPoints()) for c in grid.GetPoint(i)], xyz)
    expect_close("head", [v[0] for v in values(grid.GetPointData(), "head")], reals(list(records("to.head_pm.0001"))[1]))
    velocity = [singles(r) for r in list(records("to.v_pm.0001"))[1:]]
    found = values(grid.GetCellData(), "linear_velocity_xyz")
    for axis in range(3):
        expect_close("velocity", [v[axis] for v in found], velocity[axis])
    mesh = list(records("to.elements_pm"))
    slots = integers(mesh[2])
    per_element = integers(mesh[0])[0]
    assert grid.GetNumberOfCells() == integers(mesh[1])[0]
    for e in range(grid.GetNumberOfCells()):
        assert grid.GetCellType(e) == cell_type
        points = grid.GetCell(e).GetPointIds()
        own = slots[e * per_element:(e + 1) * per_element]
        assert [points.GetId(k) + 1 for k in range(points.GetNumberOfIds())] == [own[k] for k in corners]
    surface = read("to.olf.0001.vtk")
    assert surface.GetNumberOfPoints() == nodes // 4
    links = integers(list(records("to.coordinates_olf"))[2])
    assert [int(v[0]) for v in values(surface.GetPointData(), "3D_node")] == list(links)


meshrake_vtk, make_problem = (os.path.abspath(name) for name in sys.argv[1:3])
for kind in (("brick", vtk.VTK_HEXAHEDRON, range(8)), ("prism", vtk.VTK_HEXAHEDRON, (0, 1, 2, 2, 3, 4, 5, 5))):
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        check(*kind)
        os.chdir("/")
print("agrees, VTK " + vtk.vtkVersion.GetVTKVersion())
