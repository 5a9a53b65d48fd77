"""The rows as a table: for a terminal, and as the generated part of docs/measured.md."""

import pathlib
import platform

from rows import HEADINGS

DOCUMENT = pathlib.Path(__file__).resolve().parents[2] / "docs/measured.md"
BEGIN = "<!-- From here to the next such line scripts/bench --markdown writes. -->"
END = "<!-- To here. -->"


def processor():
    lines = pathlib.Path("/proc/cpuinfo").read_text().splitlines()
    names = [line.split(":", 1)[1].strip() for line in lines if line.startswith("model name")]
    return f"{names[0] if names else platform.machine()}, {len(names) or '?'} processors, Linux {platform.release()}"


def print_table(rows):
    print(processor())
    table = [HEADINGS, *(row.cells() for row in rows)]
    widths = [max(len(cells[column]) for cells in table) for column in range(len(HEADINGS))]
    for cells in table:
        print("  ".join(cell.ljust(width) for cell, width in zip(cells, widths)).rstrip())


def write_document(rows):
    """Replaces the part between the two marks; the rest of the document stays."""
    before, rest = DOCUMENT.read_text().split(BEGIN)
    _, after = rest.split(END)
    lines = [HEADINGS, ["---"] * len(HEADINGS), *(row.cells() for row in rows)]
    table = "\n".join("| " + " | ".join(cells) + " |" for cells in lines)
    DOCUMENT.write_text(f"{before}{BEGIN}\n\nMeasured on: {processor()}.\n\n{table}\n\n{END}{after}")
