"""Folders of palettes and pictures for tests, and their pages."""
import os
import struct
import subprocess
import urllib.parse
import zlib


def png(grey, size=16):
    """A picture in one grey. Browsers know it by its bytes, whatever its name."""
    def chunk(kind, body):
        return (struct.pack('>I', len(body)) + kind + body
                + struct.pack('>I', zlib.crc32(kind + body)))
    rows = (b'\0' + bytes([grey]) * size) * size
    return (b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', size, size, 8, 0, 0, 0, 0))
            + chunk(b'IDAT', zlib.compress(rows)) + chunk(b'IEND', b''))


class Library:
    """A folder that is filled, and then given its page. Names are text or bytes."""

    def __init__(self, folder):
        self.folder = os.fsencode(folder)
        self.entries = []

    def add(self, name, text, picture=True, message='', dates=None):
        base = os.path.join(self.folder, os.fsencode(name))
        palette, image = base + b'.palette', base + b'.jpg'
        os.makedirs(os.path.dirname(base), exist_ok=True)
        with open(palette, 'w', encoding='utf-8') as file:
            file.write(text)
        if picture:
            with open(image, 'wb') as file:
                file.write(png(len(self.entries) % 256))
        for path, date in zip((palette, image), dates or ()):
            os.utime(path, (date, date))
        self.entries += [palette, image, message.encode()]

    def write_page(self):
        """Writes the page and gives its URL."""
        subprocess.run([os.environ['PAGE_WRITER'], self.folder], check=True,
                       input=b''.join(entry + b'\0' for entry in self.entries))
        return 'file://' + urllib.parse.quote(self.folder) + '/index.html'


def surface(shader, kind='surface'):
    return f"ShaderType {kind}\nVVaskel '{shader}'\nShopData\n"
