#include "vaskel/vk_Bsdf.h"

namespace
{
float square(float x)
{
    return x * x;
}
float fifthPower(float x)
{
    return square(square(x)) * x;
}

// The distribution of facets around the normal; h is in the frame. Written so
// that it does not cancel for small alpha.
float facets(const vk_Vec &h, float alpha)
{
    const float sin2 = h.x * h.x + h.y * h.y;
    const float width = sin2 + square(alpha * h.z);
    return square(alpha) / (VK_PI * square(width));
}

// Smith's auxiliary function in the form that the height-correlated masking
// wants: cos * sqrt(1 + alpha^2 tan^2), with the cosine of the other direction.
float smith(float cosine, float other, float alpha)
{
    const float a2 = square(alpha);
    return other * std::sqrt(a2 + (1 - a2) * square(cosine));
}

// Share of facets that out sees: G1.
float visible(float cosine, float alpha)
{
    return 2 * cosine / (cosine + smith(cosine, 1, alpha));
}
} // namespace

vk_Bsdf::vk_Bsdf(const vk_Material &material, const vk_Vec &normal, const vk_Vec &out, bool split)
    : myMaterial(material), myFrame(normal), myOut(myFrame.toLocal(out)),
      myAlpha(vk_alpha(material.rough))
{
    myOut.z = std::max(myOut.z, 1e-4f);
    const float specular = vk_luminance(fresnel(myOut.z));
    const float diffuse = vk_luminance(material.diffuse);
    if (specular > 0) {
        // A boundary is drawn often enough to keep its reflection quiet.
        myBoundaryShare = diffuse > 0 ? std::clamp(specular / (specular + diffuse), 0.2f, 0.9f) : 1;
    }
    myBaseShare = 1 - myBoundaryShare;
    if (split && myBoundaryShare > 0 && myBaseShare > 0)
        myBoundaryShare = myBaseShare = 1;
}

vk_Colour vk_Bsdf::fresnel(float cosine) const
{
    return vk_mix(myMaterial.specular, myMaterial.edge,
                  fifthPower(1 - std::clamp(cosine, 0.0f, 1.0f)));
}

vk_Colour vk_Bsdf::base(float cosIn) const
{
    const float through =
        28.0f / 23 * (1 - fifthPower(1 - cosIn / 2)) * (1 - fifthPower(1 - myOut.z / 2));
    const vk_Colour &edge = myMaterial.edge;
    const vk_Colour coated = (vk_grey(1) - myMaterial.specular) * through;
    return myMaterial.diffuse * (vk_grey(1) - edge + edge * coated) * (1 / VK_PI);
}

vk_Colour vk_Bsdf::evaluate(const vk_Vec &in, float &density) const
{
    density = 0;
    const vk_Vec local = myFrame.toLocal(in);
    if (local.z <= 0)
        return {};
    vk_Colour scattered;
    if (myBoundaryShare > 0) {
        const vk_Vec h = vk_normalize(local + myOut);
        const float d = facets(h, myAlpha);
        const float masked =
            0.5f / (smith(local.z, myOut.z, myAlpha) + smith(myOut.z, local.z, myAlpha));
        scattered += fresnel(vk_dot(h, local)) * (d * masked);
        density += myBoundaryShare * d * visible(myOut.z, myAlpha) / (4 * myOut.z);
    }
    if (myBaseShare > 0) {
        scattered += base(local.z);
        density += myBaseShare * local.z / VK_PI;
    }
    return scattered * local.z;
}

vk_Vec vk_Bsdf::visibleNormal(const vk_Square &at) const
{
    // Stretch to where alpha is 1, project the visible half disc, go back.
    const vk_Vec stretched = vk_normalize({myAlpha * myOut.x, myAlpha * myOut.y, myOut.z});
    const vk_Vec horizontal = vk_cross({0, 0, 1}, stretched);
    const float length = vk_length(horizontal);
    const vk_Vec t1 = length > 1e-6f ? horizontal * (1 / length) : vk_Vec{1, 0, 0};
    const vk_Vec t2 = vk_cross(stretched, t1);
    vk_Vec disc = vk_toDisc(at);
    const float s = 0.5f * (1 + stretched.z);
    disc.y = (1 - s) * std::sqrt(std::max(0.0f, 1 - square(disc.x))) + s * disc.y;
    const float up = std::sqrt(std::max(0.0f, 1 - square(disc.x) - square(disc.y)));
    const vk_Vec h = t1 * disc.x + t2 * disc.y + stretched * up;
    return vk_normalize({myAlpha * h.x, myAlpha * h.y, std::max(0.0f, h.z)});
}

vk_Vec vk_Bsdf::sampleBoundary(const vk_Square &at) const
{
    const vk_Vec h = visibleNormal(at);
    return myFrame.toWorld(vk_normalize(h * (2 * vk_dot(h, myOut)) - myOut));
}

vk_Vec vk_Bsdf::sampleBase(const vk_Square &at) const
{
    vk_Vec disc = vk_toDisc(at);
    disc.z = std::sqrt(std::max(0.0f, 1 - square(disc.x) - square(disc.y)));
    return myFrame.toWorld(disc);
}

vk_Vec vk_Bsdf::sample(const vk_Square &at, int round) const
{
    if (rounds() == 2)
        return round == 0 ? sampleBoundary(at) : sampleBase(at);
    // The choice takes its number from the first coordinate and stretches the
    // rest, which keeps both halves well spread.
    if (at.u < myBoundaryShare)
        return sampleBoundary({at.u / myBoundaryShare, at.v});
    return sampleBase({(at.u - myBoundaryShare) / myBaseShare, at.v});
}
