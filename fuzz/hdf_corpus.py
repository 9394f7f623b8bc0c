"""Small HDF5 files for the fuzzer, of every structure that the HDF5 library reads on our behalf."""

import io

import h5py
import numpy

SIDE = 32


def jpeg(components):
    """A picture of 8 x 8 equal pixels, with Huffman tables of one code each."""
    def segment(marker, content):
        return bytes((0xFF, marker)) + (len(content) + 2).to_bytes(2, "big") + content
    one_code = bytes((1, *bytes(15), 0))
    parts = range(1, components + 1)
    return (b"\xff\xd8"
            + segment(0xDB, b"\0" + b"\1" * 64)
            + segment(0xC0, bytes((8, 0, 8, 0, 8, components)) + b"".join(bytes((i, 0x11, 0)) for i in parts))
            + segment(0xC4, b"\0" + one_code)
            + segment(0xC4, b"\x10" + one_code)
            + segment(0xDA, bytes((components,)) + b"".join(bytes((i, 0)) for i in parts) + b"\0\x3f\0")
            # Two bits of zero for each component, filled up with ones.
            + bytes((0xFF >> 2 * components,)) + b"\xff\xd9")


def hdf(fill, libver="earliest", **creation):
    """The bytes of a file that `fill` has written into, without the times of writing."""
    access = h5py.h5p.create(h5py.h5p.FILE_ACCESS)
    content = io.BytesIO()
    access.set_fileobj_driver(h5py.h5fd.fileobj_driver, content)
    bound = {"earliest": h5py.h5f.LIBVER_EARLIEST, "latest": h5py.h5f.LIBVER_LATEST}[libver]
    access.set_libver_bounds(bound, h5py.h5f.LIBVER_LATEST)
    creation_list = h5py.h5p.create(h5py.h5p.FILE_CREATE)
    creation_list.set_obj_track_times(False)
    if "address_bytes" in creation:
        creation_list.set_sizes(creation["address_bytes"], creation["address_bytes"])
    # The name is only asked for.
    with h5py.File(h5py.h5f.create(b"lumora_seed", h5py.h5f.ACC_TRUNC, creation_list, access)) as file:
        fill(file)
    return content.getvalue()


def group(file, path, is_ordered=False):
    """A group without its time, which h5py's own function would keep."""
    creation = h5py.h5p.create(h5py.h5p.GROUP_CREATE)
    creation.set_obj_track_times(False)
    if is_ordered:
        creation.set_link_creation_order(h5py.h5p.CRT_ORDER_TRACKED | h5py.h5p.CRT_ORDER_INDEXED)
    h5py.h5g.create(file.id, path.encode(), gcpl=creation)
    return file[path]


def fixed_text(item, name, text):
    kind = h5py.h5t.C_S1.copy()
    kind.set_size(len(text) + 1)
    attribute = h5py.h5a.create(item.id, name.encode(), kind, h5py.h5s.create(h5py.h5s.SCALAR))
    attribute.write(numpy.array(text, dtype=f"S{len(text) + 1}"), kind)


def as_image(dataset, interlace=b""):
    fixed_text(dataset, "CLASS", b"IMAGE")
    if interlace:
        fixed_text(dataset, "INTERLACE_MODE", interlace)


def samples(shape, dtype):
    return (numpy.arange(numpy.prod(shape)) % 251).astype(dtype).reshape(shape)


def stored(name, shape=(SIDE, SIDE), dtype="u2", interlace=b"", **options):
    """A file of one dataset."""
    def fill(file):
        dataset = file.create_dataset(name, data=samples(shape, dtype), track_times=False, **options)
        as_image(dataset, interlace)
    return fill


def layouts():
    yield "contiguous", stored("image")
    yield "chunked", stored("image", chunks=(SIDE, 16))
    yield "packed", stored("image", chunks=(SIDE, SIDE), compression="gzip", shuffle=True, fletcher32=True)
    yield "shuffled", stored("image", chunks=(SIDE, 16), shuffle=True)
    yield "scaled", stored("image", chunks=(SIDE, SIDE), scaleoffset=4)
    yield "growing", stored("image", chunks=(16, 16), maxshape=(None, SIDE))
    yield "growing_both", stored("image", chunks=(16, 16), maxshape=(None, None))
    yield "plain_chunk", stored("image", chunks=(SIDE, SIDE))

    def compact(file):
        creation = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        creation.set_layout(h5py.h5d.COMPACT)
        creation.set_obj_track_times(False)
        space = h5py.h5s.create_simple((SIDE, SIDE))
        dataset = h5py.h5d.create(file.id, b"image", h5py.h5t.NATIVE_UINT16, space, creation)
        dataset.write(space, space, samples((SIDE, SIDE), "u2"))
    yield "compact", compact

    def filtered(file):
        creation = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        creation.set_chunk((SIDE, SIDE))
        creation.set_filter(h5py.h5z.FILTER_NBIT, h5py.h5z.FLAG_MANDATORY)
        creation.set_obj_track_times(False)
        kind = h5py.h5t.NATIVE_UINT16.copy()
        kind.set_precision(8)
        space = h5py.h5s.create_simple((SIDE, SIDE))
        dataset = h5py.h5d.create(file.id, b"image", kind, space, creation)
        dataset.write(space, space, samples((SIDE, SIDE), "u2"))
    yield "nbit", filtered


def elements():
    for code in ("u1", "u4", "i1", "i2", ">i4", "f4", ">f8", "i8", "f2"):
        yield f"type_{code.strip('>')}", stored("image", dtype=code)
    compound = numpy.dtype([("a", "u1"), ("b", [("c", "f4", (2,)), ("d", "S3")])])

    def types(file):
        def image(name, dtype, shape=(SIDE, SIDE)):
            file.create_dataset(name, shape, dtype, chunks=shape, track_times=False)
        image("image compound", compound)
        image("image enum", h5py.enum_dtype({"no": 0, "yes": 1}, basetype="u1"))
        image("image vlen", h5py.vlen_dtype("u2"))
        image("image opaque", numpy.dtype("V5"))
        image("image reference", h5py.ref_dtype)
        image("image region", h5py.regionref_dtype)
        image("image array", numpy.dtype(("u1", (3,))))
        file["type"] = numpy.dtype([("x", "u1"), ("y", "u2")])
    yield "types", types

    def committed(file):
        file["type"] = numpy.dtype("u2")
        dataset = file.create_dataset("image", (SIDE, SIDE), file["type"], compression="gzip", fillvalue=7,
                                      track_times=False)
        dataset[0, 0] = 1
    yield "committed", committed


def pictures():
    for name, shape in (("PIXEL", (SIDE, SIDE, 3)), ("PLANE", (3, SIDE, SIDE)), ("LINE", (SIDE, 3, SIDE))):
        yield f"rgb_{name.lower()}", stored("picture", shape, "u1", b"INTERLACE_" + name.encode())

    def palette(file):
        colours = file.create_dataset("colours", data=samples((4, 3), "u1"), track_times=False)
        fixed_text(colours, "CLASS", b"PALETTE")
        image = file.create_dataset("image", (SIDE, SIDE), "u1", compression="gzip", track_times=False)
        as_image(image)
        image.attrs.create("PALETTE", colours.ref, dtype=h5py.ref_dtype)
    yield "palette", palette

    def series(file):
        for path in ("data", "data/image", "data/image/0001"):
            group(file, path)
        file.create_dataset("data/image/0001/Data", data=samples((SIDE, SIDE, 2), "u2"), track_times=False)
        for name, text in (("Version", '{"format": "Series", "version": "1.2"}'),
                           ("Info", '{"applicationVersion": "3.4-beta"}')):
            file.create_dataset(name, data=[text], dtype=h5py.string_dtype("ascii"), track_times=False)
    yield "series", series

    def thumbnail(file):
        for name, components in (("Thumbnail.jpg", 3), ("thumbnail.JPG", 1)):
            content = numpy.frombuffer(jpeg(components), "u1")
            file.create_dataset(name, data=content, track_times=False)
        file.create_dataset("image", (SIDE, SIDE), "u1", compression="gzip", track_times=False)
    yield "thumbnail", thumbnail

    # Only the thumbnail is read whatever its stored size is.
    for name, options in (("gzip", {"compression": "gzip"}), ("fletcher", {"fletcher32": True}),
                          ("shuffle", {"shuffle": True, "compression": 1}), ("lzf", {"compression": "lzf"}),
                          ("scaled", {"scaleoffset": 0})):
        def filtered(file, options=options):
            content = numpy.frombuffer(jpeg(3), "u1")
            file.create_dataset("Thumbnail.jpg", data=content, chunks=(100,), track_times=False, **options)
        yield f"thumbnail_{name}", filtered


def structures():
    def links(file):
        image = file.create_dataset("image", data=samples((SIDE, SIDE), "u1"), track_times=False)
        inner = group(file, "group")
        inner["again image"] = image
        inner["back"] = file["/"]
        file["circle"] = inner
        inner["itself"] = inner
        file["soft image"] = h5py.SoftLink("/image")
        file["dangling image"] = h5py.SoftLink("/nothing")
        file["outer image"] = h5py.ExternalLink("lumora_seed", "/image")
    yield "links", links

    def elsewhere(file):
        space = h5py.h5s.create_simple((SIDE, SIDE))
        creation = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
        creation.set_obj_track_times(False)
        creation.set_virtual(space, b"lumora_seed", b"image", space)
        h5py.h5d.create(file.id, b"image virtual", h5py.h5t.NATIVE_UINT16, space, creation)
        file.create_dataset("image external", (SIDE, SIDE), "u2", external=[("lumora_seed", 0, 2048)],
                            track_times=False)
    yield "elsewhere", elsewhere

    def attributes(file):
        image = file.create_dataset("image", data=samples((SIDE, SIDE), "u2"), track_times=False)
        for i in range(10):
            image.attrs[f"attribute {i}"] = i
        image.attrs["text"] = "of no fixed length"
        as_image(image, b"INTERLACE_PIXEL")
    yield "attributes", attributes

    def crowd(file):
        for i in range(12):
            group(file, f"group {i}", is_ordered=True)
        file.create_dataset("image", data=samples((SIDE, SIDE), "u2"), track_times=False)
    yield "crowd", crowd


def hdf_files():
    for version in ("earliest", "latest"):
        for kinds in (layouts, elements, pictures, structures):
            for name, fill in kinds():
                # The newer version stores the time of a named type.
                if version == "latest" and name in ("types", "committed"):
                    continue
                yield f"hdf_{name}_{version}", hdf(fill, version)
    yield "hdf_short_addresses", hdf(stored("image"), address_bytes=4)
