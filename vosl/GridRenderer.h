// The renderer that vosl pretends to be: it shades a grid of points.
//
// Point (x, y) of a W x H grid has u = x / (W - 1) and v = y / (H - 1), 0.5 where the grid
// is one point wide; or, by centres, u = (x + 0.5) / W and v = (y + 0.5) / H. P = (u, v, 1).
#pragma once

#include "osl/OSL_Context.h"
#include "osl/lib/osl_Texture.h"

#include <string>
#include <unordered_set>
#include <vector>

class GridRenderer : public OSL_Renderer
{
public:
    GridRenderer(int width, int height, bool byCentres);

    int points() const { return myWidth * myHeight; }

    // The points from `first` on, as many as the context takes at once.
    const OSL_Points &batch(int first, int most);

    bool spaceToCommon(std::string_view space, int point, osl_Matrix &matrix) override;
    bool attribute(std::string_view object, std::string_view name, int point,
                   OSL_Value &value) override;
    bool userdata(std::string_view name, int point, OSL_Value &value, std::vector<float> &dx,
                  std::vector<float> &dy) override;
    std::shared_ptr<const osl_Texture> texture(std::string_view name, std::string &error) override;
    bool dictionary(std::string_view name, std::string &text) override;
    bool isRayType(std::string_view type, int point) override;
    void print(std::string_view text) override;
    void message(Severity severity, std::string_view text) override;
    void appendToFile(std::string_view file, std::string_view text) override;

private:
    float uOf(int point) const { return coordinate(point % myWidth, myWidth); }
    float vOf(int point) const { return coordinate(point / myWidth, myHeight); }
    float coordinate(int number, int count) const;
    float step(int count) const; // between neighbours

    int myWidth;
    int myHeight;
    bool isByCentres;
    OSL_Points myPoints;
    std::vector<float> myU, myV;
    std::vector<float> myOnes, myZeros;
    std::vector<float> myDu, myDv;   // du/dx, dv/dy
    std::vector<float> myDPx, myDPy; // of P
    osl_TextureCache myTextures;
    std::unordered_set<std::string> myShown;
};
