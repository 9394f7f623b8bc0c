#!/usr/bin/python3
"""Writes array files with numpy, for tests of a reader that shares no code with it.

usage: make_npy_files.py FOLDER

Beside each file NAME that opens stands NAME.raw with the array's bytes in the order of the file, and the
manifest has one line for each file:

    NAME opens WIDTH HEIGHT FRAMES PIXEL-TYPE
    NAME refused "MESSAGE"

MESSAGE is empty for a file that is refused without one.
"""

import os
import sys

import numpy as np

from noise import noise, random

PIXEL_TYPES = {
    "uint8": "UInt8", "uint16": "UInt16", "uint32": "UInt32", "int8": "Int8", "int16": "Int16", "int32": "Int32",
    "float32": "Float32", "float64": "Double64", "complex64": "Complex64", "complex128": "Complex128",
}
REFUSED_TYPES = [
    "float16", "uint64", "int64", "bool", "longdouble", "clongdouble", "S10", "U10", "V4", "M8[us]", "m8[ns]",
    [("x", "<f4"), ("y", "<u2")],
]
TYPE = "Unsupported pixel type"
STRUCTURE = "Unsupported data structure"


class Folder:
    """The files and the manifest."""

    def __init__(self, path):
        os.makedirs(path, exist_ok=True)
        self.path = path
        self.manifest = []

    def write(self, name, data, version):
        with open(os.path.join(self.path, name), "wb") as file:
            np.lib.format.write_array(file, np.asanyarray(data), version=version, allow_pickle=True)

    def add(self, name, data, width, height, frames, pixel_type=None):
        """A file that opens, as frames that stand one after another."""
        np.save(os.path.join(self.path, name), data)
        with open(os.path.join(self.path, name + ".raw"), "wb") as raw:
            raw.write(data.tobytes(order="A"))
        pixel_type = pixel_type or PIXEL_TYPES[data.dtype.newbyteorder("=").name]
        self.manifest.append(f"{name} opens {width} {height} {frames} {pixel_type}")

    def add_refused(self, name, data, message, version=(1, 0)):
        self.write(name, data, version)
        self.manifest.append(f'{name} refused "{message}"')

    def finish(self):
        with open(os.path.join(self.path, "manifest"), "w", encoding="ascii") as manifest:
            manifest.write("\n".join(self.manifest) + "\n")


def add_readable(folder):
    for kind in PIXEL_TYPES:
        folder.add(f"{kind}_image.npy", noise(kind, 13, 17), 17, 13, 1)
        folder.add(f"{kind}_stack.npy", noise(kind, 4, 9, 12), 12, 9, 4)
        folder.add(f"{kind}_cube.npy", noise(kind, 6, 6, 6), 6, 6, 6)
        folder.add(f"{kind}_square_frames_last.npy", noise(kind, 9, 9, 5), 9, 9, 5)
        folder.add(f"{kind}_column.npy", noise(kind, 150, 1), 1, 150, 1)
        # Whatever the header says, the samples are taken as they stand.
        swapped = np.dtype(kind).newbyteorder(">")
        folder.add(f"{kind}_swapped_image.npy", noise(kind, 13, 17).astype(swapped), 17, 13, 1)
        folder.add(f"{kind}_swapped_stack.npy", noise(kind, 4, 9, 12).astype(swapped), 12, 9, 4)
        folder.add(f"{kind}_fortran_image.npy", np.asfortranarray(noise(kind, 13, 17)), 17, 13, 1)
        folder.add(f"{kind}_fortran_stack.npy", np.asfortranarray(noise(kind, 4, 9, 12)), 12, 9, 4)
        if kind != "uint8":
            folder.add(f"{kind}_three_frames_last.npy", noise(kind, 7, 7, 3), 7, 7, 3)
            folder.add(f"{kind}_narrow_frames.npy", noise(kind, 12, 11, 3), 3, 11, 12)

    folder.add("colours.npy", noise("uint8", 11, 14, 3), 14, 11, 1, "RGB24")
    folder.add("square_colours.npy", noise("uint8", 12, 12, 3), 12, 12, 1, "RGB24")
    folder.add("colours_and_opacity.npy", noise("uint8", 11, 14, 4), 4, 14, 11)
    # Counts of a camera, and a value that stands out.
    counts = random.poisson(40, (24, 32)).astype("uint16")
    counts[3, 5] = 60000
    folder.add("counts.npy", counts, 32, 24, 1)
    folder.add("not_finite.npy", np.where(noise("float32", 20, 20) > 1, np.nan, noise("float32", 20, 20)), 20, 20, 1)
    folder.add("widest.npy", noise("uint8", 1, 65535), 65535, 1, 1)
    folder.add("highest.npy", noise("uint8", 65535, 1), 1, 65535, 1)
    folder.add("most_frames.npy", noise("uint16", 4096, 3, 2), 2, 3, 4096)
    folder.add("most_frames_last.npy", noise("uint8", 2, 2, 4096), 2, 2, 4096)


def add_refused(folder):
    for number, kind in enumerate(REFUSED_TYPES):
        folder.add_refused(f"type_{number}.npy", np.zeros((20, 30), dtype=kind), TYPE)
    folder.add_refused("objects.npy", np.full((20, 30), None), TYPE)

    folder.add_refused("line.npy", noise("uint8", 500), STRUCTURE)
    folder.add_refused("four_dimensions.npy", noise("uint8", 5, 5, 5, 5), STRUCTURE)
    folder.add_refused("one_number_in_four_dimensions.npy", noise("float64", 20, 1, 1, 1), STRUCTURE)
    folder.add_refused("too_wide.npy", noise("uint8", 1, 65536), "Invalid resolution")
    folder.add_refused("too_high.npy", noise("uint8", 65536, 1), "Invalid resolution")
    folder.add_refused("too_many_frames.npy", noise("uint8", 4097, 3, 2), "The number of frames is too large")
    folder.add_refused("too_many_frames_last.npy", noise("uint8", 2, 2, 4097), "The number of frames is too large")
    folder.add_refused("version_2.npy", noise("uint8", 20, 20), "Unsupported version", version=(2, 0))
    folder.add_refused("version_3.npy", noise("uint8", 20, 20), "Unsupported version", version=(3, 0))

    # Shorter than the part that is looked at, whether it holds its picture or has none.
    folder.add_refused("short.npy", noise("uint8", 8, 8), "")
    folder.add_refused("one_number.npy", np.float64(5), "")
    folder.add_refused("no_frames.npy", noise("uint8", 0, 64, 64), "")
    # The names of many fields leave the dictionary unfinished where that part ends.
    many_fields = [(f"field_{number}", "<f4") for number in range(30)]
    folder.add_refused("many_fields.npy", np.zeros((20, 30), dtype=many_fields), "")


def main():
    folder = Folder(sys.argv[1])
    add_readable(folder)
    add_refused(folder)
    folder.finish()


if __name__ == "__main__":
    main()
