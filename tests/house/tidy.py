"""clang-tidy over every source file of the tree; what has not changed since it was clean is not read again.

Reading everything takes a quarter of an hour, so what was found clean is noted in CLEAN, which is committed: a line for
each file with a hash of it, of every header of the tree that it sees and of the rules. A file whose line is missing or
old is read, here and on every other machine.
"""
import concurrent.futures
import hashlib
import json
import os
import re
import subprocess

import tree

DATABASES = ["build/windows-release", "build/linux-core"]
CLEAN = "tests/house/tidy-clean.txt"


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


def read_clean():
    if not os.path.exists(CLEAN):
        return {}
    return dict(line.split() for line in open(CLEAN) if line.strip())


def main():
    compiled = {}
    for database in DATABASES:
        commands = os.path.join(database, "compile_commands.json")
        if os.path.exists(commands):
            for entry in json.load(open(commands)):
                compiled.setdefault(os.path.relpath(entry["file"]), database)
    cross = cross_flags()
    known = {}
    before = read_clean()
    clean = {}

    def check(path):
        key = hashlib.sha256()
        for part in closure(path, known) + [".clang-tidy"]:
            key.update(tree.read(part).encode())
        stamp = key.hexdigest()[:24]
        if before.get(path) == stamp:
            clean[path] = stamp
            return []
        database = compiled[path]
        flags = cross if "windows" in database else []
        result = subprocess.run(["clang-tidy", "--quiet", "-p", database, *flags, "--extra-arg=-Wno-everything",
                                 "--extra-arg=-Wno-unknown-warning-option", path], capture_output=True, text=True)
        findings = [line for line in result.stdout.splitlines() if re.search(r": (error|warning): ", line)]
        if not findings and result.returncode == 0:
            clean[path] = stamp
        return findings or ([f"{path}: {result.stderr.strip()[-300:]}"] if result.returncode else [])

    paths = [path for path in tree.files("*.cpp") if path in compiled]
    found = set()
    noted = before  # as long as not every file was looked at
    try:
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for lines in pool.map(check, paths):
                found.update(line.replace(os.getcwd() + "/", "") for line in lines)
        noted = {}
    finally:
        # Also when it is interrupted: the next run goes on from here.
        noted = {**noted, **clean}
        if noted != before:
            with open(CLEAN, "w") as out:
                out.writelines(f"{path} {stamp}\n" for path, stamp in sorted(noted.items()))
    return sorted(found)
