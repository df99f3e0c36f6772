"""What the shipped binaries must be: hardened, with version and icon, and importing nothing but what is shipped."""
import os
import re
import subprocess

BIN = "build/windows-release/bin"
SHIPPED = re.compile(r"^(Pixora|PixoraDiagnostics|DuiLib|Qx\w+)\.(exe|dll)$")
RUNTIME = {"libstdc++-6.dll", "libgcc_s_seh-1.dll", "libwinpthread-1.dll", "libssp-0.dll"}
FLAGS = {"HIGH_ENTROPY_VA": 0x20, "DYNAMIC_BASE": 0x40, "NX_COMPAT": 0x100}
# Libraries that belong to the test machine and not to Windows.
FOREIGN = re.compile(r"^(wine|ntoskrnl)", re.I)


def dump(path):
    return subprocess.check_output(["x86_64-w64-mingw32-objdump", "-p", path], text=True)


def main():
    if not os.path.isdir(BIN):
        return [f"{BIN} is missing: build first"]
    breaches = []
    names = sorted(name for name in os.listdir(BIN) if SHIPPED.match(name))
    if "Pixora.exe" not in names:
        breaches.append("Pixora.exe is missing")
    for name in names:
        text = dump(os.path.join(BIN, name))
        characteristics = int(re.search(r"DllCharacteristics\s+([0-9a-f]+)", text).group(1), 16)
        breaches += [f"{name} lacks {flag}" for flag, bit in FLAGS.items() if not characteristics & bit]
        for imported in re.findall(r"DLL Name: (\S+)", text):
            beside = os.path.exists(os.path.join(BIN, imported))
            if FOREIGN.match(imported) or (imported.startswith("lib") and imported not in RUNTIME and not beside):
                breaches.append(f"{name} imports {imported}")
        if not os.path.exists(f"build/windows-release/symbols/{name}.debug"):
            breaches.append(f"{name} has no symbol file")
        if subprocess.run(["grep", "-aq", os.getcwd(), os.path.join(BIN, name)]).returncode == 0:
            breaches.append(f"{name} holds the path of the machine that built it")
    return breaches
