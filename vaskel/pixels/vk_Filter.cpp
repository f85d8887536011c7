#include "vaskel/pixels/vk_Filter.h"

#include "vaskel/pixels/vk_LinearPicture.h"

namespace
{
constexpr float SURE = .95f;         // length of a mean of normals that shows no edge
constexpr float DEPTH = .03f;        // share of the distance that makes two pixels differ
constexpr float INVISIBLE = 1.5e-6f; // the square of a third of a step of the file
constexpr float LEAST_ERROR = 1e-8f;

// For the windows below. Reflections have edges that noise hides, so they get narrower ones.
constexpr float TURN = 200;
constexpr int SPECULAR_REACH = 3;
constexpr int LAST_SPECULAR_REACH = 4;
constexpr float SPECULAR_PIXELS = 4;
constexpr float SPECULAR_MEANS = 9;
constexpr int IRRADIANCE_REACH = 4;
constexpr int LAST_IRRADIANCE_REACH = 6;
constexpr float IRRADIANCE_PIXELS = 6;
constexpr float IRRADIANCE_MEANS = 12;
constexpr float BLURRED_TURN = 40;
constexpr float BLURRED_TOLERANCE = 200;

constexpr float OUTSIDE = -1; // smooth: there is no pixel

// vk_visible() of four.
vk_Lanes visible(const vk_VecLanes &difference, const vk_VecLanes &visibility)
{
    return vk_dot(difference * difference, visibility) * (1.0f / 3);
}

// 1 for values of two pixels that agree within both their errors, falling to 0 or less for those
// that these do not explain.
vk_Lanes agreement(const vk_VecLanes &difference, const vk_VecLanes &visibility,
                   const vk_Lanes &error, const vk_Lanes &tolerance)
{
    const vk_Lanes beyond = visible(difference, visibility) - error;
    return 1 - beyond / (tolerance * (error + LEAST_ERROR));
}
} // namespace

constexpr vk_Filter::Windows vk_Filter::ESTIMATED = {
    {SPECULAR_REACH, TURN, SPECULAR_PIXELS, SPECULAR_MEANS},
    {IRRADIANCE_REACH, TURN, IRRADIANCE_PIXELS, IRRADIANCE_MEANS}};
constexpr vk_Filter::Windows vk_Filter::FILTERED = {
    {LAST_SPECULAR_REACH, TURN, SPECULAR_PIXELS, SPECULAR_MEANS},
    {LAST_IRRADIANCE_REACH, TURN, IRRADIANCE_PIXELS, IRRADIANCE_MEANS}};
constexpr vk_Filter::Window vk_Filter::BLURRED = {REACH, BLURRED_TURN, BLURRED_TOLERANCE,
                                                  BLURRED_TOLERANCE};

void vk_Filter::VecPlane::resize(std::size_t size)
{
    for (Plane *const plane : {&x, &y, &z})
        plane->resize(size);
}

void vk_Filter::VecPlane::set(std::size_t i, const vk_Vec &v)
{
    x[i] = v.x;
    y[i] = v.y;
    z[i] = v.z;
}

void vk_Filter::VecPlane::store(std::size_t i, const vk_VecLanes &lanes)
{
    vk_store(lanes.x, &x[i]);
    vk_store(lanes.y, &y[i]);
    vk_store(lanes.z, &z[i]);
}

vk_Filter::vk_Filter(int columns, int rows)
    : myColumns(columns), myRows(rows), myStride(columns + 2 * REACH + VK_LANES)
{
    const auto size = static_cast<std::size_t>(myStride * rows);
    for (Layer *const layer : {&mySpecular, &myIrradiance}) {
        layer->mean.resize(size);
        layer->around.resize(size);
        for (Plane *const plane : {&layer->own, &layer->error, &layer->ofAround})
            plane->resize(size);
    }
    for (VecPlane *const plane : {&myAlbedo, &myNormal, &myVisibility, &myLight, &myLitBy})
        plane->resize(size);
    for (Plane *const plane :
         {&myTexture, &myDistance, &myCount, &myBlurred, &myError, &myOwnShare})
        plane->resize(size);
    mySmooth.resize(size, OUTSIDE);
    myConverged.resize(size, 1);
}

void vk_Filter::take(const vk_Pixel *row, int y)
{
    for (int x = 0; x < myColumns; ++x) {
        const vk_Pixel &pixel = row[x];
        const std::size_t at = index(x, y);
        myConverged[at] = pixel.converged;
        if (pixel.converged && mySmooth[at] != OUTSIDE)
            continue; // as it was
        const auto count = static_cast<float>(pixel.count);
        const float sure = SURE * count;
        const bool smooth = vk_dot(pixel.sum.normal, pixel.sum.normal) > sure * sure;
        mySmooth[at] = smooth ? 1 : 0;
        myCount[at] = smooth ? count : 0;
        myNormal.set(at, vk_normalize(pixel.sum.normal));
        myDistance[at] = pixel.sum.distance / count;
        myVisibility.set(at, vk_visibility(pixel.light()));
        myBlurred[at] = pixel.sum.blurred > 0 ? 1 : 0;
        const vk_Pixel::Layers layers = pixel.layers();
        mySpecular.mean.set(at, layers.specular);
        myIrradiance.mean.set(at, layers.irradiance);
        myAlbedo.set(at, layers.albedo);
        mySpecular.own[at] = pixel.errors.specular;
        myIrradiance.own[at] = pixel.errors.irradiance;
        myTexture[at] = pixel.errors.albedo;
    }
}

void vk_Filter::compare(int y)
{
    for (int x = 0; x < myColumns; x += VK_LANES) {
        compare(mySpecular, x, y);
        compare(myIrradiance, x, y);
    }
}

// One pixel's error is a poor estimate, the mean of three rows of three is a fair one. Those
// at an edge are of another kind than those beside it.
void vk_Filter::compare(Layer &layer, int x, int y) const
{
    const std::size_t here = index(x, y);
    const vk_Lanes smooth = vk_load(&mySmooth[here]);
    vk_Lanes count = {}, error = {};
    vk_VecLanes light = {};
    for (int j = std::max(0, y - 1); j <= std::min(y + 1, myRows - 1); ++j)
        for (int i = x - 1; i <= x + 1; ++i) {
            const std::size_t there = index(i, j);
            const vk_Lanes one = vk_load(&mySmooth[there]) == smooth ? vk_lanes(1) : vk_lanes(0);
            count += one;
            light = light + layer.mean.lanes(there) * one;
            error += vk_load(&layer.own[there]) * one;
        }
    const vk_Lanes share = 1 / count;
    layer.around.store(here, light * share);
    vk_store(error * share, &layer.error[here]);
    vk_store(error * share * share, &layer.ofAround[here]);
}

void vk_Filter::estimate(int y)
{
    for (int x = 0; x < myColumns; x += VK_LANES) {
        const auto at = myConverged.begin() + static_cast<std::ptrdiff_t>(index(x, y));
        if (std::find(at, at + VK_LANES, 0) != at + VK_LANES)
            filterFour(ESTIMATED, x, y);
    }
}

void vk_Filter::filter(int y)
{
    for (int x = 0; x < myColumns; x += VK_LANES)
        filterFour(FILTERED, x, y);
}

// How far two pixels show the same surface.
vk_Lanes vk_Filter::featureWeight(std::size_t here, std::size_t there, const vk_Lanes &turn) const
{
    const vk_Lanes same = 1 - turn * (1 - vk_dot(myNormal.lanes(here), myNormal.lanes(there)));
    const vk_Lanes distance = vk_load(&myDistance[here]);
    const vk_Lanes step = vk_abs(distance - vk_load(&myDistance[there])) / (DEPTH * distance);
    return vk_max(vk_lanes(0), same) * vk_max(vk_lanes(0), 1 - step);
}

// A pixel that is far off takes its neighbours in. When these take in as much of it, no light
// is lost, as that of caustics would be, which few samples find.
vk_Lanes vk_Filter::layerWeight(const Layer &layer, std::size_t here, std::size_t there,
                                const vk_VecLanes &visibility, const Tolerances &tolerances)
{
    const auto atLeastOwn = [&](std::size_t at) {
        return vk_max(vk_load(&layer.own[at]), vk_load(&layer.error[at]));
    };
    const vk_Lanes ofPixels =
        agreement(layer.mean.lanes(there) - layer.mean.lanes(here), visibility,
                  atLeastOwn(here) + atLeastOwn(there), tolerances.ofPixels);
    const vk_Lanes ofMeans = agreement(
        layer.around.lanes(there) - layer.around.lanes(here), visibility,
        vk_load(&layer.ofAround[here]) + vk_load(&layer.ofAround[there]), tolerances.ofMeans);
    const vk_Lanes agree = vk_min(vk_lanes(1), vk_max(vk_lanes(0), vk_min(ofPixels, ofMeans)));
    return agree * agree;
}

// Blending of pixels takes errors away from those that do not depend on each other.
void vk_Filter::filterFour(const Windows &windows, int x, int y)
{
    constexpr float BLENDED = vk_LinearPicture::REMAINS;

    const std::size_t here = index(x, y);
    const vk_Lanes texture = vk_load(&myTexture[here]) * BLENDED;
    const vk_Lanes ofSpecular = vk_load(&mySpecular.error[here]);
    const vk_Lanes ofDiffuse = vk_load(&myIrradiance.error[here]);
    const vk_LaneMask isNoisy =
        (vk_load(&mySmooth[here]) > 0) & (ofSpecular + ofDiffuse >= INVISIBLE);
    Smoothed result = {lightOf(here), myIrradiance.mean.lanes(here),
                       (ofSpecular + ofDiffuse) * BLENDED + texture, vk_lanes(1)};
    if (vk_any(isNoisy)) {
        const Smoothed around = smoothed(windows, x, y);
        result = {vk_pick(isNoisy, around.light, result.light),
                  vk_pick(isNoisy, around.irradiance, result.irradiance),
                  isNoisy ? around.error + texture : result.error,
                  isNoisy ? around.own : result.own};
    }
    myLight.store(here, result.light);
    myLitBy.store(here, result.irradiance);
    vk_store(result.error, &myError[here]);
    vk_store(result.own, &myOwnShare[here]);
}

// A layer counts for the own share as much as it is noisy: it is noise that neighbours take away.
// REQUIRES: one of the layers is.
vk_Filter::Smoothed vk_Filter::smoothed(const Windows &windows, int x, int y) const
{
    const std::size_t here = index(x, y);
    const Window &sharp = windows.specular;
    const vk_VecLanes albedo = myAlbedo.lanes(here);
    const vk_VecLanes all = {vk_lanes(1), vk_lanes(1), vk_lanes(1)};
    const auto specular = layerAround(mySpecular, all, sharp, sharp, x, y);
    const auto irradiance =
        layerAround(myIrradiance, albedo * albedo, windows.irradiance, BLURRED, x, y);
    const vk_Lanes ofSpecular = vk_load(&mySpecular.error[here]);
    const vk_Lanes ofDiffuse = vk_load(&myIrradiance.error[here]);
    return {specular.light + irradiance.light * albedo, irradiance.light,
            specular.error + irradiance.error,
            (specular.own * ofSpecular + irradiance.own * ofDiffuse) / (ofSpecular + ofDiffuse)};
}

// Half the way from the pixel before to the one behind, as if those that lie at another distance
// showed what this one does: beyond a silhouette is something else. Those that face elsewhere are
// not left out: in creases, which are dark, light would not fall off as it does.
vk_Gradient vk_Filter::differences(const VecPlane &plane, int x, int y) const
{
    const std::size_t here = index(x, y);
    const auto at = [&](int i, int j) {
        const std::size_t there =
            index(std::clamp(i, 0, myColumns - 1), std::clamp(j, 0, myRows - 1));
        const float step = std::abs(myDistance[here] - myDistance[there]);
        return plane.at(step <= DEPTH * myDistance[here] ? there : here);
    };
    return {(at(x + 1, y) - at(x - 1, y)) * .5f, (at(x, y + 1) - at(x, y - 1)) * .5f};
}

// Neighbours do not tell where in a pixel its texture turns from light to dark.
vk_Gradient vk_Filter::gradient(const vk_Pixel &pixel, int x, int y) const
{
    const float own = myOwnShare[index(x, y)];
    const vk_Gradient ofSamples = pixel.lightGradient(), ofTexture = pixel.albedoGradient();
    const vk_Gradient light = differences(myLight, x, y), albedo = differences(myAlbedo, x, y);
    const vk_Colour irradiance = myLitBy.at(index(x, y));
    return {vk_mix(light.x + irradiance * (ofTexture.x - albedo.x), ofSamples.x, own),
            vk_mix(light.y + irradiance * (ofTexture.y - albedo.y), ofSamples.y, own)};
}

// By the brighter one of two pixels: one that is dark by chance must not stand out.
vk_PlaneFit::Value vk_Filter::layerAround(const Layer &layer, const vk_VecLanes &shows,
                                          const Window &window, const Window &blurredWindow, int x,
                                          int y) const
{
    const std::size_t here = index(x, y);
    const vk_VecLanes itself = layer.mean.lanes(here);
    // A layer without error stays as it is.
    const vk_LaneMask isNoisy = vk_load(&layer.error[here]) > 0;
    if (!vk_any(isNoisy))
        return {itself, vk_lanes(0), vk_lanes(1)};
    const vk_LaneMask blurred = vk_load(&myBlurred[here]) > 0;
    const auto pick = [&](float ofBlurred, float ofOthers) {
        return blurred ? vk_lanes(ofBlurred) : vk_lanes(ofOthers);
    };
    const Tolerances tolerances = {pick(blurredWindow.turn, window.turn),
                                   pick(blurredWindow.ofPixels, window.ofPixels),
                                   pick(blurredWindow.ofMeans, window.ofMeans)};
    const vk_VecLanes visibility = myVisibility.lanes(here);
    const int reach = vk_any(blurred) ? blurredWindow.reach : window.reach;
    vk_PlaneFit fit;
    for (int j = std::max(-reach, -y); j <= std::min(reach, myRows - 1 - y); ++j) {
        vk_PlaneFit::Row row;
        for (int i = -reach; i <= reach; ++i) {
            const std::size_t there = index(x + i, y + j);
            const bool isNear = std::max(std::abs(i), std::abs(j)) <= window.reach;
            const vk_Lanes alike = featureWeight(here, there, tolerances.turn);
            const vk_Lanes weight = (isNear    ? alike
                                     : blurred ? alike
                                               : vk_lanes(0)) *
                                    vk_load(&myCount[there]);
            if (!vk_any(weight > 0))
                continue;
            const vk_VecLanes seen = vk_min(visibility, myVisibility.lanes(there)) * shows;
            row.add(layer.mean.lanes(there),
                    weight * layerWeight(layer, here, there, seen, tolerances),
                    vk_load(&layer.error[there]), static_cast<float>(i));
        }
        fit.add(row, static_cast<float>(j));
    }
    const vk_PlaneFit::Value around = fit.atPixel();
    // A plane may dip below black.
    const vk_VecLanes black = {};
    return {vk_pick(isNoisy, vk_max(around.light, black), itself),
            isNoisy ? around.error : vk_lanes(0),
            isNoisy ? around.own * vk_load(&myCount[here]) : vk_lanes(1)};
}
