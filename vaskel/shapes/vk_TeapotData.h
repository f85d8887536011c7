// The classic teapot of computer graphics (1975, public data; the bottom was
// added later): 32 bicubic Bezier patches over shared control points.
//
// z is up, the spout points to +x, the body is about 4 wide and stands on 0.
// The four points of a patch's first row may be one and the same (knob and
// bottom): take the normal from beside it.
#pragma once

constexpr int VK_TEAPOT_PATCH_COUNT = 32;
constexpr int VK_TEAPOT_POINT_COUNT = 306;

// Four rows of four points each, numbers into the points from 0.
extern const unsigned short VK_TEAPOT_PATCHES[VK_TEAPOT_PATCH_COUNT][16];
extern const float VK_TEAPOT_POINTS[VK_TEAPOT_POINT_COUNT][3];
