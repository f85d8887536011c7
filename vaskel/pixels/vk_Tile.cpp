#include "vaskel/pixels/vk_Tile.h"

#include "vaskel/pixels/vk_Filter.h"

#include <cmath>

namespace
{
constexpr int FIRST_SAMPLES = 2; // a pixel; every further pass doubles them

// Shares of errors that the filter and the blending leave, as they were found over the
// examples. At an edge of a shape the filter cannot help.
constexpr float REMAINS_EDGE = .65f;
constexpr float REMAINS_TEXTURE = .27f;
constexpr float REMAINS_GROUND = .019f;
constexpr float REMAINS_WANDERING = .0115f;

// On a surface that turns away, neighbours help less, and differ without an error. Its
// straightness is the length of the mean of its normals around a pixel.
constexpr float FLAT = .9995f; // at least
constexpr float CURVED = .98f; // at least, and bent below
constexpr float REMAINS_CURVED = .11f;
constexpr float REMAINS_BENT = .4f;

// Where pixels differ by more than their errors, more is left.
struct Remainder {
    float least, most;
    float onset, slope; // of structure
};
constexpr Remainder SHARP = {.05f, .7f, .9f, .3f};
constexpr Remainder EVEN = {.02f, 1.3f, 1.2f, .45f};

float remainsOf(const Remainder &remainder, float structure)
{
    return std::clamp(remainder.slope * (structure - remainder.onset), remainder.least,
                      remainder.most);
}

float remainsOfEven(const vk_Pixel &pixel, float structure, float straightness)
{
    if (pixel.sum.blurred >= static_cast<float>(pixel.count))
        return REMAINS_WANDERING;
    if (pixel.sum.blurred > 0)
        return REMAINS_GROUND;
    if (straightness < CURVED)
        return REMAINS_BENT;
    return straightness < FLAT ? REMAINS_CURVED : remainsOf(EVEN, structure);
}

// A surface needs no more than the first samples when its error is this part of the
// one aimed at.
constexpr float EARLY = .25f;

// How much of an estimate is that of the passes before: one that is low by chance must
// not end a pixel's samples.
constexpr float BEFORE = .6f;

// How much the mean error of a tile's even layer counts for each pixel: few samples
// find bright things that are small only here and there.
constexpr float RARE = .2f;

// One layer of pixels beside each other.
struct Layer {
    vk_Colour sum, squares;
    float errors = 0;
    int count = 0;

    void add(const vk_Colour &light, float error)
    {
        sum += light;
        squares += light * light;
        errors += error;
        ++count;
    }
    // How much they differ: about 1 when it is their errors, more when there is something
    // to be seen.
    float structure(const vk_Vec &visibility) const
    {
        if (errors <= 0 || count < 2)
            return 0;
        const auto n = static_cast<float>(count);
        const vk_Colour variance = (squares - sum * sum * (1 / n)) * (1 / (n - 1));
        return vk_dot(variance, visibility) * (1.0f / 3) * n / errors;
    }
};

// A pixel and those beside it.
struct Around {
    Layer sharp, even; // where the filter helps
    vk_Vec normals;    // summed over samples,
    int samples = 0;   // of those
    float rest = 0;    // of errors other than those of the layers
    int count = 0;

    void add(const vk_Pixel &pixel)
    {
        ++count;
        if (!vk_Filter::helps(pixel)) {
            rest += REMAINS_EDGE * (pixel.errorSharp + pixel.errorEven + pixel.errorTexture);
            return;
        }
        rest += REMAINS_TEXTURE * pixel.errorTexture;
        sharp.add(pixel.judged.sharp, pixel.errorSharp);
        even.add(pixel.judged.even, pixel.errorEven);
        normals += pixel.sum.normal;
        samples += pixel.count;
    }
    // Near 1 where all face the same way.
    float straightness() const
    {
        return vk_length(normals) / static_cast<float>(std::max(1, samples));
    }
};

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
      myGain(std::exp2(scene.exposure)), myFilters(settings.samples <= 0)
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
    const vk_Vec direction =
        myLens.direction(static_cast<float>(x) + at.u, static_cast<float>(y) + at.v);
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

// Calls a function with each pixel and its place.
template <class Function>
void vk_Tile::each(Function function) const
{
    for (int y = 0; y < myRows; ++y)
        for (int x = 0; x < myColumns; ++x)
            function(myBand.at(myLeft + x, myTop + y), x, y);
}

void vk_Tile::start()
{
    const int count = myCanvas.firstSamples();
    pass(count);
    if (count == myCanvas.mostSamples())
        return;
    judge();
    each([&](vk_Pixel &now, int x, int y) {
        now.quiet = myErrors[y][x] < (showsSurface(now) ? EARLY : 1) * myCanvas.target();
    });
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

// Pixels that were quiet before count as if they had had as many samples as the others.
vk_Spreads vk_Tile::spreads()
{
    vk_Spreads spreads;
    judge();
    each([&](const vk_Pixel &, int x, int y) {
        spreads.add(myErrors[y][x] * static_cast<float>(myCanvas.leastSamples()));
    });
    return spreads;
}

// False when all pixels are quiet.
bool vk_Tile::pass(int count)
{
    bool drew = false;
    each([&](vk_Pixel &now, int x, int y) {
        if (now.quiet)
            return;
        for (const int part : {std::max(1, count / 2), count}) {
            if (now.count >= part)
                continue;
            myCanvas.sample(now, myLeft + x, myBand.top + myTop + y, part);
            now.judge();
        }
        drew = true;
    });
    return drew;
}

void vk_Tile::settle(float limit)
{
    judge();
    each([&](vk_Pixel &now, int x, int y) {
        if (now.quiet)
            return;
        const auto count = static_cast<float>(now.count);
        const float spread = myErrors[y][x] * count;
        now.spread = now.spread > 0 ? spread + BEFORE * (now.spread - spread) : spread;
        now.quiet = now.spread < limit * count * count;
    });
}

void vk_Tile::judge()
{
    float rare = 0;
    each([&](const vk_Pixel &now, int x, int y) {
        const Remaining remaining = remainingAround(now, x, y);
        myErrors[y][x] = remaining.rest + remaining.even;
        rare += remaining.even;
    });
    rare *= RARE / static_cast<float>(pixels());
    each([&](const vk_Pixel &, int x, int y) { myErrors[y][x] = std::max(rare, myErrors[y][x]); });
}

vk_Tile::Remaining vk_Tile::remainingAround(const vk_Pixel &now, int x, int y) const
{
    Around around;
    for (int j = std::max(0, y - 1); j <= std::min(y + 1, myRows - 1); ++j)
        for (int i = std::max(0, x - 1); i <= std::min(x + 1, myColumns - 1); ++i)
            around.add(myBand.at(myLeft + i, myTop + j));
    const vk_Vec visibility = vk_visibility(now.light());
    const vk_Colour &albedo = now.judged.albedo;
    const float structure = around.even.structure(visibility * albedo * albedo);
    const float ofSharp = remainsOf(SHARP, around.sharp.structure(visibility));
    const float ofEven = remainsOfEven(now, structure, around.straightness());
    const float share = 1 / static_cast<float>(around.count);
    return {share * (around.rest + ofSharp * around.sharp.errors),
            share * ofEven * around.even.errors};
}

std::uint64_t vk_Tile::samples() const
{
    std::uint64_t sum = 0;
    each([&](const vk_Pixel &now, int, int) { sum += static_cast<std::uint64_t>(now.count); });
    return sum;
}

std::uint64_t vk_Tile::badPixels() const
{
    std::uint64_t sum = 0;
    each([&](const vk_Pixel &now, int, int) { sum += now.bad ? 1u : 0u; });
    return sum;
}
