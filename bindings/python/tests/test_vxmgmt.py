"""Runs anywhere that a C compiler makes shared libraries: PYTHONPATH=. python3 -m unittest discover tests, in the folder above."""
import ctypes
import json
import os
import subprocess
import sys
import tempfile
import unittest

import vxmgmt
from vxmgmt import _generated

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.normpath(os.path.join(HERE, "..", "..", ".."))


class DescriptionTest(unittest.TestCase):
    def setUp(self):
        with open(os.path.join(ROOT, "bindings", "vxmgmt.json"), encoding="utf-8") as file:
            self.description = json.load(file)

    def test_records_are_laid_out_as_the_c_compiler_has_them(self):
        for record in self.description["records"]:
            made = getattr(_generated, record["name"])
            self.assertEqual(ctypes.sizeof(made), record["size"], record["name"])
            self.assertEqual([name for name, _ in made._fields_], [field["name"] for field in record["fields"]])
            for field in record["fields"]:
                place = getattr(made, field["name"])
                self.assertEqual((place.offset, place.size), (field["offset"], field["size"]),
                                 f'{record["name"]}.{field["name"]}')

    def test_every_export_has_a_prototype(self):
        self.assertEqual({one["name"]: len(one["parameters"]) for one in self.description["functions"]},
                         {name: len(arguments) for name, (_, arguments) in _generated.PROTOTYPES.items()})
        self.assertEqual(_generated.STATUS_NAMES[0x20000067], "HXMGT_DEVICE_BUSY")


class LibraryTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "stand_in.so")
            subprocess.run([os.environ.get("CC", "cc"), "-shared", "-fPIC", "-Wall", "-Wextra", "-Werror",
                            "-I", os.path.join(ROOT, "include"), "-o", path,
                            os.path.join(HERE, "stand_in.c")], check=True)
            cls.library = vxmgmt.Library(loaded=ctypes.CDLL(path))

    def open_handles(self):
        return self.library.functions.HXGetVersion(None, 0)

    def test_adapters_are_closed_on_every_way_out(self):
        serials = [vxmgmt.text(adapter.node().serialNumber) for adapter in self.library.adapters()]
        self.assertEqual(serials, ["ONE", "TWO"])
        with self.assertRaises(ZeroDivisionError), self.library.open(0) as adapter:
            self.assertEqual(self.open_handles(), 1)
            adapter.handle = 1 // 0
        for adapter in self.library.adapters():
            break
        del adapter
        self.assertEqual(self.open_handles(), 0)

    def test_a_status_is_an_error_with_its_name(self):
        with self.assertRaises(vxmgmt.StatusError) as caught:
            self.library.open(2)
        self.assertEqual((caught.exception.status, caught.exception.name, str(caught.exception)),
                         (0x2000006D, "HXMGT_DEVICE_NOT_FOUND",
                          "HXOpenDevice: Device not found (HXMGT_DEVICE_NOT_FOUND)"))
        with self.assertRaisesRegex(vxmgmt.StatusError, r"File not found. \(Windows error 2\)$"):
            self.library.open_scsi_port(40)
        with self.assertRaises(AttributeError):
            self.library.check("HXNoSuchExport")

    def test_records_lists_and_callbacks_cross_the_border(self):
        with self.library.open_scsi_port(0) as adapter:
            node = adapter.node()
            self.assertEqual((vxmgmt.text(node.model), node.flags, node.reserved[120]),
                             ("sixteen letters!", 0x12345678, 0x5A))
            self.assertEqual(vxmgmt.wwn(adapter.port().portName), "21:00:00:00:00:00:00:01")
            self.assertEqual([port.device.target for port in adapter.discovered_ports()], [7, 8])
            self.assertEqual([(event.type, event.data[0], event.data[2]) for event in adapter.events()],
                             [(vxmgmt.HX_EVENT_LINK_UP, 0, 0), (vxmgmt.HX_EVENT_RSCN, 0x010203, 1)])
            heard = []
            adapter.set_flash_progress(lambda *told: heard.append(told) or vxmgmt.HXMGT_TIMED_OUT)
            image = ctypes.create_string_buffer(16)
            with self.assertRaisesRegex(vxmgmt.StatusError, "HXMGT_TIMED_OUT"):
                self.library.check("HXGetOptionRomEx", adapter.handle, 0, image, 16, vxmgmt.HX_REGION_BOOT_CODE)
            self.assertEqual((heard, image.raw), ([(7, 16, 0xFFFFFFFF)], b"U" * 16))
            adapter.set_flash_progress(None)
            self.library.check("HXGetOptionRomEx", adapter.handle, 0, image, 16, 7)
            self.assertEqual(len(heard), 1)
        ports = self.library.scsi_ports()
        self.assertEqual([(port.scsiPort, vxmgmt.text(port.driver)) for port in ports], [(3, ""), (0, "vxfc2")])

    @unittest.skipIf(sys.platform == "win32", "the library can be loaded here")
    def test_elsewhere_it_says_why_it_cannot_be_loaded(self):
        with self.assertRaisesRegex(OSError, "Windows x64"):
            vxmgmt.Library()


if __name__ == "__main__":
    unittest.main()
