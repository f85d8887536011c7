#include "vaskel/shaders/vk_DisplaceShaders.h"

#include "vaskel/base/vk_Noise.h"

#include <iterator>

namespace
{
// What all have.
struct Relief : vk_DisplaceShader {
    float height;

    explicit Relief(float standard) : height(standard) {}
    void describeHeight(vk_ParamList &list, const char *ofHeight)
    {
        list.number("height", height, -.5f, .5f, ofHeight);
    }
};

struct Bumps final : Relief {
    float size = .35f;

    Bumps() : Relief(.08f) {}
    void describe(vk_ParamList &list) override
    {
        // The least size of all patterns in space: the net of a displaced ball has steps of .015,
        // of which a bump takes a few.
        describeHeight(list, "how high the bumps are");
        list.number("size", size, .05f, 100, "how wide a bump is");
    }
    float displace(const vk_SurfacePoint &point) const override
    {
        return height * vk_noise(point.position * (1 / size));
    }
};

// Each cell of space has one round dent, which may reach the cell's border.
struct Dents final : Relief {
    float size = .4f;

    Dents() : Relief(.07f) {}
    void describe(vk_ParamList &list) override
    {
        describeHeight(list, "how deep the dents are; knobs when it is below 0");
        list.number("size", size, .05f, 100, "from dent to dent");
    }
    float displace(const vk_SurfacePoint &point) const override
    {
        const vk_Cell cell = vk_cell(point.position * (1 / size));
        // A little more than half of the mean distance to the next: dents nearly touch.
        const float off = std::min(1.0f, cell.distance / .6f);
        const float bowl = 1 - off * off;
        // Squared, so that the rim has no crease.
        return -height * bowl * bowl;
    }
};

struct Ripples final : Relief {
    float size = .22f;
    vk_Vec centre = {-.3f, 1.45f, .75f};

    Ripples() : Relief(.03f) {}
    void describe(vk_ParamList &list) override
    {
        describeHeight(list, "how high the waves are");
        list.number("size", size, .05f, 100, "from wave to wave");
        list.point("centre", centre, "where they begin");
    }
    float displace(const vk_SurfacePoint &point) const override
    {
        const float off = vk_length(point.position - centre);
        return height * std::cos(2 * VK_PI * off / size);
    }
};

// Patterns of pieces in rows, every other row shifted by half a piece.
struct Pieces : Relief {
    float columns, rows;

    Pieces(float standard, float across, float up) : Relief(standard), columns(across), rows(up) {}
    void describePieces(vk_ParamList &list, const char *ofHeight)
    {
        describeHeight(list, ofHeight);
        list.number("columns", columns, 1, 1000, "pieces around or across, rounded");
        list.number("rows", rows, 1, 1000, "rows from bottom to top, rounded");
    }

    // Where a point lies in a row's pieces: from its middle, -1/2 to 1/2, and from
    // the row's lower edge.
    struct Place {
        float across, up;
    };
    Place placeIn(const vk_SurfacePoint &point, float row) const
    {
        // Rows below 0 are asked for, too, beyond the end of a patch; fmod() is then below 0.
        const float shift = std::fmod(row, 2.0f) != 0 ? .5f : 0;
        const float across = point.u * std::round(columns) + shift;
        const float up = point.v * std::round(rows);
        return {across - std::floor(across) - .5f, up - row};
    }
    float rowOf(const vk_SurfacePoint &point) const
    {
        return std::floor(point.v * std::round(rows));
    }
};

struct Bricks final : Pieces {
    float mortar = .16f;

    Bricks() : Pieces(.05f, 16, 14) {}
    void describe(vk_ParamList &list) override
    {
        describePieces(list, "how far the bricks stand out");
        list.number("mortar", mortar, 0, 1, "width of the joints, in heights of a brick");
    }
    float displace(const vk_SurfacePoint &point) const override
    {
        // A brick is taken to be twice as long as high.
        const Place place = placeIn(point, rowOf(point));
        const float side = 2 * (.5f - std::abs(place.across));
        const float edge = std::min(side, .5f - std::abs(place.up - .5f));
        const float joint = mortar / 2;
        // Round edges: those of a jump would be as ragged as the net.
        return height * vk_smoothStep(joint, joint + .13f, edge);
    }
};

// A scale is attached at its top and has a round, free tip. Where the tips of a
// row leave room, the next lower row is seen.
struct Scales final : Pieces {
    Scales() : Pieces(.06f, 20, 14) {}
    void describe(vk_ParamList &list) override
    {
        describePieces(list, "how far the tips stand out");
    }
    float displace(const vk_SurfacePoint &point) const override
    {
        // Tips hang down: the scale in front of a place is its own row's, or where that ends the
        // one whose tip is further down.
        const float row = rowOf(point);
        const Place place = placeIn(point, row), below = placeIn(point, row - 1);
        const float tip = .5f - std::sqrt(std::max(0.0f, .25f - place.across * place.across));
        // A slope in place of a jump, which the net would draw as a saw.
        const float free = vk_smoothStep(-.04f, .06f, place.up - tip);
        return height * (rise(below) + (rise(place) - rise(below)) * free);
    }

private:
    static float rise(const Place &scale)
    {
        constexpr float LONG = 1.5f; // rows
        return 1 - scale.up / LONG - 1.2f * scale.across * scale.across;
    }
};

// A plain weave: the threads of either way go over and under each other.
struct Weave final : Relief {
    float columns = 26, rows = 15;

    Weave() : Relief(.06f) {}
    void describe(vk_ParamList &list) override
    {
        describeHeight(list, "how far threads rise over each other");
        // Even, since over and under must meet again behind the shape.
        list.number("columns", columns, 2, 1000, "threads upwards, rounded to an even number");
        list.number("rows", rows, 1, 1000, "threads around or across, rounded");
    }
    float displace(const vk_SurfacePoint &point) const override
    {
        const float x = point.u * 2 * std::round(columns / 2);
        const float y = point.v * std::round(rows);
        // Shifted by one, so that they take turns: where a thread of one way is up, that of the
        // other way is down.
        return height * std::max(threadHeight(x, y), threadHeight(y, x + 1));
    }

private:
    // How high a flat thread lies: it winds up and down along itself, and is a little
    // round across.
    static float threadHeight(float across, float along)
    {
        const float side = 2 * (across - std::floor(across)) - 1;
        const float wind = std::fmod(std::floor(across), 2.0f) != 0 ? -1.0f : 1.0f;
        return .8f * wind * std::sin(VK_PI * along) + .2f - .2f * side * side * side * side;
    }
};

constexpr vk_ShaderRow<vk_DisplaceShader> ROWS[] = {
    vk_row<Bumps>("v_bumps", "soft random bumps"),
    vk_row<Dents>("v_dents", "dents of a hammer"),
    vk_row<Ripples>("v_ripples", "rings of waves around a point"),
    vk_row<Bricks>("v_bricks", "courses of bricks"),
    vk_row<Scales>("v_scales", "overlapping scales"),
    vk_row<Weave>("v_weave", "threads over and under each other"),
};
} // namespace

const vk_ShaderTable<vk_DisplaceShader> VK_DISPLACE_SHADERS = {"displace", ROWS, std::size(ROWS)};
