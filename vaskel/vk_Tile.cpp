#include "vaskel/vk_Tile.h"

#include "vaskel/vk_Filter.h"

#include <cmath>

namespace
{
constexpr int FIRST_SAMPLES = 2;  // a pixel; every further pass doubles them
constexpr float FILTER_WIDTH = 1; // pixels to either side

// Shares of errors that the filter leaves.
constexpr float LEFT_SHARP = .5f;
constexpr float LEFT_STRUCTURE = 1; // where there are edges
constexpr float STRUCTURE = 1;      // differences over errors that are one
constexpr float LEFT_EVEN = .05f;
constexpr float LEFT_STEEP = .2f; // where differences are as large as errors
constexpr float LEFT_GROUND = .035f;
constexpr float LEFT_WANDERING = .02f;

// How much the mean error of a tile's even layer counts for each pixel: few samples
// find bright things that are small only here and there.
constexpr float RARE = .1f;
constexpr float RARE_IN_FOG = 1;

// A tent-shaped filter, drawn from instead of weighted by: each pixel then
// keeps to its own samples (Ernst, Stamminger and Greiner, "Filter Importance
// Sampling", 2006).
float tent(float u)
{
    const float x = 2 * u - 1;
    const float half = x < 0 ? std::sqrt(1 + x) - 1 : 1 - std::sqrt(1 - x);
    return half * FILTER_WIDTH;
}

// Whether any sample met something.
bool showsSurface(const vk_Pixel &pixel)
{
    return pixel.sum.distance < vk_View::NOWHERE * static_cast<float>(pixel.count);
}
} // namespace

vk_Lens::vk_Lens(const vk_Scene &scene)
    : myFrom(scene.camera.from), myWidth(static_cast<float>(scene.width)),
      myHeight(static_cast<float>(scene.height))
{
    const vk_Vec forward = vk_normalize(scene.camera.at - scene.camera.from);
    const vk_Vec right = vk_normalize(vk_cross(forward, scene.camera.up));
    const float pixel = 2 * std::tan(scene.camera.fov * VK_PI / 360) / std::min(myWidth, myHeight);
    myForward = forward;
    myRight = right * pixel;
    myDown = vk_cross(forward, right) * pixel;
}

vk_Canvas::vk_Canvas(const vk_Scene &scene, const vk_World &world,
                     const vk_RenderSettings &settings, vk_Film &film)
    : myScene(scene), myTracer(scene, world), myLens(scene), myFilm(film),
      myGain(std::exp2(scene.exposure)), myRare(vk_Fog(scene.fog).isClear() ? RARE : RARE_IN_FOG)
{
    const vk_Quality &quality = *settings.quality;
    const float most = static_cast<float>(scene.samples) * quality.samples;
    myTarget = quality.error * quality.error;
    myMostSamples = std::clamp(static_cast<int>(most), 1, vk_Scene::MOST_SAMPLES);
    myFirstSamples = std::min(FIRST_SAMPLES, myMostSamples);
    if (settings.samples > 0)
        myFirstSamples = myMostSamples = settings.samples;
}

void vk_Canvas::sample(vk_Pixel &pixel, int x, int y, int count) const
{
    const std::uint32_t seed = vk_hash(static_cast<std::uint32_t>(y * myScene.width + x) + 1);
    while (pixel.count < count)
        pixel.add(view(x, y, vk_Sampler(seed, static_cast<std::uint32_t>(pixel.count))));
}

vk_View vk_Canvas::view(int x, int y, vk_Sampler sampler) const
{
    const vk_Square at = sampler.square();
    const vk_Vec direction = myLens.direction(static_cast<float>(x) + .5f + tent(at.u),
                                              static_cast<float>(y) + .5f + tent(at.v));
    vk_View view = myTracer.view(myLens.from(), direction, sampler);
    // What is whiter than white must not outweigh its neighbours at an edge.
    const float largest = vk_largest(view.light()) * myGain;
    const float factor = largest > VK_WHITE ? myGain * VK_WHITE / largest : myGain;
    view.sharp = view.sharp * factor;
    view.even = view.even * factor;
    return view;
}

void vk_Canvas::develop(const vk_Colour &light, int x, int y) const
{
    const auto at = static_cast<std::size_t>(y * myScene.width + x);
    vk_develop(light, &myFilm.bytes[3 * at]);
}

vk_Tile::vk_Tile(const vk_Canvas &canvas, vk_Band &band, int left, int top)
    : myCanvas(canvas), myBand(band), myLeft(left), myTop(top),
      myColumns(std::min(SIDE, band.columns - left)), myRows(std::min(SIDE, band.rows - top))
{
}

void vk_Tile::start()
{
    int count = myCanvas.firstSamples();
    pass(count);
    if (count == myCanvas.mostSamples())
        return;
    // The open sky mostly needs no more.
    judge();
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x)
            pixel(x, y).quiet = !showsSurface(pixel(x, y)) && myErrors[y][x] < myCanvas.target();
    pass(myCanvas.leastSamples());
}

void vk_Tile::go(float limit)
{
    int count = myCanvas.leastSamples();
    while (count < myCanvas.mostSamples()) {
        settle(limit);
        count = std::min(2 * count, myCanvas.mostSamples());
        if (!pass(count))
            return;
    }
}

vk_Spreads vk_Tile::spreads()
{
    vk_Spreads spreads;
    judge();
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x)
            spreads.add(myErrors[y][x] * static_cast<float>(pixel(x, y).count));
    return spreads;
}

// False when all pixels are quiet.
bool vk_Tile::pass(int count)
{
    bool drew = false;
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x) {
            vk_Pixel &now = pixel(x, y);
            if (now.quiet)
                continue;
            for (const int part : {std::max(1, count / 2), count}) {
                myCanvas.sample(now, myLeft + x, myBand.top + myTop + y, part);
                now.judge();
            }
            drew = true;
        }
    return drew;
}

void vk_Tile::settle(float limit)
{
    judge();
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x) {
            vk_Pixel &now = pixel(x, y);
            const float error = myErrors[y][x];
            now.quiet = now.quiet || error < limit * static_cast<float>(now.count);
        }
}

void vk_Tile::judge()
{
    float errors[SIDE][SIDE];
    float rare = 0;
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x) {
            errors[y][x] = errorOf(x, y);
            rare += leftOfEven(x, y) * pixel(x, y).errorEven;
        }
    rare *= myCanvas.rare() / static_cast<float>(pixels());
    const auto around = [&](int x, int y) {
        float sum = 0;
        int count = 0;
        for (int j = std::max(0, y - 1); j <= std::min(y + 1, myRows - 1); ++j)
            for (int i = std::max(0, x - 1); i <= std::min(x + 1, myColumns - 1); ++i, ++count)
                sum += errors[j][i];
        return std::max(rare, sum / static_cast<float>(count));
    };
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x)
            myErrors[y][x] = around(x, y);
}

// What is left of a pixel's error when it is filtered.
float vk_Tile::errorOf(int x, int y) const
{
    const vk_Pixel &now = pixel(x, y);
    if (!vk_Filter::helps(now))
        return now.errorSharp + now.errorEven + now.errorTexture;
    return now.errorTexture + leftOfSharp(x, y) * now.errorSharp + leftOfEven(x, y) * now.errorEven;
}

// Share of the error of the sharp layer that is left: most of it where neighbours
// differ by more than their errors.
float vk_Tile::leftOfSharp(int x, int y) const
{
    const vk_Pixel &now = pixel(x, y);
    const vk_Pixel &right = pixel(std::min(x + 1, myColumns - 1), y);
    const vk_Pixel &below = pixel(x, std::min(y + 1, myRows - 1));
    const vk_Vec visibility = vk_visibility(now.light());
    const float steps = vk_visible(right.sharp() - now.sharp(), visibility) +
                        vk_visible(below.sharp() - now.sharp(), visibility);
    const float errors = 2 * now.errorSharp + right.errorSharp + below.errorSharp;
    return steps > STRUCTURE * errors ? LEFT_STRUCTURE : LEFT_SHARP;
}

// The same of the even layer, growing with the differences: those are less steep.
float vk_Tile::leftOfEven(int x, int y) const
{
    const vk_Pixel &now = pixel(x, y);
    if (now.sum.blurred > 0)
        return now.sum.blurred < static_cast<float>(now.count) ? LEFT_GROUND : LEFT_WANDERING;
    const vk_Pixel &left = pixel(std::max(x - 1, 0), y);
    const vk_Pixel &right = pixel(std::min(x + 1, myColumns - 1), y);
    const vk_Pixel &above = pixel(x, std::max(y - 1, 0));
    const vk_Pixel &below = pixel(x, std::min(y + 1, myRows - 1));
    const vk_Vec visibility = vk_visibility(now.light());
    const vk_Colour albedo = now.albedo();
    const float steps = vk_visible((right.arriving() - left.arriving()) * albedo, visibility) +
                        vk_visible((below.arriving() - above.arriving()) * albedo, visibility);
    const float errors = left.errorEven + right.errorEven + above.errorEven + below.errorEven;
    return errors > 0 ? std::clamp(LEFT_STEEP * steps / errors, LEFT_EVEN, 1.0f) : 1;
}

std::uint64_t vk_Tile::samples() const
{
    std::uint64_t sum = 0;
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x)
            sum += static_cast<std::uint64_t>(pixel(x, y).count);
    return sum;
}

std::uint64_t vk_Tile::badPixels() const
{
    std::uint64_t sum = 0;
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x)
            sum += pixel(x, y).bad ? 1u : 0u;
    return sum;
}
