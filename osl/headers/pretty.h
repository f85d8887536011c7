// Prints: numbers that are only rounding become 0.
#pragma once

float pretty(float x)
{
    return fabs(x) < 1e-6 ? 0.0 : x;
}

vector pretty(vector v)
{
    return vector(pretty(v[0]), pretty(v[1]), pretty(v[2]));
}

point pretty(point p)
{
    return point(pretty(p[0]), pretty(p[1]), pretty(p[2]));
}

normal pretty(normal n)
{
    return normal(pretty(n[0]), pretty(n[1]), pretty(n[2]));
}

color pretty(color c)
{
    return color(pretty(c[0]), pretty(c[1]), pretty(c[2]));
}

matrix pretty(matrix m)
{
    matrix r = m;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            r[i][j] = pretty(m[i][j]);
    return r;
}
