#!/usr/bin/env python3
"""Times vaskel's pictures beside each other and beside other renderers, and their noise.

    bench/pictures.py [--runs N] [--only NAME]... [EXAMPLE...]

Wall times are medians of whole processes that take turns, N rounds (5); what is
printed is ratios and what we must and want to reach. NAME chooses measurements:

    examples  thumbrender on each example and its shape, relative to the default ball
    peers     the default ball beside POV-Ray and Blender drawing a comparable scene
    noise     each example against its own reference of 4096 samples a pixel: RMS
              difference of 8-bit values, in per cent of full scale
    startup   a scene without shapes and next to no pixels
    memory    the most memory that each example needs
    size      the default ball with 256 to 1024 pixels a side; a pixel's cost

A renderer that is not installed shows as "-". Files go to a temporary folder.
"""
import argparse
import glob
import os
import shutil
import statistics
import struct
import subprocess
import sys
import tempfile
import time
import zlib

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BIN = os.path.join(ROOT, "build", "release", "bin")
EXAMPLES = os.path.join(ROOT, "examples")
DEFAULT = "red_plastic"
REFERENCE_SAMPLES = 4096
CAPTURE = "#!/bin/sh\nexec cat >scene\n"  # stands in for vaskel

POV_SCENE = """#version 3.7;
global_settings { assumed_gamma 1.0 }
background { rgb <.25, .25, .25> }
camera { location <0, 2.3, -6.4> look_at <0, .95, 0> right x angle 24 }
#macro Panel(Place, Level)
  light_source { Place color rgb Level area_light <3, 0, 0>, <0, 0, 3>, 8, 8
    adaptive 1 jitter circular orient }
#end
Panel(<-5.5, 5.2, -4.2>, .9)
Panel(<5, 3, -3>, .2)
plane { y, 0 pigment { checker rgb .42, rgb .24 scale .5 } finish { diffuse .9 ambient .15 } }
sphere { <0, 1, 0>, 1 pigment { rgb <.62, .02, .02> }
  finish { diffuse .9 ambient .15 specular .6 roughness .01 reflection { .04, 1 fresnel } conserve_energy }
  interior { ior 1.5 } }
"""
POV = ["povray", "+Ipov.pov", "+Opov.png", "+W256", "+H256", "+A", "-D", "-GA"]

BLENDER_SCENE = """import bpy
from mathutils import Vector
bpy.ops.wm.read_factory_settings(use_empty=True)
scene = bpy.context.scene
def place(data, at):
    item = bpy.data.objects.new("x", data)
    scene.collection.objects.link(item)
    item.location = at
    item.rotation_euler = (Vector((0, 0, 1)) - Vector(at)).to_track_quat("-Z", "Y").to_euler()
    return item
for at, power in (((-5.5, -4.2, 5.2), 900), ((5, -3, 3), 150)):
    panel = bpy.data.lights.new("l", "AREA")
    panel.energy, panel.size = power, 3
    place(panel, at)
camera = bpy.data.cameras.new("c")
camera.angle = 24 * 3.14159265 / 180
scene.camera = place(camera, (0, -6.4, 2.3))
bpy.ops.mesh.primitive_plane_add(size=60)
bpy.ops.mesh.primitive_uv_sphere_add(segments=192, ring_count=96, location=(0, 0, 1))
bpy.ops.object.shade_smooth()
scene.render.engine = "CYCLES"
scene.cycles.samples = 64
scene.cycles.use_denoising = False
scene.render.resolution_x = scene.render.resolution_y = 256
scene.render.filepath = "blender.png"
bpy.ops.render.render(write_still=True)
"""
BLENDER = ["blender", "--background", "--factory-startup", "--python-exit-code", "1",
           "--python", "blender.py"]


def environment(first=BIN):
    paths = os.pathsep.join([first, BIN, os.environ["PATH"]])
    return dict(os.environ, PATH=paths, VDX=os.path.join(ROOT, "share"))


def run(command, folder, text=None):
    """The seconds of wall time that a command takes; it must succeed."""
    start = time.perf_counter()
    place = dict(environment(), PWD=folder)  # Blender believes it
    subprocess.run(command, cwd=folder, env=place, input=text, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return time.perf_counter() - start


def medians(commands, runs, folder):
    """Median seconds of named commands that take turns."""
    times = {name: [] for name in commands}
    for _ in range(runs):
        for name, command in commands.items():
            times[name].append(run(command, folder))
    return {name: statistics.median(t) for name, t in times.items()}


def scene_of(example, folder):
    """What vaskel would read for an example, writing p.png."""
    fake = os.path.join(folder, "fake")
    os.makedirs(fake, exist_ok=True)
    with open(os.path.join(fake, "vaskel"), "w") as out:
        out.write(CAPTURE)
    os.chmod(os.path.join(fake, "vaskel"), 0o755)
    subprocess.run(thumbnail(example), cwd=folder, env=environment(fake), check=True)
    with open(os.path.join(folder, "scene")) as text:
        lines = text.read().splitlines()
    kept = [line for line in lines if not line.startswith("picture") and line != "end"]
    return "".join(line + "\n" for line in kept + ["picture p.png", "end"])


def unfiltered(kind, row, above):
    """Undoes a row's filter (PNG, section 9), three bytes a pixel."""
    for i, value in enumerate(row):
        left = row[i - 3] if i >= 3 else 0
        up = above[i]
        corner = above[i - 3] if i >= 3 else 0
        guess = left + up - corner
        paeth = min((left, up, corner), key=lambda c: abs(guess - c))
        row[i] = (value + (0, left, up, (left + up) // 2, paeth)[kind]) & 255
    return row


def pixels(path):
    """The bytes of an 8-bit RGB PNG."""
    with open(path, "rb") as file:
        data = file.read()
    at, packed, width = 8, b"", struct.unpack(">I", data[16:20])[0]
    while at < len(data):
        size, kind = struct.unpack(">I4s", data[at:at + 8])
        if kind == b"IDAT":
            packed += data[at + 8:at + 8 + size]
        at += size + 12
    raw, stride = zlib.decompress(packed), 3 * width
    rows, above = bytearray(), bytearray(stride)
    for start in range(0, len(raw), stride + 1):
        above = unfiltered(raw[start], bytearray(raw[start + 1:start + 1 + stride]), above)
        rows += above
    return rows


def noise_of(scene, folder):
    run(["vaskel"], folder, scene.encode())
    drawn = pixels(os.path.join(folder, "p.png"))
    run(["vaskel", "--samples", str(REFERENCE_SAMPLES)], folder, scene.encode())
    exact = pixels(os.path.join(folder, "p.png"))
    square = sum((a - b) ** 2 for a, b in zip(drawn, exact)) / len(drawn)
    return 100 * square ** .5 / 255


def report(what, value, must, aim, unit=""):
    print("%-28s %8.2f%-3s %8g %8g" % (what, value, unit, must, aim), flush=True)


def thumbnail(example):
    """The command, with the shape that the palette's comment asks for."""
    palette = example + ".palette"
    shape = subprocess.run([os.path.join(ROOT, "scripts", "shape-of.sh"),
                            os.path.join(EXAMPLES, palette)], stdout=subprocess.PIPE, check=True)
    return ["thumbrender", "-q"] + shape.stdout.decode().split() + [palette]


def measure_examples(examples, runs, folder):
    names = [DEFAULT] + [e for e in examples if e != DEFAULT]
    times = medians({name: thumbnail(name) for name in names}, runs, folder)
    for name in examples:
        report(name, times[name] / times[DEFAULT], 3, 2, " x")


def measure_peers(_, runs, folder):
    for name, text in (("pov.pov", POV_SCENE), ("blender.py", BLENDER_SCENE)):
        with open(os.path.join(folder, name), "w") as out:
            out.write(text)
    peers = {c[0]: c for c in (POV, BLENDER) if shutil.which(c[0])}
    times = medians(dict(peers, ours=thumbnail(DEFAULT)), runs, folder)
    report("default ball", times["ours"], .45, .3, " s")
    for name, must, aim in (("povray", 1 / 3, .2), ("blender", .1, .1)):
        if name in times:
            report("part of %s's %.2f s" % (name, times[name]), times["ours"] / times[name],
                   must, aim, " x")
        else:
            print("%-28s        -    not installed" % ("part of " + name))


def measure_noise(examples, _, folder):
    for name in examples:
        scene = scene_of(name, folder)
        hard = "\nfog " in scene or "v_glass" in scene or "v_frosted" in scene
        report(name, noise_of(scene, folder), .8 if hard else .6, .5, " %")


def measure_startup(_, runs, folder):
    with open(os.path.join(folder, "empty"), "w") as out:
        out.write("picture p.png\nsize 16 16\ncamera\nend\n")
    times = medians({"empty": ["vaskel", "empty"]}, max(runs, 11), folder)
    report("no shapes", 1000 * times["empty"], 15, 10, " ms")


def measure_memory(examples, _, folder):
    for name in examples:
        scene = scene_of(name, folder)
        with open(os.path.join(folder, "scene"), "w") as out:
            out.write(scene)
        process = subprocess.Popen(["vaskel", "scene"], cwd=folder, env=environment())
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            sys.exit("vaskel failed on %s" % name)
        report(name, usage.ru_maxrss / 1024, 120, 60, " MB")


def measure_size(_, runs, folder):
    scene, commands, sides = scene_of(DEFAULT, folder), {}, (256, 512, 1024)
    for side in sides:
        with open(os.path.join(folder, "scene%d" % side), "w") as out:
            out.write(scene)
        commands[side] = ["vaskel", "--size", str(side), "scene%d" % side]
    times = medians(commands, runs, folder)
    for side in sides:
        cost = times[side] / times[sides[0]] * (sides[0] / side) ** 2
        report("%d pixels a side" % side, cost, 1.2, 1, " x")


MEASUREMENTS = {
    "examples": measure_examples,
    "peers": measure_peers,
    "noise": measure_noise,
    "startup": measure_startup,
    "memory": measure_memory,
    "size": measure_size,
}


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--only", action="append", choices=MEASUREMENTS, default=[])
    parser.add_argument("examples", nargs="*")
    arguments = parser.parse_args()
    known = sorted(os.path.basename(p)[:-len(".palette")]
                   for p in glob.glob(os.path.join(EXAMPLES, "*.palette")))
    unknown = set(arguments.examples) - set(known)
    if unknown:
        sys.exit("no such example: %s; there are %s" % (", ".join(unknown), ", ".join(known)))
    with tempfile.TemporaryDirectory() as folder:
        for name in known:
            shutil.copy(os.path.join(EXAMPLES, name + ".palette"), folder)
        for source in glob.glob(os.path.join(EXAMPLES, "*.osl")):
            shutil.copy(source, folder)
        for name in arguments.only or MEASUREMENTS:
            print("%-39s %9s %8s" % (name, "must", "aim"))
            MEASUREMENTS[name](arguments.examples or known, arguments.runs, folder)


if __name__ == "__main__":
    main()
