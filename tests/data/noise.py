"""Samples for the files that the scripts here write: the same in every run."""

import numpy as np

random = np.random.RandomState(1995)


def noise(dtype, *shape):
    """Samples over the whole range of whole numbers, or of both signs and several magnitudes."""
    dtype = np.dtype(dtype)
    if dtype.kind in "iu":
        limits = np.iinfo(dtype)
        samples = random.randint(int(limits.min), int(limits.max) + 1, size=shape, dtype="int64")
    else:
        samples = random.standard_normal(shape) * 10.0 ** random.randint(-2, 3, size=shape)
        if dtype.kind == "c":
            samples = samples * np.exp(2j * np.pi * random.random_sample(shape))
    return samples.astype(dtype)
