"""The samples, as a user has them in a folder, and the thumbnails that they should have."""

import hashlib
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from gi.repository import Gio
from PIL import Image

ROOT = pathlib.Path(os.environ["LUMORA_ROOT"])
SAMPLES = pathlib.Path(os.environ["LUMORA_SOURCES"]) / "samples"
LUMORA = ROOT / "usr/bin/lumora"
THUMBNAILER = ROOT / "usr/bin/lumora-thumbnailer"

CACHE = pathlib.Path(os.environ["XDG_CACHE_HOME"]) / "thumbnails"

# No desktop asks us about these, because other programs use their names. The content does not count.
NOT_ASKED = {
    "gold.raw": "image/x-panasonic-rw",
    "probe.bin": "application/octet-stream",
}


def copy_samples(folder):
    """Copies the samples to a new folder, and one of them under a name that says nothing. Returns the paths."""
    folder.mkdir()
    for sample in SAMPLES.iterdir():
        shutil.copy(sample, folder)
    shutil.copy(SAMPLES / "gold.raw", folder / "gold")
    return sorted(folder.iterdir())


def kind_of(path):
    """The MIME type that file managers find."""
    info = Gio.File.new_for_path(str(path)).query_info("standard::content-type", Gio.FileQueryInfoFlags.NONE, None)
    return info.get_content_type()


def pixels(path):
    """Size and hash of a picture: the pixels themselves would make unittest look for differences for hours."""
    with Image.open(path) as picture:
        return picture.size, hashlib.sha256(picture.convert("RGB").tobytes()).hexdigest()


def expected_pixels(path, size, folder):
    """The pixels that lumora render --size gives the file."""
    subprocess.run([LUMORA, "render", "--size", str(size), "-o", folder, path], check=True, stdout=subprocess.DEVNULL)
    return pixels(folder / (path.stem + ".png"))


def thumbnail_of(path, flavor):
    """Where desktops keep the thumbnail of a file."""
    return CACHE / flavor / (hashlib.md5(path.as_uri().encode()).hexdigest() + ".png")


class WithSamples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.files = copy_samples(self.folder / "samples")

    def assert_thumbnails(self, flavor, size):
        for file in self.files:
            thumbnail = thumbnail_of(file, flavor)
            with self.subTest(file.name):
                self.assertEqual(thumbnail.exists(), file.name not in NOT_ASKED)
                if thumbnail.exists():
                    self.assertEqual(pixels(thumbnail), expected_pixels(file, size, self.folder))
