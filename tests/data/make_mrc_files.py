#!/usr/bin/python3
"""Writes MRC files with the mrcfile library, for tests of a reader that shares no code with it.

usage: make_mrc_files.py FOLDER

Beside each file NAME stands NAME.raw with the samples of all frames as numpy stores them, and the manifest
has one line for each file:

    NAME opens WIDTH HEIGHT FRAMES PIXEL-TYPE BYTE-ORDER "FORMAT DETAILS" "SOFTWARE"
    NAME refused

BYTE-ORDER is 0 for little-endian and 1 for big-endian numbers.
"""

import os
import struct
import sys

import mrcfile
import numpy as np

MODES = {"int8": 0, "int16": 1, "float32": 2, "uint16": 6, "float16": 12}
PIXEL_TYPES = {"int8": "Int8", "int16": "Int16", "float32": "Float32", "uint16": "UInt16", "float16": "Float16"}

random = np.random.RandomState(20140)


def noise(dtype, *shape):
    """Samples over the whole range of whole numbers, or of both signs and several magnitudes."""
    dtype = np.dtype(dtype)
    if dtype.kind in "iu":
        limits = np.iinfo(dtype)
        samples = random.randint(int(limits.min), int(limits.max) + 1, size=shape)
    else:
        samples = random.standard_normal(shape) * 10.0 ** random.randint(-2, 3, size=shape)
    return samples.astype(dtype)


def acquisition_header(mask, name, version):
    """Three sections of 1024 bytes, of which the first tells the program's name and version."""
    header = bytearray(3 * 1024)
    struct.pack_into("<I", header, 8, mask)
    struct.pack_into("16s16s", header, 52, name, version)
    return bytes(header)


class Folder:
    """The files and the manifest."""

    def __init__(self, path):
        os.makedirs(path, exist_ok=True)
        self.path = path
        self.manifest = []

    def write(self, name, data, version=20141, extended=b"", extended_type=b"", stack=False):
        with mrcfile.new(os.path.join(self.path, name), overwrite=True) as file:
            file.set_data(data)
            if stack:
                file.set_image_stack()
            if extended:
                file.set_extended_header(np.frombuffer(extended, dtype="V1"))
                file.header.exttyp = extended_type
            file.header.nversion = version

    def add(self, name, data, version=20141, software=None, **options):
        """A file that opens; `software` where something else than the byte order tells it."""
        self.write(name, data, version, **options)
        with open(os.path.join(self.path, name + ".raw"), "wb") as raw:
            raw.write(data.tobytes())
        kind = data.dtype.newbyteorder("=").name
        swapped = data.dtype.byteorder == ">"
        if software is None:
            software = "Gatan Digital Micrograph" if swapped else ""
        details = f"{'MRC2014' if version in (20140, 20141) else 'MRC'} Mode {MODES[kind]}"
        frames = data.size // (data.shape[-1] * data.shape[-2])
        self.manifest.append(f"{name} opens {data.shape[-1]} {data.shape[-2]} {frames} {PIXEL_TYPES[kind]} "
                             f'{int(swapped)} "{details}" "{software}"')

    def add_refused(self, name, data):
        self.write(name, data)
        self.manifest.append(f"{name} refused")

    def finish(self):
        with open(os.path.join(self.path, "manifest"), "w", encoding="ascii") as manifest:
            manifest.write("\n".join(self.manifest) + "\n")


def main():
    folder = Folder(sys.argv[1])

    for kind in MODES:
        folder.add(f"{kind}_image.mrc", noise(kind, 13, 17))
        folder.add(f"{kind}_stack.mrc", noise(kind, 4, 9, 12), stack=True)
        folder.add(f"{kind}_volume.mrc", noise(kind, 5, 7, 6))
        folder.add(f"{kind}_volume_stack.mrc", noise(kind, 2, 3, 6, 5))
        folder.add(f"{kind}_extended.mrc", noise(kind, 3, 8, 10), extended=bytes(range(256)) * 3,
                   extended_type=b"SERI")
        folder.add(f"{kind}_older.mrc", noise(kind, 2, 11, 15), version=0)
        if kind != "int8":
            swapped = np.dtype(kind).newbyteorder(">")
            folder.add(f"{kind}_swapped_image.mrc", noise(kind, 13, 17).astype(swapped))
            folder.add(f"{kind}_swapped_stack.mrc", noise(kind, 4, 9, 12).astype(swapped), stack=True,
                       extended=bytes(512), extended_type=b"SERI")

    # Bytes are stored as 16-bit numbers.
    folder.add("bytes_as_uint16.mrc", noise("uint8", 10, 14).astype("uint16"))
    # Positive whole numbers of a camera, which are not spread over the whole range of their type.
    folder.add("counts.mrc", random.poisson(40, (3, 24, 32)).astype("int16"), version=20140)
    folder.add("signed_bytes.mrc", random.randint(-60, 60, (3, 24, 32)).astype("int8"), version=0)
    # More sections than a short main header is expected to have, and exactly as many.
    folder.add("1024_sections.mrc", noise("uint16", 1024, 3, 4), stack=True)
    folder.add("1025_sections.mrc", noise("uint16", 1025, 3, 4), stack=True)
    folder.add("1500_sections_extended.mrc", noise("int16", 1500, 3, 4), stack=True, extended=bytes(2048),
               extended_type=b"MRCO")

    folder.add("tilt_series.mrc", noise("int16", 3, 8, 8), stack=True, software="Tomography 5.2",
               extended=acquisition_header(7, b"TAV Tomography", b"5.2"), extended_type=b"TAV1")
    folder.add("named_swapped.mrc", noise(">i2", 3, 8, 8), stack=True, software="Some Program",
               extended=acquisition_header(1, b"Some Program", b"9"), extended_type=b"TAV2")

    complex_data = (noise("float32", 6, 8) + 1j * noise("float32", 6, 8)).astype("complex64")
    folder.add_refused("complex_image.mrc", complex_data)
    folder.add_refused("complex_swapped_image.mrc", complex_data.astype(">c8"))

    folder.finish()


if __name__ == "__main__":
    main()
