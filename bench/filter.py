#!/usr/bin/env python3
"""Tries the numbers of vaskel's filter (vaskel/pixels/vk_Filter.cpp), of how errors are spread
(vk_ErrorMap), and of how much is blurred behind wide scattering (vk_PathTracer), again.

    bench/filter.py [--samples N] [NUMBER]...

A copy of the sources is built with half and with twice of each number, or of those named
(reaches of windows: one less and more; SURE: what it lacks of 1), and draws examples of all kinds;
thumbrender must have been built. Printed is what that does to mean square error times rays
(below 1 is better): the geometric mean, and the example that fares worst. Errors are against
references of N samples a pixel (256), whose own error is taken off: with far fewer, that
outweighs what is left. Takes half an hour. What is kept wins or loses by no more than the few
hundredths by which this wavers, or else keeps all examples about as good as each other, or what
the eye asks for: rings on the stands of frosted_glass and skin grow with BLURRED_TURN, blotches
with BLURRED_TOLERANCE. Larger reaches help further, and cost more time than they are worth.
SPREAD and REACH cost a little here, and are for the light of caustics that bench/truth.py counts.
REGULAR to STRAY_POWER trade noise for light: bench/truth.py tells what they do to that.
"""
import argparse
import math
import os
import re
import shutil
import subprocess
import sys
import tempfile

import pictures

COPY = os.path.join(pictures.ROOT, "build", "filter")
FILES = ["vaskel/" + name for name in
         ("pixels/vk_Filter.cpp", "pixels/vk_PlaneFit.cpp", "pixels/vk_ErrorMap.cpp",
          "pixels/vk_ErrorMap.h", "trace/vk_PathTracer.cpp")]
REACHES = ["SPECULAR_REACH", "LAST_SPECULAR_REACH", "IRRADIANCE_REACH", "LAST_IRRADIANCE_REACH"]
NUMBERS = ["SURE", "DEPTH", "TURN", *REACHES, "SPECULAR_PIXELS", "SPECULAR_MEANS",
           "IRRADIANCE_PIXELS", "IRRADIANCE_MEANS", "BLURRED_TURN", "BLURRED_TOLERANCE",
           "LEVELLING", "SPREAD", "REACH",
           "REGULAR", "REGULAR_METAL", "REGULAR_STRAY", "STRAY_POWER"]
EXAMPLES = ["agate", "bark", "brick_chimney", "candle", "car_paint", "chrome", "clear_glass",
            "frosted_glass", "gold", "ivy", "night_silver", "oak", "planet", "red_plastic", "rust",
            "satin_copper", "scratched_paint", "skin", "stained_shade", "thin_haze",
            "under_trees", "wool"]


def copy_sources():
    """Into an empty folder but for what was built: builds take all sources that they find."""
    os.makedirs(COPY, exist_ok=True)
    for name in set(os.listdir(COPY)) - {"build"}:
        path = os.path.join(COPY, name)
        shutil.rmtree(path) if os.path.isdir(path) else os.remove(path)
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "-z"], cwd=pictures.ROOT, check=True,
                            stdout=subprocess.PIPE).stdout.decode()
    there = [n for n in listed.split("\0") if os.path.isfile(os.path.join(pictures.ROOT, n))]
    for name in there:
        to = os.path.join(COPY, name)
        os.makedirs(os.path.dirname(to), exist_ok=True)
        shutil.copy2(os.path.join(pictures.ROOT, name), to)


def sources():
    """Texts of the files with numbers, by path."""
    texts = {}
    for path in FILES:
        with open(os.path.join(pictures.ROOT, path)) as file:
            texts[path] = file.read()
    return texts


def build(numbers):
    """The program with other numbers in its files."""
    texts = sources()
    for name, value in numbers.items():
        pattern = re.compile(r"(constexpr \w+ %s =) [^;]+;" % name)
        found = [path for path, text in texts.items() if pattern.search(text)]
        assert len(found) == 1, name
        texts[found[0]] = pattern.sub(r"\1 %s;" % value, texts[found[0]])
    for path, text in texts.items():
        with open(os.path.join(COPY, path), "w") as file:
            file.write(text)
    for command in (["cmake", "--preset", "release"],
                    ["cmake", "--build", "--preset", "release", "--target", "vaskel"]):
        subprocess.run(command, cwd=COPY, check=True, stdout=subprocess.DEVNULL)
    return os.path.join(COPY, "build", "release", "bin", "vaskel")


def kept():
    """The numbers of the sources, by name."""
    found = {}
    for text in sources().values():
        found.update(re.findall(r"constexpr \w+ (\w+) = ([-.\de]+)f?;", text))
    return {name: float(found[name]) for name in NUMBERS}


def other(name, value, factor):
    if name in REACHES:
        return "%d" % (value + (1 if factor > 1 else -1))
    if name == "REACH":
        return "%d" % (value * factor)
    if name == "SURE":  # the part that is missing of 1
        return "%gf" % (1 - (1 - value) * factor)
    return "%sf" % repr(value * factor)


def draw(program, scene, folder, *options):
    """The bytes of a picture, and the rays that it took."""
    said = subprocess.run([program, "--stats", *options], cwd=folder, check=True,
                          input=scene.encode(), stderr=subprocess.PIPE).stderr.decode()
    rays = re.search(r"rays +(\d+) camera, (\d+) scattered, (\d+) shadow", said)
    return (pictures.pixels(os.path.join(folder, "p.png")), sum(map(int, rays.groups())))


def square(a, b):
    return sum((x - y) ** 2 for x, y in zip(a, b)) / len(a) / 255 ** 2


def reference(program, scene, folder, samples):
    """A picture, and about its mean square error: as far as half of the samples are off."""
    half = draw(program, scene, folder, "--samples", str(samples // 2))[0]
    full = draw(program, scene, folder, "--samples", str(samples))[0]
    return full, square(half, full)


def measure(program, scenes, exact, folder):
    """Of each example: mean square error in parts of full scale, and rays."""
    result = {}
    for name, scene in scenes.items():
        drawn, rays = draw(program, scene, folder)
        picture, error = exact[name]
        result[name] = (max(square(drawn, picture) - error, 1e-7), rays)
    return result


def report(name, value, now, before):
    ratios = [now[e][0] * now[e][1] / (before[e][0] * before[e][1]) for e in now]
    change = math.exp(sum(map(math.log, ratios)) / len(ratios))
    worst = max(ratios)
    example = EXAMPLES[ratios.index(worst)]
    print("%-22s %8s %8.3f   worst %.2f %s" % (name, value, change, worst, example), flush=True)


def main():
    options = argparse.ArgumentParser(description="See the file.")
    options.add_argument("--samples", type=int, default=256)
    options.add_argument("numbers", nargs="*", metavar="NUMBER")
    chosen = options.parse_args()
    numbers = kept()
    unknown = set(chosen.numbers) - set(NUMBERS)
    if unknown:
        sys.exit("no such number: %s; there are %s" % (", ".join(unknown), ", ".join(NUMBERS)))
    with tempfile.TemporaryDirectory() as folder:
        for name in os.listdir(pictures.EXAMPLES):
            shutil.copy(os.path.join(pictures.EXAMPLES, name), folder)
        scenes = {name: pictures.scene_of(name, folder) for name in EXAMPLES}
        copy_sources()
        program = build({})
        exact = {name: reference(program, scene, folder, chosen.samples)
                 for name, scene in scenes.items()}
        before = measure(program, scenes, exact, folder)
        for name in chosen.numbers or NUMBERS:
            for factor in (.5, 2):
                value = other(name, numbers[name], factor)
                report(name, value, measure(build({name: value}), scenes, exact, folder), before)


if __name__ == "__main__":
    main()
