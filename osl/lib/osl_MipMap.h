// A picture at full size, at half, at a quarter ..., down to one texel.
#pragma once

#include "osl/lib/osl_PictureFile.h"

#include <cmath>

class osl_MipMap
{
public:
    explicit osl_MipMap(osl_Picture &&picture);

    int levels() const { return static_cast<int>(myLevels.size()); }
    const osl_Picture &level(int i) const { return myLevels[static_cast<size_t>(i)]; }
    size_t bytes() const;

private:
    std::vector<osl_Picture> myLevels;
};
