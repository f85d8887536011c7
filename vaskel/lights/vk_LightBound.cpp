#include "vaskel/lights/vk_LightBound.h"

#include <limits>

vk_LightBound::vk_LightBound(const vk_Light &light)
{
    constexpr float MARGIN = 1.01f;

    const vk_Vec *const place = light.place();
    if (place != nullptr)
        myCentre = *place;
    myRadius = place != nullptr ? MARGIN * light.size() : std::numeric_limits<float>::infinity();
    myReach2 = myRadius * myRadius;
}
