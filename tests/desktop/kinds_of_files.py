"""Tests that desktops recognise the files, and only these."""

import pathlib
import random
import tempfile
import unittest

from desktop.samples import NOT_ASKED, ROOT, SAMPLES, kind_of

MRC = (SAMPLES / "particles.mrc").read_bytes()
DM4 = (SAMPLES / "diffraction.dm4").read_bytes()
# Version 3 has a length of 32 bits behind the version, and version 4 one of 64.
DM3 = b"\0\0\0\3" + DM4[8:]
UNSTAMPED_MRC = MRC[:208] + bytes(8) + MRC[216:]
BIG_ENDIAN_MRC = MRC[:208] + b"MAP \x11\x11\0\0" + MRC[216:]
TEXT = b'{"version": 3, "sources": ["page.js"]}\n' * 50
# No text, and nothing that anybody recognises.
NOISE = b"\x01\x02\xfe" + random.Random(1).randbytes(5000)

KINDS_OF_SAMPLES = {
    "acquisition.h5": "application/x-hdf",
    "diffraction.dm4": "application/x-dm4-tem",
    "edge.emi": "application/x-emi",
    "fringes.mrc": "application/x-mrc",
    "gyroid.lattice": "application/x-lattice",
    "holes.ser": "application/x-ser",
    "particles.mrc": "application/x-mrc",
    "rings.npy": "application/x-npy",
    "tilt-series.mrc": "application/x-mrc",
} | NOT_ASKED


class KindsOfFiles(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def assert_kind(self, name, content, kind):
        path = self.folder / name
        path.write_bytes(content)
        with self.subTest(name):
            self.assertEqual(kind_of(path), kind)

    def test_every_sample_has_its_kind(self):
        self.assertEqual({sample.name: kind_of(sample) for sample in SAMPLES.iterdir()}, KINDS_OF_SAMPLES)

    def test_the_content_says_what_a_file_without_a_telling_name_is(self):
        for sample in SAMPLES.iterdir():
            kind = "application/x-tav-raw" if sample.name == "gold.raw" else KINDS_OF_SAMPLES[sample.name]
            self.assert_kind("of-" + sample.stem, sample.read_bytes(), kind)
        self.assert_kind("of-dm3", DM3, "application/x-dm3-tem")
        self.assert_kind("big-endian", BIG_ENDIAN_MRC, "application/x-mrc")
        self.assert_kind("unstamped", UNSTAMPED_MRC, "application/octet-stream")

    def test_the_name_says_it_of_files_without_a_stamp(self):
        for ending in ("mrc", "mrcs", "preali", "map", "st", "ali", "rec"):
            self.assert_kind("volume." + ending, UNSTAMPED_MRC, "application/x-mrc")
        self.assert_kind("x.dm3", NOISE, "application/x-dm3-tem")
        self.assert_kind("x.emd", NOISE, "application/x-hdf")

    def test_text_stays_text_under_names_that_are_shared(self):
        for ending in ("map", "st", "ali", "rec", "ser"):
            self.assert_kind("text." + ending, TEXT, "text/plain")
            self.assert_kind("stamped." + ending, MRC, "application/x-mrc" if ending != "ser" else "application/x-ser")

    def test_names_of_others_are_not_claimed(self):
        for ending in ("raw", "bin", "xyz"):
            self.assertNotIn(f"*.{ending}\n", (ROOT / "usr/share/mime/globs2").read_text())
        self.assert_kind("x.bin", NOISE, "application/octet-stream")

    def test_the_thumbnailer_is_asked_about_these_kinds(self):
        lines = (ROOT / "usr/share/thumbnailers/lumora.thumbnailer").read_text().splitlines()
        asked = set(next(line for line in lines if line.startswith("MimeType=")).removeprefix("MimeType=").split(";")) - {""}
        own = set(KINDS_OF_SAMPLES.values()) - set(NOT_ASKED.values())
        self.assertEqual(asked, own | {"application/x-dm3-tem", "application/x-tav-raw"})
        # A file manager that opens what it calls images itself would not ask at all.
        self.assertEqual([kind for kind in asked if kind.startswith("image/")], [])
