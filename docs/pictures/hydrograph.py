"""Draws hydrograph.png: rain, and discharge and nitrate at the outlet of the demo.

    PYTHONPATH=python python3 docs/pictures/hydrograph.py demo-problem/catchmento.olf.szplt FILE
"""

import sys

import matplotlib
matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402
import meshrake_data  # noqa: E402

data = meshrake_data.open(sys.argv[1])
hours = data.times / 3600
start = data.times[0]
x, flow = data["X", start], data["Flow Rate", start]
edge = (x == x.min()).nonzero()[0]
outlet = edge[flow[edge].argmax()]
rain = [3.6e6 * data["Rain", time].mean() for time in data.times]  # m/s to mm/h

plt.rcParams.update({"font.size": 12})
figure, (above, below) = plt.subplots(2, 1, figsize=(9, 5), dpi=110, sharex=True,
                                      height_ratios=[1, 2.4], constrained_layout=True)
above.bar(hours, rain, width=1.6, color="#4a90d9")
above.invert_yaxis()
above.set_ylabel("Rain (mm/h)")
above.set_title("Outlet of the catchment: storm, recession and nitrate", fontsize=13)

below.plot(hours, data.series("Flow Rate", outlet), "o-", color="#1f4e8c")
below.set_ylabel("Discharge (m³/s)", color="#1f4e8c")
below.set_xlabel("Time (h)")
below.set_ylim(bottom=0)
below.grid(alpha=0.3)
right = below.twinx()
right.plot(hours, 1000 * data.series("Nitrate", outlet), "s--", color="#b03060")
right.set_ylabel("Nitrate (mg/L)", color="#b03060")
right.set_ylim(bottom=0)
figure.savefig(sys.argv[2])
