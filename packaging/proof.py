"""The tests as a zip for a real PC: the Windows test programs with what they read, the list of them that
tools/proof/TestList.h describes, the program that runs it, and run-tests.cmd."""
import json
import os
import re
import shutil
import subprocess

import archives
import staging

EMULATOR = "scripts/wine-run"
STEPS = ("docs/windows.md", "## What only a real PC shows")
NEEDS_SCRIPTS = "it is a script of the build machine"
NEEDS_WINE = "it starts in another language, which only Wine takes from the environment"
# The machine that the tests are written on: a Windows PC has its own font, and finds libraries by PATH.
OF_WINE = ("WINEPATH", "EXPECTED_FACE")
# Beside the test programs in the build, and no part of any of them.
NOT_PACKED = re.compile(r"_bench\.exe$|^SetupTool\.exe$|^PipeRelay\.exe$")


def tests_of(build):
    result = subprocess.run(["ctest", "--show-only=json-v1"], cwd=build, capture_output=True, text=True, check=True)
    for test in json.loads(result.stdout)["tests"]:
        yield test["name"], test["command"], {entry["name"]: entry["value"] for entry in test["properties"]}


def steps():
    """The rows of the table of what a person does."""
    path, title = STEPS
    with open(os.path.join(staging.ROOT, path), encoding="utf-8") as file:
        rows = re.findall(r"^\| (\d+\. .+?) \| (.+?) \|$", file.read().split(title)[1], re.M)
    return [(step.replace("`", ""), seen.replace("`", "")) for step, seen in rows]


class Folder:
    """What becomes the zip, and the lines of the list."""

    def __init__(self, build, folder, version):
        self.build, self.folder = build, folder
        self.lines = [("version", version)]
        self.programs, self.others = set(), set()

    def take(self, path):
        """The path in the package of a file or folder of the build or of the tree, which is copied."""
        base = self.build if path.startswith(self.build + os.sep) else staging.ROOT
        name = os.path.relpath(path, base)
        target = os.path.join(self.folder, "tests", name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        if os.path.isdir(path):
            shutil.copytree(path, target, dirs_exist_ok=True)
        else:
            shutil.copy2(path, target)
        return staging.windows(name)

    def add(self, name, command, properties):
        program = os.path.relpath(command[1], self.build)
        self.programs.add(program)
        arguments, folder = [], "work"
        for argument in command[2:]:
            path = re.search(r"/.*$", argument)
            if path and os.path.exists(path.group()):
                argument, folder = argument[:path.start()] + self.take(path.group()), "."
            arguments.append(argument)
        place = properties["WORKING_DIRECTORY"]
        if place.startswith(os.path.join(self.build, "test-media")):
            folder = self.take(place)
        environment = [entry for entry in properties.get("ENVIRONMENT", []) if entry.split("=")[0] not in OF_WINE]
        self.lines.append(("test", name, staging.windows(program), " ".join(arguments), folder,
                           str(int(properties["TIMEOUT"])), *environment))

    def add_programs(self):
        """Whatever lies beside the chosen programs, but for the other test programs."""
        beside = os.path.join(self.build, "bin")
        for name in staging.files_below(beside):
            program = os.path.join("bin", name)
            if program in self.others - self.programs or NOT_PACKED.search(name):
                continue
            self.take(os.path.join(beside, name))
        with open(os.path.join(self.build, "CMakeCache.txt"), encoding="utf-8") as file:
            strip = re.search(r"^CMAKE_STRIP:FILEPATH=(.+)$", file.read(), re.M).group(1)
        subprocess.run([strip, "-p", *(os.path.join(self.folder, "tests", program) for program in self.programs)],
                       check=True)
        # Beside no library: it starts the programs that are.
        shutil.move(os.path.join(self.folder, "tests", "bin", "PixoraTests.exe"), os.path.join(self.folder, "tests"))

    def write(self):
        with open(os.path.join(self.folder, "tests", "tests.txt"), "w", encoding="utf-8") as file:
            file.writelines("\t".join(line) + "\n" for line in self.lines)
        with open(os.path.join(staging.ROOT, "tools", "proof", "run-tests.cmd"), encoding="utf-8") as source, \
                open(os.path.join(self.folder, "run-tests.cmd"), "w", encoding="utf-8", newline="\r\n") as file:
            file.write(source.read())


def fill(build, folder, version, pattern):
    """`pattern`: of the names of the tests; all of them when it is empty."""
    shutil.rmtree(folder, ignore_errors=True)
    package = Folder(build, folder, version)
    known = list(tests_of(build))
    fixtures = {name: command for _, command, properties in known for name in properties.get("FIXTURES_SETUP", [])}
    for name, command, properties in known:
        if "FIXTURES_SETUP" in properties:
            continue
        if command[0] != os.path.join(staging.ROOT, EMULATOR):
            package.lines.append(("without", name, NEEDS_SCRIPTS))
        elif any(entry.startswith("LC_ALL=") for entry in properties.get("ENVIRONMENT", [])):
            package.lines.append(("without", name, NEEDS_WINE))
        else:
            package.others.add(os.path.relpath(command[1], build))
            if re.search(pattern, name):
                for fixture in properties.get("FIXTURES_REQUIRED", []):
                    subprocess.run(fixtures[fixture], check=True, stdout=subprocess.DEVNULL)
                package.add(name, command, properties)
    package.add_programs()
    package.lines += [("step", *step) for step in steps()]
    package.write()


def make(build, scratch, version, pattern, time, signer, target):
    folder = os.path.join(scratch, "tests")
    fill(build, folder, version, pattern)
    signer.sign_modules(folder)
    return archives.make(folder, target, f"Pixora-{version}-tests", time)
