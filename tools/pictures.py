#!/usr/bin/python3
"""Makes the documents' pictures from the programs, playing a recording. What it makes is the same each time.

usage: pictures.py BIN FOLDER
"""

import html
import itertools
import os
import pty
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
RECORDING = ROOT / "docs/pictures/afternoon.json"
WIDTH, HEIGHT = 100, 32  # of the terminal, in cells
CELL_WIDTH, CELL_HEIGHT, MARGIN = 8.4, 18, 12
# Each of a terminal's colours on a light and on a dark page.
COLOURS = {"default": ("#1f2328", "#e6edf3"), "page": ("#ffffff", "#0d1117"), "green": ("#1a7f37", "#56d364"),
           "d70000": ("#cf222e", "#ff7b72"), "d78700": ("#9a6700", "#e3b341"), "808080": ("#656d76", "#8b949e")}


def read_screen(programs):
    """The live view, paused two fifths into the recording."""
    os.environ["ORV_BIN"] = str(programs)
    sys.path.insert(0, str(ROOT / "tests/process"))
    from terminal import Terminal  # pylint: disable=import-outside-toplevel

    terminal = Terminal(WIDTH, HEIGHT)
    try:
        terminal.start(programs / "orvctl", "top", "--simulate", RECORDING,
                       environment={"PATH": os.environ["PATH"], "TERM": "xterm-256color", "LANG": "C.UTF-8", "TZ": "UTC"})
        terminal.until_shown("q end")
        terminal.type(" ")
        terminal.until_shown("paused")
        terminal.type("4")
        terminal.until_shown("0:16:00")
        terminal.screen.reset()
        terminal.type("\f")  # drawn anew, since pyte does not know how to scroll
        terminal.until(lambda lines: lines[0] and "q end" in lines[-1])
        return [[terminal.screen.buffer[row][column] for column in range(WIDTH)] for row in range(HEIGHT)]
    finally:
        terminal.close()


def colours_of(cell):
    """The classes of its text and of what is behind it."""
    front, back = cell.fg, "page" if cell.bg == "default" else cell.bg
    return (back, front) if cell.reverse else (front, back)


def shade(colour, theme):
    """Six hexadecimal digits, or a name that style sheets know too."""
    plain = f"#{colour}" if len(colour) == 6 and set(colour) <= set("0123456789abcdef") else colour
    return COLOURS.get(colour, (plain, plain))[theme]


def draw_run(row, column, cells):
    """Cells of one look: what is behind them, and each character at its own place, whatever the font."""
    front, back = colours_of(cells[0])
    x, y = MARGIN + column * CELL_WIDTH, MARGIN + row * CELL_HEIGHT
    if back != "page":
        yield (f'<rect x="{x:.1f}" y="{y}" width="{len(cells) * CELL_WIDTH:.1f}" height="{CELL_HEIGHT}"'
               f' class="f-{back}"/>')
    shown = [(x + place * CELL_WIDTH, cell.data) for place, cell in enumerate(cells) if cell.data.strip()]
    if shown:
        bold = " bold" if cells[0].bold else ""
        yield (f'<text x="{" ".join(f"{place:.1f}" for place, _ in shown)}" y="{y + 13.5}" class="f-{front}{bold}">'
               f'{html.escape("".join(text for _, text in shown))}</text>')


def draw_screen(screen):
    for row, cells in enumerate(screen):
        column = 0
        for _, run in itertools.groupby(cells, lambda cell: (colours_of(cell), cell.bold)):
            run = list(run)
            yield from draw_run(row, column, run)
            column += len(run)


def screen_svg(screen):
    """SVG 1.1 for light and dark pages."""
    width, height = 2 * MARGIN + WIDTH * CELL_WIDTH, 2 * MARGIN + HEIGHT * CELL_HEIGHT
    names = sorted({"page"}.union(*(colours_of(cell) for cells in screen for cell in cells)))
    light, dark = ("\n".join(f".f-{name} {{ fill: {shade(name, theme)} }}" for name in names) for theme in (0, 1))
    return "\n".join((
        f'<svg xmlns="http://www.w3.org/2000/svg" version="1.1" width="{width:g}" height="{height:g}"'
        f' viewBox="0 0 {width:g} {height:g}" xml:lang="en">',
        "<title>orvctl top</title>", "<desc>The full-screen view of a terminal, playing a recording.</desc>",
        '<style type="text/css">',
        'text { font-family: "DejaVu Sans Mono", Menlo, Consolas, monospace; font-size: 14px }', ".bold { font-weight: bold }",
        light, "@media (prefers-color-scheme: dark) {", dark, "}", "</style>",
        f'<rect width="{width:g}" height="{height:g}" rx="8" class="f-page"/>', *draw_screen(screen), "</svg>", ""))


def has_terminal():
    try:
        for file in pty.openpty():
            os.close(file)
    except OSError as error:
        print(f"not tested: a screen needs a pseudo-terminal (is /dev/pts mounted?): {error}", file=sys.stderr)
        return False
    return True


def main():
    programs, folder = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    if has_terminal():
        (folder / "top.svg").write_text(screen_svg(read_screen(programs)), encoding="utf-8")
    subprocess.run((programs / "orvctl", "plot", RECORDING, "-o", folder / "plot.svg", "--force"), check=True)


if __name__ == "__main__":
    main()
