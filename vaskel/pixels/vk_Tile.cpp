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
constexpr Remainder SPECULAR = {.05f, .7f, .9f, .3f};
constexpr Remainder IRRADIANCE = {.02f, 1.3f, 1.2f, .45f};

float remainsOf(const Remainder &remainder, float structure)
{
    return std::clamp(remainder.slope * (structure - remainder.onset), remainder.least,
                      remainder.most);
}

float remainsOfIrradiance(const vk_Pixel &pixel, float structure, float straightness)
{
    if (pixel.sum.blurred >= static_cast<float>(pixel.count))
        return REMAINS_WANDERING;
    if (pixel.sum.blurred > 0)
        return REMAINS_GROUND;
    if (straightness < CURVED)
        return REMAINS_BENT;
    return straightness < FLAT ? REMAINS_CURVED : remainsOf(IRRADIANCE, structure);
}

// A surface needs no more than the first samples when its error is this part of the
// one aimed at.
constexpr float EARLY = .25f;

// How much of an estimate is that of the passes before: one that is low by chance must
// not end a pixel's samples.
constexpr float BEFORE = .6f;

// How much the mean error of a tile's diffuse layer counts for each pixel: few samples
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
    Layer specular, diffuse; // where the filter helps
    vk_Vec normals;          // summed over samples,
    int samples = 0;         // of those
    float rest = 0;          // of errors other than those of the layers
    int count = 0;

    void add(const vk_Pixel &pixel)
    {
        ++count;
        if (!vk_Filter::helps(pixel)) {
            rest +=
                REMAINS_EDGE * (pixel.errorSpecular + pixel.errorIrradiance + pixel.errorAlbedo);
            return;
        }
        rest += REMAINS_TEXTURE * pixel.errorAlbedo;
        specular.add(pixel.estimated.specular, pixel.errorSpecular);
        diffuse.add(pixel.estimated.diffuse, pixel.errorIrradiance);
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

vk_Path vk_Canvas::path(int x, int y, int sample, vk_View &view) const
{
    const std::uint32_t seed = vk_hash(static_cast<std::uint32_t>(y * myScene.width + x) + 1);
    vk_Sampler sampler(seed, static_cast<std::uint32_t>(sample));
    const vk_Square at = sampler.square();
    const vk_Vec direction =
        myLens.direction(static_cast<float>(x) + at.u, static_cast<float>(y) + at.v);
    return vk_Path(myLens.from(), direction, sampler, view);
}

void vk_Canvas::expose(vk_View &view) const
{
    // What is whiter than white must not outweigh its neighbours at an edge.
    const float largest = vk_largest(view.light()) * myGain;
    const float factor = largest > VK_WHITE ? myGain * VK_WHITE / largest : myGain;
    view.specular = view.specular * factor;
    view.diffuse = view.diffuse * factor;
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
    estimate();
    each([&](vk_Pixel &now, int x, int y) {
        now.converged = myErrors[y][x] < (showsSurface(now) ? EARLY : 1) * myCanvas.target();
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

// Pixels that had converged before count as if they had had as many samples as the others.
vk_Variances vk_Tile::variances()
{
    vk_Variances variances;
    estimate();
    each([&](const vk_Pixel &, int x, int y) {
        variances.add(myErrors[y][x] * static_cast<float>(myCanvas.leastSamples()));
    });
    return variances;
}

// Draws samples of all pixels that need them, until each has so many. Two halves: the
// second tells how far off the first was. False when all pixels are converged.
bool vk_Tile::pass(int count)
{
    const bool drew = sample(std::max(1, count / 2));
    return sample(count) || drew;
}

// The paths of a tile are followed together.
bool vk_Tile::sample(int count)
{
    struct Sample {
        vk_Pixel *pixel;
        int x, y, index;
    };
    std::vector<Sample> samples;
    each([&](vk_Pixel &now, int x, int y) {
        for (int i = now.count; !now.converged && i < count; ++i)
            samples.push_back({&now, myLeft + x, myBand.top + myTop + y, i});
    });
    std::vector<vk_View> views;
    std::vector<vk_Path> paths;
    for (std::size_t begin = 0; begin < samples.size(); begin += WAVE) {
        const std::size_t size = std::min(WAVE, samples.size() - begin);
        views.assign(size, {});
        for (std::size_t i = 0; i < size; ++i) {
            const Sample &now = samples[begin + i];
            paths.push_back(myCanvas.path(now.x, now.y, now.index, views[i]));
        }
        myCanvas.tracer().Li(paths);
        for (std::size_t i = 0; i < size; ++i) {
            myCanvas.expose(views[i]);
            samples[begin + i].pixel->add(views[i]);
        }
    }
    each([&](vk_Pixel &now, int, int) {
        if (!now.converged)
            now.estimate();
    });
    return !samples.empty();
}

void vk_Tile::settle(float limit)
{
    estimate();
    each([&](vk_Pixel &now, int x, int y) {
        if (now.converged)
            return;
        const auto count = static_cast<float>(now.count);
        const float variance = myErrors[y][x] * count;
        now.variance = now.variance > 0 ? variance + BEFORE * (now.variance - variance) : variance;
        now.converged = now.variance < limit * count * count;
    });
}

void vk_Tile::estimate()
{
    float rare = 0;
    each([&](const vk_Pixel &now, int x, int y) {
        const Remaining remaining = remainingAround(now, x, y);
        myErrors[y][x] = remaining.rest + remaining.diffuse;
        rare += remaining.diffuse;
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
    const vk_Colour &albedo = now.estimated.albedo;
    const float structure = around.diffuse.structure(visibility * albedo * albedo);
    const float ofSpecular = remainsOf(SPECULAR, around.specular.structure(visibility));
    const float ofIrradiance = remainsOfIrradiance(now, structure, around.straightness());
    const float share = 1 / static_cast<float>(around.count);
    return {share * (around.rest + ofSpecular * around.specular.errors),
            share * ofIrradiance * around.diffuse.errors};
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
