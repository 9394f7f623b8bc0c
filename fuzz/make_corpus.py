#!/usr/bin/python3
"""Writes the seeds in fuzz/corpus: small files of every kind that a reader tells apart.

usage: make_corpus.py [FOLDER]
"""

import os
import struct
import sys

from hdf_corpus import hdf_files

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


def dm_word(version, number):
    """A size, a count or a type code: 4 bytes in version 3, 8 bytes in version 4."""
    return struct.pack(">I" if version == 3 else ">Q", number)


def dm_entry(version, kind, label, contents):
    size = b"" if version == 3 else dm_word(version, len(contents))
    return struct.pack(">BH", kind, len(label)) + label + size + contents


def dm_group(version, *entries):
    return bytes((1, 0)) + dm_word(version, len(entries)) + b"".join(entries)


def dm_data(version, label, words, value):
    """A data tag: `words` are the type and what describes it."""
    info = b"".join(dm_word(version, word) for word in words)
    return dm_entry(version, 21, label, b"%%%%" + dm_word(version, len(words)) + info + value)


def dm_number(version, label, number):
    return dm_data(version, label, (5,), struct.pack("<I", number))


def dm_image(version, data_type, dimensions, element_type, count, samples):
    sizes = [dm_number(version, b"", number) for number in dimensions]
    image_data = dm_group(version,
                          dm_data(version, b"Data", (20, element_type, count), samples),
                          dm_number(version, b"DataType", data_type),
                          dm_entry(version, 20, b"Dimensions", dm_group(version, *sizes)))
    return dm_entry(version, 20, b"", dm_group(version, dm_entry(version, 20, b"ImageData", image_data)))


def dm(version, *entries):
    root = dm_group(version, *entries)
    return struct.pack(">I", version) + dm_word(version, len(root)) + struct.pack(">I", 1) + root + bytes(8)


def dm_files():
    # This many elements of four bytes wrap to 0 bytes in 32 bits, so `few + 12` elements take 48 bytes. Readers look
    # for arrays of many elements, and a seed should be small.
    few = 0x40000000
    # Data type, type of the array's elements
    types = {"int16": (1, 2), "float32": (2, 6), "uint8": (6, 10), "int32": (7, 3), "int8": (9, 9),
             "uint16": (10, 4), "uint32": (11, 5), "rgba": (23, 3), "complex": (3, 15)}
    for version in (3, 4):
        def image(name, *dimensions, version=version):
            return dm_image(version, types[name][0], dimensions, 5, few + 12, ramp(48))
        for name in types:
            yield f"dm{version}_{name}", dm(version, image(name, 4, 3))
        yield f"dm{version}_thumbnail", dm(version, image("rgba", 3, 2), image("int16", 4, 3))
        yield f"dm{version}_late_thumbnail", dm(version, image("uint8", 3, 2), image("rgba", 4, 3))
        yield f"dm{version}_stack", dm(version, image("rgba", 3, 2), image("uint16", 4, 2, 3))
        yield f"dm{version}_plain_array", dm(version, dm_image(version, 6, (125, 80), 10, 10000, ramp(10000)))
        yield f"dm{version}_values", dm(
            version,
            *(dm_data(version, b"value", (kind,), ramp(size))
              for kind, size in ((0, 0), (2, 2), (3, 4), (4, 2), (5, 4), (6, 4), (7, 8), (8, 1), (9, 1), (10, 1),
                                 (11, 8), (12, 8))),
            dm_data(version, b"string", (18, 3), ramp(6)),
            dm_data(version, b"struct", (15, 0, 3, 0, 2, 0, 7, 0, 10), ramp(11)),
            dm_data(version, b"array", (20, 4, 5), ramp(10)),
            dm_data(version, b"structs", (20, 15, 0, 2, 0, 3, 0, 8, 4), ramp(20)),
            dm_entry(version, 20, b"group", dm_group(version, dm_number(version, b"inner", 7))),
            image("float32", 2, 2))


def ser(version, *elements):
    """A series: each element is a data type, its size and its samples."""
    offset = "<I" if version == 0x0210 else "<Q"
    array_at = 22 + struct.calcsize(offset)
    place = array_at + len(elements) * struct.calcsize(offset)
    offsets = b""
    content = b""
    for data_type, width, height, samples in elements:
        offsets += struct.pack(offset, place + len(content))
        content += bytes(40) + struct.pack("<HII", data_type, width, height) + samples
    header = struct.pack("<HHHIIII", 0x4949, 0x0197, version, 0x4122, 0x4152, len(elements), len(elements))
    return header + struct.pack(offset, array_at) + offsets + content


def ser_files():
    sample_bytes = {1: 1, 2: 2, 3: 4, 4: 1, 5: 2, 6: 4, 7: 4, 8: 8, 9: 8, 10: 16, 11: 2}
    for data_type, size in sample_bytes.items():
        yield f"ser_type{data_type}", ser(0x0220, (data_type, 4, 3, ramp(12 * size)))
    yield "ser_short_offsets", ser(0x0210, (2, 4, 3, ramp(24)), (2, 4, 3, ramp(24)))
    yield "ser_series", ser(0x0211, *((7, 2, 2, ramp(16)) for _ in range(3)))


def emi_item(kind, identifier, contents=b""):
    return struct.pack("<HH", kind, identifier) + contents


def emi_sized(kind, identifier, contents):
    return emi_item(kind, identifier, struct.pack("<I", len(contents)) + contents)


def emi_array(kind, width, height, samples):
    return emi_sized(kind, 1, struct.pack("<4H", width, 0, height, 0) + samples)


def emi(*items):
    return struct.pack("<HHI", 0x4B4A, 0x0200, 0) + b"".join(items)


def emi_files():
    sample_bytes = {0x2200: 1, 0x2202: 1, 0x2204: 2, 0x2206: 2, 0x2208: 4, 0x220A: 4, 0x220C: 4, 0x220E: 8,
                    0x2212: 16, 0x2214: 8}
    arrays = {kind: emi_array(kind, 8, 6, ramp(48 * size)) for kind, size in sample_bytes.items()}
    for kind, array in arrays.items():
        yield f"emi_array_{kind:x}", emi(array, emi_item(0x1000, 1))
    fixed = {16: 1, 32: 1, 112: 1, 48: 2, 50: 2, 49: 4, 51: 4, 64: 4, 65: 8, 52: 8}
    yield "emi_items", emi(bytes(2), *(emi_item(kind, 7, ramp(size)) for kind, size in fixed.items()),
                           emi_sized(96, 1810, b"4.3.0.123"), emi_sized(96, 1, b"text"),
                           emi_sized(0x2216, 1, ramp(5)), emi_item(0x1000, 1), arrays[0x2206])
    yield "emi_images", emi(*arrays.values())


def npy(descr, shape, samples, header_bytes=246):
    text = "{'descr': '%s', 'fortran_order': False, 'shape': %s, }" % (descr, shape)
    header = text.encode().ljust(header_bytes)
    return b"\x93NUMPY\1\0" + struct.pack("<H", len(header)) + header + samples


def npy_files():
    sample_bytes = {"|u1": 1, "<u2": 2, "<u4": 4, "|i1": 1, "<i2": 2, ">i4": 4, "<f4": 4, "<f8": 8, "<c8": 8,
                    "<c16": 16, "<f2": 2}
    for descr, size in sample_bytes.items():
        yield f"npy_{descr[1:]}", npy(descr, "(3, 4)", ramp(12 * size))
    yield "npy_colours", npy("|u1", "(2, 4, 3)", ramp(24))
    yield "npy_stack", npy("<u2", "(3, 2, 4)", ramp(48))
    yield "npy_frames_last", npy("<u2", "(4L, 4L, 3L)", ramp(96))
    yield "npy_one_dimension", npy("<u2", "(5,)", ramp(10))
    yield "npy_short_header", npy("<u2", "(16, 16)", ramp(512), 118)


def raw(width, height, bits, kind, samples, *, gap=0, strides=(0, 0)):
    words = (0, width, height, 0, bits, kind, gap, *strides)
    return b"TAV RawImage\0" + struct.pack("<9I", *words) + bytes(gap) + samples


def raw_files():
    for kind, bits in ((0, 8), (0, 16), (0, 32), (1, 8), (1, 16), (1, 32), (2, 32), (2, 64), (3, 24), (1, 64)):
        yield f"raw_kind{kind}_{bits}", raw(8, 3, bits, kind, ramp(24 * bits // 8))
    yield "raw_wrong_bits", raw(4, 3, 12, 0, ramp(24))
    yield "raw_gap", raw(4, 3, 16, 0, ramp(24), gap=9)
    yield "raw_strides", raw(4, 3, 8, 0, ramp(40), strides=(2, 12))
    yield "raw_columns", raw(4, 3, 16, 0, ramp(24), strides=(6, 2))


def bin_files():
    for code, size in {1: 1, 2: 2, 3: 4, 4: 1, 5: 2, 6: 4, 7: 4, 8: 8}.items():
        samples = ramp(64 * size)
        yield f"bin_type{code}", struct.pack("<HII", code, 8, 8) + samples
        yield f"bin_type{code}_long_header", struct.pack("<HIII", code, 8, 8, 20) + bytes(6) + samples


def lattice(magic, size, kind, samples, *, block=b"", data="@1", end=b"\n"):
    lines = (magic, b"define Lattice %d %d %d" % size, block, b"Lattice { %s Data } %s" % (kind, data.encode()),
             b"# Data section follows", b"@1", b"")
    return end.join(lines) + samples


def lattice_files():
    vorna = b"# Vorna BINARY 1.0"
    pelix = b"# PelixMesh BINARY-LITTLE-ENDIAN 2.1"
    block = b'Parameters {\n    Units { Coordinates "nm" }\n    Content "4x3x5 ushort",\n    Name value\n}'
    sample_bytes = {b"byte": 1, b"ushort": 2, b"short": 2, b"int": 4, b"float": 4, b"double": 8, b"word": 1}
    for kind, size in sample_bytes.items():
        yield f"lattice_{kind.decode()}", lattice(pelix, (4, 3, 2), kind, ramp(24 * size))
    yield "lattice_volume", lattice(vorna, (4, 3, 5), b"ushort", ramp(120), block=block)
    yield "lattice_compressed", lattice(vorna, (4, 3, 1), b"byte", ramp(12), data="@1(HxByteRLE,10)")
    yield "lattice_line_ends", lattice(vorna, (4, 3, 1), b"byte", ramp(13), end=b"\r\n")


def other_headers():
    """First bytes of formats that are refused or have no reader."""
    starts = {
        "emf": struct.pack("<10I4s", 1, 88, 1, 0, 1, 1, 0, 0, 0, 0, b" EMF"),
        "bitmap": b"BM",
        "jpeg": b"\xff\xd8\xff\xe0",
        "tiff_little": b"II*\0",
        "tiff_big": b"MM\0*",
    }
    for name, start in starts.items():
        yield name, start.ljust(96, b"\0")


def json_texts():
    """A key, and on the next lines the members among which it is looked up."""
    yield "json_members", b'version\n{\n  "format": "Series",\n  "Version": "1.2-beta",\n  "list": ["a", "b"]\n}\n'
    yield "json_one_line", b'a\n{"a": "b"}'


def main():
    corpus = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "corpus")
    kinds = {"mrc": mrc_files, "dm": dm_files, "ser": ser_files, "emi": emi_files, "npy": npy_files, "raw": raw_files,
             "bin": bin_files, "lattice": lattice_files, "hdf": hdf_files, "identification": other_headers,
             "json": json_texts}
    for kind, files in kinds.items():
        folder = os.path.join(corpus, kind)
        os.makedirs(folder, exist_ok=True)
        for name, content in files():
            with open(os.path.join(folder, name), "wb") as seed:
                seed.write(content)


if __name__ == "__main__":
    main()
