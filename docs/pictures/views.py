"""Draws block.png and section.png from the index of the demo; docs/make_pictures.sh runs it.

    pvbatch docs/pictures/views.py demo-problem/catchment.xdmf FOLDER
"""

import math
import re
import sys

from paraview.simple import *  # noqa: F403

EXAGGERATION = 5  # of heights
BLACK = [0.0, 0.0, 0.0]
WATER = [0.08, 0.25, 0.55]
STREAM = [0.0, 0.2, 0.9]
NITRATE = [[0.95, 0.6, 0.1], [0.85, 0.25, 0.25], [0.55, 0.1, 0.45]]

LIMIT = 0.05  # of nitrate, kg/m3

# The section follows the way of the plume: its begin, and its direction from the x axis.
SECTION_POINT = [1655.2, 1289.6]  # m
SECTION_ANGLE = 242.9992  # degrees


def block(reader, name, time):
    """The domain at a time, with exaggerated heights."""
    fixed = ForceTime(Input=reader, ForcedTime=time)
    fixed.UpdatePipeline(time)
    blocks = str(fixed.GetDataInformation().GetHierarchy())
    # The reader may add a number to a name that occurs at several times.
    selector = re.search(rf'<(\w+) id="\d+" label="{name}\b', blocks)[1]
    part = MergeBlocks(Input=ExtractBlock(Input=fixed, Selectors=[f"//{selector}"]))
    higher = Transform(Input=part)
    higher.Transform.Scale = [1, 1, EXAGGERATION]
    return higher


def new_view(width, height):
    view = CreateView("RenderView")
    view.ViewSize = [width, height]
    view.UseColorPaletteForBackground = 0
    view.Background = [1, 1, 1]
    view.OrientationAxesVisibility = 0
    view.CameraParallelProjection = 1
    return view


def plain(source, view, colour, **properties):
    display = Show(source, view)
    display.ColorArrayName = [None, ""]
    display.AmbientColor = display.DiffuseColor = colour
    display.Ambient, display.Diffuse = 1, 0
    for name, value in properties.items():
        setattr(display, name, value)


def coloured(source, view, array, limits, title, label_format, position, **properties):
    """Shows an array with a scalar bar. Returns its table of colours."""
    display = Show(source, view)
    display.SetRepresentationType("Surface")
    ColorBy(display, ("POINTS", array))
    for name, value in properties.items():
        setattr(display, name, value)
    table = GetColorTransferFunction(array)
    table.RescaleTransferFunction(*limits)
    scale = GetScalarBar(table, view)
    scale.Title, scale.ComponentTitle = title, ""
    scale.TitleColor = scale.LabelColor = BLACK
    scale.TitleFontSize = scale.LabelFontSize = 20
    scale.ScalarBarThickness, scale.ScalarBarLength = 22, 0.3
    scale.RangeLabelFormat = scale.LabelFormat = label_format
    scale.WindowLocation, scale.Position = "Any Location", position
    display.SetScalarBarVisibility(view, True)
    return table


def label(text, view, position, colour=BLACK):
    display = Show(Text(Text=text), view)
    display.WindowLocation, display.Position = "Any Location", position
    display.FontSize, display.Color, display.Justification = 20, colour, "Left"


def box_clip(source, position, length, keep_inside):
    clip = Clip(Input=source, ClipType="Box")
    clip.ClipType.Position, clip.ClipType.Length = position, length
    clip.Invert = int(keep_inside)
    return clip


def camera(view, focal, position, scale):
    view.CameraFocalPoint, view.CameraPosition = focal, position
    view.CameraViewUp, view.CameraParallelScale = [0, 0, 1], scale


def draw_block(reader, time, file):
    view = new_view(1200, 680)
    pm, chan = block(reader, "pm", time), block(reader, "chan", time)
    # A corner is cut away, so that the heads below the ground and the water table are seen.
    corner = [-10, -10, -1000], [1130, 490, 5000]
    cut = box_clip(pm, *corner, keep_inside=False)
    table = coloured(cut, view, "Head", [215, 295], "Head (m)", "%.0f", [0.05, 0.62],
                     Ambient=0.35, Diffuse=0.75)
    table.ApplyPreset("Viridis (matplotlib)", True)
    lines = Contour(Input=ExtractSurface(Input=cut), ContourBy=["POINTS", "Head"],
                    Isosurfaces=list(range(220, 300, 5)))
    plain(Tube(Input=lines, Radius=2.0), view, BLACK, Opacity=0.5)
    water_table = Contour(Input=pm, ContourBy=["POINTS", "Pressure Head"], Isosurfaces=[0.0])
    plain(box_clip(water_table, *corner, keep_inside=True), view, [0.3, 0.6, 1.0], Opacity=0.5)
    plain(Tube(Input=ExtractSurface(Input=chan), Radius=8), view, STREAM)
    label("Stream", view, [0.78, 0.74], STREAM)
    label("Water table, where the\nground is cut away", view, [0.42, 0.10], WATER)
    label(f"Heads {time / 3600:.0f} h after the start\n"
          f"Lines every 5 m, heights x {EXAGGERATION}", view, [0.72, 0.05])
    camera(view, [1080, 640, 1265], [-1270, -2460, 3665], 865)
    SaveScreenshot(file, view)


def along_section(source):
    """Turns the mesh about the point of the section, so that the section is the plane y = 0."""
    moved = Transform(Input=source)
    moved.Transform.Translate = [-SECTION_POINT[0], -SECTION_POINT[1], 0]
    turned = Transform(Input=moved)
    turned.Transform.Rotate = [0, 0, -SECTION_ANGLE]
    section = Slice(Input=turned)
    section.SliceType.Origin, section.SliceType.Normal = [0, 0, 0], [0, 1, 0]
    return section


def draw_section(reader, times, file):
    view = new_view(1200, 480)
    section = along_section(block(reader, "pm", times[1]))
    table = coloured(section, view, "Sat", [0.2, 1], "Saturation", "%.1f", [0.88, 0.5],
                     Ambient=1, Diffuse=0)
    table.RGBPoints = [0.2, 0.93, 0.84, 0.62, 0.6, 0.74, 0.85, 0.83, 1.0, 0.55, 0.74, 0.92]
    water_table = Contour(Input=section, ContourBy=["POINTS", "Pressure Head"], Isosurfaces=[0.0])
    plain(water_table, view, WATER, LineWidth=3)
    label("Water table", view, [0.085, 0.63], WATER)
    label("Stream", view, [0.575, 0.48], STREAM)
    label(f"Saturation {times[1] / 3600:.0f} h after the start, heights x {EXAGGERATION}", view,
          [0.10, 0.92])
    label(f"Nitrate above {LIMIT * 1000:.0f} mg/L", view, [0.50, 0.80])
    for number, time in enumerate(times):
        plume = Contour(Input=along_section(block(reader, "pm", time)),
                        ContourBy=["POINTS", "Nitrate"], Isosurfaces=[LIMIT])
        plain(plume, view, NITRATE[number], LineWidth=3)
        label(f"after {time / 3600:.0f} h", view, [0.50, 0.74 - 0.06 * number], NITRATE[number])
    grid = view.AxesGrid
    grid.Visibility = 1
    grid.DataScale = [1, 1, EXAGGERATION]
    grid.XTitle, grid.ZTitle = "Along the section (m)", "z (m)"
    grid.AxesToLabel = 1 + 4
    for axis in "XYZ":
        setattr(grid, axis + "TitleColor", BLACK)
        setattr(grid, axis + "LabelColor", BLACK)
        setattr(grid, axis + "TitleFontSize", 18)
        setattr(grid, axis + "LabelFontSize", 16)
    grid.GridColor = BLACK
    camera(view, [770, 0, 1200], [770, -5000, 1200], 365)
    SaveScreenshot(file, view)


def main():
    reader = XDMFReader(FileNames=[sys.argv[1]])
    reader.UpdatePipelineInformation()
    times = list(reader.TimestepValues)
    draw_block(reader, times[3], sys.argv[2] + "/block.png")
    draw_section(reader, [times[0], times[2], times[4]], sys.argv[2] + "/section.png")


main()
