#!/usr/bin/env python3
"""Packs the built program once for the tests of the packages, and an older version of it: ctest runs this before them."""
import os
import shutil
import sys

import support

# Of the version that is upgraded: the program of today and one file more.
OLD = "0.9.0"
ENDINGS = {"setup": "PixoraSetup-{}.exe", "msi": "Pixora-{}.msi", "portable": "Pixora-{}-portable.zip",
           "symbols": "Pixora-{}-symbols.zip", "bom": "Pixora-{}.cdx.json"}


def folder(build, *names):
    return os.path.join(os.path.dirname(build), "package-test", *names)


def program(build):
    return folder(build, "real", "program")


def version(build):
    with open(folder(build, "real", "version"), encoding="utf-8") as file:
        return file.read()


def path(build, kind):
    return folder(build, "real", ENDINGS[kind].format(version(build)))


def old_program(build):
    return folder(build, "old", "program")


def old_setup(build):
    return folder(build, "old", ENDINGS["setup"].format(OLD))


def main(build):
    for name in ("real", "old", "old-program"):
        shutil.rmtree(folder(build, name), ignore_errors=True)
    setup = support.pack(build, folder(build, "real"))[0]
    with open(folder(build, "real", "version"), "w", encoding="utf-8") as file:
        file.write(os.path.basename(setup)[len("PixoraSetup-"):-len(".exe")])
    older = shutil.copytree(program(build), folder(build, "old-program"))
    support.write(os.path.join(older, "res", "of-the-old-version.txt"), b"of the old version")
    support.pack(build, folder(build, "old"), "--program", older, "--version", OLD, "--only", "installer")


if __name__ == "__main__":
    main(os.path.abspath(sys.argv[1]))
