"""clang-tidy over every source file of the tree; what has not changed since it was clean is not read again."""
import concurrent.futures
import hashlib
import json
import os
import re
import subprocess

import tree

DATABASES = ["build/windows-release", "build/linux-core"]
STAMPS = "build/tidy"


def cross_flags():
    """Where the cross compiler has its headers, for clang, which does not know."""
    probe = subprocess.run(["x86_64-w64-mingw32-g++-posix", "-E", "-x", "c++", "-v", os.devnull],
                           capture_output=True, text=True)
    listed = re.search(r"#include <\.\.\.> search starts here:\n(.*?)End of search list", probe.stderr, re.S).group(1)
    folders = [os.path.normpath(line.strip()) for line in listed.splitlines()]
    # The compiler's own intrinsics do not suit clang, which brings its own.
    folders = [f for f in folders if not f.endswith("12-posix/include") and not f.endswith("include-fixed")]
    flags = ["--extra-arg=--target=x86_64-w64-mingw32"]
    flags += [f"--extra-arg-before=-isystem{folder}" for folder in folders]
    return flags


def closure(path, known):
    """The file and every header of the tree that it sees."""
    seen, todo = set(), [path]
    while todo:
        current = todo.pop()
        if current in seen:
            continue
        seen.add(current)
        if current not in known:
            known[current] = tree.includes(current)
        todo += known[current]
    return sorted(seen)


def main():
    os.makedirs(STAMPS, exist_ok=True)
    compiled = {}
    for database in DATABASES:
        commands = os.path.join(database, "compile_commands.json")
        if os.path.exists(commands):
            for entry in json.load(open(commands)):
                compiled.setdefault(os.path.relpath(entry["file"]), database)
    cross = cross_flags()
    known = {}

    def check(path):
        key = hashlib.sha256()
        for part in closure(path, known) + [".clang-tidy"]:
            key.update(tree.read(part).encode())
        stamp = os.path.join(STAMPS, path.replace("/", "_") + "." + key.hexdigest()[:24])
        if os.path.exists(stamp):
            return []
        database = compiled[path]
        flags = cross if "windows" in database else []
        result = subprocess.run(["clang-tidy", "--quiet", "-p", database, *flags, "--extra-arg=-Wno-everything", "--extra-arg=-Wno-unknown-warning-option", path],
                                capture_output=True, text=True)
        findings = [line for line in result.stdout.splitlines() if re.search(r": (error|warning): ", line)]
        if not findings and result.returncode == 0:
            open(stamp, "w").close()
        return findings or ([f"{path}: {result.stderr.strip()[-300:]}"] if result.returncode else [])

    paths = [path for path in tree.files("*.cpp") if path in compiled]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return sorted({line.replace(os.getcwd() + "/", "") for found in pool.map(check, paths) for line in found})
