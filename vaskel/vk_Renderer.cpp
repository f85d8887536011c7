#include "vaskel/vk_Renderer.h"

#include "vaskel/vk_Tracer.h"

#include <tbb/blocked_range2d.h>
#include <tbb/global_control.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <cstdlib>

namespace
{
constexpr int   FIRST_SAMPLES = 8; // before a pixel may stop
constexpr int   TILE = 8;          // pixels a side that a thread takes at once
constexpr float QUIET = 0.0025f;   // error at which a pixel stops, of full scale
constexpr float FILTER_WIDTH = 1.0f;

// Rays through a picture's points.
class Lens
{
public:
    explicit Lens(const vk_Scene &scene)
        : myFrom(scene.camera.from), myWidth(static_cast<float>(scene.width)),
          myHeight(static_cast<float>(scene.height))
    {
        const vk_Vec forward = vk_normalize(scene.camera.at - scene.camera.from);
        const vk_Vec right = vk_normalize(vk_cross(forward, scene.camera.up));
        const float  pixel = 2 * std::tan(scene.camera.fov * VK_PI / 360) / std::min(myWidth, myHeight);
        myForward = forward;
        myRight = right * pixel;
        myDown = vk_cross(forward, right) * pixel;
    }
    const vk_Vec &from() const { return myFrom; }
    vk_Vec        direction(float x, float y) const
    {
        return vk_normalize(myForward + myRight * (x - myWidth / 2) + myDown * (y - myHeight / 2));
    }

private:
    vk_Vec myFrom, myForward, myRight, myDown;
    float  myWidth, myHeight;
};

// A tent-shaped filter, drawn from instead of weighted by: each pixel then
// keeps to its own samples (Ernst, Stamminger and Greiner, "Filter Importance
// Sampling", 2006).
float tent(float u)
{
    const float x = 2 * u - 1;
    const float half = x < 0 ? std::sqrt(1 + x) - 1 : 1 - std::sqrt(1 - x);
    return half * FILTER_WIDTH;
}

// The mean of a pixel's samples so far, and how sure it is.
class Mean
{
public:
    void add(const vk_Colour &sample)
    {
        mySum += sample;
        // Judged where differences are seen: roughly on the scale of the file.
        const float seen = std::sqrt(std::min(1.0f, vk_luminance(sample)));
        mySeen += seen;
        mySeenSquares += seen * seen;
        ++myCount;
    }
    vk_Colour value() const { return mySum * (1 / static_cast<float>(myCount)); }

    // Well spread samples err less than random ones: the standard error of
    // the mean with one more root of the count.
    bool isQuiet() const
    {
        const float n = static_cast<float>(myCount);
        const float variance = std::max(0.0f, mySeenSquares / n - mySeen * mySeen / (n * n));
        return variance < QUIET * QUIET * n * std::sqrt(n);
    }

private:
    vk_Colour mySum;
    float     mySeen = 0;
    float     mySeenSquares = 0;
    int       myCount = 0;
};

class Picture
{
public:
    Picture(const vk_Scene &scene, const vk_World &world, vk_Film &film)
        : myScene(scene), myTracer(scene, world), myLens(scene), myFilm(film),
          myGain(std::exp2(scene.exposure))
    {
    }
    void drawPixel(int x, int y) const
    {
        const int           number = y * myScene.width + x;
        const std::uint32_t seed = vk_hash(static_cast<std::uint32_t>(number) + 1);
        Mean                mean;
        for (int i = 0; i < myScene.samples; ++i) {
            mean.add(sample(x, y, vk_Sampler(seed, static_cast<std::uint32_t>(i))));
            const int done = i + 1;
            if (done >= FIRST_SAMPLES && done % FIRST_SAMPLES == 0 && mean.isQuiet())
                break;
        }
        vk_develop(mean.value(), &myFilm.bytes[3 * static_cast<std::size_t>(number)]);
    }

private:
    vk_Colour sample(int x, int y, vk_Sampler sampler) const
    {
        const vk_Square at = sampler.square();
        const vk_Vec    direction = myLens.direction(static_cast<float>(x) + .5f + tent(at.u),
                                                     static_cast<float>(y) + .5f + tent(at.v));
        const vk_Colour light = myTracer.radiance(myLens.from(), direction, sampler) * myGain;
        // What is whiter than white must not outweigh its neighbours at an edge.
        const float largest = vk_largest(light);
        if (!vk_isFinite(light))
            return {};
        return largest > VK_WHITE ? light * (VK_WHITE / largest) : light;
    }

    const vk_Scene &myScene;
    vk_Tracer       myTracer;
    Lens            myLens;
    vk_Film        &myFilm;
    float           myGain;
};

void drawTiles(const Picture &picture, int width, int height, int threads)
{
    using Range = tbb::blocked_range2d<int>;

    const auto                count = static_cast<std::size_t>(threads);
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, count);
    tbb::task_arena           arena(threads);
    arena.execute([&] {
        tbb::parallel_for(
            Range(0, height, TILE, 0, width, TILE),
            [&](const Range &tile) {
                for (int y = tile.rows().begin(); y != tile.rows().end(); ++y)
                    for (int x = tile.cols().begin(); x != tile.cols().end(); ++x)
                        picture.drawPixel(x, y);
            },
            tbb::simple_partitioner());
    });
}
} // namespace

int vk_threadCount()
{
    constexpr long MOST_THREADS = 100;

    const char *const wish = std::getenv("VELDRIN_MAXTHREADS");
    const long        count = wish != nullptr ? std::strtol(wish, nullptr, 10) : 0;
    if (count > 0)
        return static_cast<int>(std::min(count, MOST_THREADS));
    return tbb::info::default_concurrency();
}

bool vk_render(const vk_Scene &scene, int threads, vk_Film &film, std::string &error)
{
    const vk_World world(scene);
    error = world.error();
    if (!error.empty())
        return false;
    film.width = scene.width;
    film.height = scene.height;
    film.bytes.assign(3 * static_cast<std::size_t>(scene.width * scene.height), 0);
    drawTiles(Picture(scene, world, film), scene.width, scene.height, threads);
    return true;
}
