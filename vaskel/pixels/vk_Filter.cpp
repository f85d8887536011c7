#include "vaskel/pixels/vk_Filter.h"

#include "vaskel/pixels/vk_LinearPicture.h"

namespace
{
constexpr int NEAR_REACH = 2;           // pixels to each side, but where all is blurred
constexpr float SURE = .95f;            // length of a mean of normals that shows no edge
constexpr float TURN = 200;             // how fast pixels that face elsewhere lose weight,
constexpr float BLURRED_TURN = 70;      // and where all is blurred
constexpr float DEPTH = .03f;           // share of the distance that makes two pixels differ
constexpr float PIXEL_TOLERANCE = 6;    // how many errors apart two pixels may be, and the
constexpr float SPECULAR_TOLERANCE = 3; // means around them
constexpr float IRRADIANCE_TOLERANCE = 6;
constexpr float BLURRED_TOLERANCE = 200; // where all is blurred
constexpr float INVISIBLE = 1.5e-6f;     // the square of a third of a step of the file
constexpr float LEAST_ERROR = 1e-8f;

constexpr float OUTSIDE = -1; // smooth: there is no pixel

// vk_visible() of four.
vk_Lanes visible(const vk_VecLanes &difference, const vk_VecLanes &visibility)
{
    return vk_dot(difference * difference, visibility) * (1.0f / 3);
}

// 1 for values of two pixels that agree within both their errors, squared, falling to 0 for
// those that these do not explain.
vk_Lanes agreement(const vk_VecLanes &difference, const vk_VecLanes &visibility,
                   const vk_Lanes &error, const vk_Lanes &tolerance)
{
    const vk_Lanes beyond = visible(difference, visibility) - error;
    const vk_Lanes left = 1 - beyond / (tolerance * (error + LEAST_ERROR));
    const vk_Lanes kept = vk_min(vk_lanes(1), vk_max(vk_lanes(0), left));
    return kept * kept;
}
} // namespace

// A layer's mean over neighbours of four pixels, and what that leaves of their errors.
struct vk_Filter::Sum {
    vk_VecLanes light = {};
    vk_Lanes weight = {}, error = {};

    void add(const vk_VecLanes &ofNeighbour, const vk_Lanes &w, const vk_Lanes &itsError)
    {
        light = light + ofNeighbour * w;
        weight += w;
        error += w * w * itsError;
    }
    vk_VecLanes mean() const { return light * (1 / weight); }
    vk_Lanes remaining() const { return error / (weight * weight); }
};

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
    myIrradiance.sharesOutliers = true;
    for (VecPlane *const plane : {&myAlbedo, &myNormal, &myVisibility, &myLight})
        plane->resize(size);
    for (Plane *const plane : {&myTexture, &myDistance, &myCount, &myBlurred, &myError})
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
            filterFour(x, y);
    }
}

void vk_Filter::filter(int y)
{
    for (int x = 0; x < myColumns; x += VK_LANES)
        filterFour(x, y);
}

// How far two pixels show the same surface.
vk_Lanes vk_Filter::featureWeight(std::size_t here, std::size_t there, const vk_Lanes &fall) const
{
    const vk_Lanes turn = 1 - fall * (1 - vk_dot(myNormal.lanes(here), myNormal.lanes(there)));
    const vk_Lanes distance = vk_load(&myDistance[here]);
    const vk_Lanes step = vk_abs(distance - vk_load(&myDistance[there])) / (DEPTH * distance);
    return vk_max(vk_lanes(0), turn) * vk_max(vk_lanes(0), 1 - step);
}

// A pixel that is far off takes its neighbours in. When these take in as much of it, no light
// is lost, as that of caustics would be, which few samples find.
vk_Lanes vk_Filter::layerWeight(const Layer &layer, std::size_t here, std::size_t there,
                                const vk_VecLanes &visibility, const Tolerances &tolerances)
{
    const auto atLeastOwn = [&](std::size_t at) {
        return vk_max(vk_load(&layer.own[at]), vk_load(&layer.error[at]));
    };
    const vk_Lanes its = layer.sharesOutliers ? atLeastOwn(there) : vk_load(&layer.error[there]);
    const vk_Lanes ofPixels = agreement(layer.mean.lanes(there) - layer.mean.lanes(here),
                                        visibility, atLeastOwn(here) + its, tolerances.ofPixels);
    const vk_Lanes ofMeans = agreement(
        layer.around.lanes(there) - layer.around.lanes(here), visibility,
        vk_load(&layer.ofAround[here]) + vk_load(&layer.ofAround[there]), tolerances.ofMeans);
    return vk_min(ofPixels, ofMeans);
}

// Blending of pixels takes errors away from those that do not depend on each other.
void vk_Filter::filterFour(int x, int y)
{
    constexpr float BLENDED = vk_LinearPicture::REMAINS;

    const std::size_t here = index(x, y);
    const vk_Lanes texture = vk_load(&myTexture[here]) * BLENDED;
    const vk_Lanes ofSpecular = vk_load(&mySpecular.error[here]);
    const vk_Lanes ofDiffuse = vk_load(&myIrradiance.error[here]);
    const vk_LaneMask isNoisy =
        (vk_load(&mySmooth[here]) > 0) & (ofSpecular + ofDiffuse >= INVISIBLE);
    vk_VecLanes light = lightOf(here);
    vk_Lanes error = (ofSpecular + ofDiffuse) * BLENDED + texture;
    if (vk_any(isNoisy)) {
        const Mean mean = meanAround(x, y);
        light = vk_pick(isNoisy, mean.light, light);
        error = isNoisy ? mean.error + texture : error;
    }
    myLight.store(here, light);
    vk_store(error, &myError[here]);
}

// By the brighter one of two pixels: one that is dark by chance must not stand out.
vk_Filter::Mean vk_Filter::meanAround(int x, int y) const
{
    const std::size_t here = index(x, y);
    const vk_VecLanes albedo = myAlbedo.lanes(here), visibility = myVisibility.lanes(here);
    const vk_LaneMask blurred = vk_load(&myBlurred[here]) > 0;
    // A layer without error stays as it is.
    const vk_LaneMask gleams = vk_load(&mySpecular.error[here]) > 0;
    const vk_LaneMask isLit = vk_load(&myIrradiance.error[here]) > 0;
    const Tolerances ofSpecular = {vk_lanes(PIXEL_TOLERANCE), vk_lanes(SPECULAR_TOLERANCE)};
    const Tolerances ofIrradiance = {
        blurred ? vk_lanes(BLURRED_TOLERANCE) : vk_lanes(PIXEL_TOLERANCE),
        blurred ? vk_lanes(BLURRED_TOLERANCE) : vk_lanes(IRRADIANCE_TOLERANCE)};
    const vk_Lanes fall = blurred ? vk_lanes(BLURRED_TURN) : vk_lanes(TURN);
    const int reach = vk_any(blurred) ? REACH : NEAR_REACH;
    Sum specular, irradiance;
    for (int j = std::max(-reach, -y); j <= std::min(reach, myRows - 1 - y); ++j)
        for (int i = -reach; i <= reach; ++i) {
            const std::size_t there = index(x + i, y + j);
            const bool isNear = std::max(std::abs(i), std::abs(j)) <= NEAR_REACH;
            const vk_Lanes alike = featureWeight(here, there, fall) * vk_load(&myCount[there]);
            const vk_Lanes feature = isNear ? alike : blurred ? alike : vk_lanes(0);
            if (!vk_any(feature > 0))
                continue;
            const vk_Lanes itself = vk_lanes(i == 0 && j == 0 ? 1 : 0);
            const vk_VecLanes seen = vk_min(visibility, myVisibility.lanes(there));
            vk_Lanes w = gleams ? layerWeight(mySpecular, here, there, seen, ofSpecular) : itself;
            specular.add(mySpecular.mean.lanes(there), w * feature,
                         vk_load(&mySpecular.error[there]));
            w = isLit ? layerWeight(myIrradiance, here, there, seen * albedo * albedo, ofIrradiance)
                      : itself;
            irradiance.add(myIrradiance.mean.lanes(there), w * feature,
                           vk_load(&myIrradiance.error[there]));
        }
    return {specular.mean() + irradiance.mean() * albedo,
            specular.remaining() + irradiance.remaining()};
}
