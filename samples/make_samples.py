#!/usr/bin/python3
"""Makes the sample files beside this script. They are drawn, not recorded: no microscope was needed."""

import pathlib

import mrcfile
import numpy as np

HERE = pathlib.Path(__file__).resolve().parent
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


if __name__ == "__main__":
    particles()
    fringes()
    tilt_series()
