#include "vaskel/osl/vk_OslRunner.h"

#include "osl/lib/osl_CameraSpaces.h"
#include "vaskel/base/vk_Stats.h"
#include "vaskel/scene/vk_Scene.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace
{
// 1.14.0, as shaders that ask for it compare it: 10000, 100, 1 for each part.
constexpr int LANGUAGE_VERSION = 11400;

osl_Matrix matrixOf(const vk_Vec &x, const vk_Vec &y, const vk_Vec &z, const vk_Vec &origin)
{
    // Rows, as points are rows that a matrix follows (osl_Matrix.h).
    return {{{x.x, x.y, x.z, 0},
             {y.x, y.y, y.z, 0},
             {z.x, z.y, z.z, 0},
             {origin.x, origin.y, origin.z, 1}}};
}

osl_Matrix ofCamera(const vk_Camera &camera)
{
    const vk_Vec ahead = vk_normalize(camera.at - camera.from);
    const vk_Vec right = vk_normalize(vk_cross(ahead, camera.up));
    // With x to the right and z ahead this space is left-handed.
    return matrixOf(right, vk_cross(right, ahead), ahead, camera.from);
}

// Spaces that only a picture has, as "screen" or "raster". Its shorter side has the camera's
// angle, so the half sizes come from that one.
bool pictureSpace(std::string_view space, const vk_Scene &scene, osl_Matrix &matrix)
{
    const float half = std::tan(scene.camera.fov * OSL_PI / 360);
    const auto shorter = static_cast<float>(std::min(scene.width, scene.height));
    osl_Lens lens;
    lens.width = scene.width;
    lens.height = scene.height;
    lens.halfWidth = half * static_cast<float>(scene.width) / shorter;
    lens.halfHeight = half * static_cast<float>(scene.height) / shorter;
    osl_Matrix toCamera;
    if (!osl_spaceToCamera(lens, space, toCamera))
        return false;
    // Read from the left: to the camera, and from there to the scene.
    matrix = toCamera * ofCamera(scene.camera);
    return true;
}

// Transforms are kept from the scene to the shape, which is what hits need; shaders ask
// for the other way.
osl_Matrix ofShape(const vk_Transform *toShape, osl_Inverter &inverter)
{
    if (toShape == nullptr)
        return osl_Matrix::diagonal(1);
    const vk_Transform &to = *toShape;
    // Neighbours mostly lie on one shape, whose inverse is kept.
    return inverter.inverse(
        matrixOf(to.vector({1, 0, 0}), to.vector({0, 1, 0}), to.vector({0, 0, 1}), to.point({})));
}

OSL_Value pairOf(int a, int b)
{
    OSL_Value value;
    value.type = osl_Type(osl_Type::INT, 2);
    value.ints = {a, b};
    return value;
}
} // namespace

vk_OslFeed::vk_OslFeed(const std::string &what, const OSL_Context &context)
    // An output of that name wins: a number is what names no output.
    : myOutput(what.empty() ? nullptr : context.output(what))
{
    std::string ignored; // it was checked
    myIsNumber = myOutput == nullptr && !what.empty() &&
                 vk_parseNumber(what, "", -FLT_MAX, FLT_MAX, myNumber, ignored);
}

float vk_OslFeed::word(int i, int point) const
{
    const int at = i * myOutput->stride + point;
    const float value = myOutput->type.base == osl_Type::INT
                            ? static_cast<float>(myOutput->ints[at])
                            : myOutput->floats[at];
    // Shaders divide by zero; one such point must not blacken a pixel.
    return std::isfinite(value) ? value : 0;
}

vk_Colour vk_OslFeed::colour(int point) const
{
    if (myOutput == nullptr || !myOutput->type.isTriple())
        return vk_grey(number(point));
    return {word(0, point), word(1, point), word(2, point)};
}

vk_OslRunner::vk_OslRunner(const vk_OslBinding &binding, int width)
    : myBinding(binding), myContext(binding.program(), *this, width), myClosures(myContext)
{
    bind();
    for (std::size_t i = 0; i < binding.targets().size(); ++i)
        myFeeds.emplace_back(binding.feedOf(i), myContext);
    if (!binding.closure().empty())
        myClosure = myContext.output(binding.closure());
}

// The context keeps these addresses for all its runs, and points are copied to where they
// lead: so a run sets no pointer.
void vk_OslRunner::bind()
{
    const auto bindVec = [this](OSL_Varying &to, int from) {
        for (int i = 0; i < 3; ++i)
            to.value[i] = myVecs[from].axis[i];
    };
    bindVec(myPoints.P, PLACE);
    bindVec(myPoints.I, INCOMING);
    bindVec(myPoints.N, NORMAL);
    bindVec(myPoints.Ng, FACET);
    bindVec(myPoints.dPdu, ALONG_U);
    bindVec(myPoints.dPdv, ALONG_V);
    // Those of N and I are not known: null is 0.
    for (int i = 0; i < 3; ++i) {
        myPoints.P.dx[i] = myVecs[PLACE_DX].axis[i];
        myPoints.P.dy[i] = myVecs[PLACE_DY].axis[i];
    }
    myPoints.u.value[0] = myFloats[U];
    myPoints.u.dx[0] = myFloats[U_DX];
    myPoints.u.dy[0] = myFloats[U_DY];
    myPoints.v.value[0] = myFloats[V];
    myPoints.v.dx[0] = myFloats[V_DX];
    myPoints.v.dy[0] = myFloats[V_DY];
}

bool vk_OslRunner::run(const vk_SurfacePoint *points, int count)
{
    // One shader that ran for too long ends the picture: the others need not go on.
    if (myBinding.library().isStopped())
        return false;
    // The shader asks about points by their numbers in the middle of the run.
    mySurface = points;
    myPoints.count = count;
    for (int i = 0; i < count; ++i)
        take(points[i], i);
    const std::uint64_t before = myContext.stepsDone();
    const bool isGood = myContext.run(myPoints);
    vk_myWork.countSteps(myContext.stepsDone() - before);
    if (isGood)
        return true;
    myBinding.library().stop();
    return false;
}

void vk_OslRunner::take(const vk_SurfacePoint &point, int i)
{
    myVecs[PLACE].set(i, point.place);
    myVecs[INCOMING].set(i, point.incoming);
    myVecs[NORMAL].set(i, point.normal);
    myVecs[FACET].set(i, point.facet);
    myVecs[ALONG_U].set(i, point.dPdu);
    myVecs[ALONG_V].set(i, point.dPdv);
    // A pixel seen on the surface: across the ray, and along it, where it is longer.
    const vk_Vec level = vk_cross(point.incoming, point.normal);
    const vk_Vec across =
        vk_dot(level, level) > 1e-6f ? vk_normalize(level) : vk_Frame(point.normal).tangent;
    // At grazing angles a pixel covers next to endless ground; ten times its width is enough for
    // a shader to smooth its pattern away.
    const float facing = std::max(.1f, std::abs(vk_dot(point.incoming, point.normal)));
    const vk_Vec dx = across * point.footprint;
    const vk_Vec dy = vk_cross(point.normal, across) * (point.footprint / facing);
    myVecs[PLACE_DX].set(i, dx);
    myVecs[PLACE_DY].set(i, dy);
    // How u and v change with a step on the surface: the dual basis of dPdu and dPdv.
    const float uu = vk_dot(point.dPdu, point.dPdu), vv = vk_dot(point.dPdv, point.dPdv);
    const float uv = vk_dot(point.dPdu, point.dPdv), area2 = uu * vv - uv * uv;
    // At poles u and v do not change with the place: no step tells anything about them.
    const float inverse = area2 > 1e-12f * uu * vv ? 1 / area2 : 0;
    const vk_Vec ofU = (point.dPdu * vv - point.dPdv * uv) * inverse;
    const vk_Vec ofV = (point.dPdv * uu - point.dPdu * uv) * inverse;
    const float floats[FLOATS] = {point.u,         point.v,         vk_dot(ofU, dx),
                                  vk_dot(ofU, dy), vk_dot(ofV, dx), vk_dot(ofV, dy)};
    for (int j = 0; j < FLOATS; ++j)
        myFloats[j][i] = floats[j];
}

bool vk_OslRunner::spaceToCommon(std::string_view space, int point, osl_Matrix &matrix)
{
    if (space == "world")
        matrix = osl_Matrix::diagonal(1);
    else if (space == "camera")
        matrix = ofCamera(myBinding.library().scene().camera);
    else if (space == "object" || space == "shader")
        matrix = ofShape(mySurface[point].toShape, myInverter);
    else
        return pictureSpace(space, myBinding.library().scene(), matrix);
    return true;
}

bool vk_OslRunner::attribute(std::string_view object, std::string_view name, int, OSL_Value &value)
{
    const vk_Scene &scene = myBinding.library().scene();
    // Shapes have no names here, so nobody else's attributes can be asked for.
    if (!object.empty() && object != "global" && object != "options")
        return false;
    if (name == "osl:version")
        value = OSL_Value::ofInt(LANGUAGE_VERSION);
    else if (name == "camera:resolution")
        value = pairOf(scene.width, scene.height);
    else if (name == "camera:projection")
        value = OSL_Value::ofString("perspective");
    else if (name == "camera:fov")
        // Of the picture's shorter side; the language leaves that open.
        value = OSL_Value::ofFloat(scene.camera.fov);
    else
        return false;
    return true;
}

// Which ray it is nobody tells; what the viewer sees matters most.
bool vk_OslRunner::isRayType(std::string_view type, int)
{
    return type == "camera";
}

bool vk_OslRunner::isBackfacing(int point)
{
    return mySurface[point].isBack;
}

std::shared_ptr<const osl_Texture> vk_OslRunner::texture(std::string_view name, std::string &error)
{
    return myBinding.library().texture(std::string(name), error);
}

bool vk_OslRunner::dictionary(std::string_view name, std::string &text)
{
    return myBinding.library().dictionary(std::string(name), text);
}

void vk_OslRunner::print(std::string_view text)
{
    myBinding.library().say("shader", text);
}

void vk_OslRunner::message(Severity severity, std::string_view text)
{
    myBinding.library().say(severity == ERROR ? "error" : "warning", text);
}

// A picture's shader writes no files.
void vk_OslRunner::appendToFile(std::string_view file, std::string_view text)
{
    if (file == "stdout" || file == "stderr")
        print(text);
    else
        message(WARNING, "fprintf() writes to no file here");
}

// A runner is dear to make, as its registers hold every value of the shader for all lanes; so
// it is kept for whoever comes next.
std::unique_ptr<vk_OslRunner> vk_OslRunners::borrow(bool isForMany)
{
    {
        const std::lock_guard<std::mutex> lock(myMutex);
        auto &idle = myIdle[isForMany ? 1 : 0];
        if (!idle.empty()) {
            std::unique_ptr<vk_OslRunner> runner = std::move(idle.back());
            idle.pop_back();
            return runner;
        }
    }
    // Outside of the lock: making one takes longer than all the rest.
    return std::make_unique<vk_OslRunner>(*myBinding, isForMany ? 0 : 1);
}

void vk_OslRunners::giveBack(std::unique_ptr<vk_OslRunner> runner)
{
    const std::lock_guard<std::mutex> lock(myMutex);
    // The machine's own width is above 1 everywhere.
    myIdle[runner->width() > 1 ? 1 : 0].push_back(std::move(runner));
}
