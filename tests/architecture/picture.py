#!/usr/bin/env python3
"""Draws the folders and the directions of includes, as the table of layers has them.

    picture.py TABLE              writes the picture, an SVG, to standard output
    picture.py TABLE PICTURE      fails where the file PICTURE is another one

A folder stands above those that it may include. Arrows that follow from others are left out. Pages that show the picture
may be light or dark, so that it brings both and a ground of its own.
"""

import pathlib
import sys

from include_direction import Table

WIDTH, BOX, GAP, ROW = 900, 40, 18, 84
STYLE = """
  rect { fill: #eef3fb; stroke: #41608f; stroke-width: 1.5; rx: 6 }
  rect.ground { fill: #ffffff; stroke: none }
  rect.outside { stroke-dasharray: 5 4; fill: none }
  text { fill: #1b2636; font: 15px sans-serif; text-anchor: middle }
  path { stroke: #41608f; stroke-width: 1.5; fill: none; marker-end: url(#arrow) }
  marker path { fill: #41608f; stroke: none; marker-end: none }
  @media (prefers-color-scheme: dark) {
    rect { fill: #24344d; stroke: #9bb8e8 }
    rect.ground { fill: #10161f }
    text { fill: #e8eef8 }
    path { stroke: #9bb8e8 }
    marker path { fill: #9bb8e8 }
  }
"""


class Picture:
    def __init__(self, edges):
        self.public = [folder for folder, targets in edges.items() if targets == {"@public"}]
        self.anything = [folder for folder, targets in edges.items() if targets == {"*"}]
        library = {folder: targets for folder, targets in edges.items() if folder not in self.public + self.anything}
        self.arrows = {folder: self.direct(folder, library) for folder in library}
        self.rows = {}
        for folder in library:
            self.rows.setdefault(self.depth(folder), []).append(folder)
        self.places = {}  # of each folder: left, top, width
        self.shapes = []

    def direct(self, folder, edges):
        """The targets that no other target leads to."""
        targets = edges[folder]
        return sorted(t for t in targets if not any(t in edges[other] for other in targets - {t}))

    def depth(self, folder):
        return 1 + max((self.depth(target) for target in self.arrows[folder]), default=0)

    def box(self, name, left, top, width, kind=""):
        self.shapes.append(f'<rect{kind} x="{left:g}" y="{top}" width="{width:g}" height="{BOX}"/>')
        self.shapes.append(f'<text x="{left + width / 2:g}" y="{top + BOX / 2 + 5:g}">{name}</text>')

    def arrow(self, x, top, bottom):
        self.shapes.append(f'<path d="M{x:g} {top} V{bottom - 3}"/>')

    def row(self, names, top):
        """The folders of one row beside each other; a single one over what it includes."""
        columns = len(names)
        width = (WIDTH - GAP * (columns + 1)) / columns
        for i, name in enumerate(names):
            below = [self.places[target] for target in self.arrows[name]]
            if columns == 1 and len(below) == 1 and below[0][2] < width:
                left, width = below[0][0], below[0][2]
            else:
                left = GAP + i * (width + GAP)
            self.places[name] = (left, top, width)
            self.box(name + "/", left, top, width)
            for place in sorted(below):
                self.arrow(max(left, place[0]) + min(width, place[2]) / 2, top + BOX, place[1])

    def users(self, top):
        """Those that use the library from outside."""
        half = (WIDTH - 3 * GAP) / 2
        users = ", ".join("QXFoundation.h" if name == "umbrella" else name + "/" for name in self.public)
        self.box(users, GAP, top, half)
        self.arrow(GAP + half / 2, top + BOX, top + ROW)
        rest = ", ".join(name + "/" for name in self.anything) + ": may include everything"
        self.box(rest, 2 * GAP + half, top, half, ' class="outside"')
        return f"{users} may include public headers only; {rest}"

    def svg(self):
        top = GAP
        outside = self.users(top)
        top += ROW
        self.box("include/QXFoundation/: public headers, each of one of the folders below", GAP, top, WIDTH - 2 * GAP)
        tops = {depth: top + ROW * (i + 1) for i, depth in enumerate(sorted(self.rows, reverse=True))}
        for depth in sorted(self.rows):  # what a folder includes has its place before it
            self.row(self.rows[depth], tops[depth])
        height = tops[min(tops)] + BOX + GAP
        inside = "; ".join(f"{name} may include {', '.join(below) or 'nothing'}" for name, below in self.arrows.items())
        return f"""<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" role="img" aria-labelledby="title what">
<title id="title">Folders and the directions of includes</title>
<desc id="what">Each folder may include what is named here, and what that may include: {inside}. {outside}.</desc>
<style>{STYLE}</style>
<defs>
<marker id="arrow" viewBox="0 0 8 8" refX="6" refY="4" markerWidth="8" markerHeight="8" orient="auto">
<path d="M0 0 L8 4 L0 8 z"/>
</marker>
</defs>
<rect class="ground" width="{WIDTH}" height="{height}"/>
""" + "\n".join(self.shapes) + "\n</svg>\n"


def main(arguments):
    if len(arguments) not in (1, 2):
        print(__doc__, file=sys.stderr)
        return 2
    drawn = Picture(Table(pathlib.Path(arguments[0])).edges).svg()
    if len(arguments) == 1:
        sys.stdout.write(drawn)
        return 0
    if pathlib.Path(arguments[1]).read_text() == drawn:
        return 0
    print(f"{arguments[1]} does not show the table; make it anew: {sys.argv[0]} {arguments[0]} > {arguments[1]}")
    return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
