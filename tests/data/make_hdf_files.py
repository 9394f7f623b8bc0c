#!/usr/bin/python3
"""Writes HDF5 files with h5py, for tests of a reader that shares no code with it.

usage: make_hdf_files.py FOLDER

The manifest has one line for each file that is refused, and one for each frame of the others that is worth
a look:

    NAME refused "MESSAGE" "LINE"...
    NAME opens WIDTH HEIGHT FRAMES PIXEL-TYPE FRAME OFFSET "MESSAGE" "DETAILS" "SOFTWARE" FOUND "LINE"...

The samples of the frame stand in NAME.raw from OFFSET on, unless there is a MESSAGE in their place. FOUND is
the number of frames before the list is cut to 250, or 0. Each LINE tells of a dataset that is passed over.
"""

import os
import sys

import h5py
import numpy as np

from hdf_chosen_files import add_cut, add_damaged, add_groups, add_links, add_texts, add_thumbnails
from hdf_writer import (
    PIXEL_TYPES, UNREADABLE, Folder, Frame, allocate, colours, gray, put, put_as, series, set_text,
)
from noise import noise, random

SERIES = "Skipped not supported image series"
SIZE = "Skipped image series with invalid data size"
SCAN_LINES = "Skipped image with not supported scan-line interlacing"
INTERLACE = "Skipped image with unknown interlace format"
PALETTE = "Skipped image with color palette"
NOT_READ = "Could not read the image data"
NOT_A_FRAME = "Could not read the first frame of the series"


def add_types(folder):
    for kind in PIXEL_TYPES:
        for order, byte_order in (("little", "<"), ("big", ">")):
            stored = np.dtype(kind).newbyteorder(byte_order)
            name = f"{kind}_{order}.h5"
            image = noise(kind, 40, 50)
            with folder.new(name) as file:
                put(file, "image", image.astype(stored))
            folder.opens(name, [gray(image)])

            name = f"{kind}_{order}_series.h5"
            frames = noise(kind, 33, 35, 4)
            with folder.new(name) as file:
                put(file, "stack/image/Data", frames.astype(stored))
            folder.opens(name, series(frames))

            # Only a dataset that is called Data is a series.
            name = f"{kind}_{order}_unnamed_series.h5"
            with folder.new(name) as file:
                put(file, "stack/image/data", frames.astype(stored))
            folder.refused(name, [SERIES])


def add_unlisted_types(folder):
    unlisted = [
        "int64", "uint64", "bool", "complex64", "complex128", "S4", "V3", "longdouble", [("x", "<u2"), ("y", "<u2")],
        h5py.enum_dtype({"OFF": 0, "ON": 1}, basetype="u1"), np.dtype(("<u2", (3,))), h5py.ref_dtype,
        h5py.string_dtype("ascii"), h5py.vlen_dtype("u2"),
    ]
    for number, kind in enumerate(unlisted):
        name = f"type_{number}.h5"
        with folder.new(name) as file:
            allocate(file, "image", h5py.h5t.py_create(np.dtype(kind), logical=True), (40, 50))
        folder.refused(name)

    with folder.new("bit_field.h5") as file:
        allocate(file, "image", h5py.h5t.STD_B8LE, (40, 50))
    folder.refused("bit_field.h5")


def add_odd_types(folder):
    """Types that are read as a wider or narrower one, while the frames are counted by the size of that one."""
    halves = noise("float16", 32, 34, 4)
    shown = halves.astype("float32")
    with folder.new("half_image.h5") as file:
        put(file, "image", halves[:, :, 0])
    folder.refused("half_image.h5", [SIZE])
    with folder.new("half_series_of_2.h5") as file:
        put(file, "image/Data", halves[:, :, :2])
    folder.opens("half_series_of_2.h5", [gray(shown[:, :, 0], NOT_READ)])
    with folder.new("half_series_of_3.h5") as file:
        put(file, "image/Data", halves[:, :, :3])
    folder.refused("half_series_of_3.h5", [SIZE])
    with folder.new("half_series_of_4.h5") as file:
        put(file, "image/Data", halves)
    folder.opens("half_series_of_4.h5", series(shown, 2))

    codes = random.randint(0, 4096, (36, 40)).astype("uint16")
    twelve_bits = h5py.h5t.STD_U16LE.copy()
    twelve_bits.set_precision(12)
    with folder.new("twelve_bits.h5") as file:
        put_as(file, "image", twelve_bits, codes)
    folder.opens("twelve_bits.h5", [gray(codes)])

    long_codes = random.randint(0, 1 << 24, (36, 40, 4)).astype("uint32")
    three_bytes = h5py.h5t.STD_U32LE.copy()
    three_bytes.set_precision(24)
    three_bytes.set_size(3)
    with folder.new("three_bytes.h5") as file:
        put_as(file, "image", three_bytes, np.ascontiguousarray(long_codes[:, :, 0]))
    folder.refused("three_bytes.h5", [SIZE])
    with folder.new("three_bytes_series.h5") as file:
        put_as(file.create_group("image"), "Data", three_bytes, long_codes)
    folder.opens("three_bytes_series.h5", series(long_codes, 3))

    eight_bytes = h5py.h5t.STD_I64LE.copy()
    eight_bytes.set_precision(32)
    pairs = random.randint(-(1 << 23), 1 << 23, (36, 40, 2)).astype("int32")
    with folder.new("eight_bytes_series.h5") as file:
        put_as(file.create_group("image"), "Data", eight_bytes, pairs)
    beyond = gray(pairs[:, :, 0], NOT_A_FRAME)
    folder.opens("eight_bytes_series.h5", [*series(pairs), beyond, beyond])


def add_classes(folder):
    image = noise("uint16", 36, 40)
    # The name of the class may stop early or go on.
    for number, text in enumerate(("IMAGE", "IMA", "IMAGES", "")):
        name = f"class_{number}.h5"
        with folder.new(name) as file:
            put(file, "picture", image, image_class=text)
        folder.opens(name, [gray(image)])
    for number, text in enumerate(("image", "PALETTE", "IMACE")):
        name = f"no_class_{number}.h5"
        with folder.new(name) as file:
            put(file, "picture", image, image_class=text)
        folder.refused(name)
    for padding in (h5py.h5t.STR_NULLPAD, h5py.h5t.STR_SPACEPAD):
        name = f"class_padding_{padding}.h5"
        with folder.new(name) as file:
            set_text(put(file, "picture", image), "CLASS", "IMAGE", padding)
        folder.refused(name)
    with folder.new("class_of_any_length.h5") as file:
        put(file, "picture", image).attrs["CLASS"] = "IMAGE"
    folder.refused("class_of_any_length.h5")
    with folder.new("class_number.h5") as file:
        put(file, "picture", image).attrs["CLASS"] = 5
    folder.refused("class_number.h5")
    with folder.new("no_class.h5") as file:
        put(file, "picture", image)
    folder.refused("no_class.h5")

    for number, path in enumerate(("IMAGE", "MyImages/one", "a/iMaGe1/b", "preimaged")):
        name = f"path_{number}.h5"
        with folder.new(name) as file:
            put(file, path, image)
        folder.opens(name, [gray(image)])


def add_interlaces(folder):
    def opens(name, data, interlace, frames, path="image"):
        with folder.new(name) as file:
            put(file, path, data, image_class="IMAGE", interlace=interlace)
        folder.opens(name, frames)

    def refused(name, data, interlace, line):
        with folder.new(name) as file:
            put(file, "image", data, image_class="IMAGE", interlace=interlace)
        folder.refused(name, [line] if line else [])

    picture = noise("uint8", 36, 44, 3)
    planes = np.ascontiguousarray(np.moveaxis(picture, 2, 0))
    opens("colours_by_pixel.h5", picture, "INTERLACE_PIXEL", [colours(picture)])
    opens("colours_by_plane.h5", planes, "INTERLACE_PLANE", [colours(picture)])
    refused("colours_by_line.h5", np.ascontiguousarray(np.moveaxis(picture, 2, 1)), "INTERLACE_LINE", SCAN_LINES)
    refused("small_colours_by_line.h5", picture[:8, :3, :3], "INTERLACE_LINE", SCAN_LINES)
    refused("colours_by_tile.h5", picture, "INTERLACE_TILE", INTERLACE)
    refused("colours_in_small_letters.h5", picture, "interlace_pixel", INTERLACE)
    refused("colours_of_more_words.h5", picture, "INTERLACE_PIXEL ", INTERLACE)
    # Without the attribute the colours are frames.
    refused("colours_without_interlace.h5", picture, None, SERIES)
    opens("colours_called_data.h5", picture, None, series(picture), "image/Data")
    opens("colours_with_empty_interlace.h5", picture, "", series(picture), "image/Data")
    with folder.new("colours_padded.h5") as file:
        set_text(put(file, "image", picture), "INTERLACE_MODE", "INTERLACE_PIXEL", h5py.h5t.STR_NULLPAD)
    folder.opens("colours_padded.h5", [colours(picture)])
    for name, value in (("text_of_any_length.h5", "INTERLACE_PIXEL"), ("number_for_text.h5", 1)):
        with folder.new("interlace_" + name) as file:
            put(file, "image", picture).attrs["INTERLACE_MODE"] = value
        folder.refused("interlace_" + name)

    # Twice the space that three planes need gives the picture twice.
    with folder.new("colours_with_room.h5") as file:
        put(file, "image", planes, interlace="INTERLACE_PLANE", maxshape=(None, 36, 44), chunks=(6, 36, 44))
    folder.opens("colours_with_room.h5", [colours(picture)] * 2)
    with folder.new("pixels_with_room.h5") as file:
        put(file, "image", picture, interlace="INTERLACE_PIXEL", maxshape=(None, 44, 3), chunks=(72, 44, 3))
    folder.refused("pixels_with_room.h5", [SERIES])

    refused("four_colours_by_pixel.h5", noise("uint8", 36, 44, 4), "INTERLACE_PIXEL", SERIES)
    four = Frame(44, 36, "UInt8", message=UNREADABLE)
    opens("four_colours_by_plane.h5", noise("uint8", 4, 36, 44), "INTERLACE_PLANE", [four] * 4)
    refused("signed_colours_by_pixel.h5", noise("int8", 36, 44, 3), "INTERLACE_PIXEL", SERIES)

    deep = noise("uint16", 36, 44, 3)
    refused("deep_colours_by_pixel.h5", deep, "INTERLACE_PIXEL", SERIES)
    # Frames are looked for in the last dimension, whichever the planes are in.
    no_plane = gray(deep[:, :, 0], NOT_A_FRAME)
    opens("deep_colours_by_plane.h5", np.ascontiguousarray(np.moveaxis(deep, 2, 0)), "INTERLACE_PLANE", [no_plane] * 3)
    cube = noise("int16", 36, 36, 36)
    opens("cube_by_plane.h5", cube, "INTERLACE_PLANE", series(cube))
    one = noise("float32", 1, 36, 44)
    opens("one_plane.h5", one, "INTERLACE_PLANE", [gray(one[0])])
    opens("one_pixel_plane.h5", one.reshape(36, 44, 1), "INTERLACE_PIXEL", [gray(one[0])])
    opens("flat_by_pixel.h5", one[0], "INTERLACE_PIXEL", [gray(one[0])])
    opens("one_frame.h5", one.reshape(36, 44, 1), None, [gray(one[0])])


def add_palettes(folder):
    indexes = noise("uint8", 36, 40)

    def write(name, data, value, dtype=None, interlace=None):
        with folder.new(name) as file:
            palette = put(file, "images/palette", noise("uint8", 256, 3), image_class="PALETTE")
            set_text(palette, "PAL_TYPE", "STANDARD8")
            image = put(file, "images/indexed", data, image_class="IMAGE", interlace=interlace)
            reference = palette.ref if value is None else [palette.ref] * 2 if value == 2 else value
            image.attrs.create("PALETTE", reference, dtype=dtype)

    write("palette.h5", indexes, None, h5py.ref_dtype)
    folder.refused("palette.h5", [PALETTE])
    write("two_palettes.h5", indexes, 2, h5py.ref_dtype)
    folder.refused("two_palettes.h5", [PALETTE])
    write("small_with_palette.h5", indexes[:9, :9], None, h5py.ref_dtype)
    folder.refused("small_with_palette.h5", [PALETTE])
    write("lines_with_palette.h5", indexes, None, h5py.ref_dtype, "INTERLACE_LINE")
    folder.refused("lines_with_palette.h5", [SCAN_LINES])
    # A word is no palette.
    write("palette_by_name.h5", indexes, "gray")
    folder.opens("palette_by_name.h5", [gray(indexes)])


def add_sides(folder):
    for height, width, fits in (
        (31, 100, False), (100, 31, False), (32, 32, True), (32, 8192, True), (8192, 32, True),
        (32, 8193, False), (8193, 32, False), (1, 1, False),
    ):
        name = f"{width}_by_{height}.h5"
        image = noise("int16", height, width)
        with folder.new(name) as file:
            put(file, "image", image)
        if fits:
            folder.opens(name, [gray(image)])
        else:
            folder.refused(name)
    shapes = {"number.h5": (), "row.h5": (4096,), "four_dimensions.h5": (40, 40, 2, 2), "nothing.h5": (0, 40)}
    for name, shape in shapes.items():
        with folder.new(name) as file:
            put(file, "image", noise("int16", *shape))
        folder.refused(name)


def add_storage(folder):
    """What a dataset takes up in the file tells how many frames it has."""
    image = noise("uint16", 64, 96)

    def write(name, data, path="image", **options):
        with folder.new(name) as file:
            put(file, path, data, **options)

    write("whole_chunks.h5", image, chunks=(32, 32))
    folder.opens("whole_chunks.h5", [gray(image)])
    write("shuffled.h5", image, chunks=(32, 32), shuffle=True)
    folder.opens("shuffled.h5", [gray(image)])
    write("checked.h5", image, chunks=(32, 32), fletcher32=True)
    folder.refused("checked.h5", [SIZE])
    # 2 x 3 chunks of 40 x 40.
    write("cut_chunks.h5", image, chunks=(40, 40))
    folder.refused("cut_chunks.h5", [SIZE])
    write("compressed.h5", random.poisson(9, (64, 96)).astype("uint16"), chunks=(64, 96), compression="gzip")
    folder.refused("compressed.h5", [SIZE])
    # What cannot become shorter grows by the bytes that say so.
    write("incompressible.h5", image, chunks=(64, 96), compression="gzip")
    folder.refused("incompressible.h5", [SIZE])
    write("room_for_two.h5", image, maxshape=(None, 96), chunks=(128, 96))
    folder.refused("room_for_two.h5", [SERIES])
    write("data_with_room_for_two.h5", image, "image/Data", maxshape=(None, 96), chunks=(128, 96))
    folder.opens("data_with_room_for_two.h5", [gray(image)] * 2)
    frames = noise("float32", 40, 44, 6)
    write("chunked_series.h5", frames, "image/Data", chunks=(40, 44, 1))
    folder.opens("chunked_series.h5", series(frames))
    write("tiled_series.h5", frames, "image/Data", chunks=(20, 22, 3))
    folder.opens("tiled_series.h5", series(frames))

    with folder.new("never_written.h5") as file:
        file.create_dataset("image", shape=(64, 96), dtype="uint16", track_times=False)
        file.create_dataset("images/Data", shape=(64, 96, 2), dtype="uint16", chunks=(64, 96, 1), track_times=False)
    folder.refused("never_written.h5")
    with folder.new("never_written_beside_images.h5") as file:
        put(file, "image/1", image[:40])
        put(file, "image/2", image)
        file.create_dataset("image/3", shape=(99, 96), dtype="uint16", track_times=False)
    folder.opens("never_written_beside_images.h5", [gray(image), gray(image[:40])])
    with folder.new("half_written.h5") as file:
        dataset = file.create_dataset("image", shape=(64, 96), dtype="uint16", chunks=(16, 96), track_times=False)
        dataset[:32] = image[:32]
    folder.refused("half_written.h5", [SIZE])
    for written in (1, 2):
        name = f"{written}_of_6_written.h5"
        with folder.new(name) as file:
            dataset = file.create_dataset(
                "image/Data", shape=frames.shape, dtype="float32", chunks=(40, 44, 1), track_times=False)
            dataset[:, :, :written] = frames[:, :, :written]
        folder.opens(name, series(frames, 2) if written == 2 else [gray(frames[:, :, 0], NOT_READ)])

    with folder.new("compact.h5") as file:
        creation = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        creation.set_obj_track_times(False)
        creation.set_layout(h5py.h5d.COMPACT)
        space = h5py.h5s.create_simple(image.shape)
        dataset = h5py.h5d.create(file.id, b"image", h5py.h5t.STD_U16LE, space, creation)
        dataset.write(h5py.h5s.ALL, h5py.h5s.ALL, image)
    folder.opens("compact.h5", [gray(image)])
    with folder.new("allocated_only.h5") as file:
        allocate(file, "image", h5py.h5t.STD_U16LE, image.shape)
    folder.opens("allocated_only.h5", [gray(np.zeros_like(image))])
    with folder.new("latest.h5", is_latest=True) as file:
        put(file, "image", image, image_class="IMAGE")
    folder.opens("latest.h5", [gray(image)])

    # Each of these has another index of its chunks; the first has none.
    with folder.new("chunks_in_a_row.h5", is_latest=True) as file:
        dataset = allocate(file, "image", h5py.h5t.STD_U16LE, image.shape, chunks=(16, 12))
        dataset.write(h5py.h5s.ALL, h5py.h5s.ALL, image)
    folder.opens("chunks_in_a_row.h5", [gray(image)])
    growing = {"array": None, "growing_array": (None, 96), "tree": (None, None)}
    for index, largest in growing.items():
        with folder.new(f"chunks_in_a_{index}.h5", is_latest=True) as file:
            put(file, "image", image, chunks=(16, 12), maxshape=largest)
        folder.opens(f"chunks_in_a_{index}.h5", [gray(image)])


def add_values(folder):
    """Samples whose range decides how they are shown; alone and as two frames of a series."""
    below_zero = -np.exp(noise("float32", 48, 52) % 9)
    not_finite = noise("float32", 48, 52)
    not_finite[::7, ::5] = np.nan
    infinite = noise("float32", 48, 52)
    infinite[3, 4] = np.inf
    infinite[5, 6] = -np.inf
    counts = random.poisson(30, (48, 52))
    counts[2, 3] = 65535

    def spread(dtype, first, last):
        samples = random.randint(first, last + 1, (48, 52), dtype="int64")
        samples[0, :2] = first, last
        return samples.astype(dtype)

    values = {
        "floats_below_zero": below_zero,
        "floats_with_nan": not_finite,
        "only_nan": np.full((48, 52), np.nan, "float32"),
        "infinities": infinite,
        "small_floats": noise("float32", 48, 52) * np.float32(1e-30),
        "equal_floats": np.full((48, 52), 3.5, "float32"),
        "counts": counts.astype("uint16"),
        "equal_counts": np.full((48, 52), 77, "uint16"),
        "shorts_around_zero": spread("int16", -300, 200),
        "shorts_below_zero": spread("int16", -32768, -32000),
        "all_shorts": spread("int16", -32768, 32767),
        "narrow_ints": spread("int32", -100000, 162143),
        "wide_ints": spread("int32", -100000, 162144),
        "all_ints": spread("int32", -2147483648, 2147483647),
        "narrow_counts": spread("uint32", 4000000000, 4000262143),
        "wide_counts": spread("uint32", 4000000000, 4000262144),
        "all_counts": spread("uint32", 0, 4294967295),
    }
    for name, samples in values.items():
        with folder.new(f"{name}.h5") as file:
            put(file, "image", samples)
        folder.opens(f"{name}.h5", [gray(samples)])
        frames = np.stack([samples, samples[::-1]], axis=2)
        with folder.new(f"{name}_series.h5") as file:
            put(file, "data/image/1/Data", frames)
        folder.opens(f"{name}_series.h5", series(frames))


def main():
    folder = Folder(os.path.abspath(sys.argv[1]))
    for add in (
        add_types, add_unlisted_types, add_odd_types, add_classes, add_interlaces, add_palettes, add_sides,
        add_storage, add_values, add_groups, add_cut, add_links, add_texts, add_thumbnails, add_damaged,
    ):
        add(folder)
    folder.finish()


if __name__ == "__main__":
    main()
