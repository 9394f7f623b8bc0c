"""Tests the program in the sandboxes that desktops put around thumbnailers."""

import os
import subprocess
import sys

from desktop import gnome
from desktop.samples import NOT_ASKED, ROOT, THUMBNAILER, WithSamples, expected_pixels, kind_of, pixels

# Only the system's programs and libraries, no /proc, no network, no other process.
SANDBOX = ["bwrap", "--ro-bind", "/usr", "/usr", "--symlink", "usr/lib", "/lib", "--symlink", "usr/lib64", "/lib64",
           "--unshare-all", "--die-with-parent", "--clearenv", "--dir", "/out", "--chdir", "/"]


def why_not(command):
    """The reason why the machine does not let us run a command of its own, or an empty text."""
    try:
        run = subprocess.run(command, capture_output=True, text=True, check=False)
    except OSError as error:
        return str(error)
    return run.stderr.strip() or "it fails" if run.returncode else ""


class Sandbox(WithSamples):
    def test_every_sample_has_its_picture_where_there_is_only_usr(self):
        reason = why_not([*SANDBOX, "/usr/bin/true"])
        if reason:
            self.skipTest(f"no sandbox: {reason}")
        picture = self.folder / "out/picture.png"
        picture.parent.mkdir()
        for file in self.files:
            run = subprocess.run([*SANDBOX, "--ro-bind", THUMBNAILER, "/program", "--ro-bind", file, "/file", "--bind",
                                  picture.parent, "/out", "/program", "-s", "96", "file:///file", "/out/picture.png"],
                                 capture_output=True, text=True, check=False)
            with self.subTest(file.name):
                self.assertEqual((run.returncode, run.stderr), (0, ""))
                self.assertEqual(pixels(picture), expected_pixels(file, 96, self.folder))
            picture.unlink(missing_ok=True)


class Gnome(WithSamples):
    """The library of GNOME's file manager. Its sandbox shows a thumbnailer nothing of the system but /usr."""

    def test_thumbnails_are_those_of_the_program(self):
        try:
            gnome.library()
        except ValueError as error:
            self.skipTest(str(error))
        # For this process and its children, the package is below /usr.
        overlay = f"mount -t overlay overlay -o lowerdir={ROOT}/usr:/usr /usr"
        namespace = ["unshare", "--user", "--map-root-user", "--mount", "sh", "-ec"]
        reason = why_not([*namespace, overlay + " && bwrap --ro-bind / / --proc /proc --unshare-all true"])
        if reason:
            self.skipTest(f"no sandbox: {reason}")
        calls = self.folder / "calls"
        (self.folder / "bin").mkdir()
        witness = self.folder / "bin/bwrap"
        witness.write_text(f'#!/bin/sh\necho "$@" >>"{calls}"\nexec /usr/bin/bwrap "$@"\n')
        witness.chmod(0o755)
        # What is found must be below /usr, so the root is on neither path.
        variables = os.environ | {"PATH": f"{self.folder}/bin:/usr/bin", "XDG_DATA_DIRS": "/usr/share"}
        words = [text for file in self.files for text in (file.as_uri(), kind_of(file))]
        subprocess.run([*namespace, overlay + ' && exec "$@"', "sh", sys.executable, gnome.__file__, *words],
                       env=variables, check=True, timeout=60)
        self.assertEqual(len(calls.read_text().splitlines()), len(self.files) - len(NOT_ASKED))
        self.assert_thumbnails("large", 256)
