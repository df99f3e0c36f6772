"""A minidump of a 64-bit Windows program: its modules, its threads with their registers, what crashed, and what of its
memory was kept."""
import bisect
import struct

THREADS, MODULES, MEMORY, EXCEPTION, MEMORY_64 = 3, 4, 5, 6, 9
# Of the registers' block, in the order in which instructions number them.
REGISTERS = ("rax", "rcx", "rdx", "rbx", "rsp", "rbp", "rsi", "rdi", "r8", "r9", "r10", "r11", "r12", "r13", "r14", "r15")
REGISTERS_AT, RIP_AT = 0x78, 0xF8


class Damaged(Exception):
    """With what is told to whoever wants to read the dump."""


class Module:
    def __init__(self, path, base, size, build_id):
        self.name = path.replace("/", "\\").rpartition("\\")[2]
        self.base, self.size, self.build_id = base, size, build_id


class Thread:
    def __init__(self, number, registers):
        self.number, self.registers = number, registers


class Crash:
    def __init__(self, thread, code, address, parameters, registers):
        self.thread, self.code, self.address = thread, code, address
        self.parameters, self.registers = parameters, registers


class Minidump:
    def __init__(self, content):
        self.content = content
        magic, _, count, directory, _, self.time = self._unpack("<4sIIIII", 0)
        if magic != b"MDMP":
            raise Damaged("this is no crash dump of Windows")
        self.streams = {}
        for index in range(count):
            kind, size, at = self._unpack("<III", directory + 12 * index)
            # The system fills the places that it does not need with zeros.
            if kind:
                self.streams[kind] = at, size
        if MODULES not in self.streams or THREADS not in self.streams:
            raise Damaged("the dump was cut off while it was written: the modules or the threads are missing")
        self.modules = sorted(self._modules(), key=lambda module: module.base)
        self.threads = self._threads()
        self.crash = self._crash()
        self.ranges = sorted(self._ranges())
        self.starts = [start for start, _, _ in self.ranges]

    def _unpack(self, format, at):
        try:
            return struct.unpack_from(format, self.content, at)
        except struct.error:
            raise Damaged("the dump was cut off while it was written") from None

    def _entries(self, kind, head, size):
        """Where each entry of a list begins."""
        at, _ = self.streams[kind]
        count, = self._unpack("<I", at)
        for index in range(count):
            yield at + head + size * index

    def _text(self, at):
        length, = self._unpack("<I", at)
        return self.content[at + 4:at + 4 + length].decode("utf-16-le", "replace")

    def _modules(self):
        for at in self._entries(MODULES, 4, 108):
            base, size, name = self._unpack("<QI8xI", at)
            length, record = self._unpack("<II", at + 76)
            debug = self.content[record:record + length]
            yield Module(self._text(name), base, size, debug[4:20].hex() if debug[:4] == b"RSDS" else "")

    def _threads(self):
        threads = []
        for at in self._entries(THREADS, 4, 48):
            number, context = self._unpack("<I40xI", at)
            threads.append(Thread(number, self._registers(context)))
        return threads

    def _registers(self, at):
        registers = dict(zip(REGISTERS, self._unpack("<16Q", at + REGISTERS_AT)))
        registers["rip"], = self._unpack("<Q", at + RIP_AT)
        return registers

    def _crash(self):
        if EXCEPTION not in self.streams:
            return None
        at, _ = self.streams[EXCEPTION]
        thread, code, address, count = self._unpack("<I4xI12xQI", at)
        parameters = self._unpack("<15Q", at + 40)[:count]
        context, = self._unpack("<I", at + 164)
        return Crash(thread, code, address, parameters, self._registers(context))

    def _ranges(self):
        for at in self._entries(THREADS, 4, 48):
            start, size, place = self._unpack("<QII", at + 24)
            yield start, size, place
        if MEMORY in self.streams:
            for at in self._entries(MEMORY, 4, 16):
                yield self._unpack("<QII", at)
        if MEMORY_64 in self.streams:
            at, _ = self.streams[MEMORY_64]
            count, place = self._unpack("<QQ", at)
            for index in range(count):
                start, size = self._unpack("<QQ", at + 16 + 16 * index)
                yield start, size, place
                place += size

    def read(self, address, length):
        """None where the dump has not kept it."""
        index = bisect.bisect_right(self.starts, address) - 1
        # Ranges may overlap: one that begins a little earlier may reach further.
        for start, size, place in reversed(self.ranges[max(index - 7, 0):index + 1]):
            if start <= address and address + length <= start + size:
                found = self.content[place + address - start:place + address - start + length]
                return found if len(found) == length else None
        return None

    def word(self, address):
        found = self.read(address, 8)
        return struct.unpack("<Q", found)[0] if found else None

    def module_at(self, address):
        for module in self.modules:
            if module.base <= address < module.base + module.size:
                return module
        return None
