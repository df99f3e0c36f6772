"""The callers of a place, by the tables that each 64-bit module has of what its functions put on the stack (.pdata and
.xdata). Where a module's file is not there, as with Windows' own, the stack is searched for what looks like the return to
a module whose file is: such callers are marked as guessed."""
import struct

from minidump import REGISTERS

PUSH, ALLOCATE_LARGE, ALLOCATE_SMALL, SET_FRAME, SAVE, SAVE_FAR, EPILOG, SPARE, SAVE_XMM, SAVE_XMM_FAR, MACHINE_FRAME = range(11)
CHAINED = 4
# Places in the list of codes that one code takes; the large allocation decides for itself.
PLACES = {PUSH: 1, ALLOCATE_SMALL: 1, SET_FRAME: 1, SAVE: 2, SAVE_FAR: 3, EPILOG: 1, SPARE: 3, SAVE_XMM: 2,
          SAVE_XMM_FAR: 3, MACHINE_FRAME: 1}
RSP = "rsp"
DEEPEST = 200
# How far above a place whose caller is unknown the stack is searched.
SEARCHED = 64 * 1024
# What a call may end with: how many bytes it has, and its first ones under a mask.
CALLS = [(5, b"\xE8", b"\xFF"), (2, b"\xFF\xD0", b"\xFF\xF8"), (3, b"\x41\xFF\xD0", b"\xFF\xFF\xF8"),
         (6, b"\xFF\x15", b"\xFF\xFF"), (2, b"\xFF\x10", b"\xFF\xF8"), (3, b"\xFF\x50", b"\xFF\xF8"),
         (6, b"\xFF\x90", b"\xFF\xF8"), (4, b"\x41\xFF\x50", b"\xFF\xFF\xF8"), (7, b"\x41\xFF\x90", b"\xFF\xFF\xF8")]


class Lost(Exception):
    """The stack cannot be followed from here."""


class Frame:
    def __init__(self, address, guessed):
        self.address, self.guessed = address, guessed


def function_at(image, offset):
    """Begin and unwind information of the function there; nothing for one that leaves the stack as it is."""
    _, table = image.directory(3)
    low, high = 0, len(table) // 12
    while low < high:
        middle = (low + high) // 2
        begin, end, information = struct.unpack_from("<III", table, 12 * middle)
        if offset < begin:
            high = middle
        elif offset >= end:
            low = middle + 1
        else:
            return begin, information
    return None


class Unwinder:
    def __init__(self, dump, image_of):
        """`image_of(module)`: its file as pe.Image, or nothing."""
        self.dump, self.image_of = dump, image_of

    def frames(self, registers):
        registers = dict(registers)
        found = [Frame(registers["rip"], False)]
        while len(found) < DEEPEST:
            stack = registers[RSP]
            guessed = False
            try:
                self._leave(registers, first=len(found) == 1)
            except Lost:
                guessed = True
                if not self._search(registers, stack):
                    break
            if registers["rip"] == 0 or registers[RSP] <= stack:
                break
            found.append(Frame(registers["rip"], guessed))
        return found

    def _word(self, address):
        value = self.dump.word(address)
        if value is None:
            raise Lost
        return value

    def _pop(self, registers):
        value = self._word(registers[RSP])
        registers[RSP] += 8
        return value

    def _leave(self, registers, first):
        """The registers as they are after the return to the caller."""
        before = dict(registers)
        try:
            # A return may lie behind the function's last instruction.
            address = registers["rip"] - (0 if first else 1)
            module = self.dump.module_at(address)
            if module is None:
                # A jump to nowhere: the return address is the last that was put on the stack.
                if not first:
                    raise Lost
            else:
                image = self.image_of(module)
                if image is None:
                    raise Lost
                if self._undo(image, address - module.base, registers):
                    return
            registers["rip"] = self._pop(registers)
        except Lost:
            registers.update(before)
            raise

    def _undo(self, image, offset, registers):
        """Takes back what the function has done to stack and registers; true when the system put the return there."""
        entry = function_at(image, offset)
        machine_frame = False
        while entry:
            begin, information = entry
            inside = offset - begin
            head = image.at(information, 4)
            if len(head) < 4:
                raise Lost
            flags, prolog, count, frame = head[0] >> 3, head[1], head[2], head[3]
            codes = image.at(information + 4, 2 * count)
            if len(codes) < 2 * count:
                raise Lost
            entry = None
            machine_frame |= self._undo_codes(codes, inside if inside < prolog else 255, frame, registers)
            if flags & CHAINED:
                begin, _, information = struct.unpack("<III", image.at(information + 4 + 2 * (count + count % 2), 12))
                entry, offset = (begin, information), begin + 255
        return machine_frame

    def _undo_codes(self, codes, inside, frame, registers):
        at = 0
        base = registers[RSP]
        if frame & 15 and any(codes[i + 1] & 15 == SET_FRAME and codes[i] <= inside for i in range(0, len(codes), 2)):
            base = registers[REGISTERS[frame & 15]] - 16 * (frame >> 4)
        while at < len(codes):
            place, kind, detail = codes[at], codes[at + 1] & 15, codes[at + 1] >> 4
            places = (2 if detail == 0 else 3) if kind == ALLOCATE_LARGE else PLACES.get(kind)
            if places is None or at + 2 * places > len(codes):
                raise Lost
            operand = codes[at + 2:at + 2 * places]
            at += 2 * places
            if place > inside:
                continue
            if kind == PUSH:
                registers[REGISTERS[detail]] = self._pop(registers)
            elif kind == ALLOCATE_SMALL:
                registers[RSP] += 8 * detail + 8
            elif kind == ALLOCATE_LARGE:
                registers[RSP] += 8 * int.from_bytes(operand, "little") if detail == 0 else int.from_bytes(operand, "little")
            elif kind == SET_FRAME:
                registers[RSP] = registers[REGISTERS[frame & 15]] - 16 * (frame >> 4)
            elif kind == SAVE:
                registers[REGISTERS[detail]] = self._word(base + 8 * int.from_bytes(operand, "little"))
            elif kind == SAVE_FAR:
                registers[REGISTERS[detail]] = self._word(base + int.from_bytes(operand, "little"))
            elif kind == MACHINE_FRAME:
                at_stack = registers[RSP] + 8 * detail
                registers["rip"], registers[RSP] = self._word(at_stack), self._word(at_stack + 24)
                return True
        return False

    def _search(self, registers, stack):
        for place in range(stack, stack + SEARCHED, 8):
            address = self.dump.word(place)
            if address is None:
                return False
            module = self.dump.module_at(address)
            image = module and self.image_of(module)
            if image and self._follows_call(image, address - module.base):
                registers["rip"], registers[RSP] = address, place + 8
                return True
        return False

    @staticmethod
    def _follows_call(image, offset):
        if function_at(image, offset - 1) is None:
            return False
        for length, bytes_, mask in CALLS:
            found = image.at(offset - length, len(bytes_))
            if len(found) == len(bytes_) and all(f & m == b for f, m, b in zip(found, mask, bytes_)):
                return True
        return False
