"""The modules of a build and their symbols, from the zip that ./package makes or from a folder: which module of a dump is
one of them, and what lies at an address of it."""
import os
import re
import subprocess
import zipfile

import pe
from minidump import Damaged

ADDR2LINE = "x86_64-w64-mingw32-addr2line"
SYMBOLS = ".debug"
# A line of addr2line: the address first, then one for each function that was put into another, innermost first.
PLACE = re.compile(r"^(?:0x[0-9a-f]+: | \(inlined by\) )(.*) at (.*?)(?::(\d+|\?))?(?: \(discriminator \d+\))?$")

# What texts are called in the sources.
NAMES = [(re.compile(rf"std::(?:__cxx11::)?basic_string<{kind}, std::char_traits<{kind}>, std::allocator<{kind}> ?>"), name)
         for kind, name in (("wchar_t", "std::wstring"), ("char", "std::string"))]


def short(function):
    for pattern, name in NAMES:
        function = pattern.sub(name, function)
    return function


class Place:
    """`file` and `line` are empty where the symbols do not tell them."""

    def __init__(self, function, file, line):
        self.function, self.file, self.line = function, file, line


class Symbols:
    def __init__(self, source, scratch):
        """`scratch`: a folder for what is taken out of the zip."""
        self.files, self.images, self.strange = {}, {}, {}
        if os.path.isdir(source):
            for path, _, names in os.walk(source):
                self.files.update({name.lower(): os.path.join(path, name) for name in names})
            return
        try:
            with zipfile.ZipFile(source) as archive:
                for name in archive.namelist():
                    base = os.path.basename(name)
                    if base.lower().endswith((".exe", ".dll", SYMBOLS)):
                        self.files[base.lower()] = os.path.join(scratch, base)
                        with open(self.files[base.lower()], "wb") as file:
                            file.write(archive.read(name))
        except (OSError, zipfile.BadZipFile) as reason:
            raise Damaged(f"the symbols cannot be read: {reason}") from None

    def image_of(self, module):
        """The module's file; nothing when there is none, or when it is another build's."""
        key = module.name.lower()
        if key not in self.images:
            self.images[key] = None
            if key in self.files:
                self.images[key] = self._same(module, self.files[key])
        return self.images[key]

    def _same(self, module, path):
        try:
            image = pe.read(path)
        except (OSError, ValueError):
            self.strange[module.name] = "is no module in the symbols"
            return None
        # Not every writer of dumps notes the build id; the size in memory is better than nothing.
        if module.build_id and module.build_id != image.build_id() or module.size != image.size:
            self.strange[module.name] = "is of another build than the symbols"
            return None
        return image

    def places(self, module, offsets):
        """For each offset the places there, the innermost first; nothing where the symbols know nothing."""
        image = self.image_of(module)
        if image is None:
            return {}
        path = self.files.get(module.name.lower() + SYMBOLS, self.files[module.name.lower()])
        told = subprocess.run([ADDR2LINE, "-e", path, "-a", "-f", "-C", "-i", "-p"], text=True, capture_output=True, check=True,
                              input="".join(f"{image.base + offset:#x}\n" for offset in offsets)).stdout
        places, current = {}, None
        remaining = iter(offsets)
        for line in told.splitlines():
            if line.startswith("0x"):
                current = places.setdefault(next(remaining), [])
            match = PLACE.match(line)
            if match and match[1] != "??":
                known = match[2] not in ("??", "")
                current.append(Place(short(match[1]), os.path.normpath(match[2]) if known else "",
                                     match[3] if known and match[3] not in (None, "?", "0") else ""))
        return places
