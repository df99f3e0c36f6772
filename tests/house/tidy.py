"""clang-tidy over every source file that a target compiles.

What costs is not the tree's own code but the headers of the system and of the standard library, which clang-tidy parses
and matches anew for each file. So files are read in groups: a generated file includes them one after the other, and
their headers are read once. Files that define the same names go into different groups; where a group does not compile
all the same, the files that its errors name are read one by one.

What was found clean is noted in CLEAN, below build/, and is not read again there until the file, a header of the tree
that it sees, the flags, the rules or the version change.
"""
import concurrent.futures
import hashlib
import json
import os
import re
import shlex
import subprocess

import clang_tools
import tree

DATABASES = ["build/windows-release", "build/linux-core"]
FOLDER = "build/tidy"
CLEAN = os.path.join(FOLDER, "clean.json")
GROUP = 24  # files; larger groups save little more and need more memory

FINDING = re.compile(r"^(.+?):(\d+):\d+: (?:error|warning): ")
INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]', re.M)
UNNAMED = re.compile(r"^namespace \{$(.*?)^\}", re.M | re.S)
# A type, or the first name before what a definition goes on with.
DEFINED = re.compile(r"(?:class|struct|enum(?: class)?)\s+(\w+)|"
                     r"(?!using|namespace|template|TEST|INSTANTIATE)[A-Za-z].*?\b(?!decltype\b)(\w+)\s*[({=;\[]")
GLOBAL = re.compile(r"^(TEST\w*\(\w+,\s*\w+)|^.*?\b(w?main|wWinMain|LLVMFuzzer\w+)\(", re.M)


def cross_flags():
    """Where the cross compiler has its headers, for clang, which does not know."""
    probe = subprocess.run(["x86_64-w64-mingw32-g++-posix", "-E", "-x", "c++", "-v", os.devnull],
                           capture_output=True, text=True)
    listed = re.search(r"#include <\.\.\.> search starts here:\n(.*?)End of search list", probe.stderr, re.S).group(1)
    folders = [os.path.normpath(line.strip()) for line in listed.splitlines()]
    # The compiler's own intrinsics do not suit clang, which brings its own.
    folders = [f for f in folders if not re.search(r"-posix/include(-fixed)?$", f)]
    return ["--target=x86_64-w64-mingw32"] + [f"-isystem{folder}" for folder in folders]


def read_databases():
    """For each database its flags, of all its targets together, and its files; each file belongs to one database."""
    known = set()
    for database in DATABASES:
        commands = os.path.join(database, "compile_commands.json")
        if not os.path.exists(commands):
            continue
        flags, files = [], []
        for entry in json.load(open(commands)):
            path = os.path.relpath(entry["file"])
            if not path.endswith(".cpp") or path.startswith(".."):
                continue
            words = iter(shlex.split(entry["command"]))
            for word in words:
                flag = ["-isystem", next(words)] if word == "-isystem" else [word]
                if word.startswith(("-D", "-I", "-isystem", "-std=")) and flag not in flags:
                    flags.append(flag)
            if path not in known:
                known.add(path)
                files.append(path)
        flags = [word for flag in flags for word in flag]
        yield database, flags + (cross_flags() if "windows" in database else []), files


def seen(path, folders, known):
    """The file and every header of the tree, or made by its build, that it sees."""
    found, todo = set(), [path]
    while todo:
        current = todo.pop()
        if current in found:
            continue
        found.add(current)
        if current not in known:
            places = [os.path.dirname(current)] + folders
            known[current] = []
            for name in INCLUDE.findall(tree.read(current)):
                candidates = (os.path.normpath(os.path.join(place, name)) for place in places)
                known[current] += [next(filter(os.path.isfile, candidates), None)]
            known[current] = [p for p in known[current] if p]
        todo += known[current]
    return sorted(found)


def own_names(path):
    """What a file defines for itself, roughly: tests, a main function, and what begins a line of an unnamed namespace."""
    text = tree.read(path)
    names = {test or function for test, function in GLOBAL.findall(text)}
    for block in UNNAMED.findall(text):
        for line in block.splitlines():
            if defined := DEFINED.match(line):
                names.add(defined.group(1) or defined.group(2))
    return names


def grouped(paths):
    """Groups in which no two files define the same name for themselves."""
    groups = []
    for path in sorted(paths):
        names = own_names(path)
        for files, taken in groups:
            if len(files) < GROUP and not names & taken:
                files.append(path)
                taken |= names
                break
        else:
            groups.append(([path], names))
    return [files for files, _ in groups]


class Reader:
    """Reads files with the flags of one database."""

    def __init__(self, command, name, flags):
        self.command = command
        self.name = name
        self.flags = flags

    def tidy(self, path):
        """The lines that tell a finding in the tree, and what else clang-tidy said."""
        result = subprocess.run(
            [self.command, "--quiet", "--header-filter=.*", path, "--", *self.flags, "-Wno-everything",
             "-Wno-unknown-warning-option", "-ferror-limit=0"], capture_output=True, text=True)
        lines = [line.replace(os.getcwd() + "/", "") for line in result.stdout.splitlines() if FINDING.match(line)]
        if result.returncode and not lines:
            lines = [f"{path}:1:1: error: {result.stderr.strip()[-300:]}"]
        return [line for line in lines if not line.startswith(FOLDER)]

    def read(self, number, files):
        """Findings by file; a finding in a header counts for each file of the group."""
        if len(files) == 1:
            return {files[0]: self.tidy(files[0])}
        path = os.path.join(FOLDER, f"{self.name}-{number}.cpp")
        with open(path, "w") as out:
            out.writelines(f'#include "{os.path.abspath(file)}"\n' for file in files)
        lines = self.tidy(path)
        errors = {FINDING.match(line).group(1) for line in lines if "[clang-diagnostic-error]" in line}
        if errors:
            alone = [file for file in files if file in errors] or files
            together = [file for file in files if file not in alone]
            found = {file: self.tidy(file) for file in alone}
            return {**found, **(self.read(number, together) if together else {})}
        where = {line: FINDING.match(line).group(1) for line in lines}
        return {file: [line for line in lines if where[line] == file or where[line] not in files] for file in files}


def stamp(version, flags, path, folders, known):
    key = hashlib.sha256(repr((version, flags)).encode())
    for part in seen(path, folders, known) + [".clang-tidy", "tests/house/tidy.py"]:
        key.update(part.encode() + b"\0" + tree.read(part).encode() + b"\0")
    return key.hexdigest()


def read_clean():
    try:
        with open(CLEAN) as file:
            return json.load(file)
    except (OSError, ValueError):
        return {}


def note(clean):
    with open(CLEAN + ".new", "w") as out:
        json.dump(clean, out, indent=0, sort_keys=True)
    os.replace(CLEAN + ".new", CLEAN)


def main():
    command = clang_tools.tool("clang-tidy")
    version = subprocess.check_output([command, "--version"], text=True)
    before, clean, jobs, breaches = read_clean(), {}, [], []
    listed = set(tree.files("*.cpp"))
    for database, flags, files in read_databases():
        reader = Reader(command, os.path.basename(database), flags)
        folders = [os.path.relpath(flag[2:]) for flag in flags if flag.startswith("-I")]
        known = {}
        stamps = {file: stamp(version, flags, file, folders, known) for file in files if file in listed}
        clean.update({file: value for file, value in stamps.items() if before.get(file) == value})
        groups = grouped(file for file in stamps if file not in clean)
        jobs += [(reader, number, group, stamps) for number, group in enumerate(groups)]

    os.makedirs(FOLDER, exist_ok=True)
    note(clean)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        started = {pool.submit(reader.read, number, group): stamps for reader, number, group, stamps in jobs}
        try:
            for job in concurrent.futures.as_completed(started):
                for file, lines in job.result().items():
                    breaches += lines
                    if not lines:
                        clean[file] = started[job][file]
                # After each group: a run that is interrupted is gone on with by the next.
                note(clean)
        except BaseException:
            pool.shutdown(cancel_futures=True)
            raise
    return sorted(set(breaches))
