"""The folder that is packed: what `cmake --install` puts there, each file with the time of the commit, so that the same
commit gives the same packages."""
import os
import re
import shutil
import subprocess

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# The installed list of the installed files: tells the next version what to take away (setup/FileNames.h).
LIST = "PixoraFiles.txt"
UNINSTALLER = "UninstallPixora.exe"


def commit_time():
    """Seconds since 1970; SOURCE_DATE_EPOCH has precedence, as everywhere."""
    if "SOURCE_DATE_EPOCH" in os.environ:
        return int(os.environ["SOURCE_DATE_EPOCH"])
    result = subprocess.run(["git", "-C", ROOT, "log", "-1", "--format=%ct"], capture_output=True, text=True, check=False)
    return int(result.stdout) if result.returncode == 0 else 1767225600  # 2026-01-01, in a tree without history


def version_of(build):
    with open(os.path.join(build, "CMakeCache.txt"), encoding="utf-8") as file:
        return re.search(r"^CMAKE_PROJECT_VERSION:STATIC=(.+)$", file.read(), re.M).group(1)


def install(build, component, folder):
    shutil.rmtree(folder, ignore_errors=True)
    subprocess.run(["cmake", "--install", build, "--component", component, "--prefix", folder], check=True,
                   stdout=subprocess.DEVNULL)
    return folder


def files_below(folder):
    found = []
    for path, _, names in os.walk(folder):
        found += [os.path.relpath(os.path.join(path, name), folder) for name in names]
    return sorted(found)


def windows(name):
    return name.replace("/", "\\")


def write_list(names, path):
    with open(path, "w", encoding="utf-8", newline="\r\n") as file:
        file.writelines(windows(name) + "\n" for name in names)


def set_times(folder, time):
    for path, _, names in os.walk(folder):
        for name in names:
            os.utime(os.path.join(path, name), (time, time))
