"""A desktop on which the package is installed, for a user who has just come."""

import contextlib
import os
import pathlib
import subprocess
import tempfile


@contextlib.contextmanager
def session(root):
    """Yields the variables of a session. ROOT/usr has what the package installs; nothing is installed for it."""
    with tempfile.TemporaryDirectory(prefix="lumora-desktop-") as folder:
        home = pathlib.Path(folder) / "ada"
        home.mkdir()
        for name in ("cache", "config", "data", "run"):
            (home / name).mkdir(mode=0o700)
        # As the package manager does after an installation.
        subprocess.run(["update-mime-database", f"{root}/usr/share/mime"], check=True, capture_output=True)
        own = {name: value for name, value in os.environ.items() if not name.startswith(("XDG_", "DBUS_", "DISPLAY"))}
        yield own | {
            "HOME": str(home),
            "XDG_CACHE_HOME": str(home / "cache"),
            "XDG_CONFIG_HOME": str(home / "config"),
            "XDG_DATA_HOME": str(home / "data"),
            "XDG_RUNTIME_DIR": str(home / "run"),
            "XDG_DATA_DIRS": f"{root}/usr/share:/usr/share",
            "PATH": f"{root}/usr/bin:{os.environ['PATH']}",
            "GSETTINGS_BACKEND": "memory",
            "GIO_USE_VFS": "local",
        }
