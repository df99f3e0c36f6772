#!/usr/bin/env python3
"""The bill of materials tells what is handed over: each file once, with what it holds, where it comes from and under which
licence; and it is the same for the same files."""
import hashlib
import json
import os
import re
import shutil
import subprocess
import sys
import zipfile

import made
import support
from support import ROOT, check

sys.path.insert(0, os.path.join(ROOT, "packaging"))
import bom
import pe
import staging

TIME = 1770000000
RUNTIME = {"libgcc_s_seh-1.dll": "gcc-mingw-w64-x86-64-posix-runtime", "libssp-0.dll": "gcc-mingw-w64-x86-64-posix-runtime",
           "libstdc++-6.dll": "gcc-mingw-w64-x86-64-posix-runtime", "libwinpthread-1.dll": "mingw-w64-x86-64-dev"}
HELPERS = {"PixoraSetupHelper.exe", "PixoraSetupActions.dll"}


def installed_version(package):
    return subprocess.check_output(["dpkg-query", "-W", "-f", "${Version}", package], text=True)


def check_frame(bill, version):
    check((bill["bomFormat"], bill["specVersion"], bill["version"]) == ("CycloneDX", "1.5", 1), "a bill of CycloneDX 1.5")
    check(re.fullmatch(r"urn:uuid:[0-9a-f]{8}-[0-9a-f]{4}-5[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}", bill["serialNumber"]),
          "with a number made of its content")
    check(re.fullmatch(r"20\d\d-\d\d-\d\dT\d\d:\d\d:\d\dZ", bill["metadata"]["timestamp"]), "and a time")
    product = bill["metadata"]["component"]
    check((product["name"], product["version"], product["type"]) == ("Pixora", version, "application"), "of this version")
    refs = [entry["bom-ref"] for entry in bill["components"]]
    check(len(set(refs)) == len(refs) and "product" not in refs, "each part is named once")
    check(bill["dependencies"] == [{"ref": "product", "dependsOn": refs}] and refs == sorted(refs), "and needed")
    for entry in bill["components"] + [product]:
        [licence] = entry["licenses"]
        check(entry["version"] and entry["supplier"]["name"] and (licence.get("expression") or licence["license"]["name"]),
              f"{entry['name']} {entry['version']} of {entry['supplier']['name']}: {licence}")


def check_files(bill, build, version):
    entries = {entry["name"]: entry for entry in bill["components"] if entry["bom-ref"].startswith("file:")}
    files = {}
    with zipfile.ZipFile(made.path(build, "portable")) as archive:
        for name in archive.namelist():
            if name.endswith((".exe", ".dll")):
                files[os.path.basename(name)] = archive.read(name)
        licences = {os.path.basename(name) for name in archive.namelist() if "/licences/" in name}
    check(set(entries) == set(files) | HELPERS, f"every module of the packages, {len(entries)} of them, and no other")
    for name, content in files.items():
        [told] = entries[name]["hashes"]
        check(told == {"alg": "SHA-256", "content": hashlib.sha256(content).hexdigest()}, f"{name} as it is packed")
    for name, entry in entries.items():
        check(entry["type"] == ("application" if name.endswith(".exe") else "library"), "programs and libraries")
        if name in RUNTIME:
            package = RUNTIME[name]
            number = installed_version(package)
            check(entry["version"] == number and entry["purl"] == f"pkg:deb/debian/{package}@{number.replace('+', '%2B')}?arch=amd64",
                  f"{name} of {package} {number}")
            check(entry["licenses"] == [{"expression": "MIT AND BSD-3-Clause" if "winpthread" in name else
                                         "GPL-3.0-or-later WITH GCC-exception-3.1"}], "under its licence")
        else:
            check(entry["version"] == f"{version}.0" and entry["supplier"]["name"] == "Velmora", f"{name} is our own")
    check(licences == {"gcc-mingw-w64-base.txt", "mingw-w64-x86-64-dev.txt"}, "the texts of the licences are beside the program")


def check_parts(bill):
    parts = {entry["name"]: entry for entry in bill["components"] if entry["bom-ref"].startswith("part:")}
    check(set(parts) == {"mingw-w64-x86-64-dev", "nsis-common"}, "what went into files is told too")
    for name, entry in parts.items():
        check(entry["version"] == installed_version(name) and entry["description"], f"{name} {entry['version']}")


def check_same(build, out):
    program, setup = made.program(build), made.folder(build, "real", "setup")
    make = lambda name, folder, time=TIME: json.loads(support.read(bom.make(folder, setup, "1.0.0", time, os.path.join(out, name))))
    one = make("one", program)
    check(make("two", program) == one, "the same files give the same bill")
    check(support.read(os.path.join(out, "one")) == support.read(os.path.join(out, "two")), "to the byte")
    check(one["metadata"]["timestamp"] == "2026-02-02T02:40:00Z", "its time is the commit's")
    other = shutil.copytree(program, os.path.join(out, "other"))
    with open(os.path.join(other, "QxUrl.dll"), "ab") as file:
        file.write(b"x")
    check(make("three", other)["serialNumber"] != one["serialNumber"], "other files give another number")
    support.write(os.path.join(other, "Stranger.dll"), support.read(os.path.join(build, "bin", "SetupTool.exe")))
    check(not pe.read(os.path.join(other, "Stranger.dll")).version() and staging.files_below(other), "a module of nobody's")
    try:
        make("four", other)
        check(False, "cannot be packed unnoticed")
    except bom.Unknown as reason:
        check("Stranger.dll" in str(reason), f"is refused: {reason}")


def main(build):
    os.chdir(ROOT)
    out = os.path.join(os.path.dirname(build), "package-test", "bom")
    shutil.rmtree(out, ignore_errors=True)
    os.makedirs(out)
    bill = json.loads(support.read(made.path(build, "bom")))
    check_frame(bill, made.version(build))
    check_files(bill, build, made.version(build))
    check_parts(bill)
    check_same(build, out)
    print("package_bom: all passed")


if __name__ == "__main__":
    main(os.path.abspath(sys.argv[1]))
