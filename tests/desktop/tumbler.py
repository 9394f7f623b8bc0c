"""Tests what Xfce's thumbnailing service makes of the samples. Other file managers use it, too."""

from gi.repository import Gio, GLib

from desktop.samples import NOT_ASKED, WithSamples, kind_of

NAME = "org.freedesktop.thumbnails.Thumbnailer1"
SECONDS = 60


class Tumbler(WithSamples):
    def queue(self, flavor):
        """Asks the service for thumbnails, and waits until it has finished. Returns what it reports as errors."""
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        service = Gio.DBusProxy.new_sync(bus, Gio.DBusProxyFlags.NONE, None, NAME, "/" + NAME.replace(".", "/"), NAME, None)
        loop = GLib.MainLoop()
        errors = []

        def received(_proxy, _sender, signal, values):
            if signal == "Error":
                errors.extend(values[1])
            elif signal == "Finished":
                loop.quit()

        service.connect("g-signal", received)
        request = GLib.Variant("(asasssu)", ([file.as_uri() for file in self.files], [kind_of(file) for file in self.files],
                                             flavor, "default", 0))
        timer = GLib.timeout_add_seconds(SECONDS, loop.quit)
        service.call_sync("Queue", request, Gio.DBusCallFlags.NONE, SECONDS * 1000, None)
        loop.run()
        GLib.source_remove(timer)
        return errors

    def test_thumbnails_are_those_of_the_program(self):
        for flavor, size in (("normal", 128), ("large", 256)):
            errors = self.queue(flavor)
            self.assertEqual({uri.rpartition("/")[2] for uri in errors}, set(NOT_ASKED))
            self.assert_thumbnails(flavor, size)
