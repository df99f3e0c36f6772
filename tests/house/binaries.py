"""What the shipped binaries must be: hardened, with version, icon and manifest, the same bytes whenever they are built,
and importing nothing but what is shipped or in memory for every program."""
import os
import re
import subprocess

BIN = "build/windows-release/bin"
SHIPPED = re.compile(r"^(Pixora|PixoraDiagnostics|DuiLib|Qx\w+)\.(exe|dll)$")
RUNTIME = {"libstdc++-6.dll", "libgcc_s_seh-1.dll", "libwinpthread-1.dll", "libssp-0.dll"}
FLAGS = {"HIGH_ENTROPY_VA": 0x20, "DYNAMIC_BASE": 0x40, "NX_COMPAT": 0x100}
# Resources by type and number: VERSIONINFO of every module; icon group and manifest of the programs.
VERSION, ICON, MANIFEST = 16, 14, 24
TEXTS = ("FileDescription", "FileVersion", "ProductVersion", "CompanyName", "OriginalFilename")
# What Windows has in memory for every program, and so never looks for beside it. Any other library of the system is
# loaded when it is needed, from the system's folder (suite/common/SystemLibrary.h).
KNOWN = {"advapi32", "combase", "comdlg32", "gdi32", "kernel32", "msvcrt", "ole32", "oleaut32", "psapi", "rpcrt4",
         "shcore", "shell32", "shlwapi", "user32"}
API_SET = re.compile(r"^api-ms-win-", re.I)


def dump(path):
    return subprocess.check_output(["x86_64-w64-mingw32-objdump", "-p", path], text=True,
                                   env={**os.environ, "TZ": "UTC", "LC_ALL": "C"})


def resource_types(text):
    """The types in the resource directory that objdump prints."""
    section = text.partition("The .rsrc Resource Directory section:")[2]
    return {int(number, 16) for number in re.findall(r"^[0-9a-f]+ {3}Entry: ID: 0x([0-9a-f]+)", section, re.M)}


def check_header(name, text):
    field = lambda key: re.search(rf"^{key}\s+([0-9a-f]+)", text, re.M).group(1)
    characteristics = int(field("DllCharacteristics"), 16)
    breaches = [f"{name} lacks {flag}" for flag, bit in FLAGS.items() if not characteristics & bit]
    for kind in ("OSystem", "Subsystem"):
        if (field(f"Major{kind}Version"), field(f"Minor{kind}Version")) != ("10", "0"):
            breaches.append(f"{name} says that it runs on a system older than Windows 10 ({kind} version)")
    if "Thu Jan  1 00:00:00 1970" not in text:
        breaches.append(f"{name} holds the time at which it was built")
    if not re.search(r"RSDS signature [0-9a-f]{32}", text):
        breaches.append(f"{name} has no build id")
    return breaches


def check_resources(name, path, text):
    needed = {VERSION} | ({ICON, MANIFEST} if name.endswith(".exe") else set())
    breaches = [f"{name} has no resource of type {kind}" for kind in sorted(needed - resource_types(text))]
    with open(path, "rb") as file:
        content = file.read()
    breaches += [f"{name} does not tell its {key}" for key in TEXTS if key.encode("utf-16-le") not in content]
    if name.encode("utf-16-le") not in content:
        breaches.append(f"{name} tells another file name")
    return breaches


def main():
    if not os.path.isdir(BIN):
        return [f"{BIN} is missing: build first"]
    breaches = []
    names = sorted(name for name in os.listdir(BIN) if SHIPPED.match(name))
    if "Pixora.exe" not in names:
        breaches.append("Pixora.exe is missing")
    for name in names:
        path = os.path.join(BIN, name)
        text = dump(path)
        breaches += check_header(name, text) + check_resources(name, path, text)
        for imported in re.findall(r"DLL Name: (\S+)", text):
            own = imported in RUNTIME or (SHIPPED.match(imported) and os.path.exists(os.path.join(BIN, imported)))
            known = imported.lower().removesuffix(".dll") in KNOWN or API_SET.match(imported)
            if not own and not known:
                breaches.append(f"{name} imports {imported}")
        if not os.path.exists(f"build/windows-release/symbols/{name}.debug"):
            breaches.append(f"{name} has no symbol file")
        if subprocess.run(["grep", "-aq", os.getcwd(), path]).returncode == 0:
            breaches.append(f"{name} holds the path of the machine that built it")
    return breaches
