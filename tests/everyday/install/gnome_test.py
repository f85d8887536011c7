#!/usr/bin/env python3
"""Palettes as GNOME's file manager shows them: its thumbnail factory starts our program
in its sandbox. Runs where the packages are installed; the argument is a folder to work in."""
import os
import shutil
import stat
import sys
import unittest

import gi
gi.require_version("GnomeDesktop", "4.0")
from gi.repository import Gio, GLib, GnomeDesktop  # noqa: E402

from session import MIME, PALETTE, WORK, files_outside  # noqa: E402

SIZES = {
    128: GnomeDesktop.DesktopThumbnailSize.NORMAL,
    256: GnomeDesktop.DesktopThumbnailSize.LARGE,
    512: GnomeDesktop.DesktopThumbnailSize.XLARGE,
}
BAD = {
    "no_shader": "ShaderType surface\nShopData\n",
    "unknown_shader": 'ShaderType surface\nVVaskel "v_mettal"\n',
    "other_renderer": "ShaderType surface\nRIB plastic\n",
    "own_picture": 'ShaderType surface\nVVaskel "v_metal"\nBeginIfdExtra\n'
                   'picture "/tmp/elsewhere.png"\nEndIfdExtra\n',
}


def record_sandboxes():
    """A bwrap in front of PATH that writes its arguments down, so that we know that the
    sandbox was there. Returns the record."""
    log = WORK / "sandboxes"
    log.touch()
    folder = WORK / "bin"
    folder.mkdir()
    script = folder / "bwrap"
    script.write_text(f'#!/bin/sh\necho "$*" >>{log}\nexec {shutil.which("bwrap")} "$@"\n')
    script.chmod(stat.S_IRWXU)
    os.environ["PATH"] = f"{folder}:{os.environ['PATH']}"
    return log


def draw(path, size):
    factory = GnomeDesktop.DesktopThumbnailFactory.new(SIZES[size])
    uri = path.as_uri()
    if not factory.can_thumbnail(uri, MIME, int(path.stat().st_mtime)):
        raise AssertionError("the factory knows no thumbnailer")
    return factory.generate_thumbnail(uri, MIME, None)


class Gnome(unittest.TestCase):
    def test_the_type_is_found_by_name_and_by_contents(self):
        by_name, _ = Gio.content_type_guess("x.palette", None)
        by_contents, _ = Gio.content_type_guess("unknown", PALETTE.read_bytes())
        self.assertEqual((by_name, by_contents), (MIME, MIME))

    def test_each_size_is_drawn_in_the_sandbox(self):
        before = files_outside()
        for size in SIZES:
            with self.subTest(size=size):
                count = len(SANDBOXES.read_text().splitlines())
                picture = draw(PALETTE, size)
                self.assertEqual((picture.get_width(), picture.get_height()), (size, size))
                sandboxes = SANDBOXES.read_text().splitlines()[count:]
                self.assertEqual(len(sandboxes), 1)
                self.assertIn("palette-thumbnailer", sandboxes[0])
        self.assertEqual(files_outside() - before, set())

    def test_the_size_is_ours_whatever_the_palette_says(self):
        path = WORK / "sized.palette"
        path.write_text('ShaderType surface\nVVaskel "v_metal"\n'
                        'BeginIfdExtra\nsize 700 700\nEndIfdExtra\n')
        self.assertEqual(draw(path, 128).get_width(), 128)

    def test_a_bad_palette_is_an_error(self):
        before = files_outside()
        for name, text in BAD.items():
            with self.subTest(name):
                path = WORK / f"{name}.palette"
                path.write_text(text)
                with self.assertRaises(GLib.Error):
                    draw(path, 128)
        self.assertEqual(files_outside() - before, set())


if __name__ == "__main__":
    SANDBOXES = record_sandboxes()
    unittest.main(argv=sys.argv[:1], verbosity=2)
