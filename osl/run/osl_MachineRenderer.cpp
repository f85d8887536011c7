// Questions to the renderer, messages, and closures.
#include "osl/run/osl_Machine.h"

#include <algorithm>

// ---- Spaces ---------------------------------------------------------------

// False after a message about an unknown space.
bool osl_Machine::matrixBetween(In in, std::string_view from, std::string_view to, int lane,
                                osl_Matrix &matrix)
{
    osl_Matrix parts[2] = {osl_Matrix::diagonal(1), osl_Matrix::diagonal(1)};
    bool isGood = true;
    const std::string_view names[2] = {from, to};
    for (int i = 0; i < 2; ++i) {
        if (names[i] == "common" || names[i].empty())
            continue;
        if (myRenderer.spaceToCommon(names[i], pointOf(lane), parts[i]))
            continue;
        error(in, lane, "Unknown transformation \"" + std::string(names[i]) + "\"");
        parts[i] = osl_Matrix::diagonal(1);
        isGood = false;
    }
    const bool isBack = to != "common" && !to.empty();
    matrix = isBack ? parts[0] * myInverter.inverse(parts[1]) : parts[0];
    return isGood;
}

void osl_Machine::spaces(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        osl_Matrix matrix;
        static_cast<void>(matrixBetween(in, textAt(o[1], lane), textAt(o[2], lane), lane, matrix));
        for (int i = 0; i < 16; ++i)
            setFloat(o[0], lane, matrix.m[i / 4][i % 4], i);
    });
}

// Operands: result, from (or "common"), to, matrix.
void osl_Machine::getMatrix(In in)
{
    const osl_Operand *o = operands(in);
    const osl_Operand &to = o[in.count - 1];
    forLanes(in, [&](int lane) {
        osl_Matrix matrix;
        const std::string_view from = in.count == 4 ? textAt(o[1], lane) : "common";
        const bool isGood = matrixBetween(in, from, textAt(o[in.count - 2], lane), lane, matrix);
        setInt(o[0], lane, isGood ? 1 : 0);
        for (int i = 0; i < 16 && isGood; ++i)
            setFloat(to, lane, matrix.m[i / 4][i % 4], i);
    });
}

namespace
{
const struct {
    const char *name;
    float metres;
} UNITS[] = {{"mm", 0.001f},  {"cm", 0.01f},   {"m", 1},         {"km", 1000},
             {"in", 0.0254f}, {"ft", 0.3048f}, {"mi", 1609.344f}};

// Metres, or the size of a space's unit; 0 for an unknown one.
float sizeOf(OSL_Renderer &renderer, std::string_view unit, int point)
{
    for (const auto &row : UNITS) {
        if (unit == row.name)
            return row.metres;
    }
    if (unit == "common" || unit == "s" || unit == "frames")
        return 1;
    osl_Matrix matrix;
    if (!renderer.spaceToCommon(unit, point, matrix))
        return 0;
    return osl_length(osl_transformVector(matrix, osl_Vec{1, 0, 0}));
}
} // namespace

void osl_Machine::transformUnits(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        const float from = sizeOf(myRenderer, textAt(o[1], lane), pointOf(lane));
        const float to = sizeOf(myRenderer, textAt(o[2], lane), pointOf(lane));
        const bool isGood = from > 0 && to > 0;
        if (!isGood)
            error(in, lane,
                  "Unknown unit \"" + std::string(textAt(o[from > 0 ? 2 : 1], lane)) + "\"");
        const float x = floatAt(o[3], lane);
        setFloat(o[0], lane, isGood ? x * from / to : x);
    });
}

// ---- Attributes -----------------------------------------------------------

void osl_Machine::userdata(In in)
{
    const osl_Operand *o = operands(in);
    const osl_Type &type = typeOf(o[0]);
    forLanes(in, [&](int lane) {
        OSL_Value value;
        value.type = type;
        std::vector<float> dx;
        std::vector<float> dy;
        if (!myRenderer.userdata(myTexts[in.text], pointOf(lane), value, dx, dy) ||
            !value.convertTo(type))
            return;
        setValue(o[0], lane, value);
        for (size_t i = 0; i < dx.size() && i < dy.size() && i < value.floats.size(); ++i)
            setDerivatives(o[0], lane, static_cast<int>(i), dx[i], dy[i]);
    });
}

namespace
{
// What getattribute() converts beyond assignment.
bool convertAttribute(OSL_Value &value, const osl_Type &type)
{
    if (value.convertTo(type))
        return true;
    if (type.isInt() && value.type.isFloat()) {
        value = OSL_Value::ofInt(osl_toInt(value.floats[0]));
        return true;
    }
    const osl_Type pair(osl_Type::FLOAT, 2);
    if (type == pair && value.type.isScalar()) {
        const float x = value.type.isInt() ? static_cast<float>(value.ints[0]) : value.floats[0];
        value.ints.clear();
        value.floats = {x, x};
        return true;
    }
    if (type.isTriple() && value.type == pair) {
        value.floats.push_back(0);
        return true;
    }
    return false;
}

// One element of an array.
bool pickElement(OSL_Value &value, int index)
{
    if (!value.type.isArray() || index < 0 || index >= value.type.array)
        return false;
    value.type = value.type.element();
    const auto pick = [&](auto &all) {
        const auto size = static_cast<std::ptrdiff_t>(value.type.components());
        if (all.empty())
            return;
        const auto first = all.begin() + index * size;
        all = std::decay_t<decltype(all)>(first, first + size);
    };
    pick(value.ints);
    pick(value.floats);
    pick(value.strings);
    return true;
}
} // namespace

// Operands: result, object if given, name, index if given, destination.
void osl_Machine::getAttribute(In in)
{
    const osl_Operand *o = operands(in);
    const osl_Operand &to = o[in.count - 1];
    const bool hasObject = in.count > 4 || (in.count == 4 && typeOf(o[2]).isString());
    const bool hasIndex = in.count == 5 || (in.count == 4 && !hasObject);
    forLanes(in, [&](int lane) {
        setInt(o[0], lane, 0);
        if (to.reg < 0)
            return;
        const std::string_view object = hasObject ? textAt(o[1], lane) : std::string_view();
        const std::string_view name = textAt(o[hasObject ? 2 : 1], lane);
        OSL_Value value;
        value.type = typeOf(to);
        if (name == "shader:shadername")
            value = OSL_Value::ofString(myCode.shader);
        else if (name == "shader:layername" || name == "shader:groupname")
            value = OSL_Value::ofString(""); // it stands alone, and nobody has named it
        else if (!myRenderer.attribute(object, name, pointOf(lane), value))
            return;
        if (hasIndex && !pickElement(value, intAt(o[in.count - 2], lane)))
            return;
        if (!convertAttribute(value, typeOf(to)))
            return;
        setValue(to, lane, value);
        setInt(o[0], lane, 1);
    });
}

void osl_Machine::rayType(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        setInt(o[0], lane, myRenderer.isRayType(textAt(o[1], lane), pointOf(lane)) ? 1 : 0);
    });
}

void osl_Machine::backfacing(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in,
             [&](int lane) { setInt(o[0], lane, myRenderer.isBackfacing(pointOf(lane)) ? 1 : 0); });
}

void osl_Machine::surfaceArea(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) { setFloat(o[0], lane, myRenderer.surfaceArea(pointOf(lane))); });
}

void osl_Machine::isConnected(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) { setInt(o[0], lane, myRenderer.connection(myTexts[in.text])); });
}

void osl_Machine::trace(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        OSL_Ray ray;
        ray.origin = vectorAt(o[1], lane);
        ray.direction = vectorAt(o[2], lane);
        for (int i = 3; i + 1 < in.count; i += 2) {
            const std::string_view name = textAt(o[i], lane);
            const osl_Type type = typeOf(o[i + 1]);
            if (name == "mindist" && type.isFloat())
                ray.mindist = floatAt(o[i + 1], lane);
            else if (name == "maxdist" && type.isFloat())
                ray.maxdist = floatAt(o[i + 1], lane);
            else if (name == "shade" && type.isInt())
                ray.isShaded = intAt(o[i + 1], lane) != 0;
            else if (name == "traceset" && type.isString())
                ray.traceset = textAt(o[i + 1], lane);
        }
        setInt(o[0], lane, myRenderer.trace(ray, pointOf(lane)) ? 1 : 0);
    });
}

// Point clouds: a renderer without any.
void osl_Machine::nothingFound(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) { setInt(o[0], lane, 0); });
}

// ---- Messages -------------------------------------------------------------

void osl_Machine::setMessage(In in)
{
    const osl_Operand *o = operands(in);
    const osl_Operand &from = o[2];
    const osl_Type type = typeOf(from);
    forLanes(in, [&](int lane) {
        auto &messages = myMessages[static_cast<size_t>(lane)];
        const int name = intAt(o[1], lane);
        const auto old = std::find_if(messages.begin(), messages.end(),
                                      [name](const Message &m) { return m.name == name; });
        if (old != messages.end()) {
            const std::string quoted = "message \"" + std::string(myTexts[name]) + "\"";
            const std::string place = myCode.files[static_cast<size_t>(old->place.file)] + ":" +
                                      std::to_string(old->place.line);
            if (old->hasData)
                error(in, lane,
                      quoted + " already exists (created here: " + place +
                          ") cannot set again from " + placeText(in));
            else
                error(in, lane,
                      quoted + " was queried before being set (queried here: " + place +
                          ") setting it now (" + placeText(in) +
                          ") would lead to inconsistent results");
            return;
        }
        if (messages.size() >= MAX_MESSAGES)
            return stop("sets too many messages");
        Message made{name, type, in.place, true, {}};
        for (int word = 0; word < from.words; ++word)
            made.words.push_back(words(from.at + word)[lane]);
        messages.push_back(std::move(made));
    });
}

// Operands: result, source if given, name, destination.
void osl_Machine::getMessage(In in)
{
    const osl_Operand *o = operands(in);
    const osl_Operand &to = o[in.count - 1];
    if (to.reg < 0)
        return nothingFound(in);
    const osl_Type type = typeOf(to);
    forLanes(in, [&](int lane) {
        setInt(o[0], lane, 0);
        const int name = intAt(o[in.count - 2], lane);
        if (in.count == 4 && textAt(o[1], lane) == "trace") {
            OSL_Value value;
            value.type = type;
            if (myRenderer.traceResult(myTexts[name], pointOf(lane), value) &&
                convertAttribute(value, type)) {
                setValue(to, lane, value);
                setInt(o[0], lane, 1);
            }
            return;
        }
        auto &messages = myMessages[static_cast<size_t>(lane)];
        const auto found = std::find_if(messages.begin(), messages.end(),
                                        [name](const Message &m) { return m.name == name; });
        if (found == messages.end()) {
            if (messages.size() >= MAX_MESSAGES)
                return stop("asks for too many messages");
            messages.push_back({name, type, in.place, false, {}});
            return;
        }
        if (found->type != type) {
            error(in, lane,
                  "type mismatch for message \"" + std::string(myTexts[name]) + "\" (" +
                      (found->hasData ? "created" : "queried") + " as " + found->type.name() +
                      " here: " + myCode.files[static_cast<size_t>(found->place.file)] + ":" +
                      std::to_string(found->place.line) + ") cannot fetch as " + type.name() +
                      " from " + placeText(in));
            return;
        }
        if (!found->hasData)
            return;
        for (int word = 0; word < to.words; ++word) {
            words(to.at + word)[lane] = found->words[static_cast<size_t>(word)];
            setDerivatives(to, lane, word, 0, 0);
        }
        setInt(o[0], lane, 1);
    });
}

// ---- Closures -------------------------------------------------------------

void osl_Machine::makeClosure(In in)
{
    const osl_Operand *o = operands(in);
    const osl_ClosureRow *row = myCode.closures[static_cast<size_t>(in.number)];
    int count = 0;
    forLanes(in, [&](int) { ++count; });
    if (count == 0)
        return; // all lanes have left, or wait elsewhere
    const int first = myClosures.components(row, count);
    for (size_t i = 0; i < row->parameters.size(); ++i) {
        const osl_ClosureParameter &parameter = row->parameters[i];
        const osl_Operand &from = o[i + 1];
        for (int word = 0; word < parameter.type.components(); ++word) {
            const int *const lanes = words(from.at + word * from.step);
            int *to = myClosures.words(first) + parameter.at + word;
            forLanes(in, [&](int lane) {
                *to = lanes[lane];
                to += row->words;
            });
        }
    }
    // Last, as a parameter may lie where the result goes.
    int made = first;
    forLanes(in, [&](int lane) {
        myClosures.countParameters(made);
        setInt(o[0], lane, made++);
    });
    if (myClosures.isFull())
        stop("makes too many closures");
}

void osl_Machine::addClosures(In in)
{
    const osl_Operand *o = operands(in);
    forLanes(in, [&](int lane) {
        setInt(o[0], lane, myClosures.sum(intAt(o[1], lane), intAt(o[2], lane)));
    });
    if (myClosures.isFull())
        stop("makes too many closures");
}

void osl_Machine::scaleClosure(In in)
{
    const osl_Operand *o = operands(in);
    if (myClosures.isFull())
        return stop("makes too many closures");
    forLanes(in, [&](int lane) {
        const osl_Colour weight = {floatAt(o[2], lane, 0), floatAt(o[2], lane, 1),
                                   floatAt(o[2], lane, 2)};
        setInt(o[0], lane, myClosures.product(intAt(o[1], lane), weight));
    });
}
