"""The results as a table: of text, or of Markdown."""

HEADINGS = ["row", "CPU: worker", "floor", "ratio", "wall: worker", "floor", "ratio",
            "peak: worker", "floor", "ratio", "calls: worker", "floor", "ratio"]


def _seconds(value):
    return f"{value:.2f} s" if value >= 1 else f"{value * 1000:.{1 if value >= 0.1 else 2}f} ms"


def _mebibytes(kibibytes):
    return f"{kibibytes / 1024:.1f} MiB"


def _count(value):
    return f"{value:,}"


def _cells(result, key, text):
    worker, floor = result["worker"][key], result["floor"][key]
    if worker is None or floor is None:
        return ["-", "-", "-"]
    return [text(worker), text(floor), f"{worker / floor:.1f}" if floor else "-"]


def row_cells(result):
    return [result["name"], *_cells(result, "cpu", _seconds), *_cells(result, "wall", _seconds),
            *_cells(result, "peak", _mebibytes), *_cells(result, "calls", _count)]


def markdown(results):
    rows = [HEADINGS, ["---"] + ["---:"] * (len(HEADINGS) - 1)]
    rows += [row_cells(result) for result in results]
    return "\n".join("| " + " | ".join(row) + " |" for row in rows)


def text(results):
    rows = [HEADINGS] + [row_cells(result) for result in results]
    widths = [max(len(row[column]) for row in rows) for column in range(len(HEADINGS))]
    lines = []
    for row in rows:
        cells = [row[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
        lines.append("  ".join(cells))
    return "\n".join(lines)
