#!/usr/bin/env python3
"""Examples for the fuzz targets from real files: make_seeds.py TREE FOLDER writes FOLDER/<target's name>/<example>.

Layouts and texts of the program, the recorded bytes of its pipe, and JPEG files that the system's tools make; without
those tools (ImageMagick, ffmpeg) there are fewer.
"""
import os
import random
import re
import struct
import subprocess
import sys

TREE, FOLDER = sys.argv[1:3]
ENTITIES = {"&lt;": "<", "&gt;": ">", "&quot;": '"', "&apos;": "'", "&amp;": "&"}


def read(*path):
    with open(os.path.join(TREE, *path), "rb") as file:
        return file.read()


def write(target, name, content):
    os.makedirs(os.path.join(FOLDER, target), exist_ok=True)
    with open(os.path.join(FOLDER, target, name), "wb") as file:
        file.write(content)


def plain(text):
    for entity, character in ENTITIES.items():
        text = text.replace(entity, character)
    return text


def layouts():
    values = set()
    for name in sorted(os.listdir(os.path.join(TREE, "res", "layout"))):
        content = read("res", "layout", name)
        for target in ("xml", "builder"):
            write(target, name, content)
        values |= {plain(value) for value in re.findall(r'="([^"]*)"', content.decode())}
    # One of each kind: the same but for its digits and letters says nothing new.
    kinds = {re.sub(r"[0-9]+", "0", re.sub(r"[A-Za-z_\\]+", "a", value)): value for value in sorted(values)}
    for number, value in enumerate(sorted(kinds.values())):
        write("attributes", f"layout{number}", value.encode())


def texts():
    languages = sorted(name for name in os.listdir(os.path.join(TREE, "res", "values")) if "_" in name)
    for language in ("en_US", "ar_SA", "ja_JP"):
        content = read("res", "values", language, "strings.xml")
        write("xml", f"strings_{language}", content[:3000])
        for number, text in enumerate(re.findall(r"<String id=[^>]*>([^<]*)<", content.decode())):
            if "&lt;" in text or number % 10 == 0:
                write("html", f"{language}{number}", plain(text).encode())
    for number, wanted in enumerate(("de-AT", "zh_Hant_HK", "zh-Hans-SG", "en_GB", "pt", "xx_YY")):
        write("small_texts", f"language{number}", b"\3" + "\n".join([wanted] + languages).encode())


def pipe_bytes():
    session = bytes.fromhex(read("tests", "data", "integration", "session.hex").decode())
    write("pipe_decoder", "session", b"\0" + session)
    at = 0
    while at < len(session):
        length = struct.unpack_from("<I", session, at + 8)[0]
        write("pipe_decoder", f"frame{at}", b"\1" + session[at:at + length])
        at += length


def run(*command):
    """What the command writes; nothing where there is no such command."""
    try:
        return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=60).stdout
    except (OSError, subprocess.TimeoutExpired):
        return b""


def segment(kind, content):
    return struct.pack(">BBH", 0xFF, kind, len(content) + 2) + content


def notes(order, orientation, thumbnail):
    """The camera's notes with an orientation, and a second directory with a small picture."""
    mark = b"II*\0" if order == "<" else b"MM\0*"
    entry = struct.Struct(order + "HHII")
    first = struct.pack(order + "H", 2) + entry.pack(0x010F, 2, 4, int.from_bytes(b"abc\0", "little"))
    value = orientation if order == "<" else orientation << 16
    first += entry.pack(0x0112, 3, 1, value) + struct.pack(order + "I", 8 + 2 + 2 * 12 + 4)
    second_end = 8 + len(first) + 2 + 2 * 12 + 4
    second = struct.pack(order + "H", 2) + entry.pack(0x0201, 4, 1, second_end)
    second += entry.pack(0x0202, 4, 1, len(thumbnail)) + struct.pack(order + "I", 0)
    return b"Exif\0\0" + mark + struct.pack(order + "I", 8) + first + second + thumbnail


def jpegs():
    picture = ("-size", "16x8", "gradient:red-blue")
    made = {
        "baseline": run("convert", *picture, "-quality", "30", "jpeg:-"),
        "progressive": run("convert", *picture, "-quality", "30", "-interlace", "JPEG", "jpeg:-"),
        "grey": run("convert", *picture, "-colorspace", "Gray", "-comment", "a comment", "jpeg:-"),
        "cmyk": run("convert", *picture, "-colorspace", "CMYK", "jpeg:-"),
        "video": run("ffmpeg", "-f", "lavfi", "-i", "testsrc=size=16x16", "-frames:v", "1", "-f", "mjpeg", "-"),
    }
    made = {name: content for name, content in made.items() if content.startswith(b"\xFF\xD8")}
    # Without a tool for it, a file that has nothing but its beginning and its end.
    small = made.get("baseline", b"\xFF\xD8" + segment(0xE0, b"JFIF\0\1\1\0\0\1\0\1\0\0") + b"\xFF\xD9")
    made.setdefault("baseline", small)
    for name, content in list(made.items()):
        write("jpeg_header", name, content[:1200])
    for order, name in (("<", "little"), (">", "big")):
        for orientation in (1, 6, 8):
            exif = segment(0xE1, notes(order, orientation, small[:100]))
            write("jpeg_header", f"notes_{name}{orientation}", small[:2] + exif + small[2:600])
    jfif_end = 4 + struct.unpack_from(">H", small, 4)[0]
    extension = segment(0xE0, b"JFXX\0\x10" + small[:200])
    write("jpeg_header", "extension", small[:jfif_end] + extension + small[jfif_end:600])


def numbers():
    """For targets that take numbers: bytes of every size, many of them small ones."""
    source = random.Random(1)
    for target in ("converter", "image_scale", "layout_arithmetic", "model", "picture_geometry", "picture_rows",
                   "raster"):
        for number in range(12):
            least = source.choice((0, 0, 200))
            write(target, f"numbers{number}", bytes(source.randint(0, least + 55) for _ in range(40 + 20 * number)))
    for number in range(24):
        # An odd byte at the beginning: elements and attributes by number.
        write("builder", f"numbers{number}", b"\1" + bytes(source.randint(0, 255) for _ in range(100 + 40 * number)))


layouts()
texts()
numbers()
pipe_bytes()
jpegs()
with open(os.path.join(FOLDER, "made"), "w") as mark:
    mark.write("")
