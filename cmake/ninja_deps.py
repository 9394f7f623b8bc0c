"""Lists the files that each source file of a build includes, as ninja has recorded them."""

import os
import subprocess


def included_files(build):
    """Returns {source: [every file that its compilation read]}, with absolute paths, for the build folder `build`."""
    listing = subprocess.run(["ninja", "-C", build, "-t", "deps"], check=True, capture_output=True, text=True).stdout
    files = {}
    for block in listing.split("\n\n"):
        lines = block.strip().splitlines()
        if len(lines) > 1 and "(VALID)" in lines[0]:
            paths = [os.path.normpath(os.path.join(build, line.strip())) for line in lines[1:]]
            sources = [path for path in paths if path.endswith((".c", ".cpp", ".cc"))]
            if sources:
                files[sources[0]] = paths
    return files
