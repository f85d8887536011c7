#include "vaskel/shaders/vk_DisplaceShaders.h"

#include "vaskel/base/vk_Noise.h"

#include <iterator>

namespace
{
enum { HEIGHT };
constexpr vk_Param heightOf(float standard, const char *what)
{
    return {"height", VK_NUMBER, {standard, 0, 0}, -.5f, .5f, what};
}

enum { BUMPS_SIZE = HEIGHT + 1 };
constexpr vk_Param BUMPS[] = {
    heightOf(.08f, "how high the bumps are"),
    {"size", VK_NUMBER, {.35f, 0, 0}, .05f, 100, "how wide a bump is"},
};

float bumps(const vk_Values &p, const vk_SurfacePoint &point)
{
    return p.number(HEIGHT) * vk_noise(point.position * (1 / p.number(BUMPS_SIZE)));
}

enum { DENTS_SIZE = HEIGHT + 1 };
constexpr vk_Param DENTS[] = {
    heightOf(.07f, "how deep the dents are; knobs when it is below 0"),
    {"size", VK_NUMBER, {.4f, 0, 0}, .05f, 100, "from dent to dent"},
};

// Each cell of space has one round dent, which may reach the cell's border.
float dents(const vk_Values &p, const vk_SurfacePoint &point)
{
    const vk_Cell cell = vk_cell(point.position * (1 / p.number(DENTS_SIZE)));
    const float off = std::min(1.0f, cell.distance / .6f);
    const float bowl = 1 - off * off;
    return -p.number(HEIGHT) * bowl * bowl;
}

enum { RIPPLES_SIZE = HEIGHT + 1, RIPPLES_CENTRE };
constexpr vk_Param RIPPLES[] = {
    heightOf(.03f, "how high the waves are"),
    {"size", VK_NUMBER, {.22f, 0, 0}, .05f, 100, "from wave to wave"},
    {"centre", VK_POINT, {-.3f, 1.45f, .75f}, -1e6f, 1e6f, "where they begin"},
};

float ripples(const vk_Values &p, const vk_SurfacePoint &point)
{
    const float off = vk_length(point.position - p.vec(RIPPLES_CENTRE));
    return p.number(HEIGHT) * std::cos(2 * VK_PI * off / p.number(RIPPLES_SIZE));
}

// Patterns of pieces in rows, every other row shifted by half a piece.
enum { ROWS_COLUMNS = HEIGHT + 1, ROWS_ROWS, ROWS_OWN };
constexpr vk_Param columnsOf(float standard)
{
    return {"columns", VK_NUMBER, {standard, 0, 0}, 1, 1000, "pieces around or across, rounded"};
}
constexpr vk_Param rowsOf(float standard)
{
    return {"rows", VK_NUMBER, {standard, 0, 0}, 1, 1000, "rows from bottom to top, rounded"};
}

// Where a point lies in a row's pieces: from its middle, -1/2 to 1/2, and from
// the row's lower edge.
struct Place {
    float across, up;
};
Place placeIn(const vk_Values &p, const vk_SurfacePoint &point, float row)
{
    const float shift = std::fmod(row, 2.0f) != 0 ? .5f : 0;
    const float across = point.u * std::round(p.number(ROWS_COLUMNS)) + shift;
    const float up = point.v * std::round(p.number(ROWS_ROWS));
    return {across - std::floor(across) - .5f, up - row};
}
float rowOf(const vk_Values &p, const vk_SurfacePoint &point)
{
    return std::floor(point.v * std::round(p.number(ROWS_ROWS)));
}

enum { BRICKS_MORTAR = ROWS_OWN };
constexpr vk_Param BRICKS[] = {
    heightOf(.05f, "how far the bricks stand out"),
    columnsOf(16),
    rowsOf(14),
    {"mortar", VK_NUMBER, {.16f, 0, 0}, 0, 1, "width of the joints, in heights of a brick"},
};

float bricks(const vk_Values &p, const vk_SurfacePoint &point)
{
    // A brick is taken to be twice as long as high.
    const Place place = placeIn(p, point, rowOf(p, point));
    const float side = 2 * (.5f - std::abs(place.across));
    const float edge = std::min(side, .5f - std::abs(place.up - .5f));
    const float joint = p.number(BRICKS_MORTAR) / 2;
    return p.number(HEIGHT) * vk_smoothStep(joint, joint + .13f, edge);
}

constexpr vk_Param SCALES[] = {
    heightOf(.06f, "how far the tips stand out"),
    columnsOf(20),
    rowsOf(14),
};

// A scale is attached at its top and has a round, free tip. Where the tips of a
// row leave room, the next lower row is seen.
float scales(const vk_Values &p, const vk_SurfacePoint &point)
{
    constexpr float LONG = 1.5f; // rows
    const float row = rowOf(p, point);
    const Place place = placeIn(p, point, row), below = placeIn(p, point, row - 1);
    const auto height = [](const Place &scale) {
        return 1 - scale.up / LONG - 1.2f * scale.across * scale.across;
    };
    const float tip = .5f - std::sqrt(std::max(0.0f, .25f - place.across * place.across));
    const float free = vk_smoothStep(-.04f, .06f, place.up - tip);
    return p.number(HEIGHT) * (height(below) + (height(place) - height(below)) * free);
}

constexpr vk_Param WEAVE[] = {
    heightOf(.06f, "how far threads rise over each other"),
    {"columns", VK_NUMBER, {26, 0, 0}, 2, 1000, "threads upwards, rounded to an even number"},
    {"rows", VK_NUMBER, {15, 0, 0}, 1, 1000, "threads around or across, rounded"},
};

// How high a flat thread lies: it winds up and down along itself, and is a little
// round across.
float threadHeight(float across, float along)
{
    const float side = 2 * (across - std::floor(across)) - 1;
    const float wind = std::fmod(std::floor(across), 2.0f) != 0 ? -1.0f : 1.0f;
    return .8f * wind * std::sin(VK_PI * along) + .2f - .2f * side * side * side * side;
}

// A plain weave: the threads of either way go over and under each other.
float weave(const vk_Values &p, const vk_SurfacePoint &point)
{
    const float x = point.u * 2 * std::round(p.number(ROWS_COLUMNS) / 2);
    const float y = point.v * std::round(p.number(ROWS_ROWS));
    return p.number(HEIGHT) * std::max(threadHeight(x, y), threadHeight(y, x + 1));
}

constexpr vk_ShaderRow<vk_DisplaceFunction> ROWS[] = {
    {"v_bumps", "soft random bumps", BUMPS, bumps},
    {"v_dents", "dents of a hammer", DENTS, dents},
    {"v_ripples", "rings of waves around a point", RIPPLES, ripples},
    {"v_bricks", "courses of bricks", BRICKS, bricks},
    {"v_scales", "overlapping scales", SCALES, scales},
    {"v_weave", "threads over and under each other", WEAVE, weave},
};
static_assert(std::size(BUMPS) == BUMPS_SIZE + 1 && std::size(DENTS) == DENTS_SIZE + 1 &&
              std::size(RIPPLES) == RIPPLES_CENTRE + 1 && std::size(BRICKS) == BRICKS_MORTAR + 1 &&
              std::size(SCALES) == ROWS_OWN && std::size(WEAVE) == ROWS_OWN);
} // namespace

const vk_ShaderTable<vk_DisplaceFunction> VK_DISPLACE_SHADERS = {"displace", ROWS, std::size(ROWS)};
