#include "vaskel/pixels/vk_Renderer.h"

#include "UT/UT_EnvControl.h"
#include "vaskel/pixels/vk_Allocation.h"
#include "vaskel/pixels/vk_ErrorMap.h"
#include "vaskel/pixels/vk_LinearPicture.h"
#include "vaskel/pixels/vk_Tile.h"

#include <tbb/global_control.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <atomic>
#include <limits>
#include <mutex>
#include <new>

namespace
{
// Rows around a band that its pixels look at: light is blended, rises from one row to the next, and
// is filtered by means and errors that take in the next row. Further out, errors are spread; but
// the whole band decides about samples.
constexpr int MARGIN = vk_LinearPicture::REACH + 1 + vk_Filter::REACH + 1 + vk_ErrorMap::REACH;

// Draws a picture, band by band, and keeps count of what that took.
class Drawing
{
public:
    Drawing(const vk_Scene &scene, const vk_World &world, const vk_RenderSettings &settings,
            vk_Film &film)
        : myCanvas(scene, world, settings, film), myWorld(world), mySettings(settings),
          myColumns(scene.width), myRows(scene.height)
    {
    }
    void draw()
    {
        // However wide the picture, a band is so high that its margins, which are drawn again for
        // the next one, are not most of the work.
        const int most = std::max(4 * MARGIN, mySettings.bandPixels / myColumns);
        for (int top = 0; top < myRows; top += most)
            drawBand(top, std::min(top + most, myRows));
    }

private:
    void drawBand(int top, int bottom)
    {
        myBandRows = bottom - top;
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
        vk_Filter filter(band.columns, band.rows);
        drawUntilConverged(band, parts, filter);
        for (const vk_Tile &tile : parts)
            add(tile);
        develop(band, filter, top, bottom);
        myRowsDone = bottom;
        myDrawn = myForecast = 0;
        showProgress();
    }

    // The map of errors goes before light is developed, which takes as much memory.
    void drawUntilConverged(vk_Band &band, std::vector<vk_Tile> &parts, vk_Filter &filter)
    {
        vk_ErrorMap errors(band.columns, band.rows);
        // All tiles before any is judged: the limit depends on the whole band.
        drawTiles(parts);
        while (myCanvas.filters() && choosePixels(band, filter, errors))
            drawTiles(parts);
    }

    static int tiles(int pixels) { return (pixels + vk_Tile::SIDE - 1) / vk_Tile::SIDE; }

    // One by one, as they take times that differ much.
    void drawTiles(std::vector<vk_Tile> &tiles)
    {
        const auto draw = [&](std::size_t i) {
            vk_myWork = {}; // this thread's, which had other tiles before
            tiles[i].draw();
            const std::lock_guard<std::mutex> lock(myMutex);
            if (mySettings.stats != nullptr)
                mySettings.stats->work += vk_myWork;
            myDrawn += static_cast<double>(vk_myWork.cost);
            showProgress();
        };
        tbb::parallel_for(std::size_t{0}, tiles.size(), draw, tbb::simple_partitioner());
    }
    // By the work that a band is thought to take, as soon as that is known.
    void showProgress()
    {
        const double ofBand = myForecast > 0 ? std::min(1.0, myDrawn / myForecast) : 0;
        const auto percent = static_cast<int>(100 * (myRowsDone + ofBand * myBandRows) / myRows);
        if (mySettings.progress != nullptr && percent > myPercent)
            mySettings.progress(percent);
        myPercent = std::max(myPercent, percent);
    }

    // Tells which pixels have converged. False when all have.
    bool choosePixels(vk_Band &band, vk_Filter &filter, vk_ErrorMap &errors)
    {
        // Each step reads what the one before wrote to rows around.
        const auto each = [&](auto &&row) { tbb::parallel_for(0, band.rows, row); };
        each([&](int y) { filter.take(&band.at(0, y), y); });
        each([&](int y) { filter.compare(y); });
        each([&](int y) {
            filter.estimate(y);
            errors.take(filter, &band.at(0, y), y);
        });
        each([&](int y) { errors.spread(y); });
        const float limit = limitFor(band, errors), most = mostFor(band);
        std::atomic<bool> more = false;
        each([&](int y) {
            for (int x = 0; x < band.columns; ++x) {
                vk_Pixel &now = band.at(x, y);
                // For good: a pixel that went on when others moved the limit would keep all busy
                // for a few.
                now.converged = now.converged || now.count >= myCanvas.mostSamples() ||
                                errors.at(x, y) < std::min(limit * now.sum.cost, most);
                if (!now.converged)
                    more = true;
            }
        });
        return more;
    }
    float limitFor(vk_Band &band, const vk_ErrorMap &errors)
    {
        // In one order, whatever the threads: sums of fractions depend on it.
        vk_Allocation allocation;
        for (int y = 0; y < band.rows; ++y)
            for (int x = 0; x < band.columns; ++x) {
                const vk_Pixel &now = band.at(x, y);
                allocation.add(errors.at(x, y), now.sum.cost, now.converged);
            }
        const vk_Quality &quality = *mySettings.quality;
        const float limit = allocation.limit(quality.error * quality.error, mostCost());
        myDrawn = allocation.cost();
        myForecast = allocation.cost(limit);
        return limit;
    }
    // Of a pixel, about. Where rays take longer, as much time is spent on fewer of them.
    float mostCost() const { return mySettings.quality->cost / myWorld.rayCost(); }
    // The squared error of one pixel, as long as there is time to spare: alone it shows, as a
    // white dot at the rim of glass does, however right all others are.
    float mostFor(const vk_Band &band) const
    {
        constexpr float ALONE = 6;    // times that of the picture
        constexpr float SPARE = .15f; // of its time

        const vk_Quality &quality = *mySettings.quality;
        const float pixels = static_cast<float>(band.columns * band.rows);
        if (myForecast > static_cast<double>((1 - SPARE) * mostCost() * pixels))
            return std::numeric_limits<float>::infinity();
        return ALONE * quality.error * ALONE * quality.error;
    }
    void add(const vk_Tile &tile)
    {
        if (mySettings.stats == nullptr)
            return;
        mySettings.stats->pixels += static_cast<std::uint64_t>(tile.pixels());
        mySettings.stats->samples += tile.samples();
        mySettings.stats->badPixels += tile.badPixels();
    }

    // Fixed samples are taken as they are.
    void develop(vk_Band &band, vk_Filter &filter, int top, int bottom)
    {
        // All light before any of it is developed: pixels are blended with those around.
        if (myCanvas.filters())
            tbb::parallel_for(0, band.rows, [&](int y) { filter.filter(y); });
        vk_LinearPicture light(band.columns, band.rows);
        tbb::parallel_for(0, band.rows, [&](int y) {
            for (int x = 0; x < band.columns; ++x) {
                const vk_Pixel &pixel = band.at(x, y);
                if (myCanvas.filters())
                    light.set(x, y, filter.at(x, y), filter.gradient(pixel, x, y));
                else
                    light.set(x, y, pixel.light(), pixel.lightGradient());
            }
        });
        tbb::parallel_for(top - band.top, bottom - band.top, [&](int y) {
            for (int x = 0; x < band.columns; ++x)
                myCanvas.develop(light.blended(x, y), x, band.top + y);
        });
    }

    const vk_Canvas myCanvas;
    const vk_World &myWorld;
    const vk_RenderSettings &mySettings;
    int myColumns, myRows;
    std::mutex myMutex;                 // guards the rest
    double myDrawn = 0, myForecast = 0; // work on this band
    int myBandRows = 0, myRowsDone = 0;
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
        settings.stats->corners = world.corners();
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
