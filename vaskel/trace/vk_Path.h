// One path from the camera into the scene, and what the camera sees by way of it.
#pragma once

#include "vaskel/base/vk_Sampler.h"
#include "vaskel/scatter/vk_Bsdf.h"
#include "vaskel/trace/vk_NextEvent.h"
#include "vaskel/trace/vk_World.h"

// What a camera ray brings, in the two layers that a filter treats apart, and what it met.
struct vk_View {
    static constexpr float NOWHERE = 1024; // distance of what is not there

    vk_Colour specular; // all but
    vk_Colour diffuse;  // light that the first surface scattered widely,
    vk_Colour albedo;   // about so much of what arrived there; not 0 where there is such light
    vk_Vec normal; // of that surface, as bumps turn it, but for glass; to the viewer where there is
                   // none
    float distance = 0;
    float blurred =
        0; // 1: the diffuse layer has no edges, as light below a surface or behind ground glass
    float cost = 0; // (vk_Work)

    // A signed number becomes a float at once, one without a sign by cases.
    void charge(std::uint64_t more) { cost += static_cast<float>(static_cast<std::int64_t>(more)); }
    vk_Colour light() const { return specular + diffuse; }
};

// The state of a path. It is changed by the operations below alone, each of which stands
// for one thing that happens to light.
class vk_Path
{
public:
    // Starts at the camera; what the path finds is added to the view.
    vk_Path(const vk_Vec &origin, const vk_Vec &direction, const vk_Sampler &sampler, vk_View &view)
        : mySampler(sampler), myView(&view), myOrigin(origin), myDirection(direction)
    {
    }

    const vk_Vec &origin() const { return myOrigin; }
    const vk_Vec &direction() const { return myDirection; } // unit
    const vk_NextEvent &nextEvent() const { return myNextEvent; }
    vk_Sampler &sampler() { return mySampler; }
    const vk_Sampler &sampler() const { return mySampler; }
    vk_View &view() { return *myView; }

    // How often it was scattered by glass.
    int dielectricBounces() const { return myDielectricBounces; }
    // Whether it has not been scattered: it may have passed by what is there in part.
    bool isCameraRay() const { return myBounces == 0; }
    // Whether it also comes upon the first surface of its view, which the filter is told of.
    bool isFirst() const { return myBounces == 0 && myPassings == 0; }
    // So many times it was scattered, or passed by a surface.
    int vertices() const { return myBounces + myPassings; }
    // Whether little of what it finds reaches the camera, or nothing. Roulette lifts those that
    // live on to FAINT: a little less still counts as that, lest rounding decide.
    static constexpr float FAINT = .12f;
    bool isFaint() const { return vk_largest(myThroughput) < .999f * FAINT; }
    // Whether nothing does. One whose throughput is no number is not: what it adds is to be told.
    bool isSpent() const { return vk_largest(myThroughput) <= 0; }
    // Whether it may meet a light before it is scattered again; so it may until somebody finds
    // that it does not.
    bool mayMeetLight() const { return myMayMeetLight; }
    void findLight(bool isAhead) { myMayMeetLight = isAhead; }
    // Whether it was scattered widely. Then it looks through glass straight on, and what it brings
    // from further on is clamped.
    bool isWide() const { return myIsWide; }
    // Whether it was once scattered no more narrowly than by a matte surface: by one that has a
    // base or a sheen, or by one without, as by the tail of a metal's lobe. What is met behind
    // either is blurred (vk_PathTracer.h), but behind the latter less for every sample: it would
    // brighten what metals mirror in each other by a tenth.
    bool isDiffuse() const { return myIsDiffuse; }
    bool isStray() const { return myIsStray; }
    bool hasSpecularLayer() const { return !(mySpecularShare == vk_Colour{}); }

    // Light that arrives along the ray, sent on to the camera.
    void add(const vk_Colour &radiance)
    {
        // Most surfaces give no light of their own, and most rays meet no light.
        if (!(radiance == vk_Colour{}))
            addLight(radiance);
    }
    // The same for light that the surface of a vertex scattered towards the ray's origin.
    void add(const vk_Scattered &radiance);

    // A part of the light is held back: by fog, inside glass, where the floor fades. Or it is
    // the share of a way that was chosen, over the chance of that.
    void attenuate(const vk_Colour &transmittance) { myThroughput = myThroughput * transmittance; }
    void attenuate(float transmittance) { myThroughput = myThroughput * transmittance; }

    // All that the first surface shows is put into the diffuse layer.
    void countAsDiffuse() { mySpecularShare = {}; }

    // On behind glass as if it were not there; what the shadow shader says becomes of
    // lights behind it is in `next`.
    void passStraight(const vk_Hit &hit, const vk_NextEvent &next);

    // On as if there were no surface; `next` as above.
    void passBy(const vk_Hit &hit, const vk_NextEvent &next);

    // Back from a smooth surface, at which no lights were sampled.
    void reflect(const vk_Hit &hit);

    // Into a direction that the BSDF drew. False when nothing comes from there.
    [[nodiscard]] bool scatter(const vk_Hit &hit, const vk_Bsdf &bsdf, const vk_Vec &direction,
                               const vk_NextEvent &atVertex, const vk_NextEvent &throughGlass);

    // To the place where light went in that comes out of a surface.
    void moveBelowSurface(const vk_Hit &entry, const vk_Colour &weight);

    // A path that counts little ends by chance; one that lives on counts the more for it.
    // The guess of the radiance that it would find takes noise out of that, and does not
    // change the mean, but where add() cuts it as a firefly.
    // REQUIRES: isFaint()
    [[nodiscard]] bool survivesRoulette(const vk_Colour &guess);

    // Another path that begins with all that befell this one, and draws numbers of its own; and
    // one of two that go on in its place, with the numbers of two samples (vk_Sampler::split()).
    vk_Path fork(std::uint32_t branch) const;
    vk_Path split(std::uint32_t half) const;

private:
    void addLight(const vk_Colour &radiance);
    void setNextEvent(const vk_Hit &hit, const vk_Bsdf &bsdf, float pdf, bool isAbove,
                      const vk_NextEvent &atVertex, const vk_NextEvent &throughGlass);

    vk_Sampler mySampler;
    vk_View *myView;
    vk_Vec myOrigin, myDirection;
    vk_Colour myThroughput = {1, 1, 1};
    vk_Colour mySpecularShare = {1, 1, 1}; // of what arrives
    vk_NextEvent myNextEvent;
    int myBounces = 0;
    int myPassings = 0;
    int myDielectricBounces = 0;
    bool myIsWide = false;
    bool myIsDiffuse = false;
    bool myIsStray = false;
    bool myMayMeetLight = true;
};
