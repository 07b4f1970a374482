"""The rows of a JSON file as a picture: how far each ratio is from its wish."""

from __future__ import annotations

import json
from html import escape
from pathlib import Path

LABELS = 490  # pixels
BARS = 380
LINE = 22
TOP = 46
MOST = 1.6  # of the wish; what is larger is cut off
INSIDE, OUTSIDE, SPREAD = "#4a7fb5", "#c0504d", "#333333"


def x_of(share: float) -> float:
    return LABELS + BARS * min(share, MOST) / MOST


def line(x1: float, y1: float, x2: float, y2: float) -> str:
    ends = f'x1="{x1:.1f}" y1="{y1}" x2="{x2:.1f}" y2="{y2}"'
    return f'<line {ends} stroke="{SPREAD}"/>'


def bar(row: dict, y: int) -> list[str]:
    """The ratio as a part of the wish, and the spread of the product's rounds over it."""
    if row["ratio"] is None:
        return [f'<text x="{LABELS + 4}" y="{y + 14}">missing</text>']
    wish = row["at_most"] * row["floor"]["median"]
    least, share, most = (row["product"][key] / wish for key in ("least", "median", "most"))
    color = INSIDE if row["within"] else OUTSIDE
    middle = y + LINE / 2 - 1
    ratio = f'{row["ratio"]:.2f} of {row["at_most"]:g}'
    return [
        f'<rect x="{LABELS}" y="{y + 3}" width="{x_of(share) - LABELS:.1f}" height="{LINE - 8}"'
        f' fill="{color}"/>',
        line(x_of(least), middle, x_of(most), middle),
        f'<text x="{LABELS + BARS + 8}" y="{y + 14}">{ratio}</text>',
    ]


def picture_of(file: Path) -> str:
    told = json.loads(file.read_text())
    rows = told["rows"]
    width, height = LABELS + BARS + 110, TOP + LINE * len(rows) + 12
    title = f'Product against floor, by what is wished for, {told["machine"]["date"]}'
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}"'
        ' font-family="sans-serif" font-size="12">',
        '<rect width="100%" height="100%" fill="white"/>',
        f'<text x="8" y="18" font-size="14">{title}</text>',
        f'<text x="{x_of(1) - 4:.1f}" y="36" text-anchor="end" fill="{SPREAD}">within the wish</text>',
    ]
    for index, row in enumerate(rows):
        y = TOP + LINE * index
        parts.append(
            f'<text x="8" y="{y + 14}">{escape(row["work"])} '
            f'<tspan fill="#777777">/ {escape(row["against"])}</tspan></text>'
        )
        parts += bar(row, y)
    parts.append(line(x_of(1), TOP - 16, x_of(1), height - 8))
    return "\n".join([*parts, "</svg>"])
