#!/usr/bin/env python3
"""Draws what `adaptors-bench --recovery` measured.

    adaptors-bench --recovery 200 > recovery.csv
    python3 bench/plot_recovery.py recovery.csv docs/recovery.svg

Writes the plot, and prints a table in Markdown.
"""

import collections
import csv
import sys

COLOURS = ["#1b6ca8", "#d1495b", "#2e933c", "#8d5a97", "#e08e00", "#333333"]
CLIPS = 60
LEFT, TOP, WIDTH, HEIGHT, GAP = 60, 40, 380, 260, 70


def read(name):
    rows = collections.defaultdict(list)
    with open(name, newline="") as file:
        for row in csv.DictReader(file):
            rows[int(row["version"]), row["damage"]].append(
                (float(row["place"]), int(row["whole"]), int(row["recovered"]), int(row["in place"]), row["problem"]))
    for values in rows.values():
        values.sort()
    return rows


def panel(rows, damage, title, number, lowest):
    """Lines of the share of clips by the place of the damage. The scale begins at `lowest`."""
    left = LEFT + number * (WIDTH + GAP)
    span = 1 - lowest

    def at(place, share):
        return "%.1f,%.1f" % (left + WIDTH * place, TOP + HEIGHT * (1 - (share - lowest) / span))

    lines = ['<text x="%d" y="%d" font-weight="bold">%s</text>' % (left, TOP - 14, title)]
    for step in range(6):
        share = lowest + span * step / 5
        y = TOP + HEIGHT * (1 - step / 5)
        lines.append('<path d="M%d %.1fh%d" stroke="#ddd"/>' % (left, y, WIDTH))
        lines.append('<text x="%d" y="%.1f" text-anchor="end">%.0f %%</text>' % (left - 6, y + 4, 100 * share))
        x = left + WIDTH * step / 5
        lines.append('<text x="%.1f" y="%d" text-anchor="middle">%d %%</text>' % (x, TOP + HEIGHT + 18, 20 * step))
    for colour, version in zip(COLOURS, sorted({version for version, _ in rows})):
        points = " ".join(at(place, recovered / CLIPS) for place, _, recovered, _, _ in rows[version, damage])
        lines.append('<polyline points="%s" fill="none" stroke="%s" stroke-width="1.5"/>' % (points, colour))
    return lines


def plot(rows):
    versions = sorted({version for version, _ in rows})
    width, height = LEFT + 2 * WIDTH + GAP + 20, TOP + HEIGHT + 80
    lines = ['<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" font-family="sans-serif" font-size="12">' % (width, height),
             '<rect width="100%" height="100%" fill="#fff"/>']
    lines += panel(rows, "cut", "Clips recovered by the place of the cut", 0, 0)
    lines += panel(rows, "block", "Clips recovered by the place of a lost block", 1, 0.9)
    for number, (colour, version) in enumerate(zip(COLOURS, versions)):
        x = LEFT + 110 * number
        lines.append('<path d="M%d %dh20" stroke="%s" stroke-width="3"/>' % (x, height - 24, colour))
        lines.append('<text x="%d" y="%d">version %d</text>' % (x + 26, height - 20, version))
    return "\n".join(lines + ["</svg>"]) + "\n"


def table(rows):
    lines = ["| Version | Damage | Damaged files | Clips whole in them | Of those recovered | All recovered | At their own time | Problems |",
             "|---|---|---|---|---|---|---|---|"]
    for (version, damage), values in sorted(rows.items()):
        whole = sum(value[1] for value in values)
        recovered = sum(value[2] for value in values)
        kept = sum(min(value[1], value[2]) for value in values)
        lines.append("| %d | %s | %d | %d | %.1f %% | %d | %d | %d |" % (
            version, {"cut": "cut off", "block": "512 NUL bytes"}[damage], len(values), whole, 100 * kept / whole,
            recovered, sum(value[3] for value in values), sum(1 for value in values if value[4])))
    lines += ["", "| Cut at | " + " | ".join("version %d" % version for version in sorted({v for v, _ in rows})) + " |",
              "|---|" + "---|" * len({v for v, _ in rows})]
    for tenth in range(1, 11):
        shares = []
        for version in sorted({version for version, _ in rows}):
            values = [value for value in rows[version, "cut"] if (tenth - 1) / 10 <= value[0] < tenth / 10]
            shares.append("%.0f %%" % (100 * sum(value[2] for value in values) / len(values) / CLIPS))
        lines.append("| %d to %d %% | %s |" % (10 * tenth - 10, 10 * tenth, " | ".join(shares)))
    return "\n".join(lines)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    rows = read(sys.argv[1])
    with open(sys.argv[2], "w") as file:
        file.write(plot(rows))
    print(table(rows))


if __name__ == "__main__":
    main()
