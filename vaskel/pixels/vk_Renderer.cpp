#include "vaskel/pixels/vk_Renderer.h"

#include "UT/UT_EnvControl.h"
#include "vaskel/pixels/vk_Filter.h"
#include "vaskel/pixels/vk_LinearPicture.h"
#include "vaskel/pixels/vk_Tile.h"

#include <tbb/global_control.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <mutex>
#include <new>

namespace
{
// Rows around a band; the filter compares errors with those one row further.
constexpr int MARGIN = vk_Filter::REACH + 1 + vk_LinearPicture::REACH;

// Draws a picture, band by band, and keeps count of what that took.
class Drawing
{
public:
    Drawing(const vk_Scene &scene, const vk_World &world, const vk_RenderSettings &settings,
            vk_Film &film)
        : myCanvas(scene, world, settings, film), mySettings(settings), myColumns(scene.width),
          myRows(scene.height)
    {
    }
    void draw()
    {
        const int most = std::max(4 * MARGIN, mySettings.bandPixels / myColumns);
        for (int top = 0; top < myRows; top += most)
            drawBand(top, std::min(top + most, myRows));
    }

private:
    void drawBand(int top, int bottom)
    {
        vk_Band band;
        band.top = std::max(0, top - MARGIN);
        band.columns = myColumns;
        band.rows = std::min(myRows, bottom + MARGIN) - band.top;
        band.pixels.resize(static_cast<std::size_t>(band.columns * band.rows));
        const int across = tiles(band.columns);
        std::vector<vk_Tile> parts;
        parts.reserve(static_cast<std::size_t>(across * tiles(band.rows)));
        for (int i = 0; i < across * tiles(band.rows); ++i)
            parts.emplace_back(myCanvas, band, i % across * vk_Tile::SIDE,
                               i / across * vk_Tile::SIDE);
        const int count = static_cast<int>(parts.size());
        const auto part = [&](int i) -> vk_Tile & { return parts[static_cast<std::size_t>(i)]; };
        FirstLook look;
        tbb::parallel_for(0, count, [&](int i) { startTile(part(i), look); });
        const float samples = mySettings.quality->rays / look.raysOfSample();
        const float limit = look.variances.limit(myCanvas.target(), samples,
                                                 myCanvas.leastSamples(), myCanvas.mostSamples());
        tbb::parallel_for(0, count, [&](int i) { finishTile(part(i), limit); });
        develop(band, top, bottom);
    }

    static int tiles(int pixels) { return (pixels + vk_Tile::SIDE - 1) / vk_Tile::SIDE; }

    // What the least samples of all tiles tell.
    struct FirstLook {
        vk_Variances variances;
        vk_RayCounts rays;

        float raysOfSample() const
        {
            const std::uint64_t all = rays.camera + rays.scattered + rays.shadow;
            return static_cast<float>(all) / static_cast<float>(rays.camera);
        }
    };

    void startTile(vk_Tile &tile, FirstLook &look)
    {
        vk_myRays = {};
        tile.start();
        const vk_Variances own = tile.variances();
        const std::lock_guard<std::mutex> lock(myMutex);
        look.variances += own;
        look.rays += vk_myRays;
        if (mySettings.stats != nullptr)
            mySettings.stats->rays += vk_myRays;
    }
    void finishTile(vk_Tile &tile, float limit)
    {
        vk_myRays = {};
        tile.go(limit);
        const std::lock_guard<std::mutex> lock(myMutex);
        if (mySettings.stats != nullptr)
            add(tile, *mySettings.stats);
        // The rows that two bands draw make the sum a little more than the whole.
        myDone += tile.pixels();
        const auto percent = static_cast<int>(100 * myDone / myColumns / myRows);
        const int shown = std::min(percent, 100);
        if (mySettings.progress != nullptr && shown > myPercent)
            mySettings.progress(shown);
        myPercent = shown;
    }
    static void add(const vk_Tile &tile, vk_Stats &stats)
    {
        stats.rays += vk_myRays;
        stats.pixels += static_cast<std::uint64_t>(tile.pixels());
        stats.samples += tile.samples();
        stats.badPixels += tile.badPixels();
    }

    void develop(vk_Band &band, int top, int bottom)
    {
        vk_LinearPicture light(band.columns, band.rows);
        collect(band, light);
        tbb::parallel_for(top - band.top, bottom - band.top, [&](int y) {
            for (int x = 0; x < band.columns; ++x)
                myCanvas.develop(light.blended(x, y), x, band.top + y);
        });
    }

    // Fixed samples are taken as they are.
    void collect(vk_Band &band, vk_LinearPicture &light)
    {
        const auto each = [&](auto &&row) { tbb::parallel_for(0, band.rows, row); };
        if (!myCanvas.filters()) {
            each([&](int y) {
                for (int x = 0; x < band.columns; ++x)
                    light.at(x, y) = band.at(x, y).light();
            });
            return;
        }
        vk_Filter filter(band.columns, band.rows);
        each([&](int y) { filter.take(&band.at(0, y), y); });
        each([&](int y) { filter.compare(y); });
        each([&](int y) {
            for (int x = 0; x < band.columns; ++x)
                light.at(x, y) = filter.at(x, y);
        });
    }

    const vk_Canvas myCanvas;
    const vk_RenderSettings &mySettings;
    int myColumns, myRows;
    std::mutex myMutex; // guards the rest
    std::int64_t myDone = 0;
    int myPercent = -1;
};

bool drawScene(const vk_Scene &scene, const vk_RenderSettings &settings, vk_Film &film,
               std::string &error)
{
    const double start = vk_seconds();
    // More threads than processors are wanted when somebody asks for them.
    const auto threads = static_cast<std::size_t>(settings.threads);
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
    const vk_World world(scene);
    error = world.error();
    if (!error.empty())
        return false;
    film.width = scene.width;
    film.height = scene.height;
    film.bytes.assign(3 * static_cast<std::size_t>(scene.width * scene.height), 0);
    const double built = vk_seconds();
    tbb::task_arena arena(settings.threads);
    Drawing drawing(scene, world, settings, film);
    arena.execute([&] { drawing.draw(); });
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
