// Helpers for shaders.
#pragma once

// How much of a line along the borders of the surface's patches is seen at this point,
// 0 to 1. Other kinds of edges would need the renderer's mesh.
float wireframe(string edge_type, float line_width, int raster)
{
    float du = raster != 0 ? line_width * filterwidth(u) : line_width / length(dPdu);
    float dv = raster != 0 ? line_width * filterwidth(v) : line_width / length(dPdv);
    return u < du || u > 1 - du || v < dv || v > 1 - dv ? 1.0 : 0.0;
}

float wireframe(string edge_type, float line_width)
{
    return wireframe(edge_type, line_width, 1);
}

float wireframe(string edge_type)
{
    return wireframe(edge_type, 1.0, 1);
}
