// A context that runs a binding's shader over points of surfaces, and answers what the
// shader asks. A runner serves one thread at a time.
//
// Points get what the language promises:
//
//   P, N, Ng, I, dPdu, dPdv   in the scene's space, which is "common" and "world"; N and Ng
//                             to the ray's side, I towards the surface, of length 1
//   u, v                      of the shape, v upwards
//   spaces                    "object" and "shader" are the shape's own, before its
//                             transforms; "camera" has x to the right, y upwards, z ahead
//   derivatives               of P, u and v, over a pixel at that distance from the viewer as
//                             if seen directly, whatever mirrors lie between
//   time, Ps                  0
#pragma once

#include "vaskel/osl/vk_OslBinding.h"
#include "vaskel/osl/vk_OslClosures.h"
#include "vaskel/scatter/vk_Material.h"

// What feeds a target, at the points of the last run.
class vk_OslFeed
{
public:
    vk_OslFeed() = default;
    vk_OslFeed(const std::string &what, const OSL_Context &context);

    bool isThere() const { return myOutput != nullptr || myIsNumber; }
    float number(int point) const { return myOutput != nullptr ? word(0, point) : myNumber; }
    vk_Colour colour(int point) const; // a grey of a number

private:
    float word(int i, int point) const;

    const OSL_Output *myOutput = nullptr;
    bool myIsNumber = false;
    float myNumber = 0;
};

class vk_OslRunner final : public OSL_Renderer
{
public:
    static constexpr int MOST_POINTS = 16;

    // A width of 1 serves single points best; 0 is the machine's own. Keeps a reference.
    vk_OslRunner(const vk_OslBinding &binding, int width);

    int width() const { return myContext.width(); }
    OSL_Context &context() { return myContext; }

    // By the target's number; and the closure that says it all, null if none does.
    const vk_OslFeed &feed(std::size_t target) const { return myFeeds[target]; }
    const OSL_Output *closure() const { return myClosure; }
    vk_OslClosures &closures() { return myClosures; }

    // REQUIRES: 0 < count <= width(). False when the shader was stopped, now or before.
    bool run(const vk_SurfacePoint *points, int count);

    bool spaceToCommon(std::string_view space, int point, osl_Matrix &matrix) override;
    bool attribute(std::string_view object, std::string_view name, int point,
                   OSL_Value &value) override;
    bool isRayType(std::string_view type, int point) override;
    bool isBackfacing(int point) override;
    std::shared_ptr<const osl_Texture> texture(std::string_view name, std::string &error) override;
    bool dictionary(std::string_view name, std::string &text) override;
    void print(std::string_view text) override;
    void message(Severity severity, std::string_view text) override;
    void appendToFile(std::string_view file, std::string_view text) override;

private:
    struct Vec {
        alignas(64) float axis[3][MOST_POINTS] = {};

        void set(int i, const vk_Vec &v)
        {
            axis[0][i] = v.x;
            axis[1][i] = v.y;
            axis[2][i] = v.z;
        }
    };
    enum { PLACE, INCOMING, NORMAL, FACET, ALONG_U, ALONG_V, PLACE_DX, PLACE_DY, VECS };
    enum { U, V, U_DX, U_DY, V_DX, V_DY, FLOATS };

    void bind();
    void take(const vk_SurfacePoint &point, int i);

    const vk_OslBinding &myBinding;
    OSL_Context myContext;
    vk_OslClosures myClosures;
    std::vector<vk_OslFeed> myFeeds;
    const OSL_Output *myClosure = nullptr;
    const vk_SurfacePoint *mySurface = nullptr; // points of the run
    osl_Inverter myInverter;                    // of the way to their shape
    OSL_Points myPoints;
    Vec myVecs[VECS];
    alignas(64) float myFloats[FLOATS][MOST_POINTS] = {};
};

// The runners of a binding, lent to whoever shades.
class vk_OslRunners
{
public:
    explicit vk_OslRunners(std::shared_ptr<const vk_OslBinding> binding)
        : myBinding(std::move(binding))
    {
    }

    const vk_OslBinding &binding() const { return *myBinding; }

    // One for single points or for many; give it back.
    std::unique_ptr<vk_OslRunner> borrow(bool isForMany);
    void giveBack(std::unique_ptr<vk_OslRunner> runner);

private:
    std::shared_ptr<const vk_OslBinding> myBinding;
    std::mutex myMutex;
    std::vector<std::unique_ptr<vk_OslRunner>> myIdle[2];
};
