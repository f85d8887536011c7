#include "vaskel/pixels/vk_Pixel.h"

void vk_Pixel::add(const vk_View &view, const vk_Square &place)
{
    ++count;
    sum.cost += view.cost; // also of a bad sample: it was paid for
    const float x = place.u - .5f, y = place.v - .5f;
    myPlaceX += x;
    myPlaceY += y;
    // One such sample would spoil the mean for good; it counts as nothing at its place, and the
    // pixel is reported.
    if (!vk_isFinite(view.light()) || !vk_isFinite(view.albedo)) {
        bad = true;
        return;
    }
    sum.specular += view.specular;
    sum.diffuse += view.diffuse;
    sum.albedo += view.albedo;
    sum.normal += view.normal;
    sum.distance += view.distance;
    sum.blurred += view.blurred;
    const auto addAtPlace = [&](vk_Gradient &sums, const vk_Colour &colour) {
        sums.x += colour * x;
        sums.y += colour * y;
    };
    addAtPlace(myLightAtPlace, view.light());
    addAtPlace(myAlbedoAtPlace, view.albedo);
}

// Covariances of colour and place; places between 0 and 1 have a variance of 1 / 12. A colour that
// is the same everywhere has none, wherever samples happen to lie.
vk_Gradient vk_Pixel::gradientOf(const vk_Gradient &atPlace, const vk_Colour &mean) const
{
    const float perSample = 12 * share();
    return {(atPlace.x - mean * myPlaceX) * perSample, (atPlace.y - mean * myPlaceY) * perSample};
}

vk_Pixel::Layers vk_Pixel::layers() const
{
    // Where no light was scattered, nothing arrived for it.
    const auto part = [](float light, float albedo) { return albedo > 0 ? light / albedo : 0; };
    return {sum.specular * share(),
            {part(sum.diffuse.x, sum.albedo.x), part(sum.diffuse.y, sum.albedo.y),
             part(sum.diffuse.z, sum.albedo.z)},
            sum.albedo * share()};
}

// The mean of all n samples moves away from that of the first f, and the square of that is
// one draw of Var(mean_f) - Var(mean_n) = Var(mean_n) (n - f) / f. Of two draws the mean is
// better: the one before has fallen to f / n since.
void vk_Pixel::estimate()
{
    const Layers now = layers();
    if (myFirstCount > 0) {
        const auto first = static_cast<float>(myFirstCount), all = static_cast<float>(count);
        const float ofMean = first / (all - first);
        const float fallen = first / all;
        const vk_Vec visibility = vk_visibility(light());
        const auto estimated = [&](const vk_Colour &moved, float before) {
            const float error = ofMean * vk_visible(moved, visibility);
            return myIsEstimated ? .5f * (error + fallen * before) : error;
        };
        errors = {
            estimated(now.specular - myFirstHalf.specular, errors.specular),
            estimated((now.irradiance - myFirstHalf.irradiance) * now.albedo, errors.irradiance),
            estimated((now.albedo - myFirstHalf.albedo) * now.irradiance, errors.albedo)};
        myIsEstimated = true;
    }
    // As samples double, all of them are the first half next time.
    myFirstHalf = now;
    myFirstCount = count;
}
