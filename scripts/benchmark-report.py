#!/usr/bin/env python3
"""Makes one table of what the benchmarks wrote, and with --page the curves beside it.

    benchmark-report.py <directory of .json files> [--page docs/performance.md]

The page gets each table between its marks and, beside it in images/, the curves.
"""
import json
import math
import re
import statistics
import sys
from pathlib import Path

SIZES = [1000, 10000, 100000, 1000000]
MEMORY_OF_EXPORT = 150  # megabytes
MEMORY_OF_IMPORT = 3  # times the file
CURVE_QUESTIONS = 3  # responses a question

# Label, benchmark, its baseline, and the limit: a ratio to the baseline or a time in milliseconds, for
# 100,000 and for 1,000,000 respondents.
ROWS = [
    ("Import of the results file", "Import", "Import_BareSQLite", "ratio", (2, 2)),
    ("Opening the survey", "Open", None, "time", (300, 500)),
    ("Analyze screen", "Summary", "Summary_BareSQLite", "ratio", (1.5, 1.5)),
    ("Respondent list on screen", "ListOnScreen", "ListOnScreen_BareSQLite", "time", (200, 1000)),
    ("A page of it scrolled", "ScrollAPage", None, "time", (50, 50)),
    ("Export", "Write/export", "Shell/dump", "ratio", (2, 2)),
    ("Table", "Write/table", "Shell/dump", "ratio", (2, 2)),
    ("Detailed report", "Write/report", "Shell/dump", "ratio", (4, 4)),
    ("A page turn of manual entry", "PageTurn", "PageTurn_BareSQLite", "ratio", (3, 3)),
]
DESIGN = [
    ("Opening", "DesignOpen", 1000),
    ("Saving", "DesignSave", 1000),
    ("Adding a question", "DesignAdd", 1000),
    ("Moving a question", "DesignMove", 1000),
    ("Deleting a question", "DesignDelete", 1000),
    ("Typing a key", "DesignKey", 5),
]
STARTS = [
    ("Starting with that survey, but for the splash", "Start/survey", 1000),
    ("Starting without one, but for the splash", "Start/warm", 1000),
    ("The same after the system forgot the program", "Start/cold", 1000),
]
COLOURS = ["#1b6ca8", "#c8553d", "#2e7d32", "#7b3f9e", "#b8860b", "#00838f", "#ad1457", "#5d4037",
           "#546e7a"]


class Measured:
    """The median of a benchmark's repetitions."""

    def __init__(self, runs):
        def median(field, otherwise=None):
            values = [run[field] for run in runs if field in run]
            return statistics.median(values) if values else otherwise

        self.ms = median("real_time")
        self.cpu = median("cpu_ms", median("cpu_time"))
        self.peak = max((run["peak_MB"] for run in runs if "peak_MB" in run), default=None)
        self.file = median("file_MB")
        self.first_paint = median("first_paint_ms")


def read(directory):
    """By name and the numbers behind it, such as ("Write/export", 100000)."""
    runs = {}
    for path in sorted(Path(directory).glob("*.json")):
        for run in json.loads(path.read_text())["benchmarks"]:
            if run["run_type"] != "iteration":
                continue
            if run.get("error_occurred"):
                sys.exit(f"{run['name']}: {run.get('error_message')}")
            parts = [part for part in run["name"].split("/")
                     if not re.match(r"iterations:|repeats:|manual_time$", part)]
            words = [part for part in parts if not re.search(r"\d+$", part)]
            numbers = [int(re.search(r"\d+$", part)[0]) for part in parts if part not in words]
            runs.setdefault(("/".join(words), *numbers), []).append(run)
    return {name: Measured(of) for name, of in runs.items()}


def time_text(ms):
    if ms >= 1000:
        return f"{ms / 1000:.3g} s" if ms < 100000 else f"{ms / 1000:.0f} s"
    return f"{ms:.3g} ms"


def answer_rows(measured, sizes):
    for size in sizes:
        for label, name, base, kind, limits in ROWS:
            one = measured.get((name, size))
            if not one:
                continue
            other = measured.get((base, size))
            limit = limits[size >= 1000000]
            ratio = one.ms / other.ms if other else None
            met = (ratio if kind == "ratio" else one.ms) <= limit
            memory = ""
            if name == "Import":
                memory = f"{one.peak:.0f} MB, {one.peak / one.file:.2f}× the file"
                met = met and (size < 1000000 or one.peak <= MEMORY_OF_IMPORT * one.file)
            elif name.startswith("Write/"):
                memory = f"{one.peak:.0f} MB"
                met = met and one.peak <= MEMORY_OF_EXPORT
            yield [label, f"{size:,}", time_text(one.ms), time_text(other.ms) if other else "",
                   f"{ratio:.2f} ({one.cpu / other.cpu:.2f})" if other else "",
                   f"{limit:g}×" if kind == "ratio" else time_text(limit), memory,
                   "yes" if met else "**no**"]


def design_rows(measured):
    for label, name, limit in DESIGN + STARTS:
        one = measured.get((name, 1000, 20) if name.startswith("Design") else (name,))
        if not one:
            continue
        note = (f"first paint after {time_text(one.first_paint)}" if one.first_paint else
                f"{time_text(one.cpu)} of processor time")
        yield [label, time_text(one.ms), note, time_text(limit), "yes" if one.ms <= limit else "**no**"]


def table(head, rows):
    lines = [head, ["---"] * len(head), *rows]
    widths = [max(len(line[i]) for line in lines) for i in range(len(head))]
    return "\n".join("| " + " | ".join(cell.ljust(width) for cell, width in zip(line, widths)) + " |"
                     for line in lines)


def steepness(points):
    """How the cost grows over the last eight- or tenfold: 1 is linear, 0 not at all."""
    last = points[-1]
    first = max([p for p in points if p[0] * 8 <= last[0]] or points[:1])
    return math.log(last[1] / first[1]) / math.log(last[0] / first[0])


def curve(title, x_title, series):
    """A drawing of times over sizes, both axes in powers of ten (or two), as SVG."""
    width, height, left, right, top, bottom = 860, 520, 70, 250, 50, 60
    xs = sorted({x for points in series.values() for x, _ in points})
    ys = [y for points in series.values() for _, y in points]
    low, high = math.floor(math.log10(min(ys))), math.ceil(math.log10(max(ys)))

    def at(x, y):
        span = math.log(xs[-1] / xs[0])
        return (left + (width - left - right) * math.log(x / xs[0]) / span,
                top + (height - top - bottom) * (high - math.log10(y)) / (high - low))

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
           'font-family="sans-serif" font-size="13" fill="#222">',
           f"<title>{title}</title>",
           f'<rect width="{width}" height="{height}" fill="#fff"/>',
           f'<text x="{left}" y="26" font-size="16" font-weight="bold">{title}</text>']
    edge, base = width - right, height - bottom
    for power in range(low, high + 1):
        y = at(xs[0], 10**power)[1]
        out.append(f'<path d="M{left} {y:.1f}H{edge}" stroke="#ddd"/><text x="{left - 8}" '
                   f'y="{y + 4:.1f}" text-anchor="end">{time_text(10**power)}</text>')
    for x in xs:
        out.append(f'<path d="M{at(x, 1)[0]:.1f} {top}V{base}" stroke="#eee"/><text '
                   f'x="{at(x, 1)[0]:.1f}" y="{base + 20}" text-anchor="middle">{x:,}</text>')
    out.append(f'<text x="{(left + edge) / 2}" y="{height - 14}" text-anchor="middle">{x_title}</text>')
    # What grows with the size stays parallel to this line.
    start = 10**low * 1.3
    end_x = min(xs[-1], xs[0] * 10**high / start)
    (x1, y1), (x2, y2) = at(xs[0], start), at(end_x, start * end_x / xs[0])
    out.append(f'<path d="M{x1:.1f} {y1:.1f}L{x2:.1f} {y2:.1f}" stroke="#999" stroke-dasharray="5 4"/>')
    legend = sorted(series.items(), key=lambda item: -item[1][-1][1])
    row = top
    for number, (label, points) in enumerate(legend):
        colour = COLOURS[number % len(COLOURS)]
        places = [at(x, y) for x, y in points]
        line = "L".join(f"{x:.1f} {y:.1f}" for x, y in places)
        out.append(f'<path d="M{line}" fill="none" stroke="{colour}" stroke-width="2"/>')
        out += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3.5" fill="{colour}"/>' for x, y in places]
        # Each label as near to its line's end as the one above leaves room for.
        row = max(row, places[-1][1])
        out.append(f'<path d="M{places[-1][0] + 5:.1f} {places[-1][1]:.1f}L{edge + 22} {row:.1f}" '
                   f'stroke="{colour}" stroke-width="0.7"/><text x="{edge + 26}" y="{row + 4:.1f}" '
                   f'fill="{colour}">{label}</text>')
        row += 18
    out.append(f'<path d="M{edge + 4} {height - 18}h26" stroke="#999" stroke-dasharray="5 4"/>'
               f'<text x="{edge + 36}" y="{height - 14}">in step with the size</text></svg>')
    return "\n".join(out) + "\n"


def put(page, mark, text):
    """Between <!-- mark --> and <!-- end -->."""
    pattern = re.compile(f"(<!-- {mark} -->\n).*?(<!-- end -->)", re.S)
    if not pattern.search(page):
        sys.exit(f"The page has no mark {mark}.")
    return pattern.sub(lambda found: f"{found[1]}\n{text}\n\n{found[2]}", page)


def main():
    measured = read(sys.argv[1])
    tables = {
        "respondents": table(["Operation", "Respondents", "Time", "Plain SQLite", "Ratio (processor)",
                              "Limit", "Memory", "Met"],
                             list(answer_rows(measured, SIZES[2:]))),
        "questions": table(["1,000 questions, 20 responses each", "Time", "", "Limit", "Met"],
                           list(design_rows(measured))),
    }
    curves = {
        "respondents": ("Time by respondents", "respondents, 17 answers each",
                        {label: [(s, measured[name, s].ms) for s in SIZES if (name, s) in measured]
                         for label, name, *_ in ROWS}),
        "questions": ("Time by questions", "questions, three responses each",
                      {label: sorted((key[1], one.ms) for key, one in measured.items()
                                     if key[0] == name and key[2] == CURVE_QUESTIONS)
                       for label, name, _ in DESIGN}),
    }
    for name, text in tables.items():
        print(text + "\n")
        series = {label: points for label, points in curves[name][2].items() if len(points) > 1}
        curves[name] = (*curves[name][:2], series)
        if not series:
            continue
        growth = [[label, *(time_text(y) for _, y in points), f"{steepness(points):.2f}"]
                  for label, points in series.items()]
        sizes = [f"{x:,}" for x, _ in next(iter(series.values()))]
        tables[name] += "\n\n" + table(["Growth", *sizes, "Steepness"], growth)
        print(tables[name].split("\n\n")[1] + "\n")
    if "--page" in sys.argv:
        page = Path(sys.argv[sys.argv.index("--page") + 1])
        text = page.read_text()
        for name, content in tables.items():
            text = put(text, name, content)
            image = page.parent / "images" / f"cost-by-{name}.svg"
            image.write_text(curve(*curves[name]))
        page.write_text(text)


main()
