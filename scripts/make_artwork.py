#!/usr/bin/env python3
"""Draws Vossel's own pictures and writes them as PNG files into data/.

The banner (300 x 65), the window icon (16, 32 and 48 pixels) and the isometric tile grid
(244 x 117) are made from simple shapes and a small pixel font, with nothing but the standard
library. Run it from anywhere: python3 scripts/make_artwork.py
"""

import os
import struct
import zlib

DATA = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data")


class Canvas:
    def __init__(self, width, height, colour=(0, 0, 0, 0)):
        self.width, self.height = width, height
        self.pixels = [list(colour) for _ in range(width * height)]

    def put(self, x, y, colour):
        if 0 <= x < self.width and 0 <= y < self.height:
            r, g, b, *a = colour
            alpha = a[0] if a else 255
            p = self.pixels[y * self.width + x]
            if alpha == 255:
                p[:] = [r, g, b, 255]
            else:  # blend over what is there
                f = alpha / 255.0
                p[0] = round(p[0] * (1 - f) + r * f)
                p[1] = round(p[1] * (1 - f) + g * f)
                p[2] = round(p[2] * (1 - f) + b * f)
                p[3] = max(p[3], alpha)

    def rect(self, x, y, w, h, colour):
        for yy in range(y, y + h):
            for xx in range(x, x + w):
                self.put(xx, yy, colour)

    def line(self, x0, y0, x1, y1, colour):
        dx, dy = abs(x1 - x0), -abs(y1 - y0)
        sx, sy = (1 if x0 < x1 else -1), (1 if y0 < y1 else -1)
        err = dx + dy
        while True:
            self.put(x0, y0, colour)
            if x0 == x1 and y0 == y1:
                return
            e2 = 2 * err
            if e2 >= dy:
                err += dy
                x0 += sx
            if e2 <= dx:
                err += dx
                y0 += sy

    def polygon(self, points, colour):
        """Fills a convex or concave polygon by pixel centres (even-odd rule)."""
        ys = [p[1] for p in points]
        for y in range(int(min(ys)), int(max(ys)) + 1):
            cy = y + 0.5
            xs = []
            for i, (x0, y0) in enumerate(points):
                x1, y1 = points[(i + 1) % len(points)]
                if (y0 <= cy < y1) or (y1 <= cy < y0):
                    xs.append(x0 + (cy - y0) * (x1 - x0) / (y1 - y0))
            xs.sort()
            for a, b in zip(xs[0::2], xs[1::2]):
                for x in range(int(round(a)), int(round(b))):
                    self.put(x, y, colour)

    def png(self, path, alpha):
        rows = []
        for y in range(self.height):
            row = bytearray([0])
            for x in range(self.width):
                p = self.pixels[y * self.width + x]
                row.extend(p if alpha else p[:3])
            rows.append(bytes(row))

        def chunk(kind, body):
            return (struct.pack(">I", len(body)) + kind + body +
                    struct.pack(">I", zlib.crc32(kind + body) & 0xFFFFFFFF))

        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 6 if alpha else 2, 0, 0, 0)
        with open(path, "wb") as out:
            out.write(b"\x89PNG\r\n\x1a\n")
            out.write(chunk(b"IHDR", header))
            out.write(chunk(b"IDAT", zlib.compress(b"".join(rows), 9)))
            out.write(chunk(b"IEND", b""))


# A 5 x 7 pixel font: just the letters the pictures use.
GLYPHS = {
    "V": ["10001", "10001", "10001", "10001", "01010", "01010", "00100"],
    "o": ["00000", "00000", "01110", "10001", "10001", "10001", "01110"],
    "s": ["00000", "00000", "01111", "10000", "01110", "00001", "11110"],
    "e": ["00000", "00000", "01110", "10001", "11111", "10000", "01110"],
    "l": ["01100", "00100", "00100", "00100", "00100", "00100", "01110"],
    "G": ["01110", "10001", "10000", "10111", "10001", "10001", "01111"],
    "R": ["11110", "10001", "10001", "11110", "10100", "10010", "10001"],
    "F": ["11111", "10000", "10000", "11110", "10000", "10000", "10000"],
    "v": ["00000", "00000", "10001", "10001", "01010", "01010", "00100"],
    "i": ["00100", "00000", "01100", "00100", "00100", "00100", "01110"],
    "w": ["00000", "00000", "10001", "10001", "10101", "10101", "01010"],
    "r": ["00000", "00000", "10110", "11001", "10000", "10000", "10000"],
    "p": ["00000", "00000", "11110", "10001", "11110", "10000", "10000"],
    "t": ["01000", "01000", "11100", "01000", "01000", "01001", "00110"],
    " ": ["00000"] * 7,
}


def text(canvas, x, y, words, scale, colour):
    for ch in words:
        for row, bits in enumerate(GLYPHS[ch]):
            for col, bit in enumerate(bits):
                if bit == "1":
                    canvas.rect(x + col * scale, y + row * scale, scale, scale, colour)
        x += 6 * scale
    return x


def block(canvas, cx, top, half, depth, grass=(92, 160, 64), soil=(150, 102, 58)):
    """An isometric block: a grass diamond on top of two soil faces, top corner at (cx, top)."""
    q = half / 2
    top_face = [(cx, top), (cx + half, top + q), (cx, top + 2 * q), (cx - half, top + q)]
    left_face = [(cx - half, top + q), (cx, top + 2 * q), (cx, top + 2 * q + depth),
                 (cx - half, top + q + depth)]
    right_face = [(cx, top + 2 * q), (cx + half, top + q), (cx + half, top + q + depth),
                  (cx, top + 2 * q + depth)]
    canvas.polygon(left_face, soil)
    canvas.polygon(right_face, tuple(int(c * 0.72) for c in soil))
    canvas.polygon(top_face, grass)


def banner():
    c = Canvas(300, 65)
    for y in range(65):  # dusk sky, dark at the top
        f = y / 64
        c.rect(0, y, 300, 1, (int(28 + 60 * f), int(40 + 70 * f), int(96 + 80 * f)))
    for i in range(3):  # three blocks, stepping down to the right
        block(c, 24 + i * 18, 14 + i * 9, 18, 12)
    text(c, 88, 12, "Vossel", 5, (20, 24, 48))           # shadow
    text(c, 86, 10, "Vossel", 5, (250, 236, 170))
    text(c, 88, 50, "GRF viewer", 1, (200, 214, 240))
    return c


def icon(size):
    c = Canvas(size, size)
    half = size * 0.47
    block(c, size / 2, size * 0.12, half, size * 0.36)
    s = max(1, size // 16)
    # The V on the grass face.
    x0 = int(size / 2 - 2.5 * s)
    text(c, x0, int(size * 0.12 + half / 2 - 3.5 * s), "V", s, (250, 236, 170))
    return c


def grid():
    c = Canvas(244, 117, (255, 255, 255, 255))
    ink = (96, 96, 96)
    # Tiles of 32 x 16 pixels: lines of slope 1/2 both ways.
    for k in range(-16, 32):
        c.line(k * 32, 0, k * 32 + 234, 117, ink)
        c.line(k * 32, 117, k * 32 + 234, 0, ink)
    return c


def main():
    os.makedirs(DATA, exist_ok=True)
    banner().png(os.path.join(DATA, "banner.png"), False)
    grid().png(os.path.join(DATA, "grid.png"), False)
    for size in (16, 32, 48):
        icon(size).png(os.path.join(DATA, "vossel-%d.png" % size), True)


if __name__ == "__main__":
    main()
