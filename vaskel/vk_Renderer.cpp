#include "vaskel/vk_Renderer.h"

#include "UT/UT_EnvControl.h"
#include "vaskel/vk_Tile.h"

#include <tbb/global_control.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <mutex>
#include <new>

namespace
{
// Draws all tiles of a picture and keeps count of what they took.
class Drawing
{
public:
    Drawing(const vk_Canvas &canvas, const vk_RenderSettings &settings)
        : myCanvas(canvas), mySettings(settings), myColumns(tiles(canvas.width())),
          myCount(myColumns * tiles(canvas.height()))
    {
    }
    void draw()
    {
        // More threads than processors are wanted when somebody asks for them.
        const auto threads = static_cast<std::size_t>(mySettings.threads);
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
        tbb::task_arena arena(mySettings.threads);
        arena.execute([&] { tbb::parallel_for(0, myCount, [&](int i) { drawTile(i); }); });
    }

private:
    static int tiles(int pixels) { return (pixels + vk_Tile::SIDE - 1) / vk_Tile::SIDE; }

    void drawTile(int i)
    {
        vk_myRays = {};
        vk_Tile tile(myCanvas, i % myColumns * vk_Tile::SIDE, i / myColumns * vk_Tile::SIDE);
        tile.draw();
        const std::lock_guard<std::mutex> lock(myMutex);
        if (mySettings.stats != nullptr)
            add(tile, *mySettings.stats);
        const int percent = 100 * ++myDone / myCount;
        if (mySettings.progress != nullptr && percent > myPercent)
            mySettings.progress(percent);
        myPercent = percent;
    }
    static void add(const vk_Tile &tile, vk_Stats &stats)
    {
        stats.rays += vk_myRays;
        stats.pixels += static_cast<std::uint64_t>(tile.pixels());
        stats.samples += tile.samples();
        stats.badPixels += tile.badPixels();
    }

    const vk_Canvas &myCanvas;
    const vk_RenderSettings &mySettings;
    int myColumns, myCount;
    std::mutex myMutex; // guards the rest
    int myDone = 0;
    int myPercent = -1;
};

bool drawScene(const vk_Scene &scene, const vk_RenderSettings &settings, vk_Film &film,
               std::string &error)
{
    const double start = vk_seconds();
    const vk_World world(scene);
    error = world.error();
    if (!error.empty())
        return false;
    film.width = scene.width;
    film.height = scene.height;
    film.bytes.assign(3 * static_cast<std::size_t>(scene.width * scene.height), 0);
    const double built = vk_seconds();
    const vk_Canvas canvas(scene, world, settings, film);
    Drawing(canvas, settings).draw();
    if (settings.stats != nullptr) {
        settings.stats->building += built - start;
        settings.stats->tracing += vk_seconds() - built;
    }
    return true;
}
} // namespace

int vk_threadCount()
{
    const int wish = UT_EnvControl::instance().getInt(ENV_VELDRIN_MAXTHREADS);
    return wish > 0 ? wish : tbb::info::default_concurrency();
}

bool vk_render(const vk_Scene &scene, const vk_RenderSettings &settings, vk_Film &film,
               std::string &error)
{
    // Waits in the end for the threads to be gone. No harm when others keep
    // them busy.
    tbb::task_scheduler_handle scheduler{tbb::attach{}};
    const bool good = drawScene(scene, settings, film, error);
    static_cast<void>(tbb::finalize(scheduler, std::nothrow));
    return good;
}
