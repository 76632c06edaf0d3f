#!/usr/bin/env python3
# Draws the program's icons from shapes, in every size that Windows asks for, with the standard library alone.
# Run it after changing a shape, in any folder: it writes program.ico and execute.ico into its own folder.
import os
import struct
import zlib

SAMPLES = 6  # each pixel is the mean of SAMPLES * SAMPLES points
SIZES = {"program": (16, 20, 24, 32, 40, 48, 64, 256), "execute": (16, 20, 24, 32)}
PACKED_FROM = 256  # from this size on an entry is a PNG: Vista and later read it, and it is a tenth of the bytes

DARK, MIDDLE, LIGHT, TOP = (22, 62, 104), (43, 103, 164), (79, 143, 204), (150, 194, 232)
GREEN, GREEN_EDGE, WHITE = (46, 160, 67), (24, 110, 42), (255, 255, 255)


def in_ellipse(x, y, middle_x, middle_y, half_width, half_height):
    return ((x - middle_x) / half_width) ** 2 + ((y - middle_y) / half_height) ** 2 <= 1


def in_triangle(x, y, corners):
    sides = []
    for (x1, y1), (x2, y2) in zip(corners, corners[1:] + corners[:1]):
        sides.append((x2 - x1) * (y - y1) - (y2 - y1) * (x - x1))
    return all(side >= 0 for side in sides) or all(side <= 0 for side in sides)


def cylinder(x, y):
    """The colour of a stack of three disks at a point of the unit square; None outside the disks."""
    middle, half_width, half_height, top, bottom = 0.44, 0.38, 0.13, 0.18, 0.82
    if in_ellipse(x, y, middle, top, half_width, half_height):
        return TOP
    inside = abs(x - middle) <= half_width and top <= y <= bottom
    if not inside and not in_ellipse(x, y, middle, bottom, half_width, half_height):
        return None
    third = (bottom - top) / 3
    for seam in (top + third, top + 2 * third):
        if abs(x - middle) <= half_width:
            curve = seam + half_height * (1 - ((x - middle) / half_width) ** 2) ** 0.5
            if abs(y - curve) < 0.028:
                return DARK
    return LIGHT if x < middle - 0.14 else MIDDLE if x < middle + 0.2 else DARK


def program(x, y):
    """The disks with a round badge that contains a tick."""
    badge_x, badge_y, radius = 0.72, 0.72, 0.27
    if in_ellipse(x, y, badge_x, badge_y, radius, radius):
        u, v = (x - badge_x) / radius, (y - badge_y) / radius
        for (x1, y1), (x2, y2) in (((-0.5, 0.02), (-0.12, 0.42)), ((-0.12, 0.42), (0.52, -0.36))):
            along = ((u - x1) * (x2 - x1) + (v - y1) * (y2 - y1)) / ((x2 - x1) ** 2 + (y2 - y1) ** 2)
            along = min(1, max(0, along))
            if (u - x1 - along * (x2 - x1)) ** 2 + (v - y1 - along * (y2 - y1)) ** 2 < 0.17 ** 2:
                return WHITE
        return GREEN
    if in_ellipse(x, y, badge_x, badge_y, radius + 0.04, radius + 0.04):
        return None  # a gap between the badge and the disks
    return cylinder(x, y)


def execute(x, y):
    if in_triangle(x, y, [(0.28, 0.20), (0.28, 0.80), (0.78, 0.50)]):
        return GREEN
    if in_triangle(x, y, [(0.20, 0.08), (0.20, 0.92), (0.90, 0.50)]):
        return GREEN_EDGE
    return None


def pixels(shape, size):
    """The rows from the top; each pixel is (red, green, blue, alpha)."""
    rows = []
    for row in range(size):
        line = []
        for column in range(size):
            found = [shape((column + (i + 0.5) / SAMPLES) / size, (row + (j + 0.5) / SAMPLES) / size)
                     for i in range(SAMPLES) for j in range(SAMPLES)]
            seen = [colour for colour in found if colour is not None]
            if not seen:
                line.append((0, 0, 0, 0))
                continue
            mean = tuple(round(sum(colour[part] for colour in seen) / len(seen)) for part in range(3))
            line.append(mean + (round(255 * len(seen) / len(found)),))
        rows.append(line)
    return rows


def bitmap(rows):
    """An icon's bitmap: a header with twice the height, then colours and mask, both from the bottom row up."""
    size = len(rows)
    colours = b"".join(struct.pack("4B", blue, green, red, alpha)
                       for line in reversed(rows) for red, green, blue, alpha in line)
    mask_row = (size + 31) // 32 * 4
    mask = b""
    for line in reversed(rows):
        bits = 0
        for pixel in line:
            bits = bits << 1 | (pixel[3] == 0)
        mask += (bits << (mask_row * 8 - size)).to_bytes(mask_row, "big")
    return struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, len(colours) + len(mask), 0, 0, 0, 0) + colours + mask


def png(rows):
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    lines = b"".join(b"\0" + b"".join(struct.pack("4B", *pixel) for pixel in line) for line in rows)
    header = struct.pack(">IIBBBBB", len(rows), len(rows), 8, 6, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b"")


def icon(shape, sizes):
    images = [png(pixels(shape, size)) if size >= PACKED_FROM else bitmap(pixels(shape, size)) for size in sizes]
    directory, offset = struct.pack("<HHH", 0, 1, len(sizes)), 6 + 16 * len(sizes)
    for size, image in zip(sizes, images):
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    return directory + b"".join(images)


if __name__ == "__main__":
    folder = os.path.dirname(os.path.abspath(__file__))
    for name, shape in (("program", program), ("execute", execute)):
        with open(os.path.join(folder, name + ".ico"), "wb") as file:
            file.write(icon(shape, SIZES[name]))
