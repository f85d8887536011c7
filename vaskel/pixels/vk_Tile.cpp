#include "vaskel/pixels/vk_Tile.h"

#include <cmath>

vk_Lens::vk_Lens(const vk_Scene &scene)
    : myFrom(scene.camera.from), myWidth(static_cast<float>(scene.width)),
      myHeight(static_cast<float>(scene.height))
{
    const vk_Vec forward = vk_normalize(scene.camera.at - scene.camera.from);
    const vk_Vec right = vk_normalize(vk_cross(forward, scene.camera.up));
    // Measured at a distance of 1, where the film stands.
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
    // A draft takes a part of what the scene allows, but never nothing.
    const float most = static_cast<float>(scene.samples) * settings.quality->samples;
    myMostSamples = std::clamp(static_cast<int>(most), 1, vk_Scene::MOST_SAMPLES);
    myFirstSamples = std::min(settings.quality->first, myMostSamples);
    if (settings.samples > 0)
        myFirstSamples = myMostSamples = settings.samples;
}

vk_Path vk_Canvas::path(int x, int y, int sample, vk_View &view, vk_Square &place) const
{
    // By its place in the picture, whatever band or tile it is drawn in. Not 0, which the hash
    // leaves as it is.
    const std::uint32_t seed = vk_hash(static_cast<std::uint32_t>(y * myScene.width + x) + 1);
    vk_Sampler sampler(seed, static_cast<std::uint32_t>(sample));
    place = sampler.square();
    const vk_Vec direction =
        myLens.direction(static_cast<float>(x) + place.u, static_cast<float>(y) + place.v);
    return vk_Path(myLens.from(), direction, sampler, view);
}

void vk_Canvas::expose(vk_View &view) const
{
    // What is whiter than white must not outweigh its neighbours at an edge, nor what roulette took
    // back from a path all that others found.
    const vk_Colour light = view.light();
    const float largest = std::max(vk_largest(light), vk_largest(-light)) * myGain;
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

void vk_Tile::draw()
{
    // Two halves: the second tells how far off the first was.
    const bool isFirst = myBand.at(myLeft, myTop).count == 0;
    if (isFirst && myCanvas.filters() && myCanvas.firstSamples() > 1)
        drawUpTo([&](const vk_Pixel &) { return myCanvas.firstSamples() / 2; });
    drawUpTo([&](const vk_Pixel &now) {
        return std::clamp(2 * now.count, myCanvas.firstSamples(), myCanvas.mostSamples());
    });
}

// The paths of a tile are followed together, so many at once that each surface has a batch to
// shade and that what they hold stays in the cache.
template <class Function>
void vk_Tile::drawUpTo(Function count)
{
    struct Sample {
        vk_Pixel *pixel;
        int x, y, index;
        vk_Square place;
    };
    std::vector<Sample> samples;
    each([&](vk_Pixel &now, int x, int y) {
        for (int i = now.count; !now.converged && i < count(now); ++i)
            samples.push_back({&now, myLeft + x, myBand.top + myTop + y, i, {}});
    });
    std::vector<vk_View> views; // which the paths point to, so it must not grow meanwhile
    std::vector<vk_Path> paths;
    for (std::size_t begin = 0; begin < samples.size(); begin += WAVE) {
        const std::size_t size = std::min(WAVE, samples.size() - begin);
        views.assign(size, {});
        for (std::size_t i = 0; i < size; ++i) {
            Sample &now = samples[begin + i];
            paths.push_back(myCanvas.path(now.x, now.y, now.index, views[i], now.place));
        }
        myCanvas.tracer().Li(paths);
        for (std::size_t i = 0; i < size; ++i) {
            myCanvas.expose(views[i]);
            const Sample &now = samples[begin + i];
            now.pixel->add(views[i], now.place);
        }
    }
    // Of those alone that got samples: the others' second half is the one that they had.
    each([&](vk_Pixel &now, int, int) {
        if (!now.converged)
            now.estimate();
    });
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
