#!/usr/bin/env python3
"""Draws resources/windows/tx_setup_wizard.ico from the picture that the windows show.

    tools/make_icon.py [--check]

The picture is the drawing kApplication of src/ui/form_pictures.cpp: one drawing, so that the icon of the
program file and that of its windows cannot differ. --check only compares, and fails when the drawing
has changed since.
"""

import math
import pathlib
import re
import struct
import sys
import zlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
DRAWING = ROOT / "src/ui/form_pictures.cpp"
ICON = ROOT / "resources/windows/tx_setup_wizard.ico"
SIZES = [16, 24, 32, 48, 64, 256]
LARGEST_BITMAP = 48  # what is larger is stored as PNG, as Windows does
FINE = 4  # samples per pixel, in each direction


def shapes():
    """(points, fill, stroke, stroke width) of every path, in the units of the drawing; and its size."""
    source = DRAWING.read_text(encoding="utf-8")
    svg = re.search(r'kApplication\[\] = R"\((.*?)\)"', source, re.S).group(1)
    size = float(re.search(r'viewBox="0 0 (\d+) \d+"', svg).group(1))
    found = []
    for tag in re.findall(r"<path (.*?)/>", svg, re.S):
        attributes = dict(re.findall(r'([\w-]+)="([^"]*)"', tag))
        fill = attributes.get("fill")
        found.append((
            outlines(attributes["d"]),
            None if fill == "none" else colour(fill),
            colour(attributes["stroke"]) if "stroke" in attributes else None,
            float(attributes.get("stroke-width", "1")),
        ))
    return found, size


def colour(text):
    return tuple(int(text[i:i + 2], 16) for i in (1, 3, 5))


def outlines(path):
    """[(points, closed)] of a path of the commands M, L, H, V, Q and Z."""
    result, points, command = [], [], ""
    tokens = re.findall(r"[MLHVQZ]|-?[\d.]+", path)
    while tokens:
        if tokens[0].isalpha():
            command = tokens.pop(0)
        take = lambda: float(tokens.pop(0))
        if command == "M":
            if points:
                result.append((points, False))
            points, command = [(take(), take())], "L"
        elif command == "L":
            points.append((take(), take()))
        elif command == "H":
            points.append((take(), points[-1][1]))
        elif command == "V":
            points.append((points[-1][0], take()))
        elif command == "Q":
            (x0, y0), (x1, y1, x2, y2) = points[-1], (take(), take(), take(), take())
            for step in range(1, 9):
                t = step / 8
                a, b, c = (1 - t) ** 2, 2 * t * (1 - t), t * t
                points.append((a * x0 + b * x1 + c * x2, a * y0 + b * y1 + c * y2))
        elif command == "Z":
            result.append((points, True))
            points = []
        else:
            raise ValueError(f"a path of make_icon.py has no command '{command}'")
    if points:
        result.append((points, False))
    return result


def fill_polygon(mask, width, polygon):
    """Sets the samples whose middle lies in the polygon."""
    edges = list(zip(polygon, polygon[1:] + polygon[:1]))
    low = max(0, math.floor(min(y for _, y in polygon)))
    high = min(width - 1, math.ceil(max(y for _, y in polygon)))
    for row in range(low, high + 1):
        y = row + 0.5
        crossings = sorted(x0 + (y - y0) * (x1 - x0) / (y1 - y0)
                           for (x0, y0), (x1, y1) in edges if (y0 <= y) != (y1 <= y))
        for left, right in zip(crossings[::2], crossings[1::2]):
            first = max(0, math.ceil(left - 0.5))
            last = min(width - 1, math.ceil(right - 0.5) - 1)
            if last >= first:
                start = row * width
                mask[start + first:start + last + 1] = b"\1" * (last - first + 1)


def stroke_line(mask, width, points, closed, half):
    """Sets the samples within `half` of the line: a box for each part, a disc for each corner."""
    ends = points + points[:1] if closed else points
    for (x0, y0), (x1, y1) in zip(ends, ends[1:]):
        length = math.hypot(x1 - x0, y1 - y0)
        if length == 0:
            continue
        dx, dy = (y1 - y0) / length * half, (x0 - x1) / length * half
        fill_polygon(mask, width, [(x0 + dx, y0 + dy), (x1 + dx, y1 + dy),
                                   (x1 - dx, y1 - dy), (x0 - dx, y0 - dy)])
    for x, y in points:
        fill_polygon(mask, width, [(x + half * math.cos(math.tau * i / 16),
                                    y + half * math.sin(math.tau * i / 16)) for i in range(16)])


def draw(size):
    """The picture as rows of (red, green, blue, alpha)."""
    found, units = shapes()
    width = size * FINE
    scale = width / units
    pixels = [(0, 0, 0, 0)] * (size * size)

    def lay(mask, paint):
        for index in range(size * size):
            row, column = divmod(index, size)
            start = row * FINE * width + column * FINE
            covered = sum(sum(mask[start + i * width:start + i * width + FINE])
                          for i in range(FINE))
            if covered == 0:
                continue
            part = covered / (FINE * FINE)
            below = pixels[index]
            below_part = below[3] / 255 * (1 - part)
            alpha = part + below_part
            pixels[index] = tuple(
                round((paint[c] * part + below[c] * below_part) / alpha) for c in range(3)
            ) + (round(alpha * 255),)

    for paths, fill, stroke, thickness in found:
        scaled = [([(x * scale, y * scale) for x, y in points], closed) for points, closed in paths]
        if fill is not None:
            mask = bytearray(width * width)
            for points, _ in scaled:
                fill_polygon(mask, width, points)
            lay(mask, fill)
        if stroke is not None:
            mask = bytearray(width * width)
            for points, closed in scaled:
                stroke_line(mask, width, points, closed, thickness * scale / 2)
            lay(mask, stroke)
    return pixels


def as_png(size, pixels):
    def chunk(name, data):
        body = name + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    rows = b"".join(b"\0" + bytes(sum(pixels[row * size:(row + 1) * size], ()))
                    for row in range(size))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def as_bitmap(size, pixels):
    """Bottom row first, blue first, and behind it a mask for systems that know no transparency."""
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    colours, mask = bytearray(), bytearray()
    for row in reversed(range(size)):
        bits = 0
        for red, green, blue, alpha in pixels[row * size:(row + 1) * size]:
            colours += bytes((blue, green, red, alpha))
            bits = bits << 1 | (alpha == 0)
        row_bytes = (size + 31) // 32 * 4
        mask += (bits << row_bytes * 8 - size).to_bytes(row_bytes, "big")
    return header + bytes(colours) + bytes(mask)


def make():
    images = []
    for size in SIZES:
        pixels = draw(size)
        images.append(as_png(size, pixels) if size > LARGEST_BITMAP else as_bitmap(size, pixels))
    offset = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for size, image in zip(SIZES, images):
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    return directory + b"".join(images)


def main():
    icon = make()
    if sys.argv[1:] == ["--check"]:
        # Not the compressed pictures, which one zlib packs tighter than another.
        start = 6 + 16 * len(SIZES)
        end = start + sum(40 + 4 * size * size + size * ((size + 31) // 32 * 4)
                          for size in SIZES if size <= LARGEST_BITMAP)
        if ICON.read_bytes()[start:end] != icon[start:end]:
            sys.exit(f"{ICON} is not what {DRAWING} shows; run tools/make_icon.py")
    elif sys.argv[1:]:
        sys.exit(__doc__)
    else:
        ICON.write_bytes(icon)


main()
