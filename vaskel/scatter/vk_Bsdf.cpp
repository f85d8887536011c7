#include "vaskel/scatter/vk_Bsdf.h"

#include "vaskel/scatter/vk_Sheen.h"

namespace
{
constexpr float COAT_STRAIGHT = .04f;      // reflectance straight on, for an index of 1.5
constexpr float ALMOST_ONE = 1 - 0x1p-24f; // the largest float below 1
constexpr float LEAST_COSINE = 1e-4f;

// What a boundary lets pass, before a factor that it has for both directions together: from the
// diffuse term of Ashikhmin and Shirley.
float passedBoundary(float cosine)
{
    const float x = 1 - cosine / 2;
    return 1 - x * x * x * x * x;
}

vk_Facets facetsOf(const vk_Material &material)
{
    const float alpha = vk_alpha(material.rough);
    if (material.brushed <= 0)
        return {alpha, alpha};
    // Burley's aspect, with the scratches along u.
    const float aspect = std::sqrt(1 - .9f * std::min(material.brushed, 1.0f));
    // The tables of albedo end at a width of 1.
    return {std::max(.001f, alpha * aspect), std::min(1.0f, alpha / aspect)};
}

// Above the horizon, where a smooth normal lets a viewer look from below; pdfs are divided by z.
vk_Vec lifted(vk_Vec v)
{
    v.z = std::max(v.z, LEAST_COSINE);
    return v;
}

vk_Vec mirrored(const vk_Vec &out, const vk_Vec &facet)
{
    return vk_normalize(facet * (2 * vk_dot(facet, out)) - out);
}

// Of Schlick's reflectance over the hemisphere, weighted by the cosine c: 2 times the integral of
// (1 - c)^5 c from 0 to 1 is 1/21.
float average(float straight, float edge)
{
    return straight + (edge - straight) / 21;
}

float fresnelOfCoat(const vk_Material &material, float cosine)
{
    if (material.coat <= 0)
        return 0;
    return vk_schlick(vk_grey(COAT_STRAIGHT), vk_grey(1), cosine).x * material.coat;
}

vk_Frame frameAround(const vk_Vec &normal, const vk_Material &material, const vk_Vec &along)
{
    return material.brushed > 0 ? vk_Frame(normal, along) : vk_Frame(normal);
}
} // namespace

vk_Colour vk_Material::passesStraight(float cosine) const
{
    // As on entering, also where the way leaves: not being bent it would meet total reflection
    // there, while light that a pane or a ball refracts loses as much as where it entered.
    return clear * (1 - vk_fresnel(cosine, ior));
}

vk_Bsdf::vk_Bsdf(const vk_Material &material, const vk_Vec &normal, const vk_Vec &out, bool split,
                 const vk_Vec &along, bool inside)
    : myMaterial(material), myIsGlass(material.isClear()),
      myHasBoundary(vk_largest(material.edge) > 0 || vk_largest(material.specular) > 0),
      myTop(frameAround(normal, material, along)), myOut(lifted(myTop.toLocal(out))),
      myLower(myOut), myFacets(facetsOf(material)),
      myCoat(vk_alpha(material.coatRough), vk_alpha(material.coatRough)),
      myEta(inside ? 1 / material.ior : material.ior)
{
    if (!(material.tilt == vk_Vec{})) {
        myTilted = frameAround(vk_normalize(normal + material.tilt), material, along);
        myLower = lifted(myTilted->toLocal(out));
    }
    compensate();
    if (myHasBoundary)
        myPassed = passedBoundary(myLower.z);
    myIsPlain = myMultiple == vk_Colour{} && !myTilted && material.coat <= 0 &&
                vk_largest(material.sheen) <= 0;
    if (!myIsPlain)
        myBelow = below(myOut.z);
    if (myIsGlass)
        myRounds = split ? 2 : 1;
    else
        share(split);
}

vk_Vec vk_Bsdf::mirror() const
{
    return myTop.toWorld({-myOut.x, -myOut.y, myOut.z});
}

float vk_Bsdf::peakPdf() const
{
    float density = 0;
    // The pdf of visible normals is highest where the half vector is the normal; a tilt moves that.
    static_cast<void>(evaluate(mirror(), density));
    return density;
}

void vk_Bsdf::compensate()
{
    constexpr float SMOOTH = .15f; // where facets hardly meet each other's light
    constexpr float NARROW = .5f;  // share of what they scatter again that goes the same ways

    const vk_Material &m = myMaterial;
    if (m.rough < SMOOTH)
        return;
    if (myIsGlass) {
        // Turquin's factor for facets that absorb nothing: as much as is lost comes back.
        myCompensation = vk_grey(1 / vk_glassAlbedo(myOut.z, m.rough, myEta));
        return;
    }
    if (vk_largest(m.specular) <= 0)
        return;
    const bool isBrushed = m.brushed > 0;
    const float narrow = isBrushed ? 1 : NARROW, lost = 1 - myFacets.albedo(myLower);
    // Every time that facets scatter it, light loses what they do not reflect. The geometric
    // series of all times after the first comes to f lost / (1 - f lost).
    const auto each = [&](auto function) {
        return vk_Colour{function(average(m.specular.x, m.edge.x)),
                         function(average(m.specular.y, m.edge.y)),
                         function(average(m.specular.z, m.edge.z))};
    };
    myCompensation = each([&](float f) { return 1 + narrow * f * lost / (1 - f * lost); });
    // The wide lobe needs the mean over all directions, of which there is no table for these.
    if (isBrushed)
        return;
    const float mean = vk_facetMean(myFacets.rough());
    myLost = (1 - narrow) * lost;
    myMeanLost = std::max(1 - mean, 1e-6f);
    // Kulla and Conty's factor; f squared, as what is in this lobe has met two facets at least.
    myMultiple = each([&](float f) { return f * f * mean / (1 - f * (1 - mean)); });
}

// Parts get samples by what they reflect. Those that get none are not evaluated either.
void vk_Bsdf::share(bool split)
{
    constexpr float LEAST = 1e-20f; // less has no inverse to count on

    const vk_Material &m = myMaterial;
    if (myHasBoundary)
        myShare[BOUNDARY] = vk_luminance(fresnel(myLower.z) * myCompensation) * myBelow;
    if (!myIsPlain) {
        myShare[COAT] = fresnelOfCoat(m, myOut.z);
        myShare[MULTIPLE] = vk_luminance(myMultiple) * myLost * myBelow;
        if (vk_largest(m.sheen) > 0)
            myShare[SHEEN] = vk_luminance(m.sheen) * vk_sheenAlbedo(myOut.z, m.sheenRough);
    }
    myShare[BASE] = vk_luminance(m.diffuse) * myBelow;
    const float specular = myShare[COAT] + myShare[BOUNDARY] + myShare[MULTIPLE];
    const float diffuse = myShare[SHEEN] + myShare[BASE];
    const bool both = specular > LEAST && diffuse > LEAST;
    // By chance, the specular ones are drawn often enough to keep them quiet.
    const float ofSpecular = both ? std::clamp(specular / (specular + diffuse), .2f, .9f) : 1;
    // Split, the shares of each round come to 1, or both draw from the same ones, which come to 2.
    // The density comes to that of two samples: light over it is the balance heuristic of both.
    myRepeats = split && diffuse > LEAST && specular <= LEAST;
    myRounds = split && (both || myRepeats) ? 2 : 1;
    const float toSpecular = specular > LEAST ? (myRounds == 2 ? 1 : ofSpecular) / specular : 0;
    const float samplesOfDiffuse = myRepeats ? 2 : myRounds == 2 || !both ? 1 : 1 - ofSpecular;
    const float toDiffuse = diffuse > LEAST ? samplesOfDiffuse / diffuse : 0;
    for (int part = 0; part < PARTS; ++part)
        myShare[part] *= part <= MULTIPLE ? toSpecular : toDiffuse;
}

inline vk_Colour vk_Bsdf::fresnel(float cosine) const
{
    return vk_schlick(myMaterial.specular, myMaterial.edge, cosine);
}

// What coat and sheen leave of the light from or to a direction.
float vk_Bsdf::below(float cosine) const
{
    float left = 1 - fresnelOfCoat(myMaterial, cosine);
    // By its strongest colour: each by itself would leave the opposite colour to what lies below.
    const float sheen = vk_largest(myMaterial.sheen);
    if (sheen > 0)
        left *= 1 - sheen * vk_sheenAlbedo(cosine, myMaterial.sheenRough);
    return left;
}

inline vk_Colour vk_Bsdf::base(float cosIn) const
{
    if (!myHasBoundary)
        return myMaterial.diffuse * (1 / VK_PI);
    // Over the hemisphere, weighted by the cosine, passedBoundary() has a mean of 23/28.
    const float through = 28.0f / 23 * passedBoundary(cosIn) * myPassed;
    const vk_Colour &edge = myMaterial.edge, &straight = myMaterial.specular;
    // What Schlick's formula leaves: 1 less `edge` everywhere, and of the rest what is not
    // reflected straight on, less towards the edge.
    return myMaterial.diffuse * (vk_grey(1) - edge + (edge - straight) * through) * (1 / VK_PI);
}

inline void vk_Bsdf::addBoundary(const vk_Vec &in, float left, vk_Scattered &scattered,
                                 float &density) const
{
    const vk_Vec h = vk_normalize(in + myLower);
    const float facets = myFacets.density(h);
    scattered.specular +=
        fresnel(vk_dot(h, in)) * myCompensation * (facets * myFacets.shared(in, myLower) * left);
    // The Jacobian of reflection, 1 / (4 dot(out, h)), cancels that cosine in the pdf of visible
    // normals, which is then one of directions.
    density += myShare[BOUNDARY] * facets * myFacets.visible(myLower) / (4 * myLower.z);
}

inline void vk_Bsdf::addBase(float cosine, float left, vk_Scattered &scattered,
                             float &density) const
{
    scattered.diffuse += base(cosine) * left;
    density += myShare[BASE] * cosine / VK_PI;
}

vk_Scattered vk_Bsdf::evaluate(const vk_Vec &in, float &density) const
{
    density = 0;
    if (myIsGlass)
        return evaluateGlass(myTop.toLocal(in), density);
    const float cosine = vk_dot(in, normal());
    if (cosine <= 0)
        return {};
    if (!myIsPlain)
        return evaluateLayers(in, density);
    vk_Scattered scattered;
    if (myShare[BOUNDARY] > 0)
        addBoundary(myTop.toLocal(in), cosine, scattered, density);
    if (myShare[BASE] > 0)
        addBase(cosine, cosine, scattered, density);
    return scattered;
}

vk_Scattered vk_Bsdf::evaluateLayers(const vk_Vec &in, float &density) const
{
    const vk_Vec local = myTop.toLocal(in), lower = bottom().toLocal(in);
    vk_Scattered scattered = evaluateTop(local, density);
    if (lower.z <= 0)
        return scattered;
    const float left = myBelow * below(local.z) * lower.z;
    if (myShare[BOUNDARY] > 0)
        addBoundary(lower, left, scattered, density);
    if (myShare[MULTIPLE] > 0) {
        // Reciprocal: facets scatter light again towards where they would lose it from.
        const float lost = 1 - vk_facetAlbedo(lower.z, myFacets.rough());
        scattered.specular += myMultiple * (myLost * lost / (myMeanLost * VK_PI) * left);
        density += myShare[MULTIPLE] * lower.z / VK_PI;
    }
    if (myShare[BASE] > 0)
        addBase(lower.z, left, scattered, density);
    return scattered;
}

// Of coat and sheen.
vk_Scattered vk_Bsdf::evaluateTop(const vk_Vec &in, float &density) const
{
    vk_Scattered scattered;
    if (myShare[COAT] <= 0 && myShare[SHEEN] <= 0)
        return scattered;
    const vk_Vec h = vk_normalize(in + myOut);
    if (myShare[COAT] > 0) {
        const float facets = myCoat.density(h);
        const float reflected = fresnelOfCoat(myMaterial, vk_dot(h, in));
        scattered.specular += vk_grey(reflected * facets * myCoat.shared(in, myOut) * in.z);
        density += myShare[COAT] * facets * myCoat.visible(myOut) / (4 * myOut.z);
    }
    if (myShare[SHEEN] > 0) {
        scattered.diffuse +=
            myMaterial.sheen * (vk_sheen(in.z, myOut.z, h.z, myMaterial.sheenRough) * in.z);
        // Drawn evenly: most of it is at grazing angles, where a cosine would seldom look.
        density += myShare[SHEEN] / (2 * VK_PI);
    }
    return scattered;
}

vk_Scattered vk_Bsdf::evaluateGlass(const vk_Vec &in, float &density) const
{
    // Also (0 0 0), which stands for total reflection among samples.
    if (in.z == 0)
        return {};
    const bool reflects = in.z > 0;
    // (13) and (16) of Walter; the latter points to the side of the lower index.
    vk_Vec h = reflects ? in + myOut : in * -myEta - myOut;
    h = vk_normalize(h.z < 0 ? -h : h);
    const float outH = vk_dot(myOut, h), inH = vk_dot(in, h);
    if (outH <= 0 || (inH > 0) != reflects)
        return {};
    const float reflectance = vk_fresnel(outH, myEta);
    const float share = reflects ? reflectance : 1 - reflectance;
    // Facets per direction: of those that reflect, and of those that refract,
    // (17) of Walter.
    const float bend = outH + myEta * inH;
    const float jacobian = // times outH, which cancels that of the density
        reflects ? .25f : myEta * myEta * outH * -inH / std::max(bend * bend, 1e-12f);
    const float facets = myFacets.density(h) * jacobian;
    const vk_Vec above = {in.x, in.y, std::abs(in.z)};
    density = facets * myFacets.visible(myOut) / myOut.z * (myRounds == 2 ? 1 : share);
    // Without the square of the index by which radiance grows where light enters: camera and lights
    // are outside of glass, so that it has left again.
    const float passed = 4 * facets * myFacets.shared(above, myOut) * above.z * share;
    return {(reflects ? vk_grey(1) : myMaterial.clear) * myCompensation * passed, {}};
}

// A facet reflects as often as Fresnel says: all directions then count alike.
vk_Vec vk_Bsdf::sampleGlass(const vk_Square &at, int round, float choice) const
{
    const vk_Vec h = myFacets.sample(myOut, at);
    const bool reflects = myRounds == 2 ? round == 0 : choice < vk_fresnel(vk_dot(myOut, h), myEta);
    const vk_Vec in = reflects ? mirrored(myOut, h) : vk_refract(myOut, h, myEta);
    return (in.z > 0) == reflects ? myTop.toWorld(in) : vk_Vec{};
}

vk_Vec vk_Bsdf::samplePart(Part part, const vk_Square &at) const
{
    if (part == COAT)
        return myTop.toWorld(mirrored(myOut, myCoat.sample(myOut, at)));
    if (part == BOUNDARY)
        return bottom().toWorld(mirrored(myLower, myFacets.sample(myLower, at)));
    if (part == SHEEN)
        return myTop.toWorld(vk_toCap(at, 1));
    // By the cosine: Malley's method.
    vk_Vec disc = vk_toDisc(at);
    disc.z = std::sqrt(std::max(0.0f, 1 - disc.x * disc.x - disc.y * disc.y));
    return bottom().toWorld(disc);
}

vk_Vec vk_Bsdf::sample(const vk_Square &at, int round, float choice) const
{
    if (myIsGlass)
        return sampleGlass(at, round, choice);
    // The choice takes its number from the first coordinate and stretches the
    // rest, which keeps all parts well spread.
    const bool isDiffuseRound = myRounds == 2 && round == 1;
    int part = isDiffuseRound ? MULTIPLE + 1 : 0;
    const int last = myRounds == 2 && round == 0 && !myRepeats ? MULTIPLE : BASE;
    float left = myRepeats ? 2 * at.u : at.u;
    while (part < last && left >= myShare[part])
        left -= myShare[part++];
    // Rounding may leave a number for a last part that has no share.
    const float share = std::max(myShare[part], 1e-6f);
    return samplePart(static_cast<Part>(part), {std::min(left / share, ALMOST_ONE), at.v});
}
