#!/usr/bin/env python3
"""The tests for a real PC: packed, unpacked in a folder with a blank and a letter of another script, started by
run-tests.cmd on a machine of its own; the report is read, and files and registry are compared before and after."""
import html
import json
import os
import re
import shutil
import sys
import zipfile

import support
from support import COMMS, ROOT, check, machine

sys.path.insert(0, os.path.join(ROOT, "packaging"))
import proof

# Of each kind one: pure, with a window and the service's pipe, with links, with media in its working folder, that
# writes the shared folder. PIXORA_PROOF_TESTS names others; empty, it is all of them.
PATTERN = os.environ.get("PIXORA_PROOF_TESTS", "^(app_test|suite_url_test|preview_media_test|e2e_MessageWindowTest)$")
SETTINGS = r"HKCU\Software\Velmora\Quillon\LumiCamera"
THEME = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Themes\Personalize"
PICTURE = f"{COMMS}/LumiCamera/S-1/custom_background_btn_0.jpg"
PIPE = r"\\.\Pipe\iNotoraAssistant"
FOLDER = "drive_c/Eigene Tests я"
# As on a PC, where what only Wine allows is skipped.
ON_A_PC = {"PIXORA_NO_WINE": "1"}


# Made by the system when the diagnostics program asks it for signatures; on Windows every user has it.
SIGNATURE_POLICY = r"hkey_current_user\software\microsoft\windows\currentversion\wintrust"


def registry_of(wine):
    return {line for line in wine.registry() if not line.lower().startswith(SIGNATURE_POLICY)}


def pack(build, out):
    shutil.rmtree(out, ignore_errors=True)
    [package] = support.pack(build, out, "--only", "tests", "--pattern", PATTERN)
    return package


def check_list(build, package):
    """Every test of ctest is in the list or has a reason why not."""
    with zipfile.ZipFile(package) as archive:
        root = archive.namelist()[0].split("/")[0]
        names = {name[len(root) + 1:] for name in archive.namelist()}
        lines = [line.split("\t") for line in archive.read(f"{root}/tests/tests.txt").decode().splitlines()]
        check(archive.read(f"{root}/run-tests.cmd").startswith(b"@echo off\r\n"), "run-tests.cmd has the system's line ends")
    check(names >= {"run-tests.cmd", "tests/PixoraTests.exe", "tests/bin/PixoraDemo.exe", "tests/bin/PixoraService.exe",
                    "tests/bin/PixoraDiagnostics.exe", "tests/bin/res/layout/Pixora.xml"}, f"{len(names)} files are packed")
    tests = {line[1]: line for line in lines if line[0] == "test"}
    without = {line[1]: line[2] for line in lines if line[0] == "without"}
    for name, _, properties in proof.tests_of(build):
        wanted = name not in without and "FIXTURES_SETUP" not in properties and re.search(PATTERN, name)
        check((name in tests) == bool(wanted), f"{name}: {without.get(name, 'packed' if wanted else 'not asked for')}")
    for name, line in tests.items():
        check("tests/" + line[2].replace("\\", "/") in names, f"{line[2]} is there")
        check(not any(ROOT in field for field in line), "and no path of this machine")
        check(not any("WINE" in field or "LC_ALL" in field for field in line), "nor a variable of Wine")
    others = {name for name in names if re.search(r"(_tests?|_fuzz|_bench)\.exe$|/e2e_", name)}
    check(others == {"tests/" + line[2].replace("\\", "/") for line in tests.values()}, "no other test program is packed")
    steps = [line for line in lines if line[0] == "step"]
    check(len(steps) >= 14 and all(len(line) == 3 for line in steps), f"{len(steps)} steps for a person")
    return tests, without, steps


def texts(part):
    return html.unescape(re.sub(r"<[^>]+>", "\n", part))


def check_report(page, tests, without, steps):
    check("<script" not in page and "http" not in page.split("<h2>Failed</h2>")[0], "the report needs nothing else")
    passed, failed, skipped = map(int, re.search(r"<b>(\d+) passed, (\d+) failed, (\d+) skipped</b>", page).groups())
    check(failed == 0 and passed > 0, f"{passed} passed, {failed} failed, {skipped} skipped")
    parts = {part.split("</h2>")[0]: part for part in page.split("<h2>")[1:]}
    for name in tests:
        check(f"<td>{name}</td>" in parts["Programs"], f"{name} has run")
    for name, reason in without.items():
        check(f"{name}: {reason}" in texts(parts["Not in this package"]), f"{name} is missing, and why")
    for step in steps:
        check(step[1] in texts(page) and step[2] in texts(page), step[1])
    check(page.count('type="checkbox"') == len(steps), "each with a box to tick")
    check("Pixora diagnostics" in parts["Diagnostics"], "the diagnostics program's report is in it")
    return parts, skipped


def start(wine, *words, environment=None, timeout=3600):
    return wine.run("cmd", "/c", "C:\\Eigene Tests я\\run-tests.cmd", *words, environment=environment, timeout=timeout,
                    output=True)


def settle(wine):
    """What the user has before: settings, a theme, and a picture that is the user's own."""
    for key, name, kind, data in ((SETTINGS, "lumi_camera_switch", "REG_DWORD", "1"),
                                  (SETTINGS, "lumi_camera_custom_img_group", "REG_SZ", "the user's"),
                                  (THEME, "AppsUseLightTheme", "REG_DWORD", "0")):
        wine.run("reg", "add", key, "/v", name, "/t", kind, "/d", data, "/f")
    wine.write(PICTURE, b"the user's picture")


def check_run(wine, tests, without, steps):
    settle(wine)
    registry, comms = registry_of(wine), machine.contents(f"{wine.prefix}/{COMMS}")
    check(start(wine, "--yes", environment=ON_A_PC) == 0, "all tests are passed")
    after = registry_of(wine)
    check(after == registry, f"the registry is as it was {sorted(after ^ registry)}")
    check(machine.contents(f"{wine.prefix}/{COMMS}") == comms, "and so is the shared folder")
    check(os.listdir(f"{wine.prefix}/{COMMS}") == ["LumiCamera"], "with nothing beside it")
    page = wine.content(f"{FOLDER}/report.html").decode()
    parts, skipped = check_report(page, tests, without, steps)
    if "e2e_MessageWindowTest" in tests:
        check("links would reach the user" in parts["Skipped"] and skipped > 1, "what only Wine allows is skipped")
        check('src="screenshots/message-unavailable.png"' in parts["Screenshots"]
              and wine.content(f"{FOLDER}/screenshots/message-unavailable.png").startswith(b"\x89PNG"), "with screenshots")


def check_refusals(wine):
    os.remove(f"{wine.prefix}/{FOLDER}/report.html")
    before = registry_of(wine)
    check(start(wine, "app_test") == 2, "without --yes and without anybody who presses a key nothing begins")
    check(start(wine, "--yes", "no_such_test") == 2, "nor without a test")
    listening = json.dumps({"event": "listening", "pipe": PIPE}, separators=(",", ":")).encode()
    wine.run("reg", "add", r"HKCU\Control Panel\Desktop", "/v", "LogPixels", "/t", "REG_DWORD", "/d", "120", "/f")
    wine.sign_in_again()
    check(start(wine, "--yes", "app_test") == 2, "nor on a screen of another scale")
    wine.run("reg", "delete", r"HKCU\Control Panel\Desktop", "/v", "LogPixels", "/f")
    wine.sign_in_again()
    with support.holding(wine, wine.tool("PixoraService.exe"), says=listening):
        check(start(wine, "--yes", "app_test") == 2, "nor while a service has the pipe")
    check(not wine.exists(f"{FOLDER}/report.html") and registry_of(wine) == before, "and nothing has changed")


def check_cut_off(wine):
    """The power fails: what was kept comes back with the next run."""
    registry, comms = registry_of(wine), machine.contents(f"{wine.prefix}/{COMMS}")
    run = wine.start("cmd", "/c", "C:\\Eigene Tests я\\run-tests.cmd", "--yes", "e2e_MessageWindowTest")
    kept = lambda: wine.exists(f"{COMMS}/LumiCamera.PixoraTests") and wine.value(SETTINGS, "init_algorithm")
    check(machine.wait_until(kept), "the tests are at work")
    for name in ("PixoraTests.exe", "e2e_MessageWindowTest.exe"):
        wine.run("taskkill", "/F", "/IM", name)
    run.wait(timeout=60)
    check(wine.exists(f"{COMMS}/LumiCamera.PixoraTests"), "and are cut off")
    check(start(wine, "--yes", "app_test", environment=ON_A_PC) == 0, "the next run passes")
    check(registry_of(wine) == registry, "and gives back the registry")
    check(machine.contents(f"{wine.prefix}/{COMMS}") == comms, "and the folder")


def main(build):
    os.chdir(ROOT)
    out = os.path.join(os.path.dirname(build), "package-test", "proof")
    package = pack(build, out)
    tests, without, steps = check_list(build, package)
    with machine.Wine(build, os.path.join(out, "prefix")) as wine:
        zipfile.ZipFile(package).extractall(os.path.join(out, "unpacked"))
        [folder] = os.listdir(os.path.join(out, "unpacked"))
        shutil.move(os.path.join(out, "unpacked", folder), f"{wine.prefix}/{FOLDER}")
        check_run(wine, tests, without, steps)
        check_refusals(wine)
        if "e2e_MessageWindowTest" in tests:
            check_cut_off(wine)
    print("package_proof: all passed")


if __name__ == "__main__":
    main(os.path.abspath(sys.argv[1]))
