"""The Windows executables as the operating system sees them: their version record, icons, manifest, the DLLs that they
need, and their size. Read with pefile, so that both widths are checked although only one can be run here."""
import os
import re
import unittest

import pefile

from support import STAGED, TOP
import release

# DLLs that Windows itself brings. msvcrt is part of the system since Windows 2000.
SYSTEM = {"advapi32.dll", "bcrypt.dll", "comctl32.dll", "comdlg32.dll", "dwmapi.dll", "gdi32.dll", "imm32.dll", "kernel32.dll",
          "msvcrt.dll", "odbc32.dll", "ole32.dll", "oleaut32.dll", "shell32.dll", "user32.dll", "uxtheme.dll",
          "version.dll", "ws2_32.dll"}
MACHINES = {"x64": 0x8664, "x86": 0x014C}
PROGRAMS = {"KVLSQLDbMgr.exe": release.DESCRIPTION, os.path.join("Binn", "OSQL.EXE"): None}
LARGEST_PRODUCT = 3_000_000  # bytes


def resources(image, kind):
    """The data of all resources of a kind, such as "RT_MANIFEST"."""
    found = []
    for entry in getattr(image, "DIRECTORY_ENTRY_RESOURCE", None).entries:
        if entry.id == pefile.RESOURCE_TYPE[kind]:
            for name in entry.directory.entries:
                for language in name.directory.entries:
                    place = language.data.struct
                    found.append(image.get_data(place.OffsetToData, place.Size))
    return found


def version_texts(image):
    """The texts of the version record, by name."""
    return {name.decode(): text.decode()
            for part in image.FileInfo[0] if part.Key == b"StringFileInfo"
            for table in part.StringTable for name, text in table.entries.items()}


class Executables(unittest.TestCase):
    def each(self):
        for arch, machine in MACHINES.items():
            for name, description in PROGRAMS.items():
                path = os.path.join(STAGED, f"windows-{arch}", name)
                with pefile.PE(path) as image:
                    yield image, path, machine, description

    def test_the_version_record_is_that_of_the_release(self):
        numbers = [int(part) for part in release.VERSION.split(".")]
        for image, path, _, description in self.each():
            fixed = image.VS_FIXEDFILEINFO[0]
            for most, least in ((fixed.FileVersionMS, fixed.FileVersionLS), (fixed.ProductVersionMS, fixed.ProductVersionLS)):
                self.assertEqual([most >> 16, most & 0xFFFF, least >> 16, least & 0xFFFF], numbers, path)
            texts = version_texts(image)
            self.assertEqual(texts["FileVersion"], release.VERSION_COMMENTS, path)
            self.assertEqual(texts["CompanyName"], release.MAKER, path)
            self.assertEqual(texts["OriginalFilename"], os.path.basename(path))
            if description:
                self.assertEqual(texts["FileDescription"], description, path)

    def test_the_product_carries_its_icon_and_its_manifest(self):
        for arch in MACHINES:
            with self.subTest(arch=arch), pefile.PE(os.path.join(STAGED, f"windows-{arch}", "KVLSQLDbMgr.exe")) as image:
                self.assertGreaterEqual(len(resources(image, "RT_GROUP_ICON")), 1)
                manifests = resources(image, "RT_MANIFEST")
                self.assertEqual(len(manifests), 1)
                with open(os.path.join(TOP, "src", "main", "windows", "program.manifest"), "rb") as file:
                    self.assertEqual(re.sub(rb"\s+", b" ", manifests[0]).strip(), re.sub(rb"\s+", b" ", file.read()).strip())

    def test_only_dlls_of_the_system_are_needed(self):
        for image, path, machine, _ in self.each():
            self.assertEqual(image.FILE_HEADER.Machine, machine, path)
            needed = {entry.dll.decode().lower() for entry in image.DIRECTORY_ENTRY_IMPORT}
            self.assertEqual(needed - SYSTEM, set(), path)

    def test_the_x64_product_is_no_larger_than_three_megabytes(self):
        self.assertLessEqual(os.path.getsize(os.path.join(STAGED, "windows-x64", "KVLSQLDbMgr.exe")), LARGEST_PRODUCT)


if __name__ == "__main__":
    unittest.main(verbosity=2)
