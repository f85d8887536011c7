#!/usr/bin/env python3
"""Palettes as Xfce's file manager shows them: tumbler, asked over D-Bus. Runs on a session
bus where the packages are installed; the argument is a folder to work in."""
import hashlib
import os
import pathlib
import sys
import unittest

from gi.repository import Gio, GLib

from session import MIME, PALETTE, WORK, files_outside

SERVICE = "org.freedesktop.thumbnails.Thumbnailer1"
SIZES = {"normal": 128, "large": 256, "x-large": 512}


def png_size(path):
    head = path.read_bytes()[:24]
    return int.from_bytes(head[16:20], "big"), int.from_bytes(head[20:24], "big")


class Tumbler(unittest.TestCase):
    def setUp(self):
        self.proxy = Gio.DBusProxy.new_for_bus_sync(
            Gio.BusType.SESSION, Gio.DBusProxyFlags.NONE, None, SERVICE,
            "/org/freedesktop/thumbnails/Thumbnailer1", SERVICE, None)

    def ask(self, path, flavor):
        """Waits until tumbler has finished; its pairs of signal and message."""
        told = []
        loop = GLib.MainLoop()

        def receive(_proxy, _sender, signal, parameters):
            told.append((signal, parameters.unpack()))
            if signal == "Finished":
                loop.quit()

        connection = self.proxy.connect("g-signal", receive)
        give_up = GLib.timeout_add_seconds(120, loop.quit)
        self.proxy.call_sync("Queue", GLib.Variant("(asasssu)", (
            [path.as_uri()], [MIME], flavor, "foreground", 0)), Gio.DBusCallFlags.NONE, -1, None)
        loop.run()
        GLib.source_remove(give_up)
        self.proxy.disconnect(connection)
        return [signal for signal, _ in told]

    def kept(self, path, flavor):
        name = hashlib.md5(path.as_uri().encode()).hexdigest() + ".png"
        return pathlib.Path(os.environ["XDG_CACHE_HOME"], "thumbnails", flavor, name)

    def test_the_type_is_supported(self):
        _, types = self.proxy.call_sync("GetSupported", None, Gio.DBusCallFlags.NONE, -1,
                                        None).unpack()
        self.assertIn(MIME, types)

    def test_each_size_is_drawn(self):
        before = files_outside()
        for flavor, size in SIZES.items():
            with self.subTest(flavor):
                self.assertIn("Ready", self.ask(PALETTE, flavor))
                self.assertEqual(png_size(self.kept(PALETTE, flavor)), (size, size))
        self.assertEqual(files_outside() - before, set())

    def test_a_bad_palette_is_an_error(self):
        path = WORK / "bad.palette"
        path.write_text('ShaderType surface\nVVaskel "v_mettal"\n')
        told = self.ask(path, "normal")
        self.assertIn("Error", told)
        self.assertNotIn("Ready", told)
        self.assertFalse(self.kept(path, "normal").exists())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
