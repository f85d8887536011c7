#!/usr/bin/env python3
"""Holds vaskel's light against Blender's Cycles, and against the white furnace.

    bench/truth.py [--samples N] [--only NAME]... [--folder FOLDER] [--blocks]
                   [--vaskel OPTION]...

The studio of the thumb nails, ball, stand and floor, is built again in Blender: the same
triangles, camera, environment, radiance of lights and materials. Cycles draws it without
limits and with N samples a pixel (1024), which takes minutes; its pictures stay in FOLDER
(build/truth), so that the next run compares at once. What is printed is linear light of
vaskel at default quality over that of Cycles: of the whole picture, and of its blocks of
16 x 16 pixels. Cycles is noisy too, so it draws two halves of the samples; the half of their
difference is about the standard error of their mean. A block counts as beyond its limit when
it is so by two of these, at most by as much as the limit again. Blocks that show light gathered
by glass are left out: vaskel sends light straight through (doc/scene.md). --blocks prints the
blocks' ratios as a map.

The furnace needs no Blender. In surroundings of 1 without lights a white surface that
sends on all that arrives is not to be seen: what is printed is its light, by roughness, with
64 samples a pixel and no filter, so that it tells of surfaces alone.
"""
import argparse
import array
import os
import re
import shutil
import subprocess
import sys

import pictures

SIDE, BLOCK = 256, 16
BLOCKS = SIDE // BLOCK
STOPS = -2  # so that little is cut off at the file's white
SHAPES = os.path.join(pictures.ROOT, "vaskel", "shapes", "vk_Shapes.cpp")
SKY = {"top": (.11, .125, .15), "horizon": (.40, .40, .395), "ground": (.08, .076, .072)}
LEVEL = .65
LIGHTS = [  # place, intensity, width, height; all aim at (0 1 0)
    ((-5.5, 5.2, 4.2), .68, 3.4, 3.4), ((5, 3, 3), .07, 3, 3), ((4.5, 4, -4.5), .3, 2, 3)]
SCENE = """size 256 256
camera from 0 2.3 6.4 at 0 .95 0 fov 22
environment v_studio intensity .65
floor v_checker
lightplace from -5.5 5.2 4.2 to 0 1 0
light v_area intensity .68 width 3.4 height 3.4
lightplace from 5 3 3 to 0 1 0
light v_area intensity .07 width 3 height 3
lightplace from 4.5 4 -4.5 to 0 1 0
light v_area intensity .3 width 2 height 3
"""
MATERIALS = {  # what vaskel reads; Blender's node, its sockets; must: blocks, mean
    "matte .8": ("v_matte diff .8", "Diffuse", {"Color": .8}, .05, .015),
    "metal .2": ("v_metal color .9 edge .9 rough .2", "Glossy",
                 {"Color": .9, "Roughness": .2}, .05, .015),
    "metal .5": ("v_metal color .9 edge .9 rough .5", "Glossy",
                 {"Color": .9, "Roughness": .5}, .05, .015),
    "mirror": ("v_metal color .9 edge .9 rough 0", "Glossy",
               {"Color": .9, "Roughness": 0}, .05, .015),
    "clear glass": ("v_glass tint 1", "Glass", {"Color": 1, "IOR": 1.5, "Roughness": 0}, .15, .03),
    "frosted glass": ("v_frosted tint 1 rough .45", "Glass",
                      {"Color": 1, "IOR": 1.5, "Roughness": .45}, .15, .03),
}
FURNACE = {
    "v_matte": "v_matte diff 1",
    "v_plastic": "v_plastic diff 1 rough %g",
    "v_metal": "v_metal color 1 rough %g",
    "v_brushed": "v_brushed color 1 rough %g",
    "v_carpaint": "v_carpaint color 1 flake 1",
    "v_carpaint, no flakes": "v_carpaint color 1 flake 1 flakes 0",
    "v_glass": "v_glass tint 1",
    "v_frosted": "v_frosted tint 1 rough %g",
    "v_velvet": "v_velvet diff 1 sheen 1 rough %g",
    "v_wax": "v_wax diff 1 scatter .1 rough %g",
}
ROUGH = (0, .15, .3, .6, 1)
ALL_BACK = ("v_metal", "v_brushed", "v_frosted")  # must give back .97 of what arrives, however rough

BLENDER = r"""
import array, bpy, json, math, sys
from mathutils import Vector
job = json.load(open("job.json"))
bpy.ops.wm.read_factory_settings(use_empty=True)
scene = bpy.context.scene

def turned(p):  # y is up in our scenes, z in Blender's
    return (p[0], -p[2], p[1])

def material(name):
    made = bpy.data.materials.new(name)
    made.use_nodes = True
    made.cycles.sample_as_light = name == "lamp"
    nodes = made.node_tree.nodes
    nodes.clear()
    return made, nodes, made.node_tree.links, nodes.new("ShaderNodeOutputMaterial")

def mesh(name, vertices, faces, surface, normals=None):
    data = bpy.data.meshes.new(name)
    data.from_pydata([turned(v) for v in vertices], [], faces)
    for face in data.polygons:
        face.use_smooth = normals is not None
    if normals is not None:
        data.use_auto_smooth = True
        data.normals_split_custom_set_from_vertices([turned(n) for n in normals])
    data.materials.append(surface)
    item = bpy.data.objects.new(name, data)
    scene.collection.objects.link(item)
    return item

def smooth_step(nodes, links, a, b, value):
    node = nodes.new("ShaderNodeMapRange")
    node.interpolation_type = "SMOOTHSTEP"
    node.inputs["From Min"].default_value, node.inputs["From Max"].default_value = a, b
    links.new(value, node.inputs["Value"])
    return node.outputs["Result"]

def mix(nodes, links, a, b, factor):
    node = nodes.new("ShaderNodeMixRGB")
    for socket, value in (("Color1", a), ("Color2", b)):
        if isinstance(value, (list, tuple)):
            node.inputs[socket].default_value = (*value, 1)
        else:
            links.new(value, node.inputs[socket])
    links.new(factor, node.inputs["Fac"])
    return node.outputs["Color"]

def sky():
    world = bpy.data.worlds.new("w")
    scene.world = world
    world.use_nodes = True
    nodes, links = world.node_tree.nodes, world.node_tree.links
    nodes.clear()
    way = nodes.new("ShaderNodeTexCoord")
    split = nodes.new("ShaderNodeSeparateXYZ")
    links.new(way.outputs["Generated"], split.inputs[0])
    up = split.outputs["Z"]
    colours = job["sky"]
    above = mix(nodes, links, colours["horizon"], colours["top"],
                smooth_step(nodes, links, -.1, .8, up))
    # Our lower step falls: 1 below -.25, 0 above .02.
    all_round = mix(nodes, links, colours["ground"], above,
                    smooth_step(nodes, links, -.25, .02, up))
    shine = nodes.new("ShaderNodeBackground")
    shine.inputs["Strength"].default_value = job["level"]
    links.new(all_round, shine.inputs["Color"])
    output = nodes.new("ShaderNodeOutputWorld")
    links.new(shine.outputs[0], output.inputs["Surface"])

def floor():
    made, nodes, links, output = material("floor")
    place = nodes.new("ShaderNodeNewGeometry")
    checks = nodes.new("ShaderNodeTexChecker")
    checks.inputs["Scale"].default_value = 2
    shift = nodes.new("ShaderNodeVectorMath")
    shift.inputs[1].default_value = (.0005, -.0005, .001)
    links.new(place.outputs["Position"], shift.inputs[0])
    links.new(shift.outputs[0], checks.inputs["Vector"])
    checks.inputs["Color1"].default_value = (.42, .42, .42, 1)
    checks.inputs["Color2"].default_value = (.24, .24, .24, 1)
    matte = nodes.new("ShaderNodeBsdfDiffuse")
    links.new(checks.outputs["Color"], matte.inputs["Color"])
    haze = nodes.new("ShaderNodeEmission")
    haze.inputs["Color"].default_value = (*job["haze"], 1)
    far = nodes.new("ShaderNodeVectorMath")
    far.operation = "LENGTH"
    links.new(place.outputs["Position"], far.inputs[0])
    both = nodes.new("ShaderNodeMixShader")
    links.new(smooth_step(nodes, links, 4, 18, far.outputs["Value"]), both.inputs["Fac"])
    links.new(matte.outputs[0], both.inputs[1])
    links.new(haze.outputs[0], both.inputs[2])
    links.new(both.outputs[0], output.inputs["Surface"])
    # A little lower than ours: Cycles looks past a floor that touches the stand's bottom.
    r, y = 5000, -.0005
    mesh("floor", [(-r, y, -r), (-r, y, r), (r, y, r), (r, y, -r)], [(0, 1, 2, 3)], made)

# Shines to the front only, is not in the way of light and not seen by the camera.
def lamp(corners, radiance):
    made, nodes, links, output = material("lamp")
    side = nodes.new("ShaderNodeNewGeometry")
    front = nodes.new("ShaderNodeMath")
    front.operation = "MULTIPLY_ADD"
    front.inputs[1].default_value, front.inputs[2].default_value = -radiance, radiance
    links.new(side.outputs["Backfacing"], front.inputs[0])
    shine = nodes.new("ShaderNodeEmission")
    links.new(front.outputs[0], shine.inputs["Strength"])
    clear = nodes.new("ShaderNodeBsdfTransparent")
    both = nodes.new("ShaderNodeAddShader")
    links.new(shine.outputs[0], both.inputs[0])
    links.new(clear.outputs[0], both.inputs[1])
    links.new(both.outputs[0], output.inputs["Surface"])
    mesh("lamp", corners, [(0, 1, 2, 3)], made).visible_camera = False

def surface():
    made, nodes, links, output = material("shape")
    node = nodes.new("ShaderNodeBsdf" + job["node"])
    if job["node"] != "Diffuse":
        node.distribution = "SHARP" if job["sockets"]["Roughness"] == 0 else "MULTI_GGX"
    for name, value in job["sockets"].items():
        node.inputs[name].default_value = (value, value, value, 1) if name == "Color" else value
    links.new(node.outputs[0], output.inputs["Surface"])
    return made

sky()
floor()
for one in job["lamps"]:
    lamp(*one)
shape = surface()
for one in job["meshes"]:
    mesh("shape", *one[:2], shape, one[2])
camera = bpy.data.cameras.new("c")
camera.angle = math.radians(22)
eye = bpy.data.objects.new("c", camera)
scene.collection.objects.link(eye)
eye.location = turned((0, 2.3, 6.4))
to = Vector(turned((0, .95, 0))) - Vector(eye.location)
eye.rotation_euler = to.to_track_quat("-Z", "Y").to_euler()
scene.camera = eye
scene.render.engine = "CYCLES"
cycles = scene.cycles
cycles.samples, cycles.use_adaptive_sampling, cycles.use_denoising = job["samples"], False, False
cycles.seed = job["seed"]
cycles.max_bounces = cycles.diffuse_bounces = cycles.glossy_bounces = 64
cycles.transmission_bounces = cycles.transparent_max_bounces = 64
cycles.caustics_reflective = cycles.caustics_refractive = job["caustics"]
cycles.blur_glossy = cycles.sample_clamp_indirect = 0
cycles.light_threshold = 0
# A quarter of the width is the standard deviation: half a pixel, as of vaskel's splines, so that
# what lies at the border of a block spreads alike to its neighbours.
cycles.pixel_filter_type, cycles.filter_width = "GAUSSIAN", 2
scene.view_settings.view_transform = "Raw"
scene.render.resolution_x = scene.render.resolution_y = job["side"]
scene.render.resolution_percentage = 100
scene.render.image_settings.file_format = "OPEN_EXR"
scene.render.image_settings.color_depth = "32"
scene.render.filepath = "p.exr"
bpy.ops.render.render(write_still=True)
drawn = bpy.data.images.load(bpy.path.abspath(sys.argv[-1] + "/p.exr"))
array.array("f", drawn.pixels[:]).tofile(open("p.raw", "wb"))
"""


def smooth_step(a, b, x):
    t = min(1, max(0, (x - a) / (b - a)))
    return t * t * (3 - 2 * t)


def haze():
    """What the environment shows on the level, to which the floor fades."""
    high, low = smooth_step(-.1, .8, 0), 1 - smooth_step(-.25, .02, 0)
    mixed = lambda a, b, t: [x + (y - x) * t for x, y in zip(a, b)]
    level = mixed(mixed(SKY["horizon"], SKY["top"], high), SKY["ground"], low)
    return [LEVEL * x for x in level]


def cross(a, b):
    return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]]


def unit(a):
    length = sum(x * x for x in a) ** .5
    return [x / length for x in a] if length > 0 else [0, 1, 0]


def lamp(place, intensity, width, height):
    """Corners that turn their front to (0 1 0), and the radiance that shows as intensity."""
    from math import atan, pi
    way = [0 - place[0], 1 - place[1], 0 - place[2]]
    normal = unit(way)
    across = unit(cross([0, 1, 0], normal))
    up = cross(normal, across)
    at = lambda i, j: [place[k] + i * width / 2 * across[k] + j * height / 2 * up[k]
                       for k in range(3)]
    distance = sum(x * x for x in way) ** .5
    a, b = width / 2 / distance, height / 2 / distance
    ra, rb = (1 + a * a) ** .5, (1 + b * b) ** .5
    share = 2 / pi * (a / ra * atan(b / ra) + b / rb * atan(a / rb))
    return [[at(-1, -1), at(1, -1), at(1, 1), at(-1, 1)], intensity / share]


def net(columns, rows, at):
    """Triangles as the mesh builder lays them: places, corners, normals."""
    both = [at(i / columns, j / rows) for j in range(rows + 1) for i in range(columns + 1)]
    faces = []
    for j in range(rows):
        for i in range(columns):
            a = j * (columns + 1) + i
            b = a + columns + 1
            faces += [(a, a + 1, b), (a + 1, b + 1, b)]
    return [p for p, _ in both], faces, [n for _, n in both]


def ball(u, v):
    from math import cos, pi, sin
    around, up = 2 * pi * u, pi * (v - .5)
    n = [cos(up) * sin(around), sin(up), cos(up) * cos(around)]
    return [.88 * n[0], .88 * n[1] + 1.12, .88 * n[2]], n


def stand_outline():
    """The stand's control points, out of the renderer's own source."""
    with open(SHAPES) as text:
        table = re.search(r"STAND\[3[^=]*= \{(.*?)\n\};", text.read(), re.S).group(1)
    table = re.sub(r"//.*", "", table)
    return [[float(x) for x in pair] for pair in re.findall(r"\{([-.\d]+)f?, ([-.\d]+)f?\}", table)]


def stand(points):
    from math import cos, pi, sin

    def at(u, v):
        curve = min(int(v * 7), 6)
        t = v * 7 - curve
        weights = [(1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t * t * (1 - t), t ** 3]
        slopes = [-3 * (1 - t) ** 2, 3 * (1 - t) * (1 - 3 * t), 3 * t * (2 - 3 * t), 3 * t * t]
        four = points[3 * curve:3 * curve + 4]
        radius, height = (sum(w * p[k] for w, p in zip(weights, four)) for k in (0, 1))
        out, rise = (sum(w * p[k] for w, p in zip(slopes, four)) for k in (0, 1))
        side = (sin(2 * pi * u), cos(2 * pi * u))
        return ([radius * side[0], height, radius * side[1]],
                unit([side[0] * rise, -out, side[1] * rise]))
    return at


def halves(name, caustics, samples, folder):
    """Blocks of Cycles, and about their standard errors, as shares of them."""
    a, b = (blocks(capped(cycles(name, caustics, samples // 2, seed, folder))) for seed in (0, 1))
    return ([(x + y) / 2 for x, y in zip(a, b)], [abs(x - y) / (x + y) for x, y in zip(a, b)])


def cycles(name, caustics, samples, seed, folder):
    """Linear luminance of Cycles' pixels, from the top; drawn if it is not there yet."""
    import hashlib
    import json
    _, node, sockets, _, _ = MATERIALS[name]
    job = json.dumps({
        "node": node, "sockets": sockets, "samples": samples, "seed": seed, "side": SIDE,
        "caustics": caustics, "sky": SKY, "level": LEVEL, "haze": haze(),
        "lamps": [lamp(*one) for one in LIGHTS],
        "meshes": [net(144, 72, ball), net(144, 40, stand(stand_outline()))]})
    # By all that Blender is told: one that was drawn in another way is no truth.
    words = "%s %s %s" % (name, samples, hashlib.sha1((BLENDER + job).encode()).hexdigest())
    kept = os.path.join(folder, words.replace(" ", "_") + ".raw")
    if not os.path.exists(kept):
        with open(os.path.join(folder, "job.json"), "w") as out:
            out.write(job)
        with open(os.path.join(folder, "studio.py"), "w") as out:
            out.write(BLENDER)
        subprocess.run(["blender", "--background", "--factory-startup", "--python-exit-code", "1",
                        "--python", "studio.py", "--", folder], cwd=folder, check=True,
                       env=dict(os.environ, PWD=folder), stdout=subprocess.DEVNULL)
        os.rename(os.path.join(folder, "p.raw"), kept)
    values = array.array("f")
    with open(kept, "rb") as file:
        values.fromfile(file, 4 * SIDE * SIDE)
    rows = [[luminance(values[4 * (y * SIDE + x):4 * (y * SIDE + x) + 3]) for x in range(SIDE)]
            for y in range(SIDE)]
    return rows[::-1]


def luminance(colour):
    return .2126 * colour[0] + .7152 * colour[1] + .0722 * colour[2]


def light_of_bytes():
    """Linear light by byte of the file: the tone curve (vk_Film.cpp) undone."""
    a, d, grey, white = 1.18, .97, .214, 8
    span = (white ** (a * d) - grey ** (a * d)) * grey
    b = (white ** a * grey - grey ** a) / span
    c = (white ** (a * d) * grey ** a - white ** a * grey ** (a * d) * grey) / span
    curve = lambda x: x ** a / (x ** (a * d) * b + c)
    table = []
    for byte in range(256):
        s = byte / 255
        shown = s / 12.92 if s <= .04045 else ((s + .055) / 1.055) ** 2.4
        low, high = 0.0, float(white)
        for _ in range(60):
            middle = (low + high) / 2
            low, high = (middle, high) if curve(middle) < shown else (low, middle)
        table.append(low * 2 ** -STOPS)
    return table


def vaskel(lines, folder, *options):
    """Linear luminance of vaskel's pixels."""
    scene = "%s\npicture p.png\nexposure %g\nend\n" % (lines, STOPS)
    pictures.run(["vaskel", *options], folder, scene.encode())
    light, raw = light_of_bytes(), pictures.pixels(os.path.join(folder, "p.png"))
    return [[luminance([light[v] for v in raw[3 * (y * SIDE + x):3 * (y * SIDE + x) + 3]])
             for x in range(SIDE)] for y in range(SIDE)]


def blocks(rows):
    return [sum(rows[y][x] for y in range(j, j + BLOCK) for x in range(i, i + BLOCK)) / BLOCK ** 2
            for j in range(0, SIDE, BLOCK) for i in range(0, SIDE, BLOCK)]


def capped(rows):
    white = 8 * 2.0 ** -STOPS
    return [[min(x, white) for x in row] for row in rows]


def compare(name, arguments, folder):
    text, node, _, most, mean_most = MATERIALS[name]
    exact, errors = halves(name, True, arguments.samples, folder)
    counts = [True] * len(exact)
    if node == "Glass":
        dim, _ = halves(name, False, arguments.samples, folder)
        counts = [abs(a - b) < .1 * a for a, b in zip(exact, dim)]
    drawn = blocks(vaskel(SCENE + "surface " + text + "\nshaderball", folder, *arguments.vaskel))
    ratios = [a / b for a, b in zip(drawn, exact)]
    kept = [r for r, count in zip(ratios, counts) if count]
    mean = sum(drawn) / sum(exact)
    limits = [most + min(2 * e, most) for e, count in zip(errors, counts) if count]
    beyond = sum(abs(r - 1) > limit for r, limit in zip(kept, limits))
    print("%-14s %6.3f (%.3f) %7.2f %6.2f (%.2f) %4d of %d" % (
        name, mean, mean_most, min(kept), max(kept), most, beyond, len(kept)), flush=True)
    for row in range(BLOCKS if arguments.blocks else 0):
        line = zip(ratios, counts)
        print(" ".join(("%4d" % round(100 * r) if c else "   .") for r, c in
                       list(line)[row * BLOCKS:(row + 1) * BLOCKS]))


def furnace(folder, options):
    print("%-24s" % "furnace, rough" + "".join("%7g" % r for r in ROUGH))
    for name, text in FURNACE.items():
        shown = []
        for rough in ROUGH if "%" in text else ROUGH[:1]:
            surface = text % rough if "%" in text else text
            scene = "size 256 256\ncamera from 0 1 6 at 0 1 0 fov 18\nenvironment v_studio " \
                    "top 1 horizon 1 ground 1\nsurface %s\nsphere" % surface
            rows = vaskel(scene, folder, "--samples", "64", *options)
            disc = [rows[y][x] for y in range(SIDE) for x in range(SIDE)
                    if (x - 127.5) ** 2 + (y - 127.5) ** 2 < 110 ** 2]
            shown.append(sum(disc) / len(disc))
        least = .97 if name in ALL_BACK else 0
        good = all(least <= v <= 1.005 for v in shown)
        print("%-24s" % name + "".join("%7.3f" % v for v in shown) + ("" if good else "   MISS"),
              flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--samples", type=int, default=1024)
    parser.add_argument("--only", action="append", choices=[*MATERIALS, "furnace"], default=[])
    parser.add_argument("--folder", default=os.path.join(pictures.ROOT, "build", "truth"))
    parser.add_argument("--blocks", action="store_true")
    parser.add_argument("--vaskel", action="append", default=[], help="an option for vaskel")
    arguments = parser.parse_args()
    folder = os.path.abspath(arguments.folder)
    os.makedirs(folder, exist_ok=True)
    chosen = arguments.only or [*MATERIALS, "furnace"]
    materials = [name for name in chosen if name != "furnace"]
    if materials and shutil.which("blender") is None:
        sys.exit("blender is not installed; --only furnace needs none")
    if materials:
        print("%-14s %6s %7s %7s %6s %13s" % ("over Cycles", "mean", "(must)", "least", "most",
                                              "(must) beyond"))
    for name in materials:
        compare(name, arguments, folder)
    if "furnace" in chosen:
        furnace(folder, arguments.vaskel)


if __name__ == "__main__":
    main()
