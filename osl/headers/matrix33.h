// A 3 x 3 matrix, kept in the upper left part of a matrix.
#pragma once

struct matrix33 {
    matrix m;
};

matrix33 ___upper(matrix a)
{
    return matrix33(matrix(a[0][0], a[0][1], a[0][2], 0, a[1][0], a[1][1], a[1][2], 0,
                           a[2][0], a[2][1], a[2][2], 0, 0, 0, 0, 1));
}
matrix33 matrix44To33(matrix a) { return ___upper(a); }
matrix matrix33To44(matrix33 a) { return a.m; }
int isValidAs33(matrix a)
{
    return a[0][3] == 0 && a[1][3] == 0 && a[2][3] == 0 && a[3][0] == 0 && a[3][1] == 0 &&
           a[3][2] == 0 && a[3][3] == 1;
}

matrix33 __operator__neg__(matrix33 a) { return ___upper(-a.m); }
int __operator__eq__(matrix33 a, matrix33 b) { return a.m == b.m; }
int __operator__ne__(matrix33 a, matrix33 b) { return a.m != b.m; }
int __operator__neq__(matrix33 a, matrix33 b) { return a.m != b.m; }
matrix33 __operator__mul__(matrix33 a, matrix33 b) { return ___upper(a.m * b.m); }
matrix33 __operator__div__(matrix33 a, matrix33 b) { return ___upper(a.m / b.m); }

matrix33 __operator__add__(matrix33 a, matrix33 b)
{
    matrix33 r = a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = a.m[i][j] + b.m[i][j];
    return r;
}
matrix33 __operator__sub__(matrix33 a, matrix33 b)
{
    matrix33 r = a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = a.m[i][j] - b.m[i][j];
    return r;
}
matrix33 __operator__add__(matrix33 a, int b)
{
    matrix33 r = a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = a.m[i][j] + b;
    return r;
}
matrix33 __operator__add__(int a, matrix33 b) { return b + a; }
matrix33 __operator__add__(matrix33 a, float b)
{
    matrix33 r = a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = a.m[i][j] + b;
    return r;
}
matrix33 __operator__add__(float a, matrix33 b) { return b + a; }
matrix33 __operator__sub__(matrix33 a, int b)
{
    matrix33 r = a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = a.m[i][j] - b;
    return r;
}
matrix33 __operator__sub__(int a, matrix33 b) { return -b + a; }
matrix33 __operator__sub__(matrix33 a, float b)
{
    matrix33 r = a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = a.m[i][j] - b;
    return r;
}
matrix33 __operator__sub__(float a, matrix33 b) { return -b + a; }
matrix33 __operator__mul__(matrix33 a, int b)
{
    matrix33 r = a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = a.m[i][j] * b;
    return r;
}
matrix33 __operator__mul__(int a, matrix33 b) { return b * a; }
matrix33 __operator__mul__(matrix33 a, float b)
{
    matrix33 r = a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = a.m[i][j] * b;
    return r;
}
matrix33 __operator__mul__(float a, matrix33 b) { return b * a; }
matrix33 __operator__div__(matrix33 a, int b)
{
    matrix33 r = a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = a.m[i][j] / b;
    return r;
}
matrix33 __operator__div__(int a, matrix33 b) { return ___upper(a / b.m); }
matrix33 __operator__div__(matrix33 a, float b)
{
    matrix33 r = a;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            r.m[i][j] = a.m[i][j] / b;
    return r;
}
matrix33 __operator__div__(float a, matrix33 b) { return ___upper(a / b.m); }
float determinant(matrix33 a) { return determinant(a.m); }
matrix33 transpose(matrix33 a) { return ___upper(transpose(a.m)); }
vector transform(matrix33 a, vector b) { return transform(a.m, b); }
point transform(matrix33 a, point b) { return transform(a.m, b); }
normal transform(matrix33 a, normal b) { return transform(a.m, b); }
