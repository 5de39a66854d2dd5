"""Management of Fibre Channel host bus adapters, through VXMGMT.DLL.

    from vxmgmt import Library, text, wwn

    library = Library(r"C:\\Program Files\\VXMGMT\\bin\\VXMGMT.DLL")
    for port in library.scsi_ports():
        if port.familyDriver:
            with library.open_scsi_port(port.scsiPort) as adapter:
                print(text(adapter.node().serialNumber), wwn(adapter.port().portName))

Every export of the library is there by its name, with its prototype, as library.functions.NAME;
library.check("NAME", ...) calls one and raises StatusError unless it succeeds. Records, constants
and their names are those of the C headers, which say what each means.

The module can be imported anywhere; only Library() needs Windows x64.
"""
from __future__ import annotations

import ctypes
import sys
from types import TracebackType
from typing import Any, Callable, Iterable, Iterator, List, Optional, Type, TypeVar

from . import _generated
from ._generated import *  # noqa: F401,F403
from ._generated import (HX_CHIP_PROPERTY, HX_DISCOVERED_PORT, HX_DRIVER_PROPERTY, HX_EVENT,
                         HX_FIRMWARE_PROPERTY, HX_FLASH_PROGRESS, HX_NODE_PROPERTY,
                         HX_PORT_PROPERTY, HX_PORT_STATE_ONLINE, HX_SCSI_PORT, HX_STATISTICS,
                         HXMGT_BUFFER_TOO_SMALL, HXMGT_DEVICE_NOT_FOUND, HXMGT_SUCCESS,
                         STATUS_NAMES)

Record = TypeVar("Record", bound=ctypes.Structure)


class StatusError(Exception):
    """A status other than success: .status, its .name and the library's .text for it."""

    def __init__(self, what: str, status: int, text: str) -> None:
        self.status = status
        self.name = STATUS_NAMES.get(status, f"Windows error {status}")
        self.text = text
        super().__init__(f"{what}: {text} ({self.name})")


def text(field: bytes) -> str:
    """A text of a record, which may fill its field without a terminator."""
    return field.split(b"\0", 1)[0].decode("latin-1")


def wwn(field: Iterable[int]) -> str:
    """A world wide name as people write it."""
    return ":".join(f"{byte:02x}" for byte in field)


class Library:
    """The loaded library. loaded is for one that the caller has loaded."""

    def __init__(self, path: str = "VXMGMT.DLL", *, loaded: Any = None) -> None:
        if loaded is None:
            if sys.platform != "win32":
                raise OSError("VXMGMT.DLL is a library of Windows x64; this system is " + sys.platform)
            loaded = ctypes.CDLL(path)
        self.functions = _generated.Functions(loaded)

    def error_string(self, status: int) -> str:
        return text(self.functions.HXGetErrorString(status) or b"").strip()

    def check(self, name: str, *arguments: Any) -> None:
        """Calls an export that returns a status. Raises StatusError unless that is success."""
        status: int = getattr(self.functions, name)(*arguments)
        if status != HXMGT_SUCCESS:
            raise StatusError(name, status, self.error_string(status))

    def fetch(self, name: str, record: Record, *arguments: Any) -> Record:
        """Calls an export whose last argument is a record to fill; returns that record."""
        self.check(name, *arguments, ctypes.byref(record))
        return record

    def scsi_ports(self) -> List[HX_SCSI_PORT]:
        """The SCSI ports that the registry knows. No driver is asked."""
        room = ctypes.c_uint32(0)
        while True:
            records = (HX_SCSI_PORT * max(room.value, 1))()
            try:
                self.check("HXListScsiPorts", records, ctypes.byref(room))
            except StatusError as error:
                if error.status == HXMGT_BUFFER_TOO_SMALL:
                    continue  # room says now how much is needed
                raise
            return list(records)[:room.value]

    def open(self, index: int) -> Adapter:
        """Opens the index-th port of the adapters, in the order of their SCSI ports."""
        return self._opened("HXOpenDevice", index)

    def open_scsi_port(self, scsi_port: int) -> Adapter:
        """Opens the port with this SCSI port number. No other port is asked."""
        return self._opened("HXOpenScsiPort", scsi_port)

    def adapters(self) -> Iterator[Adapter]:
        """Every port in turn, open until the next one is taken. One that fails ends it with its error."""
        index = 0
        while True:
            try:
                adapter = self.open(index)
            except StatusError as error:
                if error.status == HXMGT_DEVICE_NOT_FOUND:
                    return
                raise
            with adapter:
                yield adapter
            index += 1

    def _opened(self, name: str, number: int) -> Adapter:
        handle = ctypes.c_uint32()
        self.check(name, number, ctypes.byref(handle))
        return Adapter(self, handle.value)


class Adapter:
    """An open port of an adapter, closed at the end of a with statement."""

    def __init__(self, library: Library, handle: int) -> None:
        self.library = library
        self.handle = handle
        self._progress: Any = None

    def __enter__(self) -> Adapter:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def close(self) -> None:
        if self.handle:
            self.library.functions.HXCloseDevice(self.handle)
            self.handle = 0

    def fetch(self, name: str, record: Record, *arguments: Any) -> Record:
        """Calls an export whose first argument is the handle and whose last is a record to fill."""
        return self.library.fetch(name, record, self.handle, *arguments)

    def node(self) -> HX_NODE_PROPERTY:
        return self.fetch("HXGetHbaDeviceNodeProperty", HX_NODE_PROPERTY())

    def port(self) -> HX_PORT_PROPERTY:
        # A driver of the older generation writes the state only when the link is down.
        return self.fetch("HXGetHbaDevicePortProperty", HX_PORT_PROPERTY(state=HX_PORT_STATE_ONLINE), 0)

    def chip(self) -> HX_CHIP_PROPERTY:
        return self.fetch("HXGetHbaDeviceChipProperty", HX_CHIP_PROPERTY())

    def driver(self) -> HX_DRIVER_PROPERTY:
        return self.fetch("HXGetHbaDeviceDriverProperty", HX_DRIVER_PROPERTY())

    def firmware(self) -> HX_FIRMWARE_PROPERTY:
        return self.fetch("HXGetHbaDeviceFirmwareProperty", HX_FIRMWARE_PROPERTY())

    def statistics(self) -> HX_STATISTICS:
        return self.fetch("HXGetStatistics", HX_STATISTICS(), 0)

    def discovered_ports(self) -> List[HX_DISCOVERED_PORT]:
        return [self.fetch("HXGetDiscPortProperty", HX_DISCOVERED_PORT(), 0, index, 0)
                for index in range(self.port().discoveredDevices)]

    def enable_events(self) -> None:
        self.library.check("HXEnableAen", self.handle)

    def disable_events(self) -> None:
        self.library.check("HXDisableAen", self.handle)

    def events(self) -> List[HX_EVENT]:
        """The events that came since the last call. Returns at once."""
        room = (HX_EVENT * 32)()
        count = ctypes.c_uint32()
        self.library.check("HXGetAen", self.handle,
                           ctypes.cast(room, ctypes.POINTER(ctypes.c_uint8)),
                           ctypes.sizeof(room), ctypes.byref(count))
        return list(room)[:count.value]

    def set_flash_progress(self, progress: Optional[Callable[[int, int, int], int]]) -> None:
        """Has progress(region, done, total) called by transfers of flash; it returns a status.

        An exception in it is printed and stops nothing: a transfer is ended by a status alone.
        """
        def call(_context: Any, region: int, done: int, total: int) -> int:
            return progress(region, done, total) if progress else HXMGT_SUCCESS

        callback: Any = HX_FLASH_PROGRESS(call) if progress else HX_FLASH_PROGRESS(0)
        self.library.check("HXSetFlashProgress", self.handle, callback, None)
        self._progress = callback  # the library calls it until the handle is closed
