#!/usr/bin/env python3
"""Installs the packed program silently under Wine, starts it from there, upgrades it in place while it runs, removes
it, and compares files and registry before and after. ctest gives the build folder; the Wine and the display are those
of the test run, the prefix is this test's own."""
import os
import pwd
import shutil
import sys
import time
import zipfile

import made
import support
from support import COMMS, PROGRAM, PROGRAM_KEY, SHORTCUT, UNINSTALL_KEY, check, machine

LOCAL = f"drive_c/users/{pwd.getpwuid(os.getuid()).pw_name}/AppData/Local/Velmora/Quillon"
OTHERS = {f"{PROGRAM}/Neighbour.exe", f"{LOCAL}/Report/events.jsonl"}
SETTINGS_KEY = r"HKEY_CURRENT_USER\Software\Velmora\Quillon\LumiCamera"
SIGNATURE_POLICY = r"hkey_current_user\software\microsoft\windows\currentversion\wintrust"
OWN_SETTINGS = ["lumi_camera_switch", "lumi_camera_background_replacement", "lumi_camera_eye_correction"]
DRIVER_SETTINGS = ["filter_driver_install", "init_algorithm"]
EXIT_RUNNING = 3
LEFT_BY_NSIS = "/Temp/"  # the uninstaller's own copy, which the system deletes at its next start


def install(wine, setup):
    return wine.run(setup, "/S", timeout=120)


def uninstall(wine, *options):
    """As Windows does it: the uninstaller makes a copy of itself, which goes on when it has ended."""
    wine.run("cmd", "/c", r"C:\Program Files\Velmora\Quillon\UninstallPixora.exe", "/S", *options, timeout=120)
    gone = lambda: not wine.exists(f"{PROGRAM}/UninstallPixora.exe") and not wine.value(UNINSTALL_KEY, "DisplayName")
    check(machine.wait_until(gone), "the uninstaller has ended its work")


def check_installed(wine, staged, version):
    wrong = [name for name, content in machine.contents(staged).items() if wine.content(f"{PROGRAM}/{name}") != content]
    check(not wrong, f"every file is installed as it was built {wrong}")
    check(wine.value(UNINSTALL_KEY, "DisplayVersion") == version, f"the system lists version {version}")
    for name in ("DisplayName", "Publisher", "DisplayIcon", "EstimatedSize", "UninstallString", "QuietUninstallString"):
        check(wine.value(UNINSTALL_KEY, name), f"the system's list has {name}")
    check(wine.value(PROGRAM_KEY, "InstallFolder") == r"C:\Program Files\Velmora\Quillon", "the suite finds the folder")
    check(wine.exists(SHORTCUT), "the Start menu has a shortcut")
    check("run".encode("utf-16-le") in wine.content(SHORTCUT), "which starts with run")
    check(wine.exists(COMMS), "the shared folder is there")


def check_symbols(archive, program):
    modules = [name for name in os.listdir(program) if name.startswith(("Pixora", "Qx", "DuiLib"))]
    modules += ["PixoraSetupHelper.exe", "PixoraSetupActions.dll"]
    packed = {os.path.basename(name) for name in zipfile.ZipFile(archive).namelist()}
    runtime = {name for name in os.listdir(program) if name.startswith("lib") and name.endswith(".dll")}
    check(packed == {f"{name}.debug" for name in modules} | set(modules) | runtime,
          f"the symbols of {len(modules)} modules are packed, and the modules")


def start(wine, folder=PROGRAM):
    program = wine.start(f"{wine.prefix}/{folder}/Pixora.exe", "run")
    check(wine.run(wine.tool("PixoraProbe.exe"), "wait", "30000") == 0, f"the program in {folder} opens its window")
    return program


def run_start_scenarios(wine, folder, names):
    return wine.run(wine.tool("e2e_StartTest.exe"), f"--gtest_filter={names}", timeout=300, output=names == "*",
                    environment={"PIXORA_PROGRAM_FOLDER": folder + "\\"})


def try_portable(wine, archive):
    zipfile.ZipFile(archive).extractall(f"{wine.prefix}/drive_c/portable")
    [folder] = os.listdir(f"{wine.prefix}/drive_c/portable")
    program = start(wine, f"drive_c/portable/{folder}")
    check(wine.run(wine.tool("PixoraProbe.exe"), "press", "closebtn") == 0, "and its close button closes it")
    check(program.wait(timeout=60) == 0, "without a fault")
    shutil.rmtree(f"{wine.prefix}/drive_c/portable")


def diagnose(wine):
    """The exit code and the report of the installed diagnostics program."""
    code = wine.run(f"{wine.prefix}/{PROGRAM}/PixoraDiagnostics.exe", "--output", "C:\\report.txt")
    report = wine.content("drive_c/report.txt").decode()
    os.remove(f"{wine.prefix}/drive_c/report.txt")
    return code, report


def upgrade_running(wine, setup):
    program = start(wine)
    check(install(wine, setup) == 0, "the upgrade succeeds while the program runs")
    check(program.wait(timeout=60) == 0, "the program was closed as by its close button")
    check(not wine.exists(f"{PROGRAM}/res/of-the-old-version.txt"), "what only the old version had is gone")


def refuse_when_hanging(wine, setup):
    program = start(wine)
    before = machine.contents(f"{wine.prefix}/{PROGRAM}")
    program.send_signal(machine.STOP)
    try:
        check(install(wine, setup) == EXIT_RUNNING, "a program that does not close stops the installation")
        _, report = diagnose(wine)
        check("WRONG  Pixora is running, but its window does not answer" in report, "the diagnostics program sees it")
    finally:
        program.send_signal(machine.CONTINUE)
    check(machine.contents(f"{wine.prefix}/{PROGRAM}") == before, "and nothing was changed")
    program.wait(timeout=60)


def use_as_people_do(wine):
    """What must stay when the program goes: settings, the driver's state, own pictures, a neighbour's file."""
    wine.run("reg", "add", SETTINGS_KEY, "/v", "filter_driver_install", "/t", "REG_DWORD", "/d", "1", "/f")
    wine.run("reg", "add", SETTINGS_KEY, "/v", "init_algorithm", "/t", "REG_DWORD", "/d", "1", "/f")
    for name in OWN_SETTINGS:
        wine.run("reg", "add", SETTINGS_KEY, "/v", name, "/t", "REG_DWORD", "/d", "1", "/f")
    wine.write(f"{COMMS}/LumiCamera/S-1-5-21-1-2-3-1000/custom_background_btn_0.jpg", b"picture")
    wine.write(f"{PROGRAM}/Neighbour.exe", b"another program of the suite")
    wine.write(f"{LOCAL}/Report/events.jsonl", b"events that nobody has fetched yet")


def check_diagnostics(wine):
    code, report = diagnose(wine)
    check(code == 1, "the diagnostics program misses the camera")
    check(f"installed version {made.OLD}" in report, "and knows the installation")
    check("layouts, texts, pictures and libraries are there" in report, "and finds the program whole")
    check("this user can make folders" in report, "and can make folders where own backgrounds belong")


def files_made(wine, before):
    return {name for name in machine.contents(wine.prefix) if name not in before and name.startswith("drive_c/")
            and LEFT_BY_NSIS not in name}


def added_to_registry(wine, before):
    """Without the keys that the settings lie in, and what the system notes when it is first asked for a signature."""
    return {line for line in wine.registry() - before
            if not SETTINGS_KEY.lower().startswith(line.lower()) and not line.lower().startswith(SIGNATURE_POLICY)}


def check_kept(wine, files_before, registry_before):
    left = files_made(wine, files_before)
    expected = {f"{COMMS}/LumiCamera/S-1-5-21-1-2-3-1000/custom_background_btn_0.jpg", *OTHERS}
    logs = {name for name in left if name.startswith(f"{LOCAL}/Logs/")}
    check(left - logs == expected, f"only pictures, events and the neighbour's file stay: {sorted(left - logs)}")
    check(all(os.path.basename(name) == "Pixora.log" for name in logs), f"of logs only Pixora's: {sorted(logs)}")
    foreign = {line for line in added_to_registry(wine, registry_before)
               if not line.lower().startswith(SETTINGS_KEY.lower())}
    check(not foreign, f"only the settings stay in the registry: {sorted(foreign)}")
    for name in OWN_SETTINGS + DRIVER_SETTINGS:
        check(wine.value(SETTINGS_KEY, name), f"{name} stays")


def check_data_removed(wine, files_before, registry_before):
    left = files_made(wine, files_before)
    check(left == OTHERS, f"only events and the neighbour's file stay: {sorted(left)}")
    for name in OWN_SETTINGS:
        check(not wine.value(SETTINGS_KEY, name), f"{name} is gone")
    for name in DRIVER_SETTINGS:
        check(wine.value(SETTINGS_KEY, name), f"the driver's {name} stays")
    foreign = {line for line in added_to_registry(wine, registry_before)
               if not any(name in line for name in DRIVER_SETTINGS)}
    check(not foreign, f"nothing else stays in the registry: {sorted(foreign)}")


def check_versions(wine):
    """Windows asks the files themselves."""
    for name in sorted(os.listdir(made.program(wine.build))):
        if name.endswith((".exe", ".dll")) and not name.startswith("lib"):
            told = wine.output(wine.tool("SetupTool.exe"), "version", f"{wine.prefix}/{PROGRAM}/{name}").strip()
            check(told.startswith(f"{made.version(wine.build)}.0 {name} ") and len(told.split()) > 2, f"{name} tells {told}")


def main(build):
    os.chdir(support.ROOT)
    out = os.path.join(os.path.dirname(build), "package-test", "installer")
    shutil.rmtree(out, ignore_errors=True)
    os.makedirs(out)
    old, new = made.old_setup(build), made.path(build, "setup")
    check_symbols(made.path(build, "symbols"), made.program(build))

    with machine.Wine(build, os.path.join(out, "prefix")) as wine:
        shutil.rmtree(f"{wine.prefix}/{COMMS}", ignore_errors=True)
        start_files, start_registry = machine.contents(wine.prefix), wine.registry()

        check(install(wine, old) == 0, "the silent installation succeeds")
        check_installed(wine, made.old_program(build), made.OLD)
        check(run_start_scenarios(wine, r"C:\Program Files\Velmora\Quillon", "*") == 0,
              "the start scenarios pass from the installed place")
        check(run_start_scenarios(wine, r"C:\Nowhere", "StartTest.*") == 1, "and from nowhere else")

        use_as_people_do(wine)
        check_diagnostics(wine)
        upgrade_running(wine, new)
        check_installed(wine, made.program(build), made.version(build))
        check_versions(wine)
        refuse_when_hanging(wine, new)
        uninstall(wine)
        check_kept(wine, start_files, start_registry)

        try_portable(wine, made.path(build, "portable"))
        check(install(wine, new) == 0, "it can be installed again")
        uninstall(wine, "/REMOVEDATA")
        check_data_removed(wine, start_files, start_registry)
    print("package_installer: all passed")


if __name__ == "__main__":
    started = time.monotonic()
    main(os.path.abspath(sys.argv[1]))
    print(f"{time.monotonic() - started:.0f} s")
