#!/usr/bin/env python3
"""Prints the tables of vaskel/scatter/vk_AlbedoData.cpp again.

    bench/fit.py >vaskel/scatter/vk_AlbedoData.cpp

Rough surfaces of microfacets (vk_Microfacet.h) let light go that would be scattered once
more between facets. How much is left when it is scattered once, by roughness and by the
cosine to the normal, is an integral without a formula; the tables hold it, for facets that
reflect all light, also when they are wider along one direction, and for those of glass. So they do
for the fibres of a sheen (vk_Sheen.h). Takes some seconds; tests integrate anew and compare.
"""
import math

ROUGHS = COSINES = 16
ETAS, ETA_ROUGHS, ETA_COSINES = 17, 9, 9  # indices of refraction 1/4 to 4
BRUSHED_ROUGHS, BRUSHED_RATIOS, BRUSHED_WIDTHS, BRUSHED_COSINES = 9, 6, 3, 9
BRUSHED_LEAST = .1  # width across over that along
SHEEN_ROUGHS, SHEEN_COSINES = 9, 11  # roughness from SHEEN_LEAST, square root of the cosine
SHEEN_LEAST = .2
STEPS = 24  # samples of a facet along each axis
SHEEN_STEPS = 96  # of the directions that fibres send light to


def normalize(v):
    length = math.sqrt(sum(x * x for x in v))
    return [x / length for x in v]


def smith(alpha, v):
    return math.sqrt((alpha[0] * v[0]) ** 2 + (alpha[1] * v[1]) ** 2 + v[2] ** 2)


def facet(alpha, out, u, v):
    """A visible facet: Heitz, JCGT 7(4), 2018."""
    s = normalize([alpha[0] * out[0], alpha[1] * out[1], out[2]])
    level = math.hypot(s[0], s[1])
    t1 = [-s[1] / level, s[0] / level, 0] if level > 1e-7 else [1, 0, 0]
    t2 = [s[1] * t1[2] - s[2] * t1[1], s[2] * t1[0] - s[0] * t1[2], s[0] * t1[1] - s[1] * t1[0]]
    radius, angle = math.sqrt(u), 2 * math.pi * v
    x, y = radius * math.cos(angle), radius * math.sin(angle)
    half = .5 * (1 + s[2])
    y = (1 - half) * math.sqrt(max(0, 1 - x * x)) + half * y
    z = math.sqrt(max(0, 1 - x * x - y * y))
    h = [t1[i] * x + t2[i] * y + s[i] * z for i in range(3)]
    return normalize([alpha[0] * h[0], alpha[1] * h[1], max(1e-9, h[2])])


def left(alpha, out, way):
    """What masking and shadowing leave of light that a visible facet sends to a way."""
    if way[2] <= 0:
        return 0
    both = 2 * out[2] * way[2] / (way[2] * smith(alpha, out) + out[2] * smith(alpha, way))
    return both / (2 * out[2] / (out[2] + smith(alpha, out)))


def fresnel(cosine, eta):
    within2 = 1 - (1 - cosine * cosine) / (eta * eta)
    if within2 <= 0:
        return 1, 0
    within = math.sqrt(within2)
    across = (cosine - eta * within) / (cosine + eta * within)
    along = (eta * cosine - within) / (eta * cosine + within)
    return .5 * (across ** 2 + along ** 2), within


def sent(alpha, out, h, eta):
    """What one facet sends on, of glass with an index or of a perfect mirror (None)."""
    cosine = sum(a * b for a, b in zip(out, h))
    mirrored = [2 * cosine * h[i] - out[i] for i in range(3)]
    if eta is None:
        return left(alpha, out, mirrored)
    share, within = fresnel(cosine, eta)
    refracted = [h[i] * (cosine / eta - within) - out[i] / eta for i in range(3)]
    refracted[2] = -refracted[2]
    return share * left(alpha, out, mirrored) + (1 - share) * left(alpha, out, refracted)


def integral(alpha, out, eta=None):
    total = 0
    for i in range(STEPS):
        for j in range(STEPS):
            h = facet(alpha, out, (i + .5) / STEPS, (j + .5) / STEPS)
            total += sent(alpha, out, h, eta)
    return total / STEPS ** 2


def albedo(rough, cosine, eta=None):
    alpha, cosine = max(.001, rough * rough), max(cosine, 1e-3)
    return integral([alpha, alpha], [math.sqrt(max(0, 1 - cosine * cosine)), 0, cosine], eta)


def brushed(rough, ratio, width, cosine):
    """Facets that are wider along y; seen from where they look so wide, 0 as across, 1 as along."""
    y, cosine = max(.001, rough * rough), max(cosine, 1e-3)
    x, sine = ratio * y, math.sqrt(max(0, 1 - cosine * cosine))
    seen = x + (y - x) * width
    side2 = (seen * seen - x * x) / (y * y - x * x) if ratio < 1 else 0
    out = [sine * math.sqrt(max(0, 1 - side2)), sine * math.sqrt(side2), cosine]
    return integral([x, y], out)


def fibres(rough, sine2):
    """vk_sheen() but for its visibility; by the sine of the half vector to the normal, squared."""
    return (2 + 1 / rough) * sine2 ** (.5 / rough) / (2 * math.pi)


def sheen(rough, root):
    """Of the light that fibres send to all of the hemisphere, whose halves are alike."""
    cosine = root * root
    sine = math.sqrt(1 - cosine * cosine)
    total = 0
    for i in range(SHEEN_STEPS):
        # In even steps of the root: most changes at grazing angles.
        way = ((i + .5) / SHEEN_STEPS) ** 2
        band = 2 * math.sqrt(way) / SHEEN_STEPS
        side = math.sqrt(1 - way * way)
        visible = 1 / (4 * (way + cosine - way * cosine))
        for j in range(SHEEN_STEPS):
            angle = math.pi * (j + .5) / SHEEN_STEPS
            level2 = sine * sine + side * side + 2 * sine * side * math.cos(angle)
            sine2 = level2 / (level2 + (cosine + way) ** 2)
            total += fibres(rough, sine2) * visible * way * band
    return total * 2 * math.pi / SHEEN_STEPS


def sheen_row(i):
    rough = SHEEN_LEAST + (1 - SHEEN_LEAST) * i / (SHEEN_ROUGHS - 1)
    return braces(sheen(rough, c / (SHEEN_COSINES - 1)) for c in range(SHEEN_COSINES))


def braces(values):
    return "{" + ", ".join("%.4ff" % v for v in values) + "}"


def row(rough, cosines, eta=None):
    return braces(albedo(rough, c / (cosines - 1), eta) for c in range(cosines))


def brushed_row(i, j, k):
    ratio = BRUSHED_LEAST + (1 - BRUSHED_LEAST) * j / (BRUSHED_RATIOS - 1)
    return braces(brushed(i / (BRUSHED_ROUGHS - 1), ratio, k / (BRUSHED_WIDTHS - 1),
                          c / (BRUSHED_COSINES - 1)) for c in range(BRUSHED_COSINES))


def main():
    print('// Made by bench/fit.py.\n#include "vaskel/scatter/vk_AlbedoData.h"\n')
    print("const float VK_FACET_ALBEDO[VK_ALBEDO_ROUGHS][VK_ALBEDO_COSINES] = {")
    for i in range(ROUGHS):
        print("    %s," % row(i / (ROUGHS - 1), COSINES))
    print("};\n")
    means = [sum(2 * (c + .5) / 64 / 64 * albedo(i / (ROUGHS - 1), (c + .5) / 64)
                 for c in range(64)) for i in range(ROUGHS)]
    print("const float VK_FACET_MEAN[VK_ALBEDO_ROUGHS] = %s;\n" % braces(means))
    print("const float VK_BRUSHED_ALBEDO[VK_BRUSHED_ROUGHS][VK_BRUSHED_RATIOS]"
          "[VK_BRUSHED_WIDTHS][VK_BRUSHED_COSINES] = {")
    for i in range(BRUSHED_ROUGHS):
        print("    {")
        for j in range(BRUSHED_RATIOS):
            print("        {%s}," % ",\n         ".join(
                brushed_row(i, j, k) for k in range(BRUSHED_WIDTHS)))
        print("    },")
    print("};\n")
    print("const float VK_GLASS_ALBEDO[VK_GLASS_ETAS][VK_GLASS_ROUGHS][VK_GLASS_COSINES] = {")
    for e in range(ETAS):
        eta = 2 ** (4 * e / (ETAS - 1) - 2)
        print("    {  // %g" % eta)
        for i in range(ETA_ROUGHS):
            print("        %s," % row(i / (ETA_ROUGHS - 1), ETA_COSINES, eta))
        print("    },")
    print("};\n")
    print("const float VK_SHEEN_ALBEDO[VK_SHEEN_ROUGHS][VK_SHEEN_COSINES] = {")
    for i in range(SHEEN_ROUGHS):
        print("    %s," % sheen_row(i))
    print("};")


if __name__ == "__main__":
    main()
