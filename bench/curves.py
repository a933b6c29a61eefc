"""Draws how the time grows with the work: one panel a kind of work, both axes in powers of ten."""
import math
import statistics

WIDTH, HEIGHT, LEFT, TOP, RIGHT, BOTTOM = 440, 340, 64, 40, 16, 48
COLOURS = {"library": "#1f5fa8", "floor": "#d9822b", "std::filesystem": "#7a7a7a"}
PALE = {"library": "#7fb2e5", "floor": "#e8b98a"}  # of a second pair of lines


def panels(rows):
    """(title, label of the axis, [(name, side, [(work, milliseconds)])])"""
    def line(name, side, other=None):
        points = []
        for (row_name, size), row in rows.items():
            work, _, others = size.partition("+")
            if row_name == name and side in row.sides and (other is None or others == other):
                points.append((int(work), statistics.median(row.sides[side]) / 1e6))
        return sorted(points)

    walk = [(f"{side}{note}", side, line(name, side)) for name, note in (("walk", ", traced"), ("quiet-walk", ""))
            for side in COLOURS]
    load = [(f"{side}{note}", side, line("load-information", side, other))
            for other, note in (("0", ""), ("10000", ", 10,000 other keys")) for side in COLOURS]
    return [("Media walk without a match", "files", walk), ("LoadInformation", "applications", load)]


def draw(title, label, lines, x0):
    lines = [line for line in lines if line[2]]
    if not lines:
        return ""
    points = [p for _, _, line in lines for p in line]
    low = [math.floor(math.log10(min(p[i] for p in points))) for i in (0, 1)]
    high = [max(low[i] + 1, math.ceil(math.log10(max(p[i] for p in points)) - 1e-9)) for i in (0, 1)]

    def x(work):
        return x0 + LEFT + (math.log10(work) - low[0]) / (high[0] - low[0]) * (WIDTH - LEFT - RIGHT)

    def y(ms):
        return HEIGHT - BOTTOM - (math.log10(ms) - low[1]) / (high[1] - low[1]) * (HEIGHT - TOP - BOTTOM)

    out = [f'<text x="{x0 + LEFT}" y="22" font-weight="bold">{title}</text>']
    for power in range(low[0], high[0] + 1):
        at = x(10.0**power)
        out.append(f'<path class="grid" d="M{at:.1f} {TOP}V{HEIGHT - BOTTOM}"/>'
                   f'<text x="{at:.1f}" y="{HEIGHT - BOTTOM + 16}" text-anchor="middle">{10**power:,}</text>')
    for power in range(low[1], high[1] + 1):
        at = y(10.0**power)
        out.append(f'<path class="grid" d="M{x0 + LEFT} {at:.1f}H{x0 + WIDTH - RIGHT}"/>'
                   f'<text x="{x0 + LEFT - 6}" y="{at + 4:.1f}" text-anchor="end">{10.0**power:g} ms</text>')
    out.append(f'<text x="{x0 + (LEFT + WIDTH - RIGHT) / 2}" y="{HEIGHT - 10}" text-anchor="middle">{label}</text>')
    for index, (name, side, line) in enumerate(lines):
        colour = (PALE if "," in name else COLOURS)[side]
        dash = ' stroke-dasharray="5 4"' if side != "library" else ""
        path = "M" + "L".join(f"{x(w):.1f} {y(ms):.1f}" for w, ms in line)
        out.append(f'<path d="{path}" fill="none" stroke="{colour}" stroke-width="2"{dash}/>')
        out += [f'<circle cx="{x(w):.1f}" cy="{y(ms):.1f}" r="3" fill="{colour}"/>' for w, ms in line]
        row = HEIGHT - BOTTOM - 10 - 15 * (len(lines) - 1 - index)
        out.append(f'<path d="M{x0 + WIDTH - 200} {row - 4}h22" stroke="{colour}" stroke-width="2"{dash}/>'
                   f'<text x="{x0 + WIDTH - 172}" y="{row}">{name}</text>')
    return "\n".join(out)


def curves(rows) -> str:
    drawn = [draw(*panel, x0=WIDTH * index) for index, panel in enumerate(panels(rows))]
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{2 * WIDTH}" height="{HEIGHT}" '
            f'viewBox="0 0 {2 * WIDTH} {HEIGHT}" font-family="sans-serif" font-size="11">\n'
            '<style>.grid { stroke: #ddd; fill: none }</style>\n'
            f'<rect width="{2 * WIDTH}" height="{HEIGHT}" fill="white"/>\n' + "\n".join(drawn) + "\n</svg>\n")
