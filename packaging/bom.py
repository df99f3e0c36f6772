"""The bill of materials, in the form CycloneDX 1.5: what is handed over, whose it is, in which version and under which
licence, each file with its SHA-256 as it lies in the packages."""
import hashlib
import json
import os
import subprocess
import uuid
from datetime import datetime, timezone

import pe
import staging

SPACE = uuid.UUID("0b6a1d1e-6f57-4a0e-8f5b-3f0f4f6d2f10")
PUBLISHER = "Velmora"
COMPILER = "x86_64-w64-mingw32-g++-posix"  # of cmake/mingw-w64.cmake
# Read from the packages' copyright files, which travel in licences/.
GCC = "GPL-3.0-or-later WITH GCC-exception-3.1"
RUNTIME = {"libgcc_s_seh-1.dll": GCC, "libssp-0.dll": GCC, "libstdc++-6.dll": GCC,
           "libwinpthread-1.dll": "MIT AND BSD-3-Clause"}
# What becomes a part of files and is none itself: Debian package, licence, where it goes.
PARTS = [("mingw-w64-x86-64-dev", "ZPL-2.1", "start-up code and import libraries, in every program and library"),
         ("nsis-common", "Zlib AND CPL-1.0 WITH LZMA-exception",
          "the installer's and the uninstaller's own program, and their plug-ins")]
NO_LICENCE = "none chosen yet: all rights reserved"


class Unknown(Exception):
    """With the file that nobody has said anything about."""


def digest(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()


def version_of_package(name):
    return subprocess.check_output(["dpkg-query", "-W", "-f", "${Version}", name], text=True)


def package_of_runtime(name):
    """The Debian package that the library was taken from, as cmake/PixoraRuntime.cmake takes it."""
    path = subprocess.check_output([COMPILER, f"-print-file-name={name}"], text=True).strip()
    if not os.path.isabs(path):
        path = os.path.join("/usr/x86_64-w64-mingw32/lib", name)
    return subprocess.check_output(["dpkg", "-S", os.path.normpath(path)], text=True).partition(":")[0]


def debian(name):
    version = version_of_package(name)
    return {"version": version, "purl": f"pkg:deb/debian/{name}@{version.replace('+', '%2B')}?arch=amd64",
            "supplier": {"name": "Debian"}}


def component(folder, name):
    path = os.path.join(folder, name)
    base = os.path.basename(name)
    entry = {"type": "application" if base.endswith(".exe") else "library", "bom-ref": f"file:{name}", "name": base,
             "hashes": [{"alg": "SHA-256", "content": digest(path)}]}
    if base in RUNTIME:
        return {**entry, **debian(package_of_runtime(base)), "licenses": [{"expression": RUNTIME[base]}]}
    version = pe.read(path).version()
    if not version:
        raise Unknown(f"{base} is none of the runtime's libraries and tells no version of its own")
    return {**entry, "version": version, "supplier": {"name": PUBLISHER}, "licenses": [{"license": {"name": NO_LICENCE}}]}


def part(name, licence, where):
    return {"type": "library", "bom-ref": f"part:{name}", "name": name, **debian(name),
            "licenses": [{"expression": licence}], "description": where}


def make(program, setup, version, time, target):
    """`program` and `setup`: the folders whose modules are handed over."""
    components = [component(folder, name) for folder in (program, setup)
                  for name in staging.files_below(folder) if pe.is_module(os.path.join(folder, name))]
    components += [part(*words) for words in PARTS]
    components.sort(key=lambda entry: entry["bom-ref"])
    product = {"type": "application", "bom-ref": "product", "name": "Pixora", "version": version,
               "supplier": {"name": PUBLISHER}, "licenses": [{"license": {"name": NO_LICENCE}}]}
    bill = {
        "bomFormat": "CycloneDX", "specVersion": "1.5",
        # Made from the content: the same files have the same one.
        "serialNumber": "urn:uuid:" + str(uuid.uuid5(SPACE, json.dumps([product, components], sort_keys=True))),
        "version": 1,
        "metadata": {"timestamp": datetime.fromtimestamp(time, timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ"),
                     "component": product},
        "components": components,
        "dependencies": [{"ref": "product", "dependsOn": [entry["bom-ref"] for entry in components]}],
    }
    with open(target, "w", encoding="utf-8") as file:
        json.dump(bill, file, indent=1)
        file.write("\n")
    return target
