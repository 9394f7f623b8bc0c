#!/usr/bin/python3
"""Writes the seeds in fuzz/corpus: small files of every kind that a reader tells apart.

usage: make_corpus.py [FOLDER]
"""

import os
import struct
import sys

SERIALEM_LABEL = b"SerialEM: Acquired on a camera, 4 bits packed"


def acquisition_header(mask, name, version=b""):
    header = bytearray(128)
    struct.pack_into("<I", header, 8, mask)
    struct.pack_into("16s16s", header, 52, name, version)
    return bytes(header)


def mrc(columns, rows, sections, mode, samples, *, order="<", version=0, labels=b"", extended_type=b"",
        extended=b"", header_bytes=1024):
    header = bytearray(header_bytes)
    struct.pack_into(order + "4I", header, 0, columns, rows, sections, mode)
    struct.pack_into(order + "I", header, 92, len(extended))
    struct.pack_into("4s", header, 104, extended_type)
    struct.pack_into(order + "I", header, 108, version)
    struct.pack_into("4s", header, 208, b"MAP ")
    struct.pack_into("800s", header, 224, labels)
    return bytes(header) + extended + samples


def ramp(count):
    return bytes((37 * i) % 256 for i in range(count))


def mrc_files():
    sample_bytes = {0: 1, 1: 2, 2: 4, 6: 2, 12: 2, 16: 3}
    for mode, size in sample_bytes.items():
        yield f"mrc_mode{mode}", mrc(4, 3, 2, mode, ramp(24 * size))
        yield f"mrc_mode{mode}_swapped", mrc(4, 3, 2, mode, ramp(24 * size), order=">", version=20140)
    yield "mrc_mode101", mrc(4, 3, 2, 101, ramp(12))
    yield "mrc_packed", mrc(3, 2, 2, 0, ramp(12), labels=SERIALEM_LABEL)
    yield "mrc_packed_swapped", mrc(3, 2, 2, 0, ramp(12), order=">", version=20141, labels=SERIALEM_LABEL)
    yield "mrc_unsigned_bytes", mrc(4, 2, 1, 0, bytes((0, 0, 0, 200, 250, 255, 3, 7)))
    yield "mrc_2014", mrc(3, 2, 1, 0, ramp(6), version=20140)
    yield "mrc_named", mrc(2, 2, 1, 1, ramp(8), version=20140, extended_type=b"TAV1",
                           extended=acquisition_header(7, b"TAV Tomography", b"5.2"))
    yield "mrc_named_otherwise", mrc(2, 2, 1, 6, ramp(8), extended_type=b"TAV2",
                                     extended=acquisition_header(1, b"Sixteen letters!"))
    yield "mrc_unknown_count", mrc(2, 2, 0, 6, ramp(36))
    yield "mrc_less_frames", mrc(2, 2, 9, 6, ramp(20))
    yield "mrc_long_stack_short_header", mrc(2, 2, 1100, 1, ramp(8800))
    yield "mrc_long_stack_long_header", mrc(2, 1, 1100, 0, ramp(2200), header_bytes=8192)
    yield "mrc_wrapped_frame_size", mrc(54161, 19825, 1, 2, ramp(8))
    yield "mrc_cut_in_header", mrc(1, 1, 1, 0, b"")[:128]
    yield "mrc_complex", mrc(4, 3, 1, 4, ramp(96))


def other_headers():
    """First bytes of the other formats, known and refused ones."""
    starts = {
        "dm3": b"\0\0\0\3\0\0\1\0\0\0\0\1\0\1\0\0\0\0",
        "dm4": b"\0\0\0\4\0\0\0\0\0\0\1\0\0\0\0\1\0\1",
        "ser": b"II\x97\x01\x20\x02\x22\x41",
        "emi": b"JK\0\x02",
        "hdf": b"\x89HDF\r\n\x1a\n",
        "npy": b"\x93NUMPY\1\0v\0{'descr': '<u2', 'fortran_order': False, 'shape': (4, 4), }\n",
        "raw": b"TAV RawImage\0",
        "bin": struct.pack("<HII", 3, 4, 4),
        "pelix": b"# PelixMesh BINARY-LITTLE-ENDIAN 2.1\n",
        "vorna": b"# Vorna BINARY\n",
        "emf": struct.pack("<10I4s", 1, 88, 1, 0, 1, 1, 0, 0, 0, 0, b" EMF"),
        "bitmap": b"BM",
        "jpeg": b"\xff\xd8\xff\xe0",
        "tiff_little": b"II*\0",
        "tiff_big": b"MM\0*",
    }
    for name, start in starts.items():
        yield name, start.ljust(96, b"\0")


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "corpus")
    os.makedirs(folder, exist_ok=True)
    for name, content in [*mrc_files(), *other_headers()]:
        with open(os.path.join(folder, name), "wb") as seed:
            seed.write(content)


if __name__ == "__main__":
    main()
