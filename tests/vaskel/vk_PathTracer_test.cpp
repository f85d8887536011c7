#include "vaskel/trace/vk_PathTracer.h"

#include "tests/support/Cases.h"
#include "tests/vaskel/readScene.h"
#include "vaskel/base/vk_Stats.h"

namespace
{
// "finite", or what becomes of a ray.
std::string lightOf(const std::string &lines, std::uint32_t rays)
{
    vk_Scene scene;
    readScene(STUDIO + lines + "\n", scene);
    const vk_World world(scene);
    const vk_PathTracer tracer(scene, world);
    const vk_Vec view = vk_normalize(scene.camera.at - scene.camera.from);
    vk_Colour sum; // single rays may have paid back more than they found
    for (std::uint32_t i = 0; i < rays; ++i) {
        vk_Sampler sampler(1, i);
        const vk_Vec way = vk_Frame(view).toWorld(vk_toCap(sampler.square(), .1f));
        const vk_Colour light = tracer.Li(scene.camera.from, way, sampler).light();
        sum += light;
        if (!vk_isFinite(light))
            return "ray " + std::to_string(i);
    }
    if (std::min({sum.x, sum.y, sum.z}) < -.02f * static_cast<float>(rays))
        return "less than nothing";
    return world.error().empty() ? "finite" : world.error();
}

template <class Type>
void expectFiniteAtEnds(const vk_ShaderTable<Type> &table)
{
    for (const auto &row : table) {
        const auto shader = row.make();
        for (const vk_Param &param : shader->params())
            for (const float end : {param.least, param.most}) {
                const std::string number = vk_numberText(end);
                const std::string three = number + " " + number + " " + number;
                const std::string line = std::string(table.type) + " " + row.name + " " +
                                         param.name + " " +
                                         (param.kind == VK_NUMBER ? number : three);
                EXPECT_EQ("finite", lightOf(line + "\nsphere", 64)) << line;
            }
    }
    if (table.more != nullptr)
        expectFiniteAtEnds(*table.more);
}
} // namespace

// What a pixel costs decides about its samples.
TEST(PathTracer, AViewIsChargedForWhatItsShadersTake)
{
    const auto cost = [](const std::string &body) {
        vk_Scene scene;
        readScene(std::string(STUDIO) + "source t.osl\nsurface t() {" + body +
                      "}\nendsource\nsurface t.osl\nsphere",
                  scene);
        const vk_World world(scene);
        return vk_PathTracer(scene, world).Li({0, 1, 8}, {0, 0, -1}, vk_Sampler(1, 1)).cost;
    };
    const float plain = cost("Ci = emission();");
    EXPECT_GT(plain, vk_Work::CAMERA_RAY);
    EXPECT_GT(cost("float s = 0; for (int i = 0; i < 100; ++i) s += (float)noise(P * i);"
                   " Ci = s * emission();"),
              plain + 1000);
}

TEST(PathTracer, AllWorkIsChargedToViews)
{
    for (const std::string_view surface :
         {"surface v_frosted", "surface v_wax diff .8 spec 1", "surface v_metal rough .3",
          "source t.osl\nsurface t() { Ci = .5 * diffuse(N) + (float)noise(P) * transparent(); }\n"
          "endsource\nsurface t.osl"}) {
        vk_Scene scene;
        readScene(std::string(STUDIO) + std::string(surface) + "\nsphere", scene);
        const vk_World world(scene);
        const vk_PathTracer tracer(scene, world);
        vk_myWork = {};
        double charged = 0;
        for (std::uint32_t i = 0; i < 64; ++i)
            charged += static_cast<double>(
                tracer.Li({0, 1, 8}, {0, -.02f * static_cast<float>(i % 8), -1}, vk_Sampler(1, i))
                    .cost);
        EXPECT_GT(vk_myWork.shadow, 64u);
        EXPECT_EQ(surface == "surface v_frosted", vk_myWork.rough > 0);
        EXPECT_EQ(surface[1] == 'o', vk_myWork.steps > 0);
        EXPECT_NEAR(static_cast<double>(vk_myWork.cost), charged, .001 * charged) << surface;
    }
}

// At the foot of a ball, where it hangs above its stand. Limits are four standard deviations from
// what is expected, whatever numbers are drawn.
TEST(PathTracer, BlurAddsLightBetweenMetalsThatGoesAwayWithMoreSamples)
{
    constexpr std::uint32_t PATHS = 1u << 15;
    vk_Scene scene;
    readScene(std::string(STUDIO) + "surface v_metal rough .2\nshaderball", scene);
    const vk_World world(scene);
    const vk_PathTracer tracer(scene, world);
    const vk_Vec way = vk_normalize(vk_Vec{0, .25f, .6f} - scene.camera.from);
    const auto lightOfSamples = [&](std::uint32_t first, std::uint32_t count) {
        double sum = 0;
        for (std::uint32_t i = 0; i < PATHS; ++i) {
            const vk_Sampler sampler(vk_hash(1 + i / count), first + i % count);
            const vk_View view = tracer.Li(scene.camera.from, way, sampler);
            sum += static_cast<double>(vk_luminance(view.light()));
        }
        return sum / PATHS;
    };
    const double sharp = lightOfSamples(1u << 20, 16);
    EXPECT_GT(lightOfSamples(0, 1), 1.05 * sharp);
    EXPECT_NEAR(sharp, lightOfSamples(256, 16), .012 * sharp);
}

// By which the filter divides, so that patterns of what is there stay sharp.
TEST(PathTracer, TheAlbedoOfAThinSurfaceIsOfWhatIsThere)
{
    for (const auto &[opacity, albedo] : {std::pair("1", .8f), {".5", .4f}, {".1", .08f}}) {
        vk_Scene scene;
        readScene(std::string(STUDIO) + "source t.osl\nshader t(output color c = .8) {}\n" +
                      "endsource\nsurface t.osl show c as diff show 0 as spec show " + opacity +
                      " as opacity\nsphere",
                  scene);
        const vk_World world(scene);
        const vk_View view =
            vk_PathTracer(scene, world).Li({0, 1, 8}, {0, 0, -1}, vk_Sampler(1, 1));
        EXPECT_NEAR(albedo, view.albedo.x, .001f) << opacity;
    }
}

// So that the filter does not blur the rim of a ball of wax, where the boundary lets out less.
TEST(PathTracer, TheAlbedoOfWaxIsOfWhatTheBoundaryLetsOut)
{
    vk_Scene scene;
    readScene(std::string(STUDIO) + "surface v_wax diff .8 spec 1\nsphere", scene);
    const vk_World world(scene);
    const vk_PathTracer tracer(scene, world);
    for (const float off : {0.0f, .9f, .99f}) {
        const float cosine = std::sqrt(1 - off * off),
                    passes = .96f * (1 - std::pow(1 - cosine, 5.0f));
        const vk_View view = tracer.Li({off, 1, 8}, {0, 0, -1}, vk_Sampler(1, 1));
        EXPECT_NEAR(.8f * passes, view.albedo.x, .01f) << off;
    }
}

// Or it would take what a bump shows for noise.
TEST(PathTracer, TheFilterIsToldWhereABumpFaces)
{
    vk_Scene scene;
    readScene(std::string(STUDIO) + "source t.osl\nsurface t(float turn = 0) { Ci = diffuse("
                                    "normalize(N + turn * vector(1, 0, 0))); }\n"
                                    "endsource\nsurface t.osl turn 1\nsphere",
              scene);
    const vk_World world(scene);
    const vk_View view = vk_PathTracer(scene, world).Li({0, 1, 8}, {0, 0, -1}, vk_Sampler(1, 1));
    EXPECT_NEAR(std::sqrt(.5f), view.normal.x, .001f);
}

TEST(PathTracer, OddScenesGiveFiniteLight)
{
    expectTable(TEST_DATA "/data/odd_scenes",
                {{"light", [](const char *in) { return lightOf(in, 512); }}});
}

TEST(PathTracer, ParametersAtTheirEndsGiveFiniteLight)
{
    expectFiniteAtEnds(VK_SURFACE_SHADERS);
    expectFiniteAtEnds(VK_LIGHT_SHADERS);
    expectFiniteAtEnds(VK_SHADOW_SHADERS);
    expectFiniteAtEnds(VK_FOG_SHADERS);
    expectFiniteAtEnds(VK_ENVIRONMENT_SHADERS);
}
