#!/usr/bin/env python3
"""Checks the headers of packed programs, libraries and drivers.

Usage: check_pe.py FILE...

Each must be for x64, be placed at random addresses of the whole space, run no data, have a version
resource, relocations, no debug information and no time stamp, and load nothing but what the system
brings and VXMGMT.DLL. Programs need a manifest. Ends with 1 when a file falls short.
"""
import struct
import sys

AMD64 = 0x8664
WANTED = {0x0020: "high-entropy addresses", 0x0040: "random base", 0x0100: "no execution of data"}
IS_DLL = 0x2000
NATIVE = 1  # subsystem
EXPORTS, IMPORTS, RESOURCES, RELOCATIONS, DEBUG = 0, 1, 2, 5, 6
VERSION, MANIFEST = 16, 24
DEBUG_ENTRY, CODE_VIEW, SYMBOL = 28, 2, 18
SYSTEM = {
    "advapi32.dll", "bcrypt.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "shell32.dll",
    "user32.dll", "hal.dll", "ntoskrnl.exe", "vxmgmt.dll",
}


class Image:
    def __init__(self, data: bytes) -> None:
        self.data = data
        (start,) = struct.unpack_from("<I", data, 0x3C)
        if data[start:start + 4] != b"PE\0\0":
            raise ValueError("is no PE file")
        (self.machine, sections, self.stamp, symbols, count, optional, self.flags) = struct.unpack_from(
            "<HHIIIHH", data, start + 4)
        self.long_names = symbols + SYMBOL * count
        head = start + 24
        (self.subsystem, self.characteristics) = struct.unpack_from("<HH", data, head + 68)
        (count,) = struct.unpack_from("<I", data, head + 108)
        self.directories = [struct.unpack_from("<II", data, head + 112 + 8 * i) for i in range(count)]
        table = head + optional
        self.sections = [struct.unpack_from("<8sIIII", data, table + 40 * i) for i in range(sections)]

    def offset(self, address: int) -> int:
        for _, size, start, raw_size, raw in self.sections:
            if start <= address < start + max(size, raw_size):
                return address - start + raw
        raise ValueError(f"nothing at {address:#x}")

    def text(self, address: int) -> str:
        start = self.offset(address)
        return self.data[start:self.data.index(b"\0", start)].decode("ascii")

    def imports(self) -> list:
        (address, size) = self.directories[IMPORTS]
        names = []
        while size:
            (name,) = struct.unpack_from("<I", self.data, self.offset(address) + 12)
            if name == 0:
                break
            names.append(self.text(name))
            address += 20
        return names

    def section_name(self, name: bytes) -> bytes:
        if not name.startswith(b"/"):
            return name.rstrip(b"\0")
        start = self.long_names + int(name[1:].rstrip(b"\0"))
        return self.data[start:self.data.index(b"\0", start)]

    def has_debug_information(self) -> bool:
        """More than the number that tells which symbols belong to the file."""
        if any(self.section_name(section[0]).startswith(b".debug") for section in self.sections):
            return True
        (address, size) = self.directories[DEBUG]
        for entry in range(size // DEBUG_ENTRY):
            place = self.offset(address) + DEBUG_ENTRY * entry
            (kind, length, _, raw) = struct.unpack_from("<IIII", self.data, place + 12)
            if kind != CODE_VIEW or self.data[raw + 24:raw + length].strip(b"\0"):
                return True  # a path would stand there
        return False

    def resource_types(self) -> set:
        (address, size) = self.directories[RESOURCES]
        if size == 0:
            return set()
        root = self.offset(address)
        (named, numbered) = struct.unpack_from("<HH", self.data, root + 12)
        return {
            struct.unpack_from("<I", self.data, root + 16 + 8 * (named + i))[0] for i in range(numbered)
        }


def faults(image: Image) -> list:
    found = []
    if image.machine != AMD64:
        found.append("is not for x64")
    found += [f"lacks {what}" for bit, what in WANTED.items() if not image.characteristics & bit]
    if image.stamp != 0:
        found.append("has a time stamp")
    if image.has_debug_information():
        found.append("has debug information")
    if image.directories[RELOCATIONS][1] == 0:
        found.append("cannot be relocated")
    types = image.resource_types()
    if VERSION not in types:
        found.append("has no version")
    if not image.flags & IS_DLL and image.subsystem != NATIVE and MANIFEST not in types:
        found.append("has no manifest")
    foreign = sorted(name for name in image.imports() if name.lower() not in SYSTEM)
    if foreign:
        found.append("loads " + ", ".join(foreign))
    return found


def main(files: list) -> int:
    wrong = 0
    for file in files:
        with open(file, "rb") as source:
            found = faults(Image(source.read()))
        for fault in found:
            print(f"{file}: {fault}")
        wrong += len(found)
    return 1 if wrong else 0


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1:]))
