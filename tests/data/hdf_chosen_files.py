"""HDF5 files with more than one dataset to choose from, with more than pictures, and damaged ones."""

import h5py
import numpy as np

from hdf_writer import gray, put, put_jpeg, put_strings, put_virtual, series, thumbnail
from noise import noise

NO_JPEG = "Could not read jpeg image"
VERSION = '{\n    "format": "Corvane",\n    "version": "1.10"\n}'
INFO = '{\n    "applicationVersion": "2.8.0-12"\n}'


def add_groups(folder):
    """Which datasets are kept, and which one comes first."""

    def write(name, datasets, kept, lines=(), **options):
        """Datasets in the order of their creation, and the frames that are kept of them."""
        with folder.new(name, **options) as file:
            for path, data in datasets.items():
                put(file, path, data)
        folder.opens(name, kept, lines)

    small, wide, high, large = (noise("uint16", *size) for size in ((32, 40), (40, 80), (80, 40), (90, 50)))
    stack = noise("int16", 60, 70, 3)

    # Names are sorted by their bytes; the first of the largest pictures stands for the file.
    datasets = {"image/b": small, "image/a": wide, "image/C": high, "Image": small}
    write("first_of_equal_areas.h5", datasets, [gray(high), gray(small), gray(wide), gray(small)])
    write("order_of_creation.h5", {"image_b": small, "image_a": wide, "image_C": high},
          [gray(high), gray(wide), gray(small)], keeps_order=True)
    write("largest_first.h5", {"image/a": small, "image/b": high, "image/c": large},
          [gray(large), gray(small), gray(high)])
    write("largest_is_first.h5", {"image/a": large, "image/b": high, "image/c": small},
          [gray(large), gray(high), gray(small)])
    first, second, third = series(stack)
    write("first_frame_of_largest.h5", {"image/a": small, "image/b/Data": stack, "image/c": high},
          [first, gray(small), second, third, gray(high)])
    # Pictures that cannot be shown are chosen all the same.
    unseen = noise("float64", 70, 71)
    write("largest_cannot_be_shown.h5", {"image/a": small, "image/b": unseen}, [gray(unseen), gray(small)])
    write("others_passed_over.h5",
          {"image/a": noise("uint16", 40, 40, 2), "image/b": small, "image/c": noise("int64", 50, 50), "plain": large,
           "image/d": noise("uint16", 40, 40, 3)},
          [gray(small)], ["Skipped not supported image series"] * 2)

    outside = {"data/images/1/Data": large, "image": large, "x/data/image/1": large}
    for number, group in enumerate(("data/image", "Data/Image", "DATA/IMAGE", "dAta/iMage")):
        name = f"image_group_{number}.h5"
        write(name, {**outside, f"{group}/7/Data": stack, f"{group}/8/Data": small[:, :, None], f"{group}/9": high},
              [first, second, third, gray(small), gray(high)])
    write("two_image_groups.h5", {**outside, "data/image/1": small, "DATA/image/2": high, "Data/IMAGE/3/Data": stack},
          [first, gray(high), second, third, gray(small)])
    # A picture of this name is no group of pictures.
    write("image_for_group.h5", {"data/image": small, "image": high}, [gray(high), gray(small)])
    write("group_of_one.h5", {"data/image/1": small, "image": large}, [gray(small)])


def add_cut(folder):
    """Files with more frames than are kept."""
    stack = noise("uint16", 32, 33, 300)
    with folder.new("300_frames.h5") as file:
        put(file, "data/image/1/Data", stack)
    folder.opens("300_frames.h5", series(stack, 250), found=300)
    with folder.new("250_frames.h5") as file:
        put(file, "data/image/1/Data", stack[:, :, :250])
    folder.opens("250_frames.h5", series(stack, 250))
    # Those outside the group have been found, too.
    other = noise("uint16", 40, 40)
    with folder.new("251_frames_in_group.h5") as file:
        put(file, "data/image/1/Data", stack[:, :, :251])
        put(file, "image", other)
    folder.opens("251_frames_in_group.h5", series(stack, 250), found=252)
    with folder.new("250_frames_in_group.h5") as file:
        put(file, "data/image/1/Data", stack[:, :, :250])
        put(file, "image", other)
    folder.opens("250_frames_in_group.h5", series(stack, 250))
    # The largest comes from behind and pushes out the last of the others.
    with folder.new("300_datasets.h5") as file:
        for index in range(299):
            put(file, f"images/{index:03}", stack[:, :, index])
        put(file, "images/last", other)
    folder.opens("300_datasets.h5", [gray(other), *series(stack, 249)], found=300)


def add_links(folder):
    image, other = noise("uint16", 40, 50), noise("uint16", 60, 50)

    with folder.new("two_names.h5") as file:
        put(file, "image_a", image)
        file["image_b"] = file["image_a"]
    folder.opens("two_names.h5", [gray(image)] * 2)
    with folder.new("group_with_two_names.h5") as file:
        put(file, "images/one", image)
        put(file, "more/image", other)
        file["again"] = file["images"]
    # The group has been walked by its first name, which says nothing of an image.
    folder.opens("group_with_two_names.h5", [gray(other)])
    with folder.new("circle.h5") as file:
        put(file, "images/one", image)
        file["images/self"] = file["images"]
        file["images/deep/images"] = file["images"]
    folder.opens("circle.h5", [gray(image)])
    # The root is walked again by the name that it has in itself.
    with folder.new("root_in_itself.h5") as file:
        put(file, "image", image)
        file["root"] = file["/"]
    folder.opens("root_in_itself.h5", [gray(image)] * 2)

    with folder.new("outside.h5") as file:
        put(file, "image", image)
    folder.opens("outside.h5", [gray(image)])
    outside = folder.path_of("outside.h5")
    with open(outside, "rb") as file:
        place = file.read().index(image.tobytes())

    def link(file, name):
        if name == "soft":
            put(file, "there", image)
            file["image"] = h5py.SoftLink("/there")
        elif name == "soft_to_nothing":
            file["image"] = h5py.SoftLink("/nowhere")
        elif name == "soft_to_group":
            put(file, "there/one", image)
            file["images"] = h5py.SoftLink("/there")
        elif name == "external":
            file["image"] = h5py.ExternalLink(outside, "/image")
        elif name == "external_to_root":
            file["images"] = h5py.ExternalLink(outside, "/")
        elif name == "virtual":
            put_virtual(file, "image", image.shape, outside, "/image")
        elif name == "virtual_inside":
            put(file, "there", image)
            put_virtual(file, "image", image.shape, ".", "/there")
        elif name == "stored_outside":
            parts = [(outside, place, image.nbytes)]
            file.create_dataset("image", image.shape, "uint16", external=parts, track_times=False)
        elif name == "named_type":
            file["image"] = np.dtype("uint16")

    for name in ("soft", "soft_to_nothing", "soft_to_group", "external", "external_to_root", "virtual",
                 "virtual_inside", "stored_outside", "named_type"):
        # With nothing else in the file, and beside a picture.
        with folder.new(f"{name}.h5") as file:
            link(file, name)
        folder.refused(f"{name}.h5")
        with folder.new(f"{name}_beside_image.h5") as file:
            link(file, name)
            put(file, "one_image", other)
        folder.opens(f"{name}_beside_image.h5", [gray(other)])


def add_texts(folder):
    image = noise("uint16", 36, 40)

    def write(name, version, info, details="", software=""):
        """Texts as datasets of one string of any length, or as a function writes them."""
        with folder.new(f"{name}.h5") as file:
            put(file, "data/image/1/Data", image[:, :, None])
            for dataset, text in (("Version", version), ("Info", info)):
                if callable(text):
                    text(file, dataset)
                elif text is not None:
                    put_strings(file, dataset, text)
        folder.opens(f"{name}.h5", [gray(image)], details=details, software=software)

    full = {"details": "Data version: Corvane 1.10", "software": "Corvane 2.8.0"}
    details_only = {"details": full["details"]}
    write("texts", VERSION, INFO, **full)
    write("texts_with_carriage_returns", VERSION.replace("\n", "\r\n"), INFO.replace("\n", "\r\n"), **full)
    write("keys_in_other_letters", VERSION.replace("format", "Format").replace("version", "VERSION"),
          INFO.replace("applicationVersion", "APPLICATIONversion"), **full)
    write("version_only", VERSION, None, **details_only)
    write("info_only", None, INFO)
    write("no_format", '{\n "version": "1.10"\n}', INFO)
    # Without a version nobody asks for the format.
    write("no_version", '{\n "format": "Corvane"\n}', INFO)
    write("empty_format", '{\n "format": "",\n "version": "1.10"\n}', INFO)
    write("number_for_version", '{\n "format": "Corvane",\n "version": 1.10\n}', INFO)
    write("version_on_one_line", '{"format": "Corvane", "version": "1.10"}', INFO)
    write("no_json", "Corvane 1.10", "2.8.0")
    write("empty_texts", "", "")
    write("version_with_colon", '{\n "format": "Corvane:2",\n "version": "1.10"\n}', INFO)
    write("escaped_quotes", '{\n "format": "Cor\\"vane\\"",\n "version": "1.10"\n}', INFO,
          'Data version: Cor\\"vane\\" 1.10', 'Cor\\"vane\\" 2.8.0')
    write("first_of_several_keys", '{\n "version": "1",\n "format": "A",\n "version": "2",\n "format": "B"\n}', INFO,
          "Data version: A 1", "A 2.8.0")

    for name, application, shown in (
        ("no_dash", "2.8.0", "2.8.0"), ("two_dashes", "2.8-0-1", "2.8"), ("dash_at_end", "2.8-", "2.8"),
        ("leading_dash", "-2.8", "-2.8"), ("leading_dash_and_another", "-2.8-1", "-2.8-1"), ("dash_only", "-", "-"),
    ):
        write(name, VERSION, INFO.replace("2.8.0-12", application), **details_only, software=f"Corvane {shown}")
    write("empty_application", VERSION, INFO.replace("2.8.0-12", ""), **details_only)
    write("other_application_key", VERSION, INFO.replace("application", "app"), **details_only)

    def strings(*texts, encoding="ascii"):
        return lambda file, name: put_strings(file, name, *texts, encoding=encoding)

    # Bytes, whatever they mean.
    beyond_ascii = VERSION.replace("Corvane", "Corv\u00e2ne").encode("utf-8")
    write("bytes_beyond_ascii", strings(beyond_ascii), INFO,
          "Data version: Corv\u00c3\u00a2ne 1.10", "Corv\u00c3\u00a2ne 2.8.0")
    write("several_strings", strings(VERSION, "{}", INFO), strings(INFO, VERSION), **full)
    write("text_in_second_string", strings("{}", VERSION), INFO)
    # The library does not convert from Unicode to ASCII, unless it has read ASCII from the same file before: how
    # it converts strings is kept with the file, and it then no longer looks at what they are made of.
    write("unicode_strings", strings(VERSION, encoding="utf-8"), strings(INFO, encoding="utf-8"))
    write("unicode_version", strings(VERSION, encoding="utf-8"), INFO)
    write("unicode_info", VERSION, strings(INFO, encoding="utf-8"), **full)

    def scalar(file, name):
        file.create_dataset(name, data=VERSION, dtype=h5py.string_dtype("ascii"), track_times=False)

    def fixed(file, name):
        file.create_dataset(name, data=np.array([VERSION.encode()]), track_times=False)

    def table(file, name):
        file.create_dataset(name, data=[[VERSION]], dtype=h5py.string_dtype("ascii"), track_times=False)

    def no_string(file, name):
        file.create_dataset(name, shape=(0,), dtype=h5py.string_dtype("ascii"), track_times=False)

    def never_written(file, name):
        file.create_dataset(name, shape=(1,), dtype=h5py.string_dtype("ascii"), track_times=False)

    def attribute(file, name):
        file.attrs[name] = VERSION

    def group(file, name):
        put_strings(file.create_group(name), name, VERSION)

    def numbers(file, name):
        put(file, name, np.arange(4))

    for form in (scalar, fixed, table, no_string, never_written, attribute, group, numbers):
        write(f"version_as_{form.__name__}", form, INFO)

    # Texts are those of the file, whichever frame is asked for and whether it can be shown or not.
    with folder.new("texts_of_more_frames.h5") as file:
        put_strings(file, "Version", VERSION)
        put_strings(file, "Info", INFO)
        put_jpeg(file, "Thumbnail.jpg", 4, 5)
        put(file, "data/image/1/Data", noise("uint8", 36, 40, 2))
        put(file, "data/image/2/Data", image[:, :, None])
    unseen = gray(np.zeros((36, 40), "uint8"))
    folder.opens("texts_of_more_frames.h5", [thumbnail(40, 32), unseen, unseen, gray(image)], **full)


def add_thumbnails(folder):
    small, large = noise("uint16", 36, 40), noise("int16", 60, 70)

    def write(name, thumbnails, kept, lines=(), group="data/image"):
        with folder.new(name) as file:
            for path, form in thumbnails.items():
                if isinstance(form, tuple):
                    put_jpeg(file, path, *form)
                else:
                    put(file, path, form)
            if group:
                put(file, f"{group}/1", small)
                put(file, f"{group}/2", large)
        folder.opens(name, kept, lines)

    both = [gray(large), gray(small)]
    write("thumbnail.h5", {"Thumbnail.jpg": (4, 5)}, [thumbnail(40, 32), gray(small), gray(large)])
    write("thumbnail_beside_images.h5", {"Thumbnail.jpg": (4, 5)}, [thumbnail(40, 32), gray(small), gray(large)],
          group="image")
    write("thumbnail_after_images.h5", {"thumbnail.JPG": (4, 5)}, [thumbnail(40, 32), gray(small), gray(large)],
          group="Image")
    write("thumbnail_only.h5", {"Thumbnail.jpg": (6, 3)}, [thumbnail(24, 48)], group=None)
    # A thumbnail may be smaller than the other pictures.
    write("tiny_thumbnail.h5", {"thumbnail.jpg": (1, 1)}, [thumbnail(8, 8), gray(small), gray(large)])
    write("wide_thumbnail.h5", {"THUMBNAIL.JPG": (1, 1024)}, [thumbnail(8192, 8), gray(small), gray(large)])
    write("too_wide_thumbnail.h5", {"Thumbnail.jpg": (1, 1025)}, both, [NO_JPEG])
    write("thumbnail_in_group.h5", {"pictures/Thumbnail.jpg": (4, 5)}, both)
    write("thumbnail_of_other_name.h5", {"Thumbnail.jpeg": (4, 5)}, both)
    # Of several the last one stands for the file. Beside a group of pictures the others are not shown.
    several = {"THUMBNAIL.JPG": (2, 3), "Thumbnail.jpg": (4, 5), "Thumbnail.JPG": (6, 2)}
    write("thumbnails.h5", several, [thumbnail(40, 32), gray(small), gray(large)])
    write("thumbnails_beside_images.h5", several,
          [thumbnail(40, 32), thumbnail(24, 16), thumbnail(16, 48), gray(small), gray(large)], group="images")

    damaged = np.frombuffer(b"\xff\xd8\xff\xe0" + bytes(300), "uint8")
    write("damaged_thumbnail.h5", {"Thumbnail.jpg": damaged}, both, [NO_JPEG])
    write("empty_thumbnail.h5", {"Thumbnail.jpg": np.zeros(0, "uint8")}, both, [NO_JPEG])
    write("text_for_thumbnail.h5", {"Thumbnail.jpg": np.array([b"picture"])}, both, [NO_JPEG])
    write("picture_for_thumbnail.h5", {"Thumbnail.jpg": noise("uint8", 40, 50)}, both, [NO_JPEG])
    write("one_good_thumbnail.h5", {"THUMBNAIL.JPG": (2, 3), "Thumbnail.jpg": damaged},
          [thumbnail(24, 16), gray(small), gray(large)], [NO_JPEG])
    with folder.new("no_thumbnail_and_no_image.h5") as file:
        put(file, "Thumbnail.jpg", damaged)
    folder.refused("no_thumbnail_and_no_image.h5", [NO_JPEG])
    # A group of this name has no picture, and what is in it no longer has the name.
    with folder.new("group_for_thumbnail.h5") as file:
        put_jpeg(file, "Thumbnail.jpg/Thumbnail.jpg", 4, 5)
    folder.refused("group_for_thumbnail.h5")


def add_damaged(folder):
    with folder.new("whole.h5") as file:
        put(file, "image", noise("uint16", 40, 50))
    folder.opens("whole.h5", [gray(h5py.File(folder.path_of("whole.h5"))["image"][...])])
    with open(folder.path_of("whole.h5"), "rb") as file:
        contents = file.read()
    for name, damaged in (("cut.h5", contents[:-100]), ("signature_only.h5", contents[:8] + bytes(1000))):
        with open(folder.path_of(name), "wb") as file:
            file.write(damaged)
        folder.refused(name, message="Could not open file")
