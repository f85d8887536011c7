#include "vaskel/vk_Tile.h"

namespace
{
constexpr int FIRST_SAMPLES = 4;  // a pixel; every further pass doubles them
constexpr float FILTER_WIDTH = 1; // pixels to either side

// A tent-shaped filter, drawn from instead of weighted by: each pixel then
// keeps to its own samples (Ernst, Stamminger and Greiner, "Filter Importance
// Sampling", 2006).
float tent(float u)
{
    const float x = 2 * u - 1;
    const float half = x < 0 ? std::sqrt(1 + x) - 1 : 1 - std::sqrt(1 - x);
    return half * FILTER_WIDTH;
}

// About the scale of the file, on which errors are judged.
vk_Colour seen(const vk_Colour &c)
{
    const auto level = [](float x) { return std::sqrt(std::min(x, 1.0f) + 0.002f); };
    return {level(c.x), level(c.y), level(c.z)};
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

void vk_Pixel::judge()
{
    const vk_Colour now = seen(mean());
    const vk_Colour moved = now - before;
    error = vk_dot(moved, moved) / 3;
    before = now;
}

vk_Canvas::vk_Canvas(const vk_Scene &scene, const vk_World &world,
                     const vk_RenderSettings &settings, vk_Film &film)
    : myScene(scene), myTracer(scene, world), myLens(scene), myFilm(film),
      myGain(std::exp2(scene.exposure))
{
    const vk_Quality &quality = *settings.quality;
    const float most = static_cast<float>(scene.samples) * quality.samples;
    myTolerance = quality.tolerance * quality.tolerance;
    myMostSamples = std::clamp(static_cast<int>(most), 1, vk_Scene::MOST_SAMPLES);
    myFirstSamples = std::min(FIRST_SAMPLES, myMostSamples);
    if (settings.samples > 0)
        myFirstSamples = myMostSamples = settings.samples;
}

void vk_Canvas::sample(vk_Pixel &pixel, int x, int y, int count) const
{
    const std::uint32_t seed = vk_hash(static_cast<std::uint32_t>(y * myScene.width + x) + 1);
    for (; pixel.count < count; ++pixel.count) {
        const vk_Colour c = light(x, y, vk_Sampler(seed, static_cast<std::uint32_t>(pixel.count)));
        if (vk_isFinite(c))
            pixel.sum += c;
        else
            pixel.bad = true;
    }
}

vk_Colour vk_Canvas::light(int x, int y, vk_Sampler sampler) const
{
    const vk_Square at = sampler.square();
    const vk_Vec direction = myLens.direction(static_cast<float>(x) + .5f + tent(at.u),
                                              static_cast<float>(y) + .5f + tent(at.v));
    const vk_Colour light = myTracer.view(myLens.from(), direction, sampler).light() * myGain;
    // What is whiter than white must not outweigh its neighbours at an edge.
    const float largest = vk_largest(light);
    return largest > VK_WHITE ? light * (VK_WHITE / largest) : light;
}

void vk_Canvas::develop(const vk_Pixel &pixel, int x, int y) const
{
    const auto at = static_cast<std::size_t>(y * myScene.width + x);
    vk_develop(pixel.mean(), &myFilm.bytes[3 * at]);
}

vk_Tile::vk_Tile(const vk_Canvas &canvas, int left, int top)
    : myCanvas(canvas), myLeft(left), myTop(top), myColumns(std::min(SIDE, canvas.width() - left)),
      myRows(std::min(SIDE, canvas.height() - top))
{
}

void vk_Tile::draw()
{
    int count = myCanvas.firstSamples();
    while (pass(count) && count < myCanvas.mostSamples()) {
        if (count > myCanvas.firstSamples())
            settle();
        count = std::min(2 * count, myCanvas.mostSamples());
    }
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x)
            myCanvas.develop(myPixels[y][x], myLeft + x, myTop + y);
}

// False when all pixels are quiet.
bool vk_Tile::pass(int count)
{
    bool drew = false;
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x) {
            vk_Pixel &pixel = myPixels[y][x];
            if (pixel.quiet)
                continue;
            myCanvas.sample(pixel, myLeft + x, myTop + y, count);
            pixel.judge();
            drew = true;
        }
    return drew;
}

void vk_Tile::settle()
{
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x)
            if (errorAround(x, y) < myCanvas.tolerance())
                myPixels[y][x].quiet = true;
}

float vk_Tile::errorAround(int x, int y) const
{
    float sum = 0;
    int count = 0;
    for (int j = std::max(0, y - 1); j <= std::min(y + 1, myRows - 1); ++j)
        for (int i = std::max(0, x - 1); i <= std::min(x + 1, myColumns - 1); ++i, ++count)
            sum += myPixels[j][i].error;
    return sum / static_cast<float>(count);
}

std::uint64_t vk_Tile::samples() const
{
    std::uint64_t sum = 0;
    for (const auto &row : myPixels)
        for (const vk_Pixel &pixel : row)
            sum += static_cast<std::uint64_t>(pixel.count);
    return sum;
}

std::uint64_t vk_Tile::badPixels() const
{
    std::uint64_t sum = 0;
    for (const auto &row : myPixels)
        for (const vk_Pixel &pixel : row)
            sum += pixel.bad ? 1 : 0;
    return sum;
}
