#!/usr/bin/env python3
"""scripts/read-dump: on the dumps of a program that crashes on purpose under Wine, on the same dumps damaged, and with the
symbols of another build; the way from caller to caller on tables made by hand."""
import os
import pwd
import shutil
import struct
import subprocess
import sys
import time
import zipfile

import support
from support import ROOT, check, machine, read

sys.path[:0] = [os.path.join(ROOT, "scripts", "dumps"), os.path.join(ROOT, "packaging")]
import minidump
import pe
import unwind

DUMPS = f"drive_c/users/{pwd.getpwuid(os.getuid()).pw_name}/AppData/Local/QUILLON/CrashDumps"
HELPER = "tests/windows/suite/HelperCrash.cpp"
WHOLE = ("suite_helper.exe", "QxCrashDump.dll", "libstdc++-6.dll", "libgcc_s_seh-1.dll")


def line_of(text):
    with open(HELPER, encoding="utf-8") as file:
        return next(number for number, line in enumerate(file, 1) if text in line)


def make_dump(wine, out, kind):
    """A dump that is cut off holds nothing to test with: a busy machine may need a second try."""
    target = os.path.join(out, f"{kind}.dmp")
    for _ in range(3):
        shutil.rmtree(f"{wine.prefix}/{DUMPS}", ignore_errors=True)
        wine.run(wine.tool("suite_helper.exe"), "crash", kind, "registered", timeout=180)
        [name] = os.listdir(f"{wine.prefix}/{DUMPS}")
        shutil.copy(f"{wine.prefix}/{DUMPS}/{name}", target)
        try:
            if minidump.Minidump(read(target)).crash:
                return target
        except minidump.Damaged:
            pass
        print("note    the dump was not finished in time: once more", flush=True)
    check(False, "a whole dump")
    return None


def pack(build, path, names, change=lambda name, content: content):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name in names:
            archive.writestr(f"Pixora-1/{name}", change(name, read(os.path.join(build, "bin", name))))
            symbols = os.path.join(build, "symbols", f"{name}.debug")
            if os.path.exists(symbols):
                archive.write(symbols, f"Pixora-1/{name}.debug")
    return path


def run(*arguments):
    return subprocess.run([sys.executable, "scripts/read-dump", *arguments], capture_output=True, text=True, check=False)


def told(*arguments):
    result = run(*arguments)
    check(result.returncode == 0, f"it reads {os.path.basename(arguments[-2])} {result.stderr}")
    print(result.stdout)
    return result.stdout.splitlines()


def frame(lines, number):
    return next((line for line in lines if line.startswith(f"{number:3} ")), "")


def try_access(dump, symbols):
    lines = told(dump, symbols)
    check(lines[0].startswith("suite_helper.exe, 20"), "the program and the time")
    check(lines[1].startswith("access violation 0xC0000005, writing address 0x10, on thread "), "what happened")
    crashed = line_of("*reinterpret_cast<volatile int*>(badAddress) = 1;")
    check(frame(lines, 0).endswith(f"  AccessViolation  {HELPER}:{crashed}"), f"the place, line {crashed}")
    # The call is on the line before the one that it returns to, or on the same one.
    check("Crash(std::vector<std::wstring" in frame(lines, 1) and f"{HELPER}:{line_of('        crash();')}" in frame(lines, 1),
          "its caller, with the line of the call")
    check("wmain  tests/windows/suite/SuiteHelper.cpp:" in frame(lines, 2), "and the caller of that")
    check(not any(line[4:5] == "?" for line in lines[2:5]), "nothing of it guessed")
    check("thread " not in "".join(lines[2:]), "no other thread")


def try_throw(dump, symbols, few):
    lines = told("--all", dump, symbols)
    check(lines[1].startswith("std::terminate or abort 0x40000015, on thread "), "what happened")
    check("DumpHere" in frame(lines, 0) and "OnTerminate" in frame(lines, 1), "the handler")
    throw = next(line for line in lines if "  Throw  " in line)
    check(throw.endswith(f"{HELPER}:{line_of('throw std::runtime_error')}") and throw[4] == " ", "the throw, through the runtime")
    check(sum(line.startswith("thread ") for line in lines) >= 1, "other threads")
    lines = told(dump, few)
    throw = next((line for line in lines if "  Throw  " in line), "")
    check(throw[4:5] == "?", "where a module is missing the caller is searched, and marked")


def with_build_id(content, name, build_id):
    """Windows notes the build id of each module, Wine does not."""
    place = content.find((name + "\0").encode("utf-16-le"))
    dump = minidump.Minidump(content)
    at = next(at for at in dump._entries(minidump.MODULES, 4, 108) if dump._text(struct.unpack_from("<I", content, at + 20)[0])
              .endswith(name))
    check(place > 0, "the module is named")
    changed = bytearray(content)
    record = b"RSDS" + bytes.fromhex(build_id) + b"\1\0\0\0\0"
    struct.pack_into("<II", changed, at + 76, len(record), len(changed))
    return bytes(changed) + record


def try_other_builds(build, out, dump, symbols):
    own = pe.read(os.path.join(build, "bin", "suite_helper.exe")).build_id()
    check(len(own) == 32, "the program has a build id")
    path = os.path.join(out, "named.dmp")
    support.write(path, with_build_id(read(dump), "suite_helper.exe", own))
    check("AccessViolation" in frame(told(path, symbols), 0), "the same build id")
    support.write(path, with_build_id(read(dump), "suite_helper.exe", own[::-1]))
    lines = told(path, symbols)
    note = "note: suite_helper.exe is of another build than the symbols: its functions are not named"
    check(note in lines and "AccessViolation" not in "".join(lines), "another one: nothing wrong is told")

    def grow(name, content):
        changed = bytearray(content)
        start, = struct.unpack_from("<I", content, 0x3C)
        struct.pack_into("<I", changed, start + 24 + 56, struct.unpack_from("<I", content, start + 24 + 56)[0] + 0x1000)
        return bytes(changed)

    lines = told(dump, pack(build, os.path.join(out, "other.zip"), ["suite_helper.exe"], grow))
    check(note in lines, "another size")
    lines = told(dump, pack(build, os.path.join(out, "none.zip"), ["suite_helper.exe"], lambda *_: b"nothing"))
    check("note: suite_helper.exe is no module in the symbols: its functions are not named" in lines, "no module")


def try_damaged(out, dump, symbols):
    content = read(dump)
    path = os.path.join(out, "damaged.dmp")
    for length in [0, 3, 31, 32, 100, 200, 1000, 3000, 6000, 9000, 12000, len(content) // 2, len(content) - 1]:
        support.write(path, content[:length])
        result = run(path, symbols)
        check("Traceback" not in result.stderr and (result.returncode == 0 or result.stderr.startswith("error: the dump was cut off")
              or length < 32 and result.stderr.startswith("error: ")), f"the first {length} bytes: {result.stderr.strip()}")
    support.write(path, b"MZ" + content[2:])
    check(run(path, symbols).stderr == "error: this is no crash dump of Windows\n", "another file")
    check(run(dump, path).stderr.startswith("error: the symbols cannot be read: "), "no zip")
    result = run(path + "-none", symbols)
    check(result.returncode == 1 and "No such file" in result.stderr, "no dump")


class MadeImage:
    """A module with one function from 0x100 to 0x200, and what is to be undone for it."""

    def __init__(self, codes, frame=0, prolog=16, chained=None):
        flags = unwind.CHAINED if chained else 0
        self.memory = bytearray(0x1000)
        body = bytes([1 | flags << 3, prolog, len(codes) // 2, frame]) + codes
        if chained:
            body += b"\0" * (len(codes) % 4) + struct.pack("<III", 0x300, 0x400, 0x900)
            self.memory[0x900:0x904 + len(chained)] = bytes([1, 16, len(chained) // 2, 0]) + chained
        self.memory[0x800:0x800 + len(body)] = body
        self.memory[0x4FB:0x500] = b"\xE8\0\0\0\0"

    def directory(self, _):
        return 0, struct.pack("<IIIIII", 0x100, 0x200, 0x800, 0x4F0, 0x600, 0x880)

    def at(self, address, length):
        return bytes(self.memory[address:address + length])


class MadeDump:
    """The stack at 0x10000 holds the number of each of its words; the one at `returns` leads back into the module."""

    BASE = 0x400000

    def __init__(self, returns):
        self.returns = returns
        self.module = minidump.Module("made.dll", self.BASE, 0x1000, "")

    def word(self, address):
        number = (address - 0x10000) // 8
        if not 0 <= number < 0x20000:
            return None
        return self.BASE + 0x500 if number == self.returns else number + 1

    def module_at(self, address):
        return self.module if self.BASE <= address < self.BASE + 0x1000 else None


def leave(image, returns, offset=0x150, **registers):
    """The registers at the caller; the first frame is the function's own."""
    dump = MadeDump(returns)
    state = {name: 0 for name in minidump.REGISTERS} | {"rip": dump.BASE + offset, "rsp": 0x10000} | registers
    unwinder = unwind.Unwinder(dump, lambda module: image)
    unwinder._leave(state, first=True)
    check(state["rip"] == dump.BASE + 0x500, "the caller is found")
    return state


def try_tables():
    push_rbx, small_40, large = b"\x02\x30", b"\x06\x42", b"\x06\x01\x80\x00"
    state = leave(MadeImage(b"", prolog=0), 0)
    check(state["rsp"] == 0x10008, "a function that leaves the stack alone")
    state = leave(MadeImage(small_40 + push_rbx), 6)
    check((state["rbx"], state["rsp"]) == (6, 0x10038), "a register and 40 bytes")
    state = leave(MadeImage(large + push_rbx), 0x81)
    check(state["rbx"] == 0x81, "1024 bytes")
    state = leave(MadeImage(b"\x06\x11\x00\x00\x01\x00" + push_rbx), 0x2001)
    check(state["rbx"] == 0x2001, "64 KiB")
    state = leave(MadeImage(small_40 + push_rbx), 1, offset=0x104)
    check((state["rbx"], state["rsp"]) == (1, 0x10010), "within the prolog only what is done by then")
    state = leave(MadeImage(b"\x06\x03" + b"\x04\x50", frame=0x25), 4, rbp=0x10038)
    check((state["rbp"], state["rsp"]) == (4, 0x10028), "a register that points into the frame")
    state = leave(MadeImage(b"\x08\x64\x02\x00" + b"\x08\x75\x18\x00\x00\x00" + b"\x08\x68\x00\x00"
                            + b"\x08\x69\x00\x00\x00\x00" + small_40), 5)
    check((state["rsi"], state["rdi"]) == (3, 4), "registers that are put away at a place")
    state = leave(MadeImage(small_40, chained=push_rbx), 6)
    check(state["rbx"] == 6, "a part of a function goes on with the rest's table")
    dump = MadeDump(5)
    state = {name: 0 for name in minidump.REGISTERS} | {"rip": dump.BASE + 0x150, "rsp": 0x10000}
    unwind.Unwinder(dump, lambda module: MadeImage(b"\x00\x1A"))._leave(state, first=True)
    check((state["rip"], state["rsp"]) == (2, 5), "a frame that the processor made")
    state = leave(None, 0, rip=0)
    check(state["rsp"] == 0x10008, "a call of nothing")
    found = unwind.Unwinder(MadeDump(7), lambda module: MadeImage(b"\x00\x07")).frames(
        {name: 0 for name in minidump.REGISTERS} | {"rip": MadeDump.BASE + 0x150, "rsp": 0x10000})
    check(found[1].guessed and found[1].address == MadeDump.BASE + 0x500, "with a table that is no table it searches")


def main(build):
    os.chdir(ROOT)
    out = os.path.join(os.path.dirname(build), "package-test", "dump")
    shutil.rmtree(out, ignore_errors=True)
    os.makedirs(out)
    try_tables()
    symbols = pack(build, os.path.join(out, "symbols.zip"), WHOLE)
    few = pack(build, os.path.join(out, "few.zip"), WHOLE[:2])
    with machine.Wine(build, os.path.join(out, "prefix")) as wine:
        access = make_dump(wine, out, "access")
        throw = make_dump(wine, out, "throw")
    try_access(access, symbols)
    try_throw(throw, symbols, few)
    try_other_builds(build, out, access, symbols)
    try_damaged(out, access, symbols)
    print("package_dump: all passed")


if __name__ == "__main__":
    started = time.monotonic()
    main(os.path.abspath(sys.argv[1]))
    print(f"{time.monotonic() - started:.0f} s")
