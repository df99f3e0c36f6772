"""What a Windows module tells about itself in its headers and resources. Reads only what the packages and the reader of
crash dumps need."""
import struct

EXPORT, RESOURCE, EXCEPTION, CERTIFICATE, DEBUG = 0, 2, 3, 4, 6
VERSION_RESOURCE = 16


class Image:
    """A PE32+ file. Addresses are relative to where it is loaded. Anything else is a ValueError."""

    def __init__(self, content):
        self.content = content
        try:
            self._read_headers(content)
        except struct.error:
            raise ValueError("no Windows module") from None

    def _read_headers(self, content):
        start, = struct.unpack_from("<I", content, 0x3C)
        if content[:2] != b"MZ" or content[start:start + 4] != b"PE\0\0":
            raise ValueError("no Windows module")
        count, self.time_stamp, size = struct.unpack_from("<2xHI8xH", content, start + 4)
        optional = start + 24
        magic, = struct.unpack_from("<H", content, optional)
        if magic != 0x20B:
            raise ValueError("no 64-bit module")
        self.base, = struct.unpack_from("<Q", content, optional + 24)
        self.size, self.headers_size, self.checksum = struct.unpack_from("<III", content, optional + 56)
        entries, = struct.unpack_from("<I", content, optional + 108)
        self.directories = [struct.unpack_from("<II", content, optional + 112 + 8 * i) for i in range(min(entries, 16))]
        self.sections = [struct.unpack_from("<8sIIII", content, optional + size + 40 * i) for i in range(count)]

    def at(self, address, length):
        """The bytes at an address; fewer where the file has fewer."""
        for _, virtual_size, start, raw_size, offset in self.sections:
            if start <= address < start + max(virtual_size, raw_size):
                inside = address - start
                return self.content[offset + inside:offset + min(inside + length, raw_size)] if offset else b""
        return self.content[address:address + length] if address < self.headers_size else b""

    def directory(self, index):
        if index >= len(self.directories):
            return 0, b""
        address, size = self.directories[index]
        return address, self.at(address, size) if size else b""

    def is_signed(self):
        return len(self.directories) > CERTIFICATE and self.directories[CERTIFICATE][1] > 0

    def build_id(self):
        """The identifier that ties the module to its symbols, in hexadecimal; empty when it has none."""
        _, entries = self.directory(DEBUG)
        for at in range(0, len(entries) - 27, 28):
            kind, size, address = struct.unpack_from("<12xIII", entries, at)
            record = self.at(address, size)
            if kind == 2 and record[:4] == b"RSDS":
                return record[4:20].hex()
        return ""

    def _resource(self, kind):
        """The first resource of a type, whatever its name and language."""
        _, tree = self.directory(RESOURCE)
        node = 0
        for level in range(3):
            if len(tree) < node + 16:
                return b""
            named, numbered = struct.unpack_from("<12xHH", tree, node)
            for index in range(named + numbered):
                name, child = struct.unpack_from("<II", tree, node + 16 + 8 * index)
                if level > 0 or name == kind:
                    node = child & 0x7FFFFFFF
                    break
            else:
                return b""
        address, size = struct.unpack_from("<II", tree, node)
        return self.at(address, size)

    def version(self):
        """As "1.2.3.0"; empty when it tells none."""
        block = self._resource(VERSION_RESOURCE)
        at = block.find(struct.pack("<I", 0xFEEF04BD))
        if at < 0:
            return ""
        high, low = struct.unpack_from("<8xII", block, at)
        return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}"


def read(path):
    with open(path, "rb") as file:
        return Image(file.read())


def is_module(path):
    """By its name and its first bytes."""
    if not path.lower().endswith((".exe", ".dll")):
        return False
    with open(path, "rb") as file:
        return file.read(2) == b"MZ"
