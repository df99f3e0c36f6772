"""Every header stands alone: its own source file includes it first, or it compiles by itself."""
import concurrent.futures
import glob
import os
import subprocess

import tree

WINDOWS = ["x86_64-w64-mingw32-g++-posix", "-DUNICODE", "-D_UNICODE", "-DNOMINMAX", "-DWIN32_LEAN_AND_MEAN",
           "-D_WIN32_WINNT=0x0A00", "-DNTDDI_VERSION=0x0A000006"]
COMMON = ["-std=c++20", "-fsyntax-only", "-x", "c++", "-I.", "-Iduilib/include", "-Iduilib/src",
          "-Ibuild/windows-release/generated", "-I/usr/src/googletest/googletest/include",
          "-I/usr/src/googletest/googlemock/include", "-w"]


def has_own_source(header):
    name = os.path.basename(header)[:-2]
    folders = [os.path.dirname(header)]
    if header.startswith("duilib/include/"):
        folders += glob.glob("duilib/src/*")
    for folder in folders:
        source = os.path.join(folder, name + ".cpp")
        if os.path.exists(source):
            first = tree.INCLUDE.search(tree.read(source))
            text = tree.read(source)
            start = text.find("#include")
            return bool(first) and text[start:].startswith('#include "') and \
                tree.resolve(source, first.group(1)) == header
    return False


def compiles(header):
    result = subprocess.run(WINDOWS + COMMON + [header], capture_output=True, text=True)
    return header, result.stderr.strip().splitlines()


def main():
    breaches = [f"{h} does not begin with #pragma once" for h in tree.files("*.h")
                if not tree.read(h).lstrip().startswith("#pragma once")]
    alone = [h for h in tree.files("*.h") if not has_own_source(h)]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for header, errors in pool.map(compiles, alone):
            if errors:
                breaches.append(f"{header} does not compile by itself: {errors[0]}")
    return breaches
