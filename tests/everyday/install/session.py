"""What the tests of file managers share: a folder to work in and a good palette there."""
import os
import pathlib
import sys

MIME = "application/x-veldrin-palette"
WORK = pathlib.Path(sys.argv[1])
PALETTE = WORK / "metal.palette"
PALETTE.write_text('ShaderType surface\nVVaskel "v_metal"\nShopData\n')


def files_outside():
    """The files that are there, but for what the desktop keeps about itself."""
    kept = (WORK, pathlib.Path(os.environ["XDG_RUNTIME_DIR"]))
    found = set()
    for top in ("/etc", "/home", "/root", "/tmp", "/usr", "/var"):
        for folder, folders, files in os.walk(top):
            folders[:] = [name for name in folders if pathlib.Path(folder, name) not in kept]
            found.update(os.path.join(folder, name) for name in folders + files)
    return found
