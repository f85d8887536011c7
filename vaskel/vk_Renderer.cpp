#include "vaskel/vk_Renderer.h"

#include "UT/UT_EnvControl.h"
#include "vaskel/vk_Tracer.h"

#include <tbb/global_control.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <new>

namespace
{
constexpr int FIRST_SAMPLES = 4;  // a pixel; every further pass doubles them
constexpr int TILE = 8;           // pixels a side that are drawn together
constexpr float QUIET = 0.009f;   // error at which a pixel stops, of full scale,
constexpr float QUIET_COUNT = 64; // where that many samples are the most
constexpr float FILTER_WIDTH = 1; // pixels to either side

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
        const float pixel =
            2 * std::tan(scene.camera.fov * VK_PI / 360) / std::min(myWidth, myHeight);
        myForward = forward;
        myRight = right * pixel;
        myDown = vk_cross(forward, right) * pixel;
    }
    const vk_Vec &from() const { return myFrom; }
    vk_Vec direction(float x, float y) const
    {
        return vk_normalize(myForward + myRight * (x - myWidth / 2) + myDown * (y - myHeight / 2));
    }

private:
    vk_Vec myFrom, myForward, myRight, myDown;
    float myWidth, myHeight;
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

// About the scale of the file, on which errors are judged.
vk_Colour seen(const vk_Colour &c)
{
    const auto level = [](float x) { return std::sqrt(std::min(x, 1.0f) + 0.002f); };
    return {level(c.x), level(c.y), level(c.z)};
}

struct Pixel {
    vk_Colour sum;
    vk_Colour before; // seen mean when half of the samples were there
    float error = 0;  // of the mean, estimated
    int count = 0;
    bool quiet = false;

    vk_Colour mean() const { return sum * (1 / static_cast<float>(count)); }

    // How far the second half of the samples moved the mean is about how far
    // off the mean still is.
    void judge()
    {
        const vk_Colour now = seen(mean());
        const vk_Colour moved = now - before;
        error = vk_dot(moved, moved) / 3;
        before = now;
    }
};

class Picture
{
public:
    Picture(const vk_Scene &scene, const vk_World &world, vk_Film &film)
        : myScene(scene), myTracer(scene, world), myLens(scene), myFilm(film),
          myGain(std::exp2(scene.exposure)),
          myTolerance(QUIET * QUIET * QUIET_COUNT / static_cast<float>(scene.samples))
    {
    }
    void sample(Pixel &pixel, int x, int y, int count) const
    {
        const std::uint32_t seed = vk_hash(static_cast<std::uint32_t>(y * myScene.width + x) + 1);
        for (; pixel.count < count; ++pixel.count)
            pixel.sum += light(x, y, vk_Sampler(seed, static_cast<std::uint32_t>(pixel.count)));
    }
    void develop(const Pixel &pixel, int x, int y) const
    {
        const auto at = static_cast<std::size_t>(y * myScene.width + x);
        vk_develop(pixel.mean(), &myFilm.bytes[3 * at]);
    }
    int width() const { return myScene.width; }
    int height() const { return myScene.height; }
    int mostSamples() const { return myScene.samples; }
    float tolerance() const { return myTolerance; }

private:
    vk_Colour light(int x, int y, vk_Sampler sampler) const
    {
        const vk_Square at = sampler.square();
        const vk_Vec direction = myLens.direction(static_cast<float>(x) + .5f + tent(at.u),
                                                  static_cast<float>(y) + .5f + tent(at.v));
        const vk_Colour light = myTracer.radiance(myLens.from(), direction, sampler) * myGain;
        // What is whiter than white must not outweigh its neighbours at an edge.
        const float largest = vk_largest(light);
        if (!vk_isFinite(light))
            return {};
        return largest > VK_WHITE ? light * (VK_WHITE / largest) : light;
    }

    const vk_Scene &myScene;
    vk_Tracer myTracer;
    Lens myLens;
    vk_Film &myFilm;
    float myGain;
    float myTolerance;
};

// A square of pixels, drawn in passes that double the samples of those pixels
// that are not quiet yet. One pixel's error is a poor estimate; the mean over
// its neighbours in the tile is a fair one. Tiles know nothing of each other,
// so their order does not matter.
class Tile
{
public:
    Tile(const Picture &picture, int left, int top)
        : myPicture(picture), myLeft(left), myTop(top),
          myColumns(std::min(TILE, picture.width() - left)),
          myRows(std::min(TILE, picture.height() - top))
    {
    }
    void draw()
    {
        int count = std::min(FIRST_SAMPLES, myPicture.mostSamples());
        while (pass(count) && count < myPicture.mostSamples()) {
            if (count > FIRST_SAMPLES)
                settle();
            count = std::min(2 * count, myPicture.mostSamples());
        }
        for (int y = 0; y < myRows; ++y)
            for (int x = 0; x < myColumns; ++x)
                myPicture.develop(myPixels[y][x], myLeft + x, myTop + y);
    }

private:
    // False when all pixels are quiet.
    bool pass(int count)
    {
        bool drew = false;
        for (int y = 0; y < myRows; ++y)
            for (int x = 0; x < myColumns; ++x) {
                Pixel &pixel = myPixels[y][x];
                if (pixel.quiet)
                    continue;
                myPicture.sample(pixel, myLeft + x, myTop + y, count);
                pixel.judge();
                drew = true;
            }
        return drew;
    }
    void settle()
    {
        for (int y = 0; y < myRows; ++y)
            for (int x = 0; x < myColumns; ++x)
                if (errorAround(x, y) < myPicture.tolerance())
                    myPixels[y][x].quiet = true;
    }
    float errorAround(int x, int y) const
    {
        float sum = 0;
        int count = 0;
        for (int j = std::max(0, y - 1); j <= std::min(y + 1, myRows - 1); ++j)
            for (int i = std::max(0, x - 1); i <= std::min(x + 1, myColumns - 1); ++i, ++count)
                sum += myPixels[j][i].error;
        return sum / static_cast<float>(count);
    }

    const Picture &myPicture;
    int myLeft, myTop, myColumns, myRows;
    Pixel myPixels[TILE][TILE];
};

void drawTiles(const Picture &picture, int threads)
{
    const int columns = (picture.width() + TILE - 1) / TILE;
    const int rows = (picture.height() + TILE - 1) / TILE;
    // More threads than processors are wanted when somebody asks for them.
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism,
                                    static_cast<std::size_t>(threads));
    tbb::task_arena arena(threads);
    arena.execute([&] {
        tbb::parallel_for(0, columns * rows, [&](int i) {
            Tile(picture, i % columns * TILE, i / columns * TILE).draw();
        });
    });
}
bool drawScene(const vk_Scene &scene, int threads, vk_Film &film, std::string &error)
{
    const vk_World world(scene);
    error = world.error();
    if (!error.empty())
        return false;
    film.width = scene.width;
    film.height = scene.height;
    film.bytes.assign(3 * static_cast<std::size_t>(scene.width * scene.height), 0);
    drawTiles(Picture(scene, world, film), threads);
    return true;
}
} // namespace

int vk_threadCount()
{
    const int wish = UT_EnvControl::instance().getInt(ENV_VELDRIN_MAXTHREADS);
    return wish > 0 ? wish : tbb::info::default_concurrency();
}

bool vk_render(const vk_Scene &scene, int threads, vk_Film &film, std::string &error)
{
    // Waits in the end for the threads to be gone. No harm when others keep
    // them busy.
    tbb::task_scheduler_handle scheduler{tbb::attach{}};
    const bool good = drawScene(scene, threads, film, error);
    static_cast<void>(tbb::finalize(scheduler, std::nothrow));
    return good;
}
