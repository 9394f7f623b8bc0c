#!/usr/bin/python3
"""Makes the files in samples/. They are drawn, not recorded: no microscope was needed."""

import pathlib
import struct

import h5py
import mrcfile
import numpy as np

HERE = pathlib.Path(__file__).resolve().parent.parent / "samples"
EDGE = 192
RANDOM = np.random.default_rng(2014)
Y, X = np.mgrid[0:EDGE, 0:EDGE].astype(np.float64)


def blob(x, y, radius):
    """A soft disc, 1 at its centre."""
    return np.exp(-((X - x) ** 2 + (Y - y) ** 2) / (2 * radius**2))


def write(name, data, voxel_size):
    with mrcfile.new(HERE / name, data=data, overwrite=True) as mrc:
        mrc.voxel_size = voxel_size
        # The writer stamps the time; without it the same script gives the same bytes.
        mrc.header.label = b""
        mrc.header.nlabl = 0


def particles():
    """Ring-shaped particles in thin ice, as a Float32 image. A large one stands near the first row."""
    image = RANDOM.normal(0, 0.6, (EDGE, EDGE)) + 0.004 * X
    for x, y in [(30, 34), (88, 52), (150, 30), (46, 110), (112, 118), (160, 92), (78, 164), (148, 158)]:
        image -= 2.5 * (blob(x, y, 9) - 0.8 * blob(x, y, 5))
    image -= 3.0 * blob(96, 8, 14)
    write("particles.mrc", image.astype(np.float32), 1.6)


def fringes():
    """Lattice fringes of a crystal over a carbon edge, as a UInt16 image of counts."""
    waves = np.cos(0.42 * X + 0.16 * Y) + np.cos(0.12 * X - 0.45 * Y)
    crystal = 1 / (1 + np.exp((np.hypot(X - 110, Y - 80) - 70) / 4))
    counts = 900 + 2.2 * X + 260 * crystal * (waves + 1)
    write("fringes.mrc", RANDOM.poisson(counts).astype(np.uint16), 0.25)


def tilt_series():
    """Four views of gold beads on a film, as a stack of Int16 sections."""
    beads = RANDOM.uniform(-80, 80, (24, 3))
    sections = []
    for degrees in (-45, -15, 15, 45):
        angle = np.radians(degrees)
        section = RANDOM.normal(0, 25, (EDGE, EDGE)) + 200
        for x, y, z in beads:
            projected = EDGE / 2 + x * np.cos(angle) + 0.3 * z * np.sin(angle)
            section -= 700 * blob(projected, EDGE / 2 + y, 2.2)
        sections.append(section)
    write("tilt-series.mrc", np.round(sections).astype(np.int16), 5.0)


SMALL = 128
SMALL_Y, SMALL_X = np.mgrid[0:SMALL, 0:SMALL].astype(np.float64)
FROM_CENTRE = np.hypot(SMALL_X - SMALL / 2, SMALL_Y - SMALL / 2)


def save(name, *parts):
    (HERE / name).write_bytes(b"".join(parts))


def diffraction_spots():
    """A diffraction pattern: bright spots on a lattice around a brighter beam, as Float32."""
    pattern = 40 * np.exp(-FROM_CENTRE / 18) + RANDOM.normal(0, 0.4, (SMALL, SMALL))
    for i in range(-3, 4):
        for j in range(-3, 4):
            x, y = SMALL / 2 + 17 * i + 4 * j, SMALL / 2 - 3 * i + 16 * j
            spot = np.exp(-((SMALL_X - x) ** 2 + (SMALL_Y - y) ** 2) / 5)
            pattern += 60 * spot / (1 + i * i + j * j)
    return pattern.astype("<f4")


def dm4_tag(kind, label, contents):
    return struct.pack(">BH", kind, len(label)) + label + struct.pack(">Q", len(contents)) + contents


def dm4_group(label, *entries):
    return dm4_tag(20, label, struct.pack(">BBQ", 1, 0, len(entries)) + b"".join(entries))


def dm4_number(label, value):
    return dm4_tag(21, label, b"%%%%" + struct.pack(">QQ", 1, 5) + struct.pack("<I", value))


def dm4_array(label, element_type, array):
    words = struct.pack(">QQQQ", 3, 20, element_type, array.size)
    return dm4_tag(21, label, b"%%%%" + words + array.tobytes())


def dm4_image(data, element_type, data_type):
    rows, columns = data.shape
    return dm4_group(b"", dm4_group(
        b"ImageData",
        dm4_array(b"Data", element_type, data),
        dm4_number(b"DataType", data_type),
        dm4_group(b"Dimensions", dm4_number(b"", columns), dm4_number(b"", rows)),
    ))


def diffraction():
    """A Digital Micrograph file: a colour thumbnail, then the image."""
    image = diffraction_spots()
    gray = np.clip(image * 6, 0, 255).astype("<u4")
    thumbnail = gray | gray << 8 | gray << 16 | 0xFF000000
    images = dm4_group(b"ImageList", dm4_image(thumbnail, 3, 23), dm4_image(image, 6, 2))
    root = struct.pack(">BBQ", 1, 0, 1) + images
    end = bytes(8)
    size = 16 + len(root) + len(end) - 24
    save("diffraction.dm4", struct.pack(">IQI", 4, size, 1), root, end)


def holes_series():
    """A SER series of three views of a film with holes."""
    views = []
    for shift in (0, 5, 10):
        holes = np.cos((SMALL_X + shift) / 7) * np.cos(SMALL_Y / 7)
        views.append((2000 + 1500 / (1 + np.exp(-8 * holes)) + RANDOM.normal(0, 90, holes.shape)).astype("<u2"))
    element_bytes = 50 + views[0].nbytes
    first = 30 + 8 * len(views)
    header = struct.pack("<HHHIIIIQ", 0x4949, 0x0197, 0x0220, 0x4122, 0x4152, len(views), len(views), 30)
    offsets = struct.pack(f"<{len(views)}Q", *(first + i * element_bytes for i in range(len(views))))
    elements = [bytes(40) + struct.pack("<HII", 2, SMALL, SMALL) + view.tobytes() for view in views]
    save("holes.ser", header, offsets, *elements)


def edge_image():
    """An EMI file with the edge of a film over vacuum, as Int16."""
    film = 900 / (1 + np.exp((SMALL_X - 70 - 8 * np.sin(SMALL_Y / 17)) / 1.5))
    fresnel = 140 * np.cos((SMALL_X - 70 - 8 * np.sin(SMALL_Y / 17)) / 2.2) * np.exp(-np.abs(SMALL_X - 70) / 14)
    samples = (1200 - film + fresnel + RANDOM.normal(0, 30, film.shape)).astype("<i2").tobytes()
    version = b"4.9.3.123"
    save(
        "edge.emi",
        struct.pack("<HHI", 0x4B4A, 0x0200, 0),
        struct.pack("<HHI", 96, 1810, len(version)), version,
        struct.pack("<HHIHHHH", 0x2204, 1, len(samples) + 8, SMALL, 0, SMALL, 0), samples,
    )


def rings():
    """Rings of a polycrystalline film, as a NumPy array."""
    pattern = 300 * np.exp(-FROM_CENTRE / 20)
    for radius in (18, 29, 37, 51):
        pattern += 180 * np.exp(-((FROM_CENTRE - radius) ** 2) / 3) / radius**0.5
    np.save(HERE / "rings.npy", RANDOM.poisson(pattern + 20).astype("<u2"))


def gold():
    """Gold particles on carbon, as a RAW file of signed 16-bit samples."""
    image = 300 + RANDOM.normal(0, 18, (SMALL, SMALL))
    for x, y, radius in RANDOM.uniform((8, 8, 2), (120, 120, 8), (26, 3)):
        image[np.hypot(SMALL_X - x, SMALL_Y - y) < radius] -= 160
    header = struct.pack("<IIIIIIII", SMALL, SMALL, 0, 16, 1, 0, 0, 0)
    save("gold.raw", b"TAV RawImage".ljust(17, b"\0"), header, image.astype("<i2").tobytes())


def probe():
    """The rings of a defocused probe, as a BIN file of doubles."""
    image = np.cos(FROM_CENTRE**2 / 130) ** 2 * np.exp(-((FROM_CENTRE / 48) ** 6)) + RANDOM.normal(0, 0.03, FROM_CENTRE.shape)
    save("probe.bin", struct.pack("<HIII", 8, SMALL, SMALL, 14), image.astype("<f8").tobytes())


def gyroid():
    """A porous volume of 48 slices, as a lattice file of bytes."""
    z, y, x = np.mgrid[0:48, 0:64, 0:64] / 6.0
    surface = np.sin(x) * np.cos(y) + np.sin(y) * np.cos(z) + np.sin(z) * np.cos(x)
    volume = np.clip(128 + 90 * surface + RANDOM.normal(0, 6, surface.shape), 0, 255).astype(np.uint8)
    header = (
        "# Vorna 1.0\n\n"
        "define Lattice 64 64 48\n\n"
        'Parameters {\n    Content "a porous volume",\n}\n\n'
        "Lattice { byte Data } @1\n\n"
        "# Data section follows\n@1\n"
    )
    save("gyroid.lattice", header.encode(), volume.tobytes())


def acquisition():
    """An HDF5 file: three frames of a twinned particle that drifts over a carbon film, as UInt16 counts."""
    side = 160
    y, x = np.mgrid[0:side, 0:side].astype(np.float64)
    grain = np.fft.fft2(RANDOM.normal(0, 1, (side, side)))
    frequency = np.hypot(np.fft.fftfreq(side)[:, None], np.fft.fftfreq(side)[None, :])
    film = np.fft.ifft2(grain * np.exp(-((frequency - 0.12) ** 2) / 0.004)).real
    frames = []
    for index in range(3):
        u, v = x - 76 - 5 * index, y - 80 - 3 * index
        angle = 0.35 + 0.03 * index
        along, across = u * np.cos(angle) + v * np.sin(angle), v * np.cos(angle) - u * np.sin(angle)
        # One lattice and its mirror image beyond the twin boundary, within an outline of eight sides.
        mirrored = np.abs(across)
        columns = np.cos(0.62 * along + 0.26 * mirrored) + np.cos(0.22 * along - 0.62 * mirrored)
        outline = np.max([np.abs(u * np.cos(a) + v * np.sin(a)) for a in angle + np.pi / 4 * np.arange(4)], axis=0)
        particle = 1 / (1 + np.exp((outline - 54) / 1.6))
        counts = 620 + 60 * film / film.std() + particle * (420 + 210 * columns - 2.6 * outline)
        frames.append(RANDOM.poisson(np.clip(counts, 0, None)))
    with h5py.File(HERE / "acquisition.h5", "w") as file:
        data = np.stack(frames, axis=2).astype("<u2")
        file.create_dataset("data/image/5e0b71c4/Data", data=data, track_times=False)
        for name, text in (
            ("Version", '{\n    "format": "Corvane",\n    "version": "1.4"\n}'),
            ("Info", '{\n    "applicationVersion": "3.2.1-208"\n}'),
        ):
            file.create_dataset(name, data=[text], dtype=h5py.string_dtype("ascii"), track_times=False)


if __name__ == "__main__":
    particles()
    fringes()
    tilt_series()
    diffraction()
    holes_series()
    edge_image()
    rings()
    gold()
    probe()
    gyroid()
    acquisition()
