#include "vaskel/osl/vk_OslDisplace.h"

namespace
{
// As far as the displacements of this renderer go at most.
constexpr float FURTHEST = .5f;

vk_Vec placeAt(const OSL_Output &output, int point)
{
    const float *const at = output.floats + point;
    return {at[0], at[output.stride], at[2 * output.stride]};
}

// Something to look at is left of what went wrong.
vk_Vec bounded(const vk_Vec &step)
{
    const float length = vk_length(step);
    if (!std::isfinite(length))
        return {};
    return length > FURTHEST ? step * (FURTHEST / length) : step;
}
} // namespace

const vk_OslTargets vk_OslDisplace::TARGETS = {{"height", false, true}};

float vk_OslDisplace::displace(const vk_SurfacePoint &point) const
{
    vk_Vec moved;
    move(&point, &moved, 1);
    return vk_dot(moved - point.position, point.normal);
}

void vk_OslDisplace::move(const vk_SurfacePoint *points, vk_Vec *moved, std::size_t count) const
{
    std::unique_ptr<vk_OslRunner> runner = myRunners.borrow(count > 1);
    // An explicit height goes before P; P before an output that is there anyway.
    const bool isAsked = !myRunners.binding().isDefault(0);
    const OSL_Output *const place = isAsked ? nullptr : runner->context().output("P");
    const vk_OslFeed &height = runner->feed(0);
    const auto width = static_cast<std::size_t>(runner->width());
    for (std::size_t i = 0; i < count; ++i) {
        const auto lane = static_cast<int>(i % width);
        const std::size_t size = std::min(width, count - i);
        // All lanes of a run are read before the next one.
        if (lane == 0 && !runner->run(points + i, static_cast<int>(size)))
            // The rest keeps a place that no picture shows: there will be none.
            break;
        vk_Vec step;
        if (place != nullptr)
            step = placeAt(*place, lane) - points[i].place;
        // P is there when a shader only looks at it, too.
        if (step == vk_Vec{} && height.isThere())
            step = points[i].normal * height.number(lane);
        moved[i] = points[i].position + bounded(step);
    }
    myRunners.giveBack(std::move(runner));
}
