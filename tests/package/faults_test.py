#!/usr/bin/env python3
"""What can go wrong while the installer works: files in use, a full disk, a disk that cannot be written, an end in the
middle, folders that somebody prepared. After each the installed version is whole, the old one or the new one."""
import os
import random
import shutil
import subprocess
import sys
import time

import support
from support import COMMS, PROGRAM, PROGRAM_KEY, UNINSTALL_KEY, WORK, check, machine

RUNNING, IN_USE, NEWER, FOLDER, UNDER_WAY, FAILED, RESTART = 3, 4, 5, 7, 8, 2, 3010
FOLDER_ON_C = r"C:\Program Files\Velmora\Quillon"
SOMEBODY = 12345


def expect_whole(wine, version, why):
    support.expect_whole(wine, version, why)
    check(wine.exists(f"{PROGRAM}/UninstallPixora.exe"), "with its uninstaller")


def expect_unchanged(wine, version, why):
    expect_whole(wine, version, why)
    check(not wine.exists(WORK), "nothing of the new version is left")
    check(wine.value(UNINSTALL_KEY, "DisplayVersion") == version.number, "the system lists the old version")
    check(wine.value(PROGRAM_KEY, "Version") == version.number, "and so does the suite")


def try_first_install(wine, old):
    check(support.setup(wine, old) == 0, "the first version is installed")
    expect_unchanged(wine, old, "first installation")


def try_files_in_use(wine, old, new):
    tool = wine.tool("SetupTool.exe")
    library = FOLDER_ON_C + r"\DuiLib.dll"
    only_old = FOLDER_ON_C + rf"\res\only {old.number}\a\b.txt"
    holders = {"a library that is read": ((tool, "hold", library, "read"), b"held"),
               "one that may even be deleted": ((tool, "hold", library, "all"), b"held"),
               "a file that only the old version has": ((tool, "hold", only_old, "none"), b"held"),
               "the open diagnostics program": ((f"{wine.prefix}/{PROGRAM}/PixoraDiagnostics.exe", "wait"), b"running")}
    for what, (command, says) in holders.items():
        with support.holding(wine, *command, says=says):
            code, why = wine.result(new.setup, "/S", timeout=120)
            check(code == IN_USE, f"{what} ends a silent upgrade with code {IN_USE}")
            check(os.path.basename(command[-2 if command[0] == tool else 0].replace("\\", "/")) in why,
                  f"and its output names the file: {why.strip()!r}")
            expect_unchanged(wine, old, "file in use")
    with support.holding(wine, tool, "hold", library, "read"):
        check(support.uninstall(wine) == IN_USE, "and a silent removal")
        expect_unchanged(wine, old, "file in use")


def answer_box(wine, button):
    """The text of the box."""
    return subprocess.run([wine.wine, wine.tool("SetupTool.exe"), "box", button], stdin=subprocess.DEVNULL,
                          capture_output=True, env=wine.environment, timeout=90, check=False).stdout.decode()


def try_open_run(wine, old, new):
    """Asks, tries again, and ends when told to."""
    tool = wine.tool("SetupTool.exe")
    hold = (tool, "hold", FOLDER_ON_C + r"\DuiLib.dll", "read")
    next_page, cancel, retry = "1", "2", "4"
    with support.holding(wine, *hold):
        run = wine.start(new.setup)
        check(wine.run(tool, "press", next_page) == 0, "an open run has a first page")
        for answer in (retry, cancel):
            text = answer_box(wine, answer)
            check("DuiLib.dll" in text, f"it asks what to do about the file in use: {text.strip()!r}")
        check(wine.run(tool, "press", cancel) == 0, "and can be closed")
        check(run.wait(timeout=60) == IN_USE, f"with code {IN_USE}")
        expect_unchanged(wine, old, "cancelled")
    with support.holding(wine, *hold):
        run = wine.start(new.setup)
        check(wine.run(tool, "press", next_page) == 0, "once more")
        check("DuiLib.dll" in answer_box(wine, retry), "it asks, and tries again while the file becomes free")
    check(wine.run(tool, "press", next_page) == 0, "then the last page comes")
    check(run.wait(timeout=60) == 0, "and the run succeeds")
    expect_unchanged(wine, new, "retried")


def try_two_at_once(wine, old, new, saved):
    put_back(wine, old, saved)
    lock = FOLDER_ON_C + r"\Pixora.setup\lock"
    os.makedirs(f"{wine.prefix}/{WORK}")
    with support.holding(wine, wine.tool("SetupTool.exe"), "hold", lock, "make"):
        check(support.setup(wine, new) == UNDER_WAY, "a second run at the same time ends")
        check(support.uninstall(wine) == UNDER_WAY, "and so does a removal")
    shutil.rmtree(f"{wine.prefix}/{WORK}")
    expect_whole(wine, old, "two at once")


def try_restart(wine, new):
    """What cannot go at the end of a run goes with the next start of the system."""
    helper = FOLDER_ON_C + r"\Pixora.setup\PixoraSetupHelper.exe"
    run = wine.start(new.setup, "/S")
    with support.holding(wine, wine.tool("SetupTool.exe"), "hold", helper, "read"):
        check(run.wait(timeout=120) == RESTART & 0xFF, "a file that is held at the end asks for a restart")
        check(wine.exists(f"{WORK}/PixoraSetupHelper.exe"), "and is still there")
    check(wine.value(UNINSTALL_KEY, "DisplayVersion") == new.number, "the new version is installed")
    wine.run("wineboot", "-r")
    check(machine.wait_until(lambda: not wine.exists(WORK)), "the restart deletes it")
    expect_whole(wine, new, "restarted")


def expect_removed(wine):
    left = set(machine.contents(f"{wine.prefix}/{PROGRAM}"))
    check(left == {"UninstallPixora.exe"}, "of the program only the uninstaller stays, which runs from there")
    check(not wine.value(UNINSTALL_KEY, "DisplayName"), "the system does not list it any more")


def put_back(wine, version, saved):
    """The files of an installed version as they were."""
    folder = f"{wine.prefix}/{PROGRAM}"
    shutil.rmtree(folder, ignore_errors=True)
    shutil.copytree(saved, folder)


def try_full_disk(wine, old, new, saved):
    """Room for ever more of what is unpacked; the size of a file system in memory is that of its pages."""
    volume = os.path.dirname(f"{wine.prefix}/{PROGRAM}")
    used = sum(os.path.getsize(os.path.join(path, name)) // 1024 + 4 for path, _, names in os.walk(saved) for name in names)
    shutil.rmtree(volume)
    os.makedirs(volume)
    with support.mounted("-t", "tmpfs", "-o", f"size={used}k", "pixora", volume):
        put_back(wine, old, saved)
        refused = 0
        for free in range(0, 4000, 170):
            subprocess.run(["mount", "-o", f"remount,size={used + free}k", volume], check=True)
            code = support.setup(wine, new)
            if code == 0:
                break
            refused += 1
            check(code == FAILED, f"with {free} KiB free a silent upgrade ends with code {FAILED}")
            expect_whole(wine, old, "full disk")
            check(not wine.exists(WORK), "nothing of the new version is left")
        check(refused >= 4, f"{refused} sizes were too small for one thing or another")
        expect_whole(wine, new, "with room enough")


def try_read_only(wine, old, new, saved):
    put_back(wine, old, saved)
    volume = f"{wine.prefix}/{PROGRAM}"
    with support.mounted("--bind", volume, volume):
        subprocess.run(["mount", "-o", "remount,bind,ro", volume], check=True)
        check(support.setup(wine, new) == FAILED, f"a folder that cannot be written ends it with code {FAILED}")
        expect_whole(wine, old, "read-only")
        check(not wine.exists(WORK), "nothing of the new version is left")


def try_newer(wine, old, new):
    check(support.setup(wine, old) == NEWER, f"an older version ends with code {NEWER}")
    expect_unchanged(wine, new, "newer version")


def expect_refused(wine, old, new, why):
    check(support.setup(wine, new) == FOLDER, f"{why} ends it with code {FOLDER}")
    expect_whole(wine, old, why)
    check(not wine.exists(WORK), "nothing of the new version is left")


def try_prepared_folders(wine, old, new, saved):
    """A link stands for a junction: Wine tells both in the same way, by the attribute of the name."""
    put_back(wine, old, saved)
    comms = f"{wine.prefix}/{COMMS}"
    elsewhere = f"{wine.prefix}/drive_c/elsewhere"
    os.makedirs(f"{elsewhere}/LumiCamera/S-1-5-21-7")
    shutil.rmtree(comms)
    os.symlink(elsewhere, comms)
    expect_refused(wine, old, new, "a link in the shared folder's place")
    os.remove(comms)
    support.write(comms, b"a file")
    expect_refused(wine, old, new, "a file in its place")
    os.remove(comms)
    os.makedirs(comms)
    os.symlink(f"{elsewhere}/LumiCamera", f"{comms}/LumiCamera")
    expect_refused(wine, old, new, "a link in the pictures' folder's place")
    os.remove(f"{comms}/LumiCamera")
    if os.getuid() == 0:
        os.chown(comms, SOMEBODY, -1)
        expect_refused(wine, old, new, "a shared folder that somebody else made")
        os.chown(comms, 0, -1)
    else:
        print("note    only root can give the shared folder to somebody else: not tried", flush=True)
    check(sorted(machine.contents(elsewhere)) == [], "nothing was written through a link")
    check(support.setup(wine, new) == 0, "with a sound folder it is installed")
    check(os.path.isdir(f"{comms}/LumiCamera"), "and both folders are there")


def try_removal_of_data(wine, new):
    """Pictures go by their names, and never those behind a link."""
    pictures = f"{COMMS}/LumiCamera"
    wine.write("drive_c/elsewhere/custom_background_btn_3.jpg", b"not ours")
    os.symlink(f"{wine.prefix}/drive_c/elsewhere", f"{wine.prefix}/{pictures}/S-1-5-21-8")
    for name in ("S-1-5-21-1/custom_background_btn_0.jpg", "S-1-5-21-1/custom_background_btn_31.jpg.part",
                 "custom_background_btn_1.jpg", "S-1-5-21-2/custom_background_btn_0.jpg", "S-1-5-21-2/letter.txt"):
        wine.write(f"{pictures}/{name}", b"picture")
    check(support.uninstall(wine, "/REMOVEDATA") == 0, "the removal of everything succeeds")
    left = set(machine.contents(f"{wine.prefix}/{pictures}"))
    check(left == {"S-1-5-21-2/letter.txt"}, f"of the pictures' folder only a stranger's file stays: {sorted(left)}")
    check(not wine.exists(f"{pictures}/S-1-5-21-1"), "the empty folder of a user is gone")
    check(wine.exists(f"{pictures}/S-1-5-21-8"), "the link stays")
    check(wine.exists("drive_c/elsewhere/custom_background_btn_3.jpg"), "and so does what lies behind it")
    expect_removed(wine)


def expect_no_mixture(wine, *versions):
    """What can be started is whole."""
    tree = {name: content for name, content in support.installed(wine).items() if not name.startswith("Pixora.setup/")}
    check("Pixora.exe" not in tree or tree in [version.tree for version in versions],
          "no mixture of two versions can be started")


def try_helper_left_behind(wine, old, new, saved):
    """A run that was killed may leave its helper, never begun, which keeps the file that the next run replaces."""
    put_back(wine, old, saved)
    helper = f"{wine.prefix}/{WORK}/PixoraSetupHelper.exe"
    os.makedirs(os.path.dirname(helper), exist_ok=True)
    shutil.copy(wine.tool("SetupTool.exe"), helper)
    with support.holding(wine, helper, "wait", says=b"running"):
        check(support.setup(wine, new) == 0, "a helper that was left behind does not stop the next run")
    expect_whole(wine, new, "helper left behind")


def try_kills(wine, old, new, saved):
    seed = int(time.time())
    print(f"note    seed {seed}", flush=True)
    chance = random.Random(seed)
    started = time.monotonic()
    check(support.setup(wine, new) == 0, "an upgrade that nothing disturbs")
    whole = time.monotonic() - started
    killed = 0
    for number in range(10):
        put_back(wine, old, saved)
        moment = whole * (number + chance.random()) / 10
        killed += support.start_and_kill(wine, (new.setup, "/S"), moment)
        expect_no_mixture(wine, old, new)
        code = support.setup(wine, new)
        check(code == 0, f"after a kill at {moment:.2f} s the next run succeeds: {code}")
        expect_whole(wine, new, "repaired")
        check(not wine.exists(WORK), "and nothing is left of the killed one")
    check(killed >= 5, f"{killed} of ten runs were killed in the middle")


def try_kills_of_the_removal(wine, old, new, saved):
    command = support.uninstall_command(wine)
    for moment in (0.5, 1, 1.5):
        check(support.setup(wine, new) == 0, "installed once more")
        put_back(wine, old, saved)
        support.start_and_kill(wine, command, moment)
        expect_no_mixture(wine, old)
        check(support.uninstall(wine) == 0, f"after a kill at {moment} s the next removal succeeds")
        expect_removed(wine)


def main(build):
    os.chdir(support.ROOT)
    mounts = support.with_mounts()
    out = os.path.join(os.path.dirname(build), "package-test", "faults")
    shutil.rmtree(out, ignore_errors=True)
    os.makedirs(out)
    old = support.Version(build, out, "1.2.0", "installer")
    new = support.Version(build, out, "1.10.0", "installer")
    with machine.Wine(build, os.path.join(out, "prefix")) as wine:
        shutil.rmtree(f"{wine.prefix}/{COMMS}", ignore_errors=True)
        try_first_install(wine, old)
        saved = shutil.copytree(f"{wine.prefix}/{PROGRAM}", os.path.join(out, "saved"))
        try_files_in_use(wine, old, new)
        try_open_run(wine, old, new)
        try_newer(wine, old, new)
        try_two_at_once(wine, old, new, saved)
        try_prepared_folders(wine, old, new, saved)
        if mounts:
            try_read_only(wine, old, new, saved)
            try_full_disk(wine, old, new, saved)
        try_helper_left_behind(wine, old, new, saved)
        try_kills(wine, old, new, saved)
        try_restart(wine, new)
        try_removal_of_data(wine, new)
        try_kills_of_the_removal(wine, old, new, saved)
    print("package_faults: all passed")


if __name__ == "__main__":
    begun = time.monotonic()
    main(os.path.abspath(sys.argv[1]))
    print(f"{time.monotonic() - begun:.0f} s")
