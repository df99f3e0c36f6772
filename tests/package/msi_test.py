#!/usr/bin/env python3
"""The package for managed machines: what its tables say, and what the system's installer makes of them under Wine.

Wine does not have everything: it closes no program, gives back nothing when an installation fails, does not know the
table of the folders' rights, and puts the shortcut into the user's own menu. What only Windows shows is in
docs/packaging.md."""
import os
import random
import re
import shutil
import subprocess
import sys
import time

import made
import support
from support import COMMS, PROGRAM, PROGRAM_KEY, UNINSTALL_KEY, check, machine

ANOTHER_WAY, FAILED, RESTART = 6, 1603, 3010
FOLDER_ON_C = r"C:\Program Files\Velmora\Quillon"
RIGHTS = "O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)(A;;0x4;;;BU)(A;OICIIO;GA;;;CO)"


def table(package, name):
    text = subprocess.check_output(["msiinfo", "export", package, name], text=True).replace("\r\n", "\n")
    return [line.split("\t") for line in text.rstrip("\n").split("\n")[3:]]


def check_tables(package, version, setup):
    """What Wine does not act on, or does in its own way."""
    properties = dict(table(package, "Property"))
    check(properties["ProductVersion"] == version and properties["ALLUSERS"] == "1", "version, for all users")
    check(properties["REBOOT"] == "ReallySuppress", "it never restarts a machine by itself")
    summary = {row[0]: row[1] for row in table(package, "_SummaryInformation")}
    check(summary["7"] == "x64;1033", "for 64-bit Windows")
    check([row[1:] for row in table(package, "MsiLockPermissionsEx")]
          == [["COMMSDIR", "CreateFolder", RIGHTS, "NOT COMMSTHERE"], ["PICTURESDIR", "CreateFolder", RIGHTS, ""]],
          "the folders' rights, for Comms only when the package makes it")
    with open("setup/SharedFolders.cpp", encoding="utf-8") as file:
        literals = re.search(r"kRights\[\] =\s+(.*?);\n", file.read(), re.S).group(1)
    check("".join(re.findall(r'L"(.*?)"', literals)) == RIGHTS, "the same as those of the installer")
    check(["COMMSTHERE", "CommsThere"] in table(package, "AppSearch")
          and ["CommsThere", "", "[CommonAppDataFolder]Comms", "0"] in table(package, "DrLocator"), "which it looks for")
    order = sorted(((int(row[2]), row[0]) for row in table(package, "InstallExecuteSequence")))
    names = [name for _, name in order]
    check(names.index("InstallInitialize") + 1 == names.index("RemoveExistingProducts") == names.index("MakeFolders") - 1,
          "the old version goes inside the transaction, which begins with the folders")
    check(names.index("LaunchConditions") + 1 == names.index("CheckFolders"), "they are checked before anything else")
    actions = {row[0]: row[1:4] for row in table(package, "CustomAction")}
    check(actions == {"CheckFolders": ["1", "Actions", "CheckFolders"], "MakeFolders": ["3073", "Actions", "MakeFolders"]},
          "the check as the user, the making as the system")
    files = {row[2]: row[4:6] for row in table(package, "File")}
    check(files["Pixora.exe"] == [f"{version}.0", "1033"] and files["Pixora.xml"] == ["", ""],
          "files with a version are replaced by it")
    hashed = {row[0] for row in table(package, "MsiFileHash")}
    check({row[0] for row in table(package, "File") if not row[4]} == hashed, "the others by their content")
    listed = subprocess.check_output([support.seven_zip(), "l", "-slt", setup], text=True)
    in_setup = {os.path.basename(line[len("Path = "):]) for line in listed.splitlines() if line.startswith("Path = ")}
    only = set(files) - in_setup
    check(not only, f"what it installs is what the installer installs: {sorted(only)}")


def path_of(package):
    return "Z:" + package.replace("/", "\\")


def msiexec(wine, mode, package, *options):
    """The exit code, as far as a Linux process can tell it."""
    return wine.run("msiexec", mode, path_of(package), *options, "/qn", timeout=180)


def expect_installed(wine, version, why):
    support.expect_whole(wine, version, why)
    check(wine.value(PROGRAM_KEY, "Version") == version.number, "the suite finds the version")
    check(wine.value(PROGRAM_KEY, "InstallFolder") == FOLDER_ON_C, "and the folder")


def listed_versions(wine):
    """What the system's list of programs has of Pixora."""
    programs, values = {}, {}
    for line in wine.output("reg", "query", UNINSTALL_KEY.rsplit("\\", 1)[0], "/s").splitlines():
        parts = line.strip().split(None, 2)
        if line.startswith("HKEY_"):
            values = programs.setdefault(line.strip(), {})
        elif len(parts) == 3:
            values[parts[0]] = parts[2]
    return [values["DisplayVersion"] for values in programs.values() if values.get("DisplayName") == "Pixora"]


def shortcuts(wine):
    return [os.path.join(path, name) for path, _, names in os.walk(f"{wine.prefix}/drive_c") for name in names
            if name == "Pixora.lnk"]


def try_installation(wine, old):
    check(msiexec(wine, "/i", old.msi) == 0, "the silent installation succeeds")
    expect_installed(wine, old, "installed")
    check(listed_versions(wine) == [old.number], "the system lists it")
    check(os.path.isdir(f"{wine.prefix}/{COMMS}/LumiCamera"), "the shared folders are there")
    links = shortcuts(wine)
    check(len(links) == 1, "the Start menu has a shortcut")
    with open(links[0], "rb") as file:
        check("run".encode("utf-16-le") in file.read(), "which starts with run")


def try_repair(wine, old):
    os.remove(f"{wine.prefix}/{PROGRAM}/DuiLib.dll")
    wine.write(f"{PROGRAM}/res/layout/Pixora.xml", b"damaged")
    # As `msiexec /fa`, which Wine does not know for a package.
    check(msiexec(wine, "/i", old.msi, "REINSTALL=ALL", "REINSTALLMODE=amus") == 0, "a repair succeeds")
    expect_installed(wine, old, "repaired")


def try_setup_beside(wine, old, new):
    check(wine.run(new.setup, "/S") == ANOTHER_WAY, f"the installer ends with code {ANOTHER_WAY}")
    expect_installed(wine, old, "the installer came second")


def try_prepared_folder(wine, old, new):
    comms = f"{wine.prefix}/{COMMS}"
    elsewhere = f"{wine.prefix}/drive_c/elsewhere"
    os.makedirs(elsewhere)
    os.rename(comms, comms + "-kept")
    os.symlink(elsewhere, comms)
    log = f"{wine.prefix}/drive_c/msi.log"
    check(msiexec(wine, "/i", new.msi, "/l*v", r"C:\msi.log") == FAILED & 0xFF, "a link in the shared folder's place ends it")
    with open(log, "rb") as file:
        check(r"C:\ProgramData\Comms belongs to another user".encode() in file.read().replace(b"\0", b""),
              "the log says why")
    expect_installed(wine, old, "prepared folder")
    check(not os.listdir(elsewhere), "nothing was written through the link")
    os.remove(comms)
    os.rename(comms + "-kept", comms)


def try_upgrade(wine, old, new):
    wine.write(f"{PROGRAM}/Neighbour.exe", b"another program of the suite")
    check(msiexec(wine, "/i", new.msi) == 0, "the upgrade succeeds")
    os.remove(f"{wine.prefix}/{PROGRAM}/Neighbour.exe")
    expect_installed(wine, new, "upgraded")
    check(listed_versions(wine) == [new.number], "the system lists the new version only")
    check(msiexec(wine, "/i", old.msi) == FAILED & 0xFF, "an older version is refused")
    expect_installed(wine, new, "not downgraded")
    check(listed_versions(wine) == [new.number], "and not listed")


def try_removal(wine, new):
    wine.write(f"{COMMS}/LumiCamera/S-1-5-21-1/custom_background_btn_0.jpg", b"picture")
    check(msiexec(wine, "/x", new.msi) == 0, "the removal succeeds")
    check(not os.path.exists(os.path.dirname(f"{wine.prefix}/{PROGRAM}")), "of the program nothing stays")
    check(not listed_versions(wine) and not shortcuts(wine), "neither in the system's list nor in the Start menu")
    check(not wine.value(PROGRAM_KEY, "Version"), "nor in the registry")
    check(wine.exists(f"{COMMS}/LumiCamera/S-1-5-21-1/custom_background_btn_0.jpg"), "the pictures stay")


def try_file_in_use(wine, old, new):
    check(msiexec(wine, "/i", old.msi) == 0, "installed again")
    with support.holding(wine, wine.tool("SetupTool.exe"), "hold", FOLDER_ON_C + r"\DuiLib.dll", "read"):
        check(msiexec(wine, "/i", new.msi) == RESTART & 0xFF, f"a file in use asks for a restart, code {RESTART}")
    wine.run("wineboot", "-r")
    check(machine.wait_until(lambda: support.installed(wine).get("DuiLib.dll") == new.tree["DuiLib.dll"]),
          "which finishes the upgrade")
    expect_installed(wine, new, "restarted")
    check(msiexec(wine, "/x", new.msi) == 0, "and it can be removed")


def try_kills(build, prefix, old, new):
    """Each on a machine of its own. Wine gives nothing back: what the killed run had not removed yet of the old version
    stays, and what it had written into the system's list, which then may refuse to repair or to remove."""
    seed = int(time.time())
    print(f"note    seed {seed}", flush=True)
    chance = random.Random(seed)
    whole = None
    for number in range(-1, 4):
        with machine.Wine(build, prefix) as wine:
            check(msiexec(wine, "/i", old.msi) == 0, "the old version")
            started = time.monotonic()
            if number < 0:
                check(msiexec(wine, "/i", new.msi) == 0, "an upgrade that nothing disturbs")
                whole = time.monotonic() - started
                expect_installed(wine, new, "upgraded")
                check(msiexec(wine, "/x", new.msi) == 0, "which can be removed")
                check(not wine.exists(f"{PROGRAM}/Pixora.exe"), "and leaves no program")
            else:
                moment = whole * (number + chance.random()) / 4
                support.start_and_kill(wine, ("msiexec", "/i", path_of(new.msi), "/qn"), moment)
                msiexec(wine, "/i", new.msi)
                there, other = support.installed(wine), support.differences(wine, new)
                check(all(name not in new.tree and there[name] == old.tree.get(name) for name in other),
                      f"after a kill at {moment:.2f} s the next run makes all files of the new version: {other}")


def try_beside_setup(wine, old, new):
    check(wine.run(old.setup, "/S") == 0, "now the installer comes first")
    check(msiexec(wine, "/i", new.msi) == FAILED & 0xFF, "then the package is refused")
    support.expect_whole(wine, old, "the package came second")
    check(listed_versions(wine) == [old.number], "and not listed")


def main(build):
    os.chdir(support.ROOT)
    out = os.path.join(os.path.dirname(build), "package-test", "msi")
    shutil.rmtree(out, ignore_errors=True)
    os.makedirs(out)
    check_tables(made.path(build, "msi"), made.version(build), made.path(build, "setup"))
    old = support.Version(build, out, "1.2.0", "installer", "msi")
    new = support.Version(build, out, "1.10.0", "installer", "msi")
    with machine.Wine(build, os.path.join(out, "prefix")) as wine:
        shutil.rmtree(f"{wine.prefix}/{COMMS}", ignore_errors=True)
        try_installation(wine, old)
        try_repair(wine, old)
        try_setup_beside(wine, old, new)
        try_prepared_folder(wine, old, new)
        try_upgrade(wine, old, new)
        try_removal(wine, new)
        try_file_in_use(wine, old, new)
        try_beside_setup(wine, old, new)
    try_kills(build, os.path.join(out, "prefix"), old, new)
    print("package_msi: all passed")


if __name__ == "__main__":
    begun = time.monotonic()
    main(os.path.abspath(sys.argv[1]))
    print(f"{time.monotonic() - begun:.0f} s")
