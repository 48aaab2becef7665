#pragma once
#include <QString>

inline int Seven(int a, int b, int c, int d, int e, int f, int g)
{
    return a + b + c + d + e + f + g;
}

inline int Eight(int a, int b, int c, int d, int e, int f, int g, int h)
{
    return Seven(a, b, c, d, e, f, g) + h;
}
