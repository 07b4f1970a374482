"""The rows of a JSON file as a picture: how far each ratio is from its wish."""

from __future__ import annotations

import json
from html import escape
from pathlib import Path

LABELS = 470  # pixels
BARS = 380
LINE = 22
TOP = 46
MOST = 1.6  # of the wish; what is larger is cut off
INSIDE, OUTSIDE, SPREAD = "#4a7fb5", "#c0504d", "#333333"


def x_of(share: float) -> float:
    return LABELS + BARS * min(share, MOST) / MOST


def bar(row: dict, y: int) -> list[str]:
    """The ratio as a part of the wish, and the spread of the product's rounds over it."""
    if row["ratio"] is None:
        return [f'<text x="{LABELS + 4}" y="{y + 14}">missing</text>']
    wish = row["at_most"] * row["floor"]["median"]
    least, share, most = (row["product"][key] / wish for key in ("least", "median", "most"))
    color = INSIDE if row["within"] else OUTSIDE
    middle = y + LINE / 2 - 1
    return [
        f'<rect x="{LABELS}" y="{y + 3}" width="{x_of(share) - LABELS:.1f}" height="{LINE - 8}" fill="{color}"/>',
        f'<line x1="{x_of(least):.1f}" x2="{x_of(most):.1f}" y1="{middle}" y2="{middle}" stroke="{SPREAD}"/>',
        f'<text x="{LABELS + BARS + 8}" y="{y + 14}">{row["ratio"]:.2f} of {row["at_most"]:g}</text>',
    ]


def with_whole_names(rows: list[dict]) -> list[dict]:
    """"the same" of a table, written out."""
    whole = ""
    named = []
    for row in rows:
        first, _, part = row["work"].partition("the same")
        whole = row["work"] if first else whole
        named.append(row | {"work": whole if first else whole.split(":")[0] + part})
    return named


def picture_of(file: Path) -> str:
    told = json.loads(file.read_text())
    rows = with_whole_names(told["rows"])
    width, height = LABELS + BARS + 110, TOP + LINE * len(rows) + 12
    machine = told["machine"]
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}"'
        ' font-family="sans-serif" font-size="12">',
        '<rect width="100%" height="100%" fill="white"/>',
        f'<text x="8" y="18" font-size="14">Product against floor, by what is wished for, {machine["date"]}</text>',
        f'<text x="{x_of(1) - 4:.1f}" y="36" text-anchor="end" fill="{SPREAD}">within the wish</text>',
    ]
    for index, row in enumerate(rows):
        y = TOP + LINE * index
        parts.append(f'<text x="8" y="{y + 14}">{escape(row["work"])} '
                     f'<tspan fill="#777777">/ {escape(row["against"])}</tspan></text>')
        parts += bar(row, y)
    parts.append(f'<line x1="{x_of(1):.1f}" x2="{x_of(1):.1f}" y1="{TOP - 16}" y2="{height - 8}" stroke="{SPREAD}"'
                 ' stroke-dasharray="3 3"/>')
    return "\n".join([*parts, "</svg>"])
