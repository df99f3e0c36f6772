"""What the tests of the packages share: packing, small versions of the program that differ in every file, programs that
hold files, and mounts that end with the test."""
import contextlib
import os
import shutil
import signal
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

import machine
from machine import check

PROGRAM = "drive_c/Program Files/Velmora/Quillon"
WORK = f"{PROGRAM}/Pixora.setup"
COMMS = "drive_c/ProgramData/Comms"
SHORTCUT = "drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/Pixora.lnk"
UNINSTALL_KEY = r"HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\Uninstall\Pixora"
PROGRAM_KEY = r"HKEY_LOCAL_MACHINE\Software\Velmora\Quillon\Pixora"

MOUNTS = "PIXORA_TEST_MOUNTS"


def seven_zip():
    """The unpacker, which Debian 12 and Debian 13 call differently."""
    return shutil.which("7zz") or shutil.which("7z")


def pack(build, out, *options):
    """The paths of what was made."""
    return subprocess.check_output([sys.executable, "-B", "packaging/make", build, out, *options], text=True,
                                   cwd=ROOT).splitlines()


def write(path, content):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(content)


def read(path):
    with open(path, "rb") as file:
        return file.read()


def small_version(build, folder, version):
    """A program of a few files, none of which is the same in two versions."""
    shutil.rmtree(folder, ignore_errors=True)
    with open(os.path.join(build, "bin", "SetupTool.exe"), "rb") as file:
        program = file.read()
    mark = f"of version {version}".encode()
    write(f"{folder}/Pixora.exe", b"the program " + mark)
    write(f"{folder}/PixoraDiagnostics.exe", program + mark)
    write(f"{folder}/DuiLib.dll", b"a library " + mark)
    write(f"{folder}/res/layout/Pixora.xml", b"a layout " + mark)
    write(f"{folder}/res/only {version}/a/b.txt", b"only " + mark)
    write(f"{folder}/licences/a.txt", b"terms " + mark)
    return folder


def installed(wine):
    """What lies in the program's folder, without what is made on the machine."""
    tree = machine.contents(f"{wine.prefix}/{PROGRAM}")
    return {name: content for name, content in tree.items() if name not in ("UninstallPixora.exe", "PixoraFiles.txt")}


class Version:
    """A small version, packed as each of `kinds`: setup and msi are the paths of the packages. `more`: files that it has
    beside or in the place of the usual ones."""

    def __init__(self, build, out, version, *kinds, options=(), more=None):
        self.number = version
        folder = small_version(build, os.path.join(out, f"tree-{version}"), version)
        for name, content in (more or {}).items():
            write(f"{folder}/{name}", content)
        self.packed = os.path.join(out, version)
        packages = pack(build, self.packed, "--program", folder, "--version", version, *options, "--only", *kinds)
        # Signed files are not those that came in.
        self.tree = machine.contents(os.path.join(self.packed, "program"))
        self.setup = next((package for package in packages if package.endswith(".exe")), None)
        self.msi = next((package for package in packages if package.endswith(".msi")), None)
        self.portable = next((package for package in packages if package.endswith("-portable.zip")), None)


def differences(wine, version):
    """The files that are missing, not the version's, or not as it has them."""
    there = installed(wine)
    return sorted(name for name in {*there, *version.tree} if there.get(name) != version.tree.get(name))


def expect_whole(wine, version, why):
    other = differences(wine, version)
    check(not other, f"{why}: version {version.number} is whole, and nothing else is there: {other}")


def setup(wine, version, timeout=120):
    """The exit code of a silent run. Why it ends is printed, and has to be said."""
    code, why = wine.result(version.setup, "/S", timeout=timeout)
    if code in (0, 3010):
        check(why == "", f"a run that succeeds says nothing: {why.strip()!r}")
    else:
        check(why.strip() != "", f"a run that ends with code {code} says why: {why.strip()!r}")
    return code


def uninstall_command(wine, *options):
    """In the program's folder, where the uninstaller does not first make a copy of itself, which has no exit code. What
    it wants as the last word has blanks and no quotes, so it stands in a file."""
    lines = [" ".join([r'"C:\Program Files\Velmora\Quillon\UninstallPixora.exe"', "/S", *options,
                       r"_?=C:\Program Files\Velmora\Quillon"]), "exit /b %ERRORLEVEL%"]
    wine.write("drive_c/uninstall.bat", "\r\n".join(lines).encode())
    return "cmd", "/c", r"C:\uninstall.bat"


def uninstall(wine, *options):
    return wine.run(*uninstall_command(wine, *options), timeout=120)


@contextlib.contextmanager
def holding(wine, *command, says=b"held"):
    """A program that has a file open or runs from it."""
    program = subprocess.Popen([wine.wine, *command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, env=wine.environment)
    check(program.stdout.readline().strip() == says, f"{os.path.basename(command[0])} {' '.join(command[1:])}: {says}")
    try:
        yield
    finally:
        program.kill()
        program.wait()


def start_and_kill(wine, command, moment):
    """False when it had ended by then. Whatever it started is killed with it."""
    run = subprocess.Popen([wine.wine, *command], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, env=wine.environment, start_new_session=True)
    try:
        run.wait(timeout=moment)
        return False
    except subprocess.TimeoutExpired:
        os.killpg(run.pid, signal.SIGKILL)
        run.wait()
        return True


def with_mounts():
    """Starts this test again where it may mount, in a namespace that ends with it; elsewhere it goes on without."""
    if MOUNTS in os.environ:
        return os.environ[MOUNTS] == "yes"
    rights = [] if os.getuid() == 0 else ["--user", "--map-current-user", "--keep-caps"]
    command = ["unshare", "--mount", "--propagation", "private", *rights]
    can = subprocess.run([*command, "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0
    os.environ[MOUNTS] = "yes" if can else "no"
    if can:
        os.execvp(command[0], [*command, sys.executable, "-B", *sys.argv])
    print("note    no mounts here: neither a full disk nor a read-only one is tried", flush=True)
    return False


@contextlib.contextmanager
def mounted(*options):
    folder = options[-1]
    subprocess.run(["mount", *options], check=True)
    try:
        yield
    finally:
        subprocess.run(["umount", folder], check=True)
