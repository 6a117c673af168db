"""Draws ratios as bars on a logarithmic scale, as an SVG picture."""

import math
from html import escape

ROW = 18
LABELS = 330  # room for the names
BARS = 400
RIGHT = 60  # room for the figures
TOP = 40
STYLE = """
  text { font: 12px sans-serif; fill: #333 }
  .good { fill: #4a90c2 } .over { fill: #d9534f }
  .line { stroke: #ccc } .floor { stroke: #333 } .limit { stroke: #333; stroke-width: 2 }
"""


def picture(rows):
    """\\p rows are (name, ratio, limit). The bar starts at the floor, a tick shows the limit."""
    least = min([1.0] + [ratio for _, ratio, _ in rows])
    most = max([2.0] + [max(ratio, limit) for _, ratio, limit in rows])
    low, high = math.floor(math.log2(least)), math.ceil(math.log2(most))
    height = TOP + ROW * len(rows) + 10

    def x(ratio):
        return LABELS + BARS * (math.log2(ratio) - low) / (high - low)

    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{LABELS + BARS + RIGHT}" '
        f'height="{height}" role="img"><title>Cost of calls in multiples of their floors</title>',
        f"<style>{STYLE}</style>",
        f'<text x="{LABELS}" y="14">Cost in multiples of the floor (tick: at most)</text>',
    ]
    for power in range(low, high + 1):
        place = x(2.0**power)
        kind = "floor" if power == 0 else "line"
        parts.append(f'<line class="{kind}" x1="{place:.1f}" x2="{place:.1f}" y1="{TOP - 6}" '
                     f'y2="{height}"/><text x="{place:.1f}" y="{TOP - 9}" '
                     f'text-anchor="middle">{2.0**power:g}</text>')
    for i, (name, ratio, limit) in enumerate(rows):
        y = TOP + ROW * i
        left, right = sorted((x(1.0), x(ratio)))
        kind = "good" if ratio <= limit else "over"
        parts.append(
            f'<text x="{LABELS - 8}" y="{y + 12}" text-anchor="end">{escape(name)}</text>'
            f'<rect class="{kind}" x="{left:.1f}" y="{y + 3}" width="{max(right - left, 1):.1f}" '
            f'height="{ROW - 6}"/>'
            f'<line class="limit" x1="{x(limit):.1f}" x2="{x(limit):.1f}" y1="{y + 1}" '
            f'y2="{y + ROW - 1}"/>'
            f'<text x="{LABELS + BARS + 8}" y="{y + 12}">{ratio:.2f}</text>')
    return "\n".join(parts) + "\n</svg>\n"
