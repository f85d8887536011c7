#!/usr/bin/env python3
"""What OSL shaders cost: the machine beside C++, the default ball beside the built-in
plastic, and compiling.

Each figure stands beside what it must be and what is aimed at.
"""
import argparse
import os
import re
import statistics
import subprocess
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BIN = os.path.join(ROOT, "build", "release", "bin")

PLASTIC = """surface plastic(color Cs = color(.6, .2, .1), output color Tone = 0)
{
    Tone = Cs;
}
"""
CLOSURES = """surface closures(color Cs = color(.6, .2, .1))
{
    Ci = Cs * diffuse(N) + dielectric_bsdf(N, dPdu, color(1), color(0), .2, .2, 1.5, "ggx");
}
"""
# The same as in bench/osl_twin.cpp.
KERNELS = {
    "colours": """
    color c = color(u, v, .5);
    for (int i = 0; i < 32; ++i) {
        float t = smoothstep(0, 1, mod(u * i, 1));
        c = mix(c, color(t, v, 1 - t), .25);
        c = clamp(c * c + .05, 0, 1);
    }
    result = c[0] + c[1] + c[2];""",
    "waves": """
    float sum = 0;
    for (int i = 1; i < 32; ++i) {
        float wave = sin(u * i) + cos(v * i);
        sum += exp(-wave * wave) * sqrt(u * u + v * v) + pow(u, 1.0 / i);
    }
    result = sum;""",
    "branches": """
    float x = u, y = v;
    int n = 0;
    while (n < 64 && x * x + y * y < 4) {
        float next = x * x - y * y + u;
        y = 2 * x * y + v;
        x = next;
        if (x > y)
            x *= .9;
        ++n;
    }
    result = n;""",
    "clouds": """
    float sum = 0, gain = .5;
    point p = point(u * 4, v * 4, 1);
    for (int i = 0; i < 8; ++i) {
        sum += gain * snoise(p);
        gain *= .5;
        p *= 2;
    }
    result = sum;""",
}
SCENE = """picture p.png
size 256 256
camera
environment v_studio
floor v_checker
lightplace from -5 5.5 2.6 to 0 1 0
light v_area intensity .8 width 2.5 height 2.5
surface %s
shaderball
end
"""


def long_shader(lines):
    """One of so many lines that do what shaders do."""
    body = ["    c += noise(\"perlin\", p * %d) * mix(color(.1, .2, .3), color(u, v, %g), .5);"
            % (i + 1, i / lines) for i in range(lines - 6)]
    return "\n".join(["surface lines(float size = 1)", "{", "    point p = P * size;",
                      "    color c = 0;"] + body + ["    Ci = c * diffuse(N);", "}"]) + "\n"


def tracing(surface, folder):
    """Seconds that vaskel traces the ball with a surface."""
    with open(os.path.join(folder, "scene"), "w") as scene:
        scene.write(SCENE % surface)
    done = subprocess.run([os.path.join(BIN, "vaskel"), "--stats", "scene"], cwd=folder,
                          check=True, stderr=subprocess.PIPE, text=True)
    return float(re.search(r"tracing +([0-9.]+) ms", done.stderr).group(1)) / 1000


def compiling(folder):
    """Milliseconds that vosl takes to compile and link a source of 100 lines."""
    done = subprocess.run([os.path.join(BIN, "vosl"), "--time", "long.osl"], cwd=folder,
                          check=True, stdout=subprocess.PIPE, text=True)
    return float(re.search(r"compiled in ([0-9.e+]+) ms", done.stdout).group(1))


def speed(command, folder):
    """Points a second."""
    done = subprocess.run(command, cwd=folder, check=True, stdout=subprocess.PIPE, text=True)
    return float(re.search(r"([0-9.e+]+) points a second", done.stdout).group(1))


def beside_plain(name, folder, runs):
    """How many times as long as in C++ the machine takes for a kernel."""
    with open(os.path.join(folder, name + ".osl"), "w") as out:
        out.write("shader %s(output float result = 0)\n{%s\n}\n" % (name, KERNELS[name]))
    machine = [os.path.join(BIN, "vosl"), "--time", "-g", "512", "512", name + ".osl"]
    plain = [os.path.join(BIN, "osl_twin"), name]
    speeds = [(speed(plain, folder), speed(machine, folder)) for _ in range(runs)]
    return max(p for p, _ in speeds) / max(m for _, m in speeds)


def report(what, value, must, aim, unit):
    print("%-28s %8.2f%-3s %8g %8g" % (what, value, unit, must, aim), flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--runs", type=int, default=7)
    runs = parser.parse_args().runs
    subprocess.run(["cmake", "--build", os.path.dirname(BIN), "--target", "osl_twin", "vosl",
                    "vaskel"], check=True, stdout=subprocess.DEVNULL)
    sources = {"plastic.osl": PLASTIC, "closures.osl": CLOSURES, "long.osl": long_shader(100)}
    with tempfile.TemporaryDirectory() as folder:
        for name, text in sources.items():
            with open(os.path.join(folder, name), "w") as out:
                out.write(text)
        print("%-39s %9s %8s" % ("", "must", "aim"))
        for name in KERNELS:
            report(name + ", of C++'s time", beside_plain(name, folder, runs), 3, 1, " x")
        surfaces = ["v_plastic diff .6 .2 .1", "plastic.osl", "closures.osl"]
        times = {surface: [] for surface in surfaces}
        for _ in range(runs):
            for surface in surfaces:
                times[surface].append(tracing(surface, folder))
        plain = statistics.median(times[surfaces[0]])
        for surface in surfaces[1:]:
            report(surface, statistics.median(times[surface]) / plain, 1.5, 1.1, " x")
        report("100 lines compiled", statistics.median(compiling(folder) for _ in range(runs)),
               3, 1, " ms")


if __name__ == "__main__":
    main()
