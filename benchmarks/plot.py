"""Plots with two logarithmic axes as SVG, so that growth is a slope and a ratio a distance."""

import html
import math

COLOURS = ["#1f5fbf", "#d1661c", "#3a8a3f", "#8a4bb0", "#6b7280"]
WIDTH, HEIGHT = 720, 420
LEFT, RIGHT, TOP, BOTTOM = 72, 176, 48, 56


class Axis:
    def __init__(self, values, begin, end):
        self.low, self.high = min(values), max(values)
        if self.high < self.low * 10:
            middle = math.sqrt(self.low * self.high)
            self.low, self.high = middle / 3.2, middle * 3.2
        self.begin, self.end = begin, end

    def at(self, value):
        share = math.log(value / self.low) / math.log(self.high / self.low)
        return self.begin + share * (self.end - self.begin)

    def ticks(self):
        first, last = math.floor(math.log10(self.low)), math.ceil(math.log10(self.high))
        steps = (1,) if last - first > 3 else (1, 2, 5)
        for exponent in range(first, last + 1):
            for step in steps:
                value = step * 10.0 ** exponent
                if self.low * 0.999 <= value <= self.high * 1.001:
                    yield value


def number(value):
    if value >= 1:
        return f"{value:,.0f}"
    return f"{value:.6f}".rstrip("0")


def spread(places, distance):
    """The places moved apart as little as it takes that no two are nearer than distance."""
    order = sorted(range(len(places)), key=lambda i: places[i])
    moved = list(places)
    for before, after in zip(order, order[1:]):
        moved[after] = max(moved[after], moved[before] + distance)
    return moved


def svg(title, x_label, y_label, series):
    """series: [(name, [(x, y), ...])]; names stand at the ends of their lines."""
    points = [point for _, line in series for point in line]
    x = Axis([p[0] for p in points], LEFT, WIDTH - RIGHT)
    ys = [p[1] for p in points]
    y = Axis([min(ys) / 1.3, max(ys) * 1.3], HEIGHT - BOTTOM, TOP)
    out = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" width="{WIDTH}" '
        f'height="{HEIGHT}" font-family="Helvetica, Arial, sans-serif" font-size="12" fill="#30363d">',
        f'<rect width="{WIDTH}" height="{HEIGHT}" fill="#ffffff"/>',
        f'<text x="{LEFT}" y="26" font-size="15" font-weight="bold">{html.escape(title)}</text>',
    ]

    def text(x_at, y_at, words, anchor="middle", extra=""):
        out.append(f'<text x="{x_at:.1f}" y="{y_at:.1f}" text-anchor="{anchor}"{extra}>'
                   f"{html.escape(words)}</text>")

    for value in x.ticks():
        at = x.at(value)
        out.append(f'<path d="M{at:.1f} {TOP}V{HEIGHT - BOTTOM}" stroke="#e3e6ea"/>')
        text(at, HEIGHT - BOTTOM + 18, number(value))
    for value in y.ticks():
        at = y.at(value)
        out.append(f'<path d="M{LEFT} {at:.1f}H{WIDTH - RIGHT}" stroke="#e3e6ea"/>')
        text(LEFT - 8, at + 4, number(value), "end")
    out.append(f'<path d="M{LEFT} {TOP}V{HEIGHT - BOTTOM}H{WIDTH - RIGHT}" fill="none" '
               'stroke="#8b949e"/>')
    text((LEFT + WIDTH - RIGHT) / 2, HEIGHT - 14, x_label)
    middle = (TOP + HEIGHT - BOTTOM) / 2
    text(18, middle, y_label, extra=f' transform="rotate(-90 18 {middle:.1f})"')

    labels = spread([y.at(line[-1][1]) for _, line in series], 16)
    for (name, line), colour, label in zip(series, COLOURS, labels):
        path = "L".join(f"{x.at(px):.1f} {y.at(py):.1f}" for px, py in line)
        out.append(f'<path d="M{path}" fill="none" stroke="{colour}" stroke-width="2"/>')
        out += [f'<circle cx="{x.at(px):.1f}" cy="{y.at(py):.1f}" r="3" fill="{colour}"/>'
                for px, py in line]
        text(WIDTH - RIGHT + 12, label + 4, name, "start", f' fill="{colour}" font-weight="bold"')
        end = x.at(line[-1][0])
        out.append(f'<path d="M{end + 4:.1f} {y.at(line[-1][1]):.1f}L{WIDTH - RIGHT + 9} {label:.1f}" '
                   f'stroke="{colour}" stroke-width="0.7" stroke-dasharray="2 2"/>')
    out.append("</svg>")
    return "\n".join(out) + "\n"
