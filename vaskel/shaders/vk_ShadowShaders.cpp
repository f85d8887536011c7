#include "vaskel/shaders/vk_ShadowShaders.h"

#include <iterator>

namespace
{
struct RayShadow : vk_ShadowShader {
    // Black: what is seen in a full shadow comes from other lights and the surroundings.
    vk_Colour color;
    float filter = 1;

    void describe(vk_ParamList &list) override
    {
        list.colour("color", color, 0, 1, "what is left of the light in a full shadow");
        list.number("filter", filter, 0, 1, "how far glass lets light pass, in its colour");
    }
    vk_Shadow shadow() const override
    {
        vk_Shadow shadow;
        shadow.left = color;
        // Straight through glass: bright spots, where it gathers light, are not drawn.
        shadow.filter = filter;
        return shadow;
    }
};

struct SoftShadow final : RayShadow {
    // More than 1, as lights have it: shadow rays then aim beyond the light's rim.
    float soft = 2.5f;

    void describe(vk_ParamList &list) override
    {
        RayShadow::describe(list);
        list.number("soft", soft, 0, 10, "width of its edge: 0 is hard, 1 as lights have it");
    }
    vk_Shadow shadow() const override
    {
        vk_Shadow shadow = RayShadow::shadow();
        shadow.soft = soft;
        return shadow;
    }
};

struct FilterShadow final : RayShadow {
    // Each surface on the way takes its share, so a closed shape lets through the square of this.
    // Metal has no base, and lets nothing through.
    float amount = .6f;

    void describe(vk_ParamList &list) override
    {
        RayShadow::describe(list);
        list.number("amount", amount, 0, 1, "how far shapes let light pass, in their colour");
    }
    vk_Shadow shadow() const override
    {
        vk_Shadow shadow = RayShadow::shadow();
        shadow.tint = amount;
        return shadow;
    }
};

struct NoShadow final : vk_ShadowShader {
    vk_Shadow shadow() const override
    {
        vk_Shadow shadow;
        // All of the light: no shadow ray needs to be asked.
        shadow.left = vk_grey(1);
        return shadow;
    }
};

// The first one is that of a scene that names none.
constexpr vk_ShaderRow<vk_ShadowShader> ROWS[] = {
    vk_row<RayShadow>("v_rayshadow", "shadows as lights cast them"),
    vk_row<SoftShadow>("v_softshadow", "shadows with wider or with harder edges"),
    vk_row<FilterShadow>("v_filtershadow", "shadows in the colour of what casts them"),
    vk_row<NoShadow>("v_noshadow", "lights shine through everything"),
};
} // namespace

const vk_ShaderTable<vk_ShadowShader> VK_SHADOW_SHADERS = {"shadow", ROWS, std::size(ROWS)};
