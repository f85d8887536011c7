#include "vaskel/pixels/vk_Filter.h"

#include "vaskel/pixels/vk_LinearPicture.h"

namespace
{
constexpr int NEAR_REACH = 2;           // pixels to each side, but where light wandered
constexpr float SURE = .9f;             // length of a mean of normals that shows no edge
constexpr float TURN = 100;             // how fast pixels that face elsewhere lose weight
constexpr float DEPTH = .05f;           // share of the distance that makes two pixels differ
constexpr float PIXEL_TOLERANCE = 8;    // how many errors apart two pixels may be, and the
constexpr float SPECULAR_TOLERANCE = 3; // means around them
constexpr float IRRADIANCE_TOLERANCE = 6;
constexpr float BLURRED_TOLERANCE = 200; // where light wandered
constexpr float INVISIBLE = 1.5e-6f;     // the square of a third of a step of the file
constexpr float LEAST_ERROR = 1e-8f;

vk_Vec smaller(const vk_Vec &a, const vk_Vec &b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}

// A value of two pixels, and the errors of both, squared.
struct Pair {
    vk_Colour difference;
    float error;

    // 1 for values that agree, falling to 0 for those that errors do not explain.
    float weight(float tolerance, const vk_Vec &visibility) const
    {
        const float beyond = vk_visible(difference, visibility) - error;
        if (beyond <= 0)
            return 1;
        const float left = std::max(0.0f, 1 - beyond / (tolerance * (error + LEAST_ERROR)));
        return left * left;
    }
};
} // namespace

// A layer's mean over neighbours, and what that leaves of their errors.
struct vk_Filter::Sum {
    vk_Colour light;
    float weight = 0, error = 0;

    void add(const vk_Colour &ofNeighbour, float w, float itsError)
    {
        light += ofNeighbour * w;
        weight += w;
        error += w * w * itsError;
    }
    vk_Colour mean() const { return light * (1 / weight); }
    float remaining() const { return error / (weight * weight); }
};

vk_Filter::vk_Filter(int columns, int rows)
    : myColumns(columns), myRows(rows), myCells(static_cast<std::size_t>(columns * rows))
{
}

void vk_Filter::take(const vk_Pixel *row, int y)
{
    for (int x = 0; x < myColumns; ++x) {
        const vk_Pixel &pixel = row[x];
        Cell &now = cell(x, y);
        now.converged = pixel.converged;
        if (now.converged && now.count > 0)
            continue; // as it was
        now.count = static_cast<float>(pixel.count);
        now.layers = pixel.layers();
        const float sure = SURE * now.count;
        now.smooth = vk_dot(pixel.sum.normal, pixel.sum.normal) > sure * sure;
        now.normal = vk_normalize(pixel.sum.normal);
        now.distance = pixel.sum.distance / now.count;
        now.visibility = vk_visibility(pixel.light());
        now.own = {pixel.errors.specular, pixel.errors.irradiance};
        now.texture = pixel.errors.albedo;
        now.blurred = pixel.sum.blurred > 0;
        now.reach = now.blurred ? REACH : NEAR_REACH;
    }
}

// One pixel's error is a poor estimate, the mean of three rows of three is a fair one. Those
// at an edge are of another kind than those beside it.
void vk_Filter::compare(int y)
{
    for (int x = 0; x < myColumns; ++x) {
        Cell &here = cell(x, y);
        float count = 0;
        Errors sum;
        vk_Colour specular, irradiance;
        for (int j = std::max(0, y - 1); j <= std::min(y + 1, myRows - 1); ++j)
            for (int i = std::max(0, x - 1); i <= std::min(x + 1, myColumns - 1); ++i) {
                const Cell &there = cell(i, j);
                if (there.smooth != here.smooth)
                    continue;
                specular += there.layers.specular;
                irradiance += there.layers.irradiance;
                sum.specular += there.own.specular;
                sum.diffuse += there.own.diffuse;
                ++count;
            }
        here.around = {sum.specular / count, sum.diffuse / count};
        here.specularAround = specular * (1 / count);
        here.irradianceAround = irradiance * (1 / count);
        here.ofMeans = {here.around.specular / count, here.around.diffuse / count};
    }
}

void vk_Filter::estimate(int y)
{
    for (int x = 0; x < myColumns; ++x)
        if (!cell(x, y).converged)
            filter(cell(x, y), x, y);
}

void vk_Filter::filter(int y)
{
    for (int x = 0; x < myColumns; ++x)
        filter(cell(x, y), x, y);
}

// How far two pixels show the same surface.
float vk_Filter::featureWeight(const Cell &a, const Cell &b)
{
    const float turn = 1 - TURN * (1 - vk_dot(a.normal, b.normal));
    const float step = std::abs(a.distance - b.distance) / (DEPTH * a.distance);
    return std::max(0.0f, turn) * std::max(0.0f, 1 - step);
}

// By the brighter one: a pixel that is dark by chance must not stand out.
float vk_Filter::specularWeight(const Cell &a, const Cell &b)
{
    const vk_Vec visibility = smaller(a.visibility, b.visibility);
    const Pair pixels = {b.layers.specular - a.layers.specular,
                         std::max(a.own.specular, a.around.specular) + b.around.specular};
    const Pair means = {b.specularAround - a.specularAround,
                        a.ofMeans.specular + b.ofMeans.specular};
    return std::min(pixels.weight(PIXEL_TOLERANCE, visibility),
                    means.weight(SPECULAR_TOLERANCE, visibility));
}

float vk_Filter::irradianceWeight(const Cell &a, const Cell &b)
{
    const vk_Vec visibility = smaller(a.visibility, b.visibility);
    const vk_Colour &albedo = a.layers.albedo;
    const Pair pixels = {(b.layers.irradiance - a.layers.irradiance) * albedo,
                         std::max(a.own.diffuse, a.around.diffuse) + b.around.diffuse};
    const Pair means = {(b.irradianceAround - a.irradianceAround) * albedo,
                        a.ofMeans.diffuse + b.ofMeans.diffuse};
    const float ofPixels = a.blurred ? BLURRED_TOLERANCE : PIXEL_TOLERANCE;
    const float ofMeans = a.blurred ? BLURRED_TOLERANCE : IRRADIANCE_TOLERANCE;
    return std::min(pixels.weight(ofPixels, visibility), means.weight(ofMeans, visibility));
}

// Blending of pixels takes errors away from those that do not depend on each other.
void vk_Filter::filter(Cell &here, int x, int y) const
{
    constexpr float BLENDED = vk_LinearPicture::REMAINS;

    here.light = here.layers.light();
    here.error = (here.around.sum() + here.texture) * BLENDED;
    if (!here.smooth || here.around.sum() < INVISIBLE)
        return;
    // A layer without error stays as it is.
    const bool gleams = here.around.specular > 0, isLit = here.around.diffuse > 0;
    Sum specular, irradiance;
    for (int j = std::max(0, y - here.reach); j <= std::min(y + here.reach, myRows - 1); ++j)
        for (int i = std::max(0, x - here.reach); i <= std::min(x + here.reach, myColumns - 1);
             ++i) {
            const Cell &there = cell(i, j);
            const float feature = there.smooth ? featureWeight(here, there) * there.count : 0;
            if (feature <= 0)
                continue;
            const float itself = &there == &here ? 1 : 0;
            const float ofSpecular = gleams ? specularWeight(here, there) : itself;
            const float ofIrradiance = isLit ? irradianceWeight(here, there) : itself;
            specular.add(there.layers.specular, feature * ofSpecular, there.around.specular);
            irradiance.add(there.layers.irradiance, feature * ofIrradiance, there.around.diffuse);
        }
    here.light = specular.mean() + irradiance.mean() * here.layers.albedo;
    here.error = specular.remaining() + irradiance.remaining() + here.texture * BLENDED;
}
