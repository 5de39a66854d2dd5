#!/usr/bin/env python3
"""Describes the installer of a staged folder for wixl.

Usage: make_wxs.py FOLDER VERSION > FILE.wxs

FOLDER is what the zip file holds. The features: everything; on the path; the vendor library of the
standard HBA API; links in the start menu. Identifiers follow from names and version alone, so that the
same contents give the same installer.
"""
import hashlib
import os
import sys
import uuid
from xml.sax.saxutils import quoteattr

NAMESPACE = uuid.UUID("5f0d7a52-6f5c-4f43-9f0e-6a1b9f1f2c11")
UPGRADE = uuid.uuid5(NAMESPACE, "upgrade")
STANDARD_API = r"SOFTWARE\SNIA\HBA\VXCORE"  # where `vxmgr hbaapi register` enters it, too


def guid(name: str) -> str:
    return str(uuid.uuid5(NAMESPACE, name)).upper()


def identifier(kind: str, name: str) -> str:
    return kind + hashlib.sha1(name.encode()).hexdigest()[:16]


def installer_version(version: str) -> str:
    """Three numbers count for an upgrade: the last two of the library's become one."""
    major, minor, patch, revision = (int(part) for part in version.split("."))
    return f"{major}.{minor}.{patch * 1000 + revision}"


class Installer:
    def __init__(self, folder: str, version: str) -> None:
        self.folder = folder
        self.version = version
        self.lines = []
        self.components = []

    def put(self, depth: int, text: str) -> None:
        self.lines.append("  " * depth + text)

    def component(self, depth: int, name: str, body: list) -> str:
        own = identifier("c", name)
        self.put(depth, f'<Component Id="{own}" Guid="{guid(name)}" Win64="yes">')
        for line in body:
            self.put(depth + 1, line)
        self.put(depth, "</Component>")
        return own

    def file(self, depth: int, name: str) -> None:
        source = quoteattr(os.path.join(self.folder, name))
        self.components.append(self.component(depth, name, [
            f'<File Id="{self.file_id(name)}" Name={quoteattr(os.path.basename(name))} '
            f'Source={source} KeyPath="yes"/>'
        ]))

    @staticmethod
    def file_id(name: str) -> str:
        return identifier("f", name)

    def directory(self, depth: int, place: str) -> None:
        entries = sorted(os.listdir(os.path.join(self.folder, place)))
        for entry in entries:
            name = os.path.join(place, entry) if place else entry
            if os.path.isdir(os.path.join(self.folder, name)):
                own = "BINDIR" if name == "bin" else identifier("d", name)
                self.put(depth, f'<Directory Id="{own}" Name={quoteattr(entry)}>')
                self.directory(depth + 1, name)
                self.put(depth, "</Directory>")
            else:
                self.file(depth, name)

    def digest(self) -> str:
        """Of all contents: installers that differ need package codes that differ."""
        whole = hashlib.sha256()
        for place, folders, names in os.walk(self.folder):
            folders.sort()
            for name in sorted(names):
                path = os.path.join(place, name)
                whole.update(os.path.relpath(path, self.folder).encode() + b"\0")
                with open(path, "rb") as source:
                    whole.update(hashlib.sha256(source.read()).digest())
        return whole.hexdigest()

    def feature(self, own: str, title: str, about: str, components: list) -> None:
        self.put(2, f'<Feature Id="{own}" Title="{title}" Description="{about}" Level="1">')
        for component in components:
            self.put(3, f'<ComponentRef Id="{component}"/>')
        self.put(2, "</Feature>")

    def text(self) -> str:
        self.put(0, '<?xml version="1.0" encoding="utf-8"?>')
        self.put(0, '<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">')
        product = guid("product " + self.version)
        self.put(1, f'<Product Id="{product}" Name="VXMGMT" Language="1033" '
                    f'Version="{installer_version(self.version)}" UpgradeCode="{str(UPGRADE).upper()}" '
                    'Manufacturer="The VXMGMT authors">')
        package = guid("package " + self.version + " " + self.digest())
        self.put(2, f'<Package Id="{package}" InstallerVersion="500" Compressed="yes" '
                    'InstallScope="perMachine" '
                    'Description="Management of Fibre Channel host bus adapters"/>')
        self.put(2, '<MajorUpgrade DowngradeErrorMessage='
                    '"A newer version of VXMGMT is installed. Remove it first."/>')
        self.put(2, '<Media Id="1" Cabinet="vxmgmt.cab" EmbedCab="yes"/>')
        self.put(2, '<Directory Id="TARGETDIR" Name="SourceDir">')
        self.put(3, '<Directory Id="ProgramFiles64Folder">')
        self.put(4, '<Directory Id="INSTALLDIR" Name="VXMGMT">')
        self.directory(5, "")
        on_path = self.component(5, "on the path", [
            f'<RegistryValue Root="HKLM" Key="SOFTWARE\\VXMGMT" Name="OnPath" Type="integer" '
            'Value="1" KeyPath="yes"/>'
        ])
        standard = self.component(5, "standard interface", [
            f'<RegistryValue Root="HKLM" Key="{STANDARD_API}" Name="LibraryFile" Type="string" '
            'Value="[BINDIR]VXMGMT.DLL" KeyPath="yes"/>'
        ])
        self.put(4, "</Directory>")
        self.put(3, "</Directory>")
        self.put(3, '<Directory Id="ProgramMenuFolder">')
        self.put(4, '<Directory Id="MenuDir" Name="VXMGMT">')
        menu = self.component(5, "start menu", [
            '<Shortcut Id="ManualLink" Name="VXMGMT documentation" Directory="MenuDir" '
            f'Target="[#{self.file_id("README.html")}]" Description="Manuals of VXMGMT"/>',
            '<RemoveFolder Id="MenuDir" On="uninstall"/>',
            '<RegistryValue Root="HKLM" Key="SOFTWARE\\VXMGMT" Name="StartMenu" Type="integer" '
            'Value="1" KeyPath="yes"/>',
        ])
        self.put(4, "</Directory>")
        self.put(3, "</Directory>")
        self.put(2, "</Directory>")
        self.feature("Main", "VXMGMT", "The library, the manager, headers and documentation",
                     self.components)
        self.feature("OnPath", "On the path", "vxmgr can be typed in any folder", [on_path])
        self.feature("StandardApi", "Standard HBA API",
                     "Programs of the standard HBA API find the adapters", [standard])
        self.feature("StartMenu", "Start menu", "A link to the documentation", [menu])
        self.put(1, "</Product>")
        self.put(0, "</Wix>")
        return "\n".join(self.lines) + "\n"


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.stdout.write(Installer(*sys.argv[1:]).text())
