"""Has GNOME's library write thumbnails: gnome.py URI TYPE [URI TYPE]…"""

import sys

import gi


def library():
    """The library, which has the same functions in both versions that Debian has. Raises ValueError."""
    gi.require_version("GnomeDesktop", "4.0")
    from gi.repository import GnomeDesktop  # pylint: disable=import-outside-toplevel
    return GnomeDesktop


def main(words):
    desktop = library()
    factory = desktop.DesktopThumbnailFactory.new(desktop.DesktopThumbnailSize.LARGE)
    for uri, kind in zip(words[::2], words[1::2]):
        # The time of change is that of the copies, and only noted in the thumbnail.
        if factory.can_thumbnail(uri, kind, 0):
            picture = factory.generate_thumbnail(uri, kind, None)
            factory.save_thumbnail(picture, uri, 0, None)


if __name__ == "__main__":
    main(sys.argv[1:])
