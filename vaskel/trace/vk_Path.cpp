#include "vaskel/trace/vk_Path.h"

namespace
{
// A path that was scattered widely hits a small bright thing so rarely that it shows as a
// lone bright pixel, a firefly: what it brings is clamped to this radiance.
constexpr float FIREFLY = 4;

vk_Colour clamped(const vk_Colour &c, float most)
{
    const float largest = vk_largest(c);
    return largest > most ? c * (most / largest) : c;
}

// A part of a whole, for each colour.
vk_Colour shareOf(const vk_Colour &part, const vk_Colour &whole)
{
    const auto share = [](float a, float b) { return b > 0 ? a / b : 0; };
    return {share(part.x, whole.x), share(part.y, whole.y), share(part.z, whole.z)};
}
} // namespace

void vk_Path::addLight(const vk_Colour &radiance)
{
    vk_Colour arrived = myThroughput * radiance;
    // What the first wide vertex finds is kept quiet by MIS. In the scene's units, whatever
    // its exposure.
    if (myIsWide && myBounces > 1)
        arrived = clamped(arrived, FIREFLY);
    myView->specular += arrived * mySpecularShare;
    myView->diffuse += arrived * (vk_grey(1) - mySpecularShare);
}

void vk_Path::add(const vk_Scattered &radiance)
{
    if (!isFirst() || !hasSpecularLayer()) {
        add(radiance.sum());
        return;
    }
    myView->specular += myThroughput * radiance.specular;
    myView->diffuse += myThroughput * radiance.diffuse;
}

void vk_Path::passStraight(const vk_Hit &hit, const vk_NextEvent &next)
{
    myOrigin = hit.start(myDirection);
    ++myBounces;
    myNextEvent = next;
}

void vk_Path::passBy(const vk_Hit &hit, const vk_NextEvent &next)
{
    myOrigin = hit.start(myDirection);
    ++myPassings;
    myNextEvent = next;
}

void vk_Path::reflect(const vk_Hit &hit)
{
    myDirection = myDirection - hit.normal * (2 * vk_dot(hit.normal, myDirection));
    myOrigin = hit.start(myDirection);
    ++myBounces;
    myNextEvent = {};
    myNextEvent.bsdfPdf = 1; // whatever it is, as there are no samples
    myNextEvent.glassDims = !hit.inside;
    myNextEvent.shadowIsCounted = hit.inside;
}

bool vk_Path::scatter(const vk_Hit &hit, const vk_Bsdf &bsdf, const vk_Vec &direction,
                      const vk_NextEvent &atVertex, const vk_NextEvent &throughGlass)
{
    float pdf = 0;
    const vk_Scattered scattered = bsdf.evaluate(direction, pdf);
    const bool isAbove = vk_dot(hit.facet, direction) > 0;
    // A smooth normal lets through what would go into the flat facet behind it.
    if (pdf <= 0 || (!isAbove && !bsdf.isGlass()))
        return false;
    const vk_Colour sum = scattered.sum();
    if (isFirst() && hasSpecularLayer())
        mySpecularShare = shareOf(scattered.specular, sum);
    myThroughput = myThroughput * sum * (1 / pdf);
    ++myBounces;
    myDielectricBounces += bsdf.isGlass() ? 1 : 0;
    setNextEvent(hit, bsdf, pdf, isAbove, atVertex, throughGlass);
    myOrigin = hit.start(direction);
    myDirection = direction;
    return vk_largest(myThroughput) > 0;
}

// Lights were sampled at all surfaces but smooth glass, and at rough glass for what
// arrives from outside.
void vk_Path::setNextEvent(const vk_Hit &hit, const vk_Bsdf &bsdf, float pdf, bool isAbove,
                           const vk_NextEvent &atVertex, const vk_NextEvent &throughGlass)
{
    const bool crosses = bsdf.isGlass() && !isAbove;
    const bool isInside = bsdf.isGlass() && isAbove == hit.inside;
    if (!isInside && !bsdf.isSmoothGlass()) {
        // Light samples were taken here: they and this ray share what lights bring.
        myIsWide = myIsWide || !vk_isSpecular(pdf);
        // Of a split BSDF it is the sum of two samples' pdfs.
        const bool isMatte = pdf <= static_cast<float>(bsdf.rounds()) / VK_PI;
        myIsDiffuse = myIsDiffuse || (isMatte && bsdf.isDiffuse());
        myIsStray = myIsStray || (isMatte && !bsdf.isDiffuse());
        myNextEvent = atVertex;
    } else if (crosses) {
        // What the vertex in front left for rays goes on, less what the glass takes. Rough glass
        // bends it so that none of that vertex's samples came this way.
        myNextEvent = throughGlass;
        if (!bsdf.isSmoothGlass())
            myNextEvent.samples = 0;
        myNextEvent.isRefracted = myNextEvent.samples > 0;
    } else {
        // Nobody took samples for where this goes: the ray counts all that it meets.
        myNextEvent = {};
        myNextEvent.glassDims = !isInside;
        myNextEvent.shadowIsCounted = isInside;
    }
    // Else the density is that with which the vertex in front sent the ray to the glass.
    if (!myNextEvent.isRefracted)
        myNextEvent.bsdfPdf = pdf;
}

void vk_Path::moveBelowSurface(const vk_Hit &entry, const vk_Colour &weight)
{
    myThroughput = myThroughput * weight;
    myDirection = -entry.normal;
    // The layers are the first surface's, which may be one that this path passed by.
    if (isFirst())
        mySpecularShare = {};
}

// With a chance c the path lives on and counts 1/c times. Its mean is what it was, also when
// all paths get a guess of what they will find, and those that live on pay 1/c of it back
// (a control variate): so only what differs from the guess is left to chance.
bool vk_Path::survivesRoulette(const vk_Colour &guess)
{
    const float chance = vk_largest(myThroughput) / FAINT;
    if (mySampler.number() >= chance) {
        add(guess);
        return false;
    }
    add(guess * (1 - 1 / chance));
    myThroughput = myThroughput * (1 / chance);
    return true;
}

vk_Path vk_Path::split(std::uint32_t half) const
{
    vk_Path path = *this;
    path.mySampler.split(half);
    return path;
}

vk_Path vk_Path::fork(std::uint32_t branch) const
{
    vk_Path path = *this;
    path.mySampler.fork(branch);
    return path;
}
