"""Tests what lumora doctor says about the desktop."""

import hashlib
import json
import os
import pathlib
import subprocess
import tempfile

from desktop.samples import CACHE, LUMORA, ROOT, WithSamples


class Doctor(WithSamples):
    def doctor(self, *files, **variables):
        run = subprocess.run([LUMORA, "doctor", "--json", *files], env=os.environ | variables, check=False, text=True,
                             capture_output=True)
        found = json.loads(run.stdout)
        self.assertEqual((run.returncode, run.stderr), (0 if found["allIsWell"] else 1, ""))
        return found

    @staticmethod
    def states(checks):
        return {check["what"]: check["state"] for check in checks}

    def file(self, name):
        return self.folder / "samples" / name

    @staticmethod
    def limit(folder, size):
        settings = pathlib.Path(folder, "tumbler/tumbler.rc")
        settings.parent.mkdir(exist_ok=True)
        settings.write_text(f"[DesktopThumbnailer]\nMaxFileSize={size}\n")
        return settings

    def note_failure(self, file):
        """As GNOME does when a thumbnailer has failed."""
        name = hashlib.md5(file.as_uri().encode()).hexdigest() + ".png"
        noted = CACHE / "fail/gnome-thumbnail-factory" / name
        noted.parent.mkdir(parents=True, exist_ok=True)
        noted.touch()
        self.addCleanup(noted.unlink)
        return noted

    def test_all_is_well_with_the_package(self):
        found = self.doctor()
        self.assertTrue(found["allIsWell"])
        self.assertEqual(self.states(found["checks"]),
                         {"thumbnailer": "ok", "kinds of files": "ok", "Xfce's thumbnail service": "ok"})
        found = self.doctor(self.file("fringes.mrc"))
        self.assertEqual(self.states(found["files"][0]["checks"]),
                         {"kind of file": "ok", "picture": "ok", "properties": "ok"})
        self.assertTrue(found["advice"].startswith("All is well"))

    def test_the_thumbnailer_is_missing(self):
        found = self.doctor(XDG_DATA_DIRS="/usr/share")
        self.assertEqual(self.states(found["checks"])["thumbnailer"], "problem")
        self.assertIn("The desktop does not know Lumora's thumbnailer.", found["advice"])

    def test_its_program_is_missing(self):
        found = self.doctor(PATH="/nowhere")
        self.assertEqual(self.states(found["checks"])["thumbnailer"], "problem")
        self.assertIn("The thumbnailer's program is missing.", found["advice"])

    def test_the_kinds_of_files_are_not_in_the_database(self):
        with tempfile.TemporaryDirectory() as folder:
            entry = pathlib.Path(folder, "thumbnailers/lumora.thumbnailer")
            entry.parent.mkdir()
            entry.write_bytes((ROOT / "usr/share/thumbnailers/lumora.thumbnailer").read_bytes())
            found = self.doctor(XDG_DATA_DIRS=f"{folder}:/usr/share")
        self.assertEqual(self.states(found["checks"]),
                         {"thumbnailer": "ok", "kinds of files": "problem", "Xfce's thumbnail service": "ok"})
        self.assertIn(f'Run "update-mime-database {folder}/mime".', found["advice"])

    def test_another_program_is_asked(self):
        found = self.doctor(self.file("gold.raw"))
        self.assertEqual(self.states(found["files"][0]["checks"])["kind of file"], "problem")
        self.assertIn("the desktop takes the file for image/x-panasonic-rw", found["advice"])

    def test_a_failure_is_remembered_until_the_file_changes(self):
        file = self.file("fringes.mrc")
        noted = self.note_failure(file)
        found = self.doctor(file)
        self.assertEqual(self.states(found["files"][0]["checks"])["thumbnail"], "problem")
        self.assertIn("thumbnails/fail", found["advice"])
        later = noted.stat().st_mtime + 10
        os.utime(file, (later, later))
        self.assertTrue(self.doctor(file)["allIsWell"])

    def test_a_file_is_larger_than_the_limit(self):
        settings = self.limit(os.environ["XDG_CONFIG_HOME"], 1000)
        self.addCleanup(settings.unlink)
        found = self.doctor(self.file("fringes.mrc"))
        self.assertEqual(self.states(found["files"][0]["checks"])["size"], "note")
        self.assertTrue(found["allIsWell"])

    def test_the_limit_of_all_users_holds_if_there_is_no_own_one(self):
        with tempfile.TemporaryDirectory() as folder:
            self.limit(folder, 1000)
            found = self.doctor(self.file("fringes.mrc"), XDG_CONFIG_DIRS=f"/nowhere:{folder}")
            self.assertEqual(self.states(found["files"][0]["checks"])["size"], "note")
            settings = self.limit(os.environ["XDG_CONFIG_HOME"], 0)
            self.addCleanup(settings.unlink)
            found = self.doctor(self.file("fringes.mrc"), XDG_CONFIG_DIRS=f"/nowhere:{folder}")
            self.assertNotIn("size", self.states(found["files"][0]["checks"]))

    def test_a_damaged_file(self):
        self.file("fringes.mrc").write_bytes(self.file("fringes.mrc").read_bytes()[:2000])
        found = self.doctor(self.file("fringes.mrc"))
        self.assertEqual(self.states(found["files"][0]["checks"])["picture"], "problem")
        self.assertIn("MRC: No complete frame is present in the file", found["advice"])
