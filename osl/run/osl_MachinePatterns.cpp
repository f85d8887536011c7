// Elements of arrays, noise, splines and colour spaces.
#include "osl/run/osl_Machine.h"

#include "osl/lib/osl_Spline.h"

#include <algorithm>

// The index, or the nearest one after a message.
int osl_Machine::checkedIndex(In in, const osl_Operand &index, int lane)
{
    const int wanted = intAt(index, lane);
    if (wanted >= 0 && wanted < in.number)
        return wanted;
    error(in, lane,
          "Index [" + std::to_string(wanted) + "] out of range " + std::string(myTexts[in.text]) +
              "[0.." + std::to_string(in.number - 1) + "]: " + placeText(in));
    return std::clamp(wanted, 0, in.number - 1);
}

// Operands: result, array, index.
void osl_Machine::element(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        const int first = checkedIndex(in, o[2], lane) * in.words;
        for (int word = 0; word < in.words; ++word) {
            words(o[0].at + word)[lane] = words(o[1].at + first + word)[lane];
            if (!in.hasDerivatives)
                continue;
            words(o[0].dx + word)[lane] = words(o[1].dx + first + word)[lane];
            words(o[0].dy + word)[lane] = words(o[1].dy + first + word)[lane];
        }
    });
}

// Operands: array, index, value.
void osl_Machine::setElement(In in)
{
    const osl_Operand *o = operands(in);
    const int size = o[0].words / in.number;
    forLanes(in, [&](int lane) {
        const int first = checkedIndex(in, o[1], lane) * size;
        for (int word = 0; word < size; ++word) {
            const int from = word * o[2].step;
            words(o[0].at + first + word)[lane] = words(o[2].at + from)[lane];
            if (!in.hasDerivatives)
                continue;
            words(o[0].dx + first + word)[lane] = words(o[2].dx + from)[lane];
            words(o[0].dy + first + word)[lane] = words(o[2].dy + from)[lane];
        }
    });
}

void osl_Machine::zeroResult(In in)
{
    const osl_Operand &result = operands(in)[0];
    for (int word = 0; word < in.words; ++word)
        std::fill_n(words(result.at + word), myWidth, 0);
    clearDerivatives(operands(in)[0], in.words);
}

// ---- Noise ----------------------------------------------------------------

// Operands: result, name or none, four coordinates, four periods, options in pairs.
void osl_Machine::noise(In in)
{
    const osl_Operand *o = operands(in);
    if (in.number >= 0 && in.number != OSL_NOISE_UNKNOWN)
        return noiseOfKind(in, static_cast<osl_NoiseKind>(in.number));
    // The name may differ from point to point: each kind for all, kept for those who want it.
    std::vector<int> result(static_cast<size_t>(in.words) * static_cast<size_t>(myWidth) * 3);
    std::vector<int> handles;
    forLanes(in, [&](int lane) {
        const int handle = intAt(o[1], lane);
        if (std::find(handles.begin(), handles.end(), handle) == handles.end())
            handles.push_back(handle);
    });
    const int places[] = {o[0].at, o[0].dx, o[0].dy};
    const int parts = in.hasDerivatives ? 3 : 1;
    const auto wordOf = [&](int part, int word) {
        return static_cast<size_t>((part * in.words + word) * myWidth);
    };
    for (const int handle : handles) {
        const osl_NoiseKind kind = osl_noiseKind(myTexts[handle]);
        if (kind == OSL_NOISE_UNKNOWN)
            zeroResult(in);
        else
            noiseOfKind(in, kind);
        forLanes(in, [&](int lane) {
            if (intAt(o[1], lane) != handle)
                return;
            if (kind == OSL_NOISE_UNKNOWN)
                error(in, lane,
                      "noise type \"" + std::string(myTexts[handle]) +
                          "\" is unknown, called from (" + placeText(in) + ")");
            for (int part = 0; part < parts; ++part) {
                for (int word = 0; word < in.words; ++word)
                    result[wordOf(part, word) + static_cast<size_t>(lane)] =
                        words(places[part] + word)[lane];
            }
        });
    }
    for (int part = 0; part < parts; ++part) {
        for (int word = 0; word < in.words; ++word)
            std::copy_n(&result[wordOf(part, word)], myWidth, words(places[part] + word));
    }
}

void osl_Machine::gaborOptions(In in, osl_GaborOptions &options, int lane)
{
    const osl_Operand *o = operands(in);
    for (int i = 10; i + 1 < in.count; i += 2) {
        const std::string_view name = textAt(o[i], lane);
        const osl_Operand &value = o[i + 1];
        const bool isInt = typeOf(value).isInt();
        const float number = isInt ? static_cast<float>(intAt(value, lane)) : floatAt(value, lane);
        if (name == "anisotropic")
            options.anisotropic = static_cast<int>(number);
        else if (name == "direction")
            options.direction = vectorAt(value, lane);
        else if (name == "bandwidth")
            options.bandwidth = number;
        else if (name == "impulses")
            options.impulses = number;
        else if (name == "do_filter")
            options.isFiltered = number != 0;
    }
}

void osl_Machine::noiseOfKind(In in, osl_NoiseKind kind)
{
    const osl_Operand *o = operands(in);
    if (kind == OSL_NOISE_GABOR)
        myExtraCost += GABOR_COST;
    osl_NoiseCall call;
    call.kind = kind;
    call.components = in.words;
    call.dimensions = 0;
    for (int i = 0; i < 4 && o[2 + i].reg >= 0; ++i, ++call.dimensions) {
        call.coord[i] = floats(o[2 + i].at);
        call.coordDx[i] = floats(o[2 + i].dx);
        call.coordDy[i] = floats(o[2 + i].dy);
        if (o[6 + i].reg >= 0)
            call.period[i] = floats(o[6 + i].at);
    }
    for (int word = 0; word < in.words; ++word) {
        call.out[word] = floats(o[0].at + word);
        if (!in.hasDerivatives)
            continue;
        call.outDx[word] = floats(o[0].dx + word);
        call.outDy[word] = floats(o[0].dy + word);
    }
    if (in.count > 10)
        gaborOptions(in, call.gabor, myMask != 0 ? __builtin_ctz(myMask) : 0);
    osl_noise(call, lanes(in));
}

// ---- Splines --------------------------------------------------------------

// Operands: result, basis, x, number of knots or none, knots.
void osl_Machine::spline(In in)
{
    const osl_Operand *o = operands(in);
    const int components = in.words;
    forLanes(in, [&](int lane) {
        const osl_SplineBasis &basis = osl_splineBasis(textAt(o[1], lane));
        int count = o[4].words / components;
        if (o[3].reg >= 0)
            count = std::min(count, intAt(o[3], lane));
        for (int word = 0; word < components; ++word) {
            osl_Knots knots;
            knots.data = floats(o[4].at + word) + lane;
            knots.count = count;
            knots.stride = components * myWidth;
            if (count < 4) {
                setFloat(o[0], lane, 0, word);
                setDerivatives(o[0], lane, word, 0, 0);
            } else if (in.hasDerivatives) {
                if (o[4].dx != myCode.zerosAt) {
                    knots.dx = floats(o[4].dx + word) + lane;
                    knots.dy = floats(o[4].dy + word) + lane;
                }
                const osl_Dual y = osl_spline(basis, dualAt(o[2], lane), knots);
                setFloat(o[0], lane, y.val, word);
                setDerivatives(o[0], lane, word, y.dx, y.dy);
            } else {
                setFloat(o[0], lane, osl_spline(basis, floatAt(o[2], lane), knots), word);
            }
        }
    });
}

void osl_Machine::splineInverse(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        const osl_SplineBasis &basis = osl_splineBasis(textAt(o[1], lane));
        osl_Knots knots;
        knots.data = floats(o[4].at) + lane;
        knots.stride = myWidth;
        knots.count = o[4].words;
        if (o[3].reg >= 0)
            knots.count = std::min(knots.count, intAt(o[3], lane));
        osl_Dual x;
        if (knots.count >= 4)
            x = osl_splineInverse(basis, dualAt(o[2], lane), knots);
        setFloat(o[0], lane, x.val);
        setDerivatives(o[0], lane, 0, x.dx, x.dy);
    });
}

// ---- Colours --------------------------------------------------------------

// Operands: result, from, to, colour. Derivatives by differences.
void osl_Machine::transformColour(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        const std::string_view from = textAt(o[1], lane);
        const std::string_view to = textAt(o[2], lane);
        const osl_DualVec colour = dualVectorAt(o[3], lane);
        osl_Colour value = {colour.x.val, colour.y.val, colour.z.val};
        constexpr float STEP = 1e-2f;
        osl_Colour beside = value + osl_Colour{colour.x.dx, colour.y.dx, colour.z.dx} * STEP;
        osl_Colour below = value + osl_Colour{colour.x.dy, colour.y.dy, colour.z.dy} * STEP;
        if (!osl_transformColour(from, to, value))
            error(in, lane,
                  "Unknown color space transformation \"" + std::string(from) + "\" -> \"" +
                      std::string(to) + "\"");
        if (in.hasDerivatives) {
            static_cast<void>(osl_transformColour(from, to, beside));
            static_cast<void>(osl_transformColour(from, to, below));
        }
        const float values[] = {value.x, value.y, value.z};
        const float dx[] = {beside.x - value.x, beside.y - value.y, beside.z - value.z};
        const float dy[] = {below.x - value.x, below.y - value.y, below.z - value.z};
        for (int word = 0; word < 3; ++word) {
            setFloat(o[0], lane, values[word], word);
            setDerivatives(o[0], lane, word, dx[word] / STEP, dy[word] / STEP);
        }
    });
}
