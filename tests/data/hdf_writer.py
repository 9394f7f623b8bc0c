"""What the files that make_hdf_files.py writes are made of, and the manifest that tells what is in them."""

import os
import struct
from typing import NamedTuple

import h5py
import numpy as np

UNREADABLE = "Unsupported pixel type"
THUMBNAIL = "Using embedded jpeg thumbnail"
PIXEL_TYPES = {
    "uint8": "UInt8", "uint16": "UInt16", "uint32": "UInt32", "int8": "Int8", "int16": "Int16", "int32": "Int32",
    "float32": "Float32", "float64": "Double64",
}
# The others are found, but cannot be shown.
SHOWN_TYPES = ["UInt16", "UInt32", "Int16", "Int32", "Float32"]


class Frame(NamedTuple):
    """A frame of a file: its samples as they must be shown, or the message that stands for them."""

    width: int
    height: int
    pixel_type: str
    samples: bytes = b""
    message: str = ""


def gray(samples, message=""):
    """The frame of an array of rows."""
    height, width = samples.shape
    pixel_type = PIXEL_TYPES[samples.dtype.newbyteorder("=").name]
    if not message and pixel_type not in SHOWN_TYPES:
        message = UNREADABLE
    stored = samples.astype(samples.dtype.newbyteorder("<")).tobytes()
    return Frame(width, height, pixel_type, b"" if message else stored, message)


def series(samples, count=None):
    """The frames of an array that has them in its last dimension; the first of them only when told so."""
    return [gray(samples[:, :, index]) for index in range(samples.shape[2] if count is None else count)]


def colours(samples):
    """The frame of an array of rows of red, green and blue."""
    height, width, _ = samples.shape
    return Frame(width, height, "RGB24", samples.tobytes())


def thumbnail(width, height):
    return Frame(width, height, "RGB24", message=THUMBNAIL)


def quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


class Folder:
    """The files and the manifest."""

    def __init__(self, path):
        os.makedirs(path, exist_ok=True)
        self.path = path
        self.manifest = []

    def path_of(self, name):
        return os.path.join(self.path, name)

    def new(self, name, is_latest=False, keeps_order=False):
        """An empty file: of the oldest version or the latest, perhaps with the order of creation in its root."""
        creation = h5py.h5p.create(h5py.h5p.FILE_CREATE)
        creation.set_obj_track_times(False)
        if keeps_order:
            creation.set_link_creation_order(h5py.h5p.CRT_ORDER_TRACKED | h5py.h5p.CRT_ORDER_INDEXED)
        access = h5py.h5p.create(h5py.h5p.FILE_ACCESS)
        if is_latest:
            access.set_libver_bounds(h5py.h5f.LIBVER_LATEST, h5py.h5f.LIBVER_LATEST)
        return h5py.File(h5py.h5f.create(os.fsencode(self.path_of(name)), h5py.h5f.ACC_TRUNC, creation, access))

    def opens(self, name, frames, lines=(), details="", software="", found=0):
        """Tells of a file with these frames, and of all that have been found when that is too many."""
        with open(self.path_of(name + ".raw"), "wb") as raw:
            raw.write(b"".join(frame.samples for frame in frames))
        offset = 0
        for index, frame in enumerate(frames):
            if len(frames) <= 8 or index in (0, len(frames) // 2, len(frames) - 1):
                facts = [name, "opens", frame.width, frame.height, len(frames), frame.pixel_type, index, offset]
                texts = [quoted(text) for text in (frame.message, details, software)]
                self.manifest.append(facts + texts + [found] + [quoted(line) for line in lines])
            offset += len(frame.samples)

    def refused(self, name, lines=(), message="No images found"):
        self.manifest.append([name, "refused"] + [quoted(text) for text in (message, *lines)])

    def finish(self):
        with open(self.path_of("manifest"), "w", encoding="latin-1") as manifest:
            for words in self.manifest:
                manifest.write(" ".join(str(word) for word in words) + "\n")


def set_text(dataset, name, text, padding=h5py.h5t.STR_NULLTERM):
    """Gives the dataset an attribute of fixed length, as C programs write it."""
    value = text.encode("ascii") + (b"\0" if padding == h5py.h5t.STR_NULLTERM else b"")
    text_type = h5py.h5t.C_S1.copy()
    text_type.set_size(len(value))
    text_type.set_strpad(padding)
    space = h5py.h5s.create(h5py.h5s.SCALAR)
    attribute = h5py.h5a.create(dataset.id, name.encode("ascii"), text_type, space)
    attribute.write(np.array(value, dtype=f"S{len(value)}"), mtype=text_type)


def put(location, path, data, image_class=None, interlace=None, **options):
    """A dataset of the array, with the attributes of an image when they are given."""
    dataset = location.create_dataset(path, data=data, track_times=False, **options)
    if image_class is not None:
        set_text(dataset, "CLASS", image_class)
    if interlace is not None:
        set_text(dataset, "INTERLACE_MODE", interlace)
    return dataset


def allocate(location, name, file_type, shape, chunks=None):
    """A dataset of a type that numpy may not have, which takes up its space before it is written."""
    creation = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
    creation.set_obj_track_times(False)
    creation.set_alloc_time(h5py.h5d.ALLOC_TIME_EARLY)
    if chunks is not None:
        creation.set_chunk(chunks)
    space = h5py.h5s.create_simple(shape)
    return h5py.h5d.create(location.id, name.encode("ascii"), file_type, space, creation)


def put_as(location, name, file_type, samples):
    allocate(location, name, file_type, samples.shape).write(h5py.h5s.ALL, h5py.h5s.ALL, samples)


def put_virtual(location, name, shape, source_file, source):
    """A dataset of 16-bit counts that stand in another one, perhaps of another file."""
    space = h5py.h5s.create_simple(shape)
    creation = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
    creation.set_obj_track_times(False)
    creation.set_virtual(space, os.fsencode(source_file), source.encode("ascii"), space)
    h5py.h5d.create(location.id, name.encode("ascii"), h5py.h5t.STD_U16LE, space, creation)


def put_strings(location, name, *texts, encoding="ascii"):
    """A dataset of strings of variable length."""
    location.create_dataset(name, data=list(texts), dtype=h5py.string_dtype(encoding), track_times=False)


def segment(marker, contents):
    return struct.pack(">HH", marker, len(contents) + 2) + contents


def jpeg(tiles):
    """A JPEG file whose picture is made of tiles of 8 x 8 pixels, each of one luminance and two chrominances."""
    rows, columns, _ = tiles.shape
    size = struct.pack(">BHHB", 8, rows * 8, columns * 8, 3)
    # Every number is quantised by 8, so the one number of a tile is its value less 128. The twelve lengths of
    # that number have codes of four bits, the end of a tile that of one zero bit.
    lengths = bytes([0, 0, 0, 12] + [0] * 12) + bytes(range(12))
    ends = bytes([1] + [0] * 15) + b"\0"
    bits = ""
    last = [0, 0, 0]
    for tile in tiles.reshape(-1, 3).tolist():
        for component, value in enumerate(tile):
            step = value - 128 - last[component]
            last[component] = value - 128
            length = abs(step).bit_length()
            bits += f"{length:04b}"
            if length:
                bits += f"{step if step > 0 else step + (1 << length) - 1:0{length}b}"
            bits += "0"
    bits += "1" * (-len(bits) % 8)
    scan = int(bits, 2).to_bytes(len(bits) // 8, "big").replace(b"\xff", b"\xff\0")
    return (
        b"\xff\xd8" + segment(0xFFE0, b"JFIF\0\1\1\0\0\1\0\1\0\0") + segment(0xFFDB, b"\0" + bytes([8] * 64))
        + segment(0xFFC0, size + b"\1\x11\0" b"\2\x11\0" b"\3\x11\0")
        + segment(0xFFC4, b"\0" + lengths) + segment(0xFFC4, b"\x10" + ends)
        + segment(0xFFDA, b"\3" b"\1\0" b"\2\0" b"\3\0" b"\0\x3f\0") + scan + b"\xff\xd9"
    )


def put_jpeg(location, name, rows, columns):
    """A JPEG file of as many tiles in a dataset of its bytes."""
    tiles = np.zeros((rows, columns, 3), "int64")
    tiles[:, :, 0] = np.arange(rows * columns).reshape(rows, columns) * 200 // (rows * columns) + 20
    tiles[:, :, 1] = 90
    tiles[:, :, 2] = 150
    put(location, name, np.frombuffer(jpeg(tiles), "uint8"))
