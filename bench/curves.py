"""Draws the time against the amount of work: one panel for each kind of work, both axes in powers of ten."""
import statistics

import matplotlib

matplotlib.use("svg")
from matplotlib import pyplot  # noqa: E402

SIDES = {"library": ("C0", "-"), "floor": ("C1", "--"), "std::filesystem": ("C7", "--")}
LINES = [  # title, label of the axis, [(row, other keys, note, opacity)]
    ("Media walk without a match", "files", [("walk", None, ", traced", 0.5), ("quiet-walk", None, "", 1)]),
    ("LoadInformation", "applications",
     [("load-information", "0", "", 1), ("load-information", "10000", ", 10,000 other keys", 0.5)]),
]


def points(rows, name, other, side):
    found = []
    for (row_name, size), row in rows.items():
        work, _, others = size.partition("+")
        if row_name == name and side in row.sides and other in (None, others):
            found.append((int(work), statistics.median(row.sides[side]) / 1e6))
    return sorted(found)


def draw(rows, file):
    figure, panels = pyplot.subplots(1, 2, figsize=(11, 4.2), layout="constrained")
    for panel, (title, label, kinds) in zip(panels, LINES):
        for name, other, note, opacity in kinds:
            for side, (colour, dashes) in SIDES.items():
                if line := points(rows, name, other, side):
                    panel.loglog(*zip(*line), dashes, marker="o", markersize=4, color=colour, alpha=opacity,
                                 label=side + note)
        panel.set(title=title, xlabel=label, ylabel="milliseconds")
        panel.grid(color="#ddd")
        panel.legend(frameon=False)
    # The same measurements give the same file, so it contains no date and no random names.
    with pyplot.rc_context({"svg.fonttype": "none", "svg.hashsalt": "speed"}):
        figure.savefig(file, metadata={"Date": None})
