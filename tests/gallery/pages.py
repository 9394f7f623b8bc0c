"""The pages that check-page looks at: their entries, their pictures, and the program that writes them."""

import dataclasses
import pathlib
import shutil
import struct
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
BREAK = "window.broken=1"
PICTURE_SIDE = 200


@dataclasses.dataclass
class Entry:
    """One file on a page, in the order in which gallery_page reads its parts."""

    name: str
    source: str = ""
    picture: str = ""
    picture_width: int = 0
    picture_height: int = 0
    width: int = 0
    height: int = 0
    frames: int = 0
    pixel_type: str = ""
    software: str = ""
    details: str = ""
    failure: str = ""


def shown(name, size, pixel_type, frames, picture, **more):
    return Entry(name, "D:\\data\\" + name, picture, width=size[0], height=size[1], frames=frames,
                 pixel_type=pixel_type, **more)


def failed(name, reason):
    return Entry(name, "D:\\data\\" + name, failure=reason)


def few_entries():
    """Files whose order and matches can be written down, and some with texts that must not become HTML."""
    return [
        shown("b10.mrc", (512, 512), "Int16", 1, "pictures/b10.mrc.png", software="Pellox", details="mode 1"),
        shown("B9.mrc", (1024, 1024), "Float32", 40, "pictures/B9.mrc.png"),
        shown("a.dm4", (2048, 2048), "UInt16", 1, "pictures/a.dm4.png"),
        failed("cut.dm4", "the picture is damaged (WINCODEC_ERR_BADIMAGE)"),
        shown("b2.mrc", (4096, 64), "Int16", 12, "pictures/b2.mrc.png"),
        # The name has the mark of the umlaut as a character of its own.
        shown("sub\\U\u0308bersicht 1.ser", (512, 512), "UInt16", 3, "pictures/sub/U\u0308bersicht 1.ser.png"),
        shown(f'<img src=x onerror="{BREAK}">.mrc', (100, 50), f'"><img src=x onerror={BREAK}>', 2,
              'a:100% #1? "q" \'&amp; \U0001F52C.png', software=f"--><script>{BREAK}</script>"),
        failed(f"</ul><script>{BREAK}</script>", f"<svg onload={BREAK}>"),
    ]


def many_entries(count):
    """As many files as a large folder has."""
    sizes = [(4096, 4096), (2048, 2048), (3838, 3710), (512, 512), (5760, 4092)]
    types = ["Int16", "Float32", "UInt8", "UInt16", "Double64"]
    entries = [shown("a" * 120 + "_0001.mrc", sizes[0], types[0], 1, "pictures/long name.png")]
    for index in range(1, count):
        name = f"grid {index // 400 + 1}\\square {index % 400 // 20 + 1}\\exposure_{index}.mrc"
        if index % 37 == 5:
            entries.append(failed(name, "the header is damaged (WINCODEC_ERR_BADHEADER)"))
        else:
            entries.append(shown(name, sizes[index % 5], types[index % 3 + index % 2], index % 4 * 20 + 1,
                                 "pictures/" + name.replace("\\", "/") + ".png", software="Pellox"))
    return entries


def png_size(path):
    with open(path, "rb") as file:
        return struct.unpack(">II", file.read(24)[16:])


def write_page(program, folder, title, entries):
    """Writes a page with its pictures, and returns its address. The folder is made anew."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    samples = sorted(path for path in (ROOT / "docs" / "pictures").glob("*.png") if path.name != "sheet.png")
    for sample in samples:
        shutil.copyfile(sample, folder / sample.name)
    sizes = [png_size(sample) for sample in samples]
    for index, entry in enumerate(entry for entry in entries if entry.picture):
        path = folder / entry.picture
        path.parent.mkdir(parents=True, exist_ok=True)
        path.hardlink_to(folder / samples[index % len(samples)].name)
        entry.picture_width, entry.picture_height = sizes[index % len(samples)]
    entry_list = folder / "entries.txt"
    entry_list.write_text("".join("\t".join(map(str, dataclasses.astuple(entry))) + "\n" for entry in entries),
                          encoding="utf-8", newline="")
    page = folder / "index.html"
    paths = ["Z:" + str(path).replace("/", "\\") for path in (entry_list, page)]
    subprocess.run([ROOT / "cmake" / "wine-run", program, *paths, title, str(PICTURE_SIDE)], check=True,
                   stdin=subprocess.DEVNULL)
    return page.as_uri()
