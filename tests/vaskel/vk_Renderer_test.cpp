#include "vaskel/pixels/vk_Renderer.h"

#include "tests/support/ScopedVariable.h"
#include "tests/vaskel/readScene.h"

#include <limits>

namespace
{
vk_Film drawAll(const std::string &text, int threads = 2, int samples = 0)
{
    vk_Scene scene;
    vk_Film film;
    std::string error;
    readScene(text, scene);
    vk_RenderSettings settings;
    settings.threads = threads;
    settings.samples = samples;
    EXPECT_TRUE(vk_render(scene, settings, film, error)) << error;
    return film;
}

vk_Film draw(const std::string &lines, int threads = 2)
{
    return drawAll(STUDIO + lines + "\n", threads);
}

// Mean of the bytes of one colour (green) in a part of a film, in shares of its size.
double meanOf(const vk_Film &film, double left, double top, double right, double bottom,
              int colour = 1)
{
    double sum = 0, count = 0;
    for (int y = static_cast<int>(top * film.height); y < bottom * film.height; ++y)
        for (int x = static_cast<int>(left * film.width); x < right * film.width; ++x, ++count)
            sum += film.bytes[static_cast<std::size_t>(3 * (y * film.width + x) + colour)];
    return sum / count;
}

// How much two films of 24 by 24 pixels differ at most in the mean of one
// colour over 4 by 4 of them.
double differenceOf(const vk_Film &a, const vk_Film &b)
{
    constexpr double SHARE = 1.0 / 6;
    double most = 0;
    for (double y = 0; y < .99; y += SHARE)
        for (double x = 0; x < .99; x += SHARE)
            for (int c = 0; c < 3; ++c)
                most = std::max(most, std::abs(meanOf(a, x, y, x + SHARE, y + SHARE, c) -
                                               meanOf(b, x, y, x + SHARE, y + SHARE, c)));
    return most;
}

// A dark room with lines, and a light that is so many in one place.
std::string roomWith(const std::string &lines, int lights)
{
    std::string text = "picture p.png\nsize 24 24\ncamera from 0 2.5 6 at 0 .7 0 fov 25\n"
                       "environment v_studio intensity 0\nfloor v_matte diff .8\n" +
                       lines + "\nlightplace from 1 5 0 to 0 0 0\n";
    for (int i = 0; i < lights; ++i)
        text += "light v_area width 5 height 5 intensity " + std::to_string(1. / lights) + "\n";
    return text;
}

} // namespace

TEST(Renderer, ThreadsDoNotChangeAByte)
{
    const std::string scene = "size 50 43\nsamples 16\nfog v_fog density .05\ndisplace v_bumps\n"
                              "surface v_plastic diff 1 0 0\nteapot\n"
                              "surface v_glass\ntranslate 1 0 1\nsphere\n";
    const vk_Film one = draw(scene, 1);
    EXPECT_EQ(one.bytes, draw(scene, 2).bytes);
    EXPECT_EQ(one.bytes, draw(scene, 5).bytes);
}

// Every pixel gets two samples, so that only where bands end could make a difference.
TEST(Renderer, BandsDoNotShow)
{
    for (const char *shape : {"size 64 64\nshaderball", "size 24 90\nsphere"}) {
        vk_Scene scene;
        readScene(std::string(STUDIO) + "samples 2\nsurface v_skin\n" + shape, scene);
        vk_RenderSettings settings;
        vk_Film whole, parts;
        std::string error;
        EXPECT_TRUE(vk_render(scene, settings, whole, error));
        settings.bandPixels = 1;
        EXPECT_TRUE(vk_render(scene, settings, parts, error));
        EXPECT_EQ(whole.bytes, parts.bytes) << shape;
    }
}

TEST(Renderer, CountsPixelsWithASampleThatIsNoNumber)
{
    struct Broken final : vk_Pointwise<Broken> {
        vk_Material at(const vk_SurfacePoint &) const
        {
            vk_Material material;
            material.emission = vk_grey(std::numeric_limits<float>::quiet_NaN());
            return material;
        }
    };
    vk_Scene scene;
    readScene(std::string(STUDIO) + "size 16 16\nsamples 2\n", scene);
    scene.floor = std::make_unique<Broken>();
    vk_Stats stats;
    vk_RenderSettings settings;
    settings.stats = &stats;
    vk_Film film;
    std::string error;
    EXPECT_TRUE(vk_render(scene, settings, film, error));
    EXPECT_GT(stats.badPixels, 50u);
}

// Where nothing is to be seen all pixels stop with the first.
TEST(Renderer, TakesItsFirstSamplesAsFarAsTheSceneAllows)
{
    const auto samples = [](const vk_Quality &quality, int most, int fixed) {
        vk_Scene scene;
        readScene("picture p.png\ncamera\nsize 8 8\nbackground off 0\nsamples " +
                      std::to_string(most),
                  scene);
        vk_Stats stats;
        vk_RenderSettings settings;
        settings.quality = &quality;
        settings.samples = fixed;
        settings.stats = &stats;
        vk_Film film;
        std::string error;
        EXPECT_TRUE(vk_render(scene, settings, film, error));
        return static_cast<double>(stats.samples) / 64;
    };
    const struct {
        int most, draft, standard, final;
    } cases[] = {{1, 1, 1, 8}, {2, 1, 2, 8}, {3, 1, 3, 8}, {7, 1, 4, 8}, {8, 2, 4, 8}};
    for (const auto &c : cases) {
        EXPECT_EQ(c.draft, samples(VK_QUALITIES[0], c.most, 0)) << c.most;
        EXPECT_EQ(c.standard, samples(VK_QUALITIES[1], c.most, 0)) << c.most;
        EXPECT_EQ(c.final, samples(VK_QUALITIES[2], c.most, 0)) << c.most;
        EXPECT_EQ(c.most, samples(VK_QUALITIES[1], 256, c.most));
    }
}

TEST(Renderer, GlassOnTheFloorDoesNotSeeBelowIt)
{
    const std::string glass = "size 32 32\nsurface v_glass\nshaderball\n";
    const vk_Film grey = draw("environment v_studio ground 0 0 0\n" + glass);
    const vk_Film red = draw("environment v_studio ground 2 0 0\n" + glass);
    EXPECT_NEAR(meanOf(red, .35, .8, .65, .95, 0), meanOf(grey, .35, .8, .65, .95, 0), 8);
}

TEST(Renderer, AFloorThatScattersBelowShowsItsBase)
{
    const vk_Film wax = draw("size 32 32\nfloor v_wax spec 0 diff .8\n");
    const vk_Film plastic = draw("size 32 32\nfloor v_plastic spec 0 diff .8\n");
    EXPECT_NEAR(meanOf(wax, 0, .6, 1, 1), meanOf(plastic, 0, .6, 1, 1), 4);
}

TEST(Renderer, MatteHalfShowsAsMiddleGrey)
{
    const vk_Film film = draw("size 64 64\nsurface v_matte diff .5\nsphere\n");
    EXPECT_NEAR(128, meanOf(film, .3, .3, .7, .7), 20);
    EXPECT_GT(meanOf(film, .3, .3, .4, .5), meanOf(film, .6, .5, .7, .7) + 20); // lit from the left
}

TEST(Renderer, ManyLightsInOnePlaceLookLikeOne)
{
    for (const char *const lines :
         {"surface v_matte diff .9\nsphere", "surface v_plastic rough .3\nsphere",
          "shadow v_softshadow soft 0\nsurface v_matte\nsphere",
          "shadow v_softshadow soft 3\nsurface v_plastic rough .1\nsphere",
          "shadow v_filtershadow amount 1\nsurface v_matte diff 1 .2 .2\nsphere",
          "surface v_glass tint 1 .5 .2\nsphere"}) {
        const vk_Film one = drawAll(roomWith(lines, 1), 2, 512);
        EXPECT_LT(differenceOf(one, drawAll(roomWith(lines, 25), 2, 512)), 4) << lines;
    }
}

// With glass anywhere mirrored lights are found in another way.
TEST(Renderer, GlassOutOfSightChangesNothing)
{
    const std::string mirror = "floor v_metal rough .16\nlightplace from 0 1.5 -3 to 0 0 2\n";
    const std::string hidden = "\nsurface v_matte diff 0\ntranslate 0 0 -4\nscale 2 1.5 2\ngrid\n"
                               "lightplace from 0 1.5 -5 to 0 0 2\n"
                               "light v_area color 0 0 1 width 6 height 6 intensity .5\nidentity\n";
    for (const std::string &lines :
         {std::string("surface v_plastic diff 0 rough .12\nrotate 180 0 1 0\ngrid\n"
                      "lightplace from 0 2 5 to 0 1 0\nlight v_area width 3 height 3\n"),
          mirror + "light v_area color 1 0 0 width 1 height 1 intensity .03" + hidden,
          mirror + "light v_area intensity 0" + hidden}) {
        const vk_Film alone = drawAll(roomWith(lines, 1), 2, 256);
        const std::string glass = "surface v_glass\ntranslate 0 -50 0\nsphere";
        EXPECT_LT(differenceOf(alone, drawAll(roomWith(lines + glass, 1), 2, 256)), 8) << lines;
    }
}

// A floor that mirrors a light, and what may stand between them.
std::string mirrorRoom(const std::string &intensity, const std::string &lines)
{
    return "picture \"p.png\"\nsize 24 24\ncamera from 0 4 5 at 0 0 -.5 fov 12\n"
           "environment v_studio intensity 0\nlightplace from 0 4 -6 to 0 0 0\n"
           "light v_area width .7 height .7 intensity " +
           intensity + "\n" + lines;
}
const std::string BALL = "translate 0 .9 -2.5\nsphere radius .8\nidentity\n";
const std::string THIN_GLASS = "surface v_glass ior 1.01 tint 1\n" + BALL;
const std::string THIN_FROSTED = "surface v_frosted ior 1.01 tint 1 rough .1\n" + BALL;

TEST(Renderer, WhatLetsAllLightPassLeavesHighlightsAsTheyAre)
{
    const std::string tint = "shadow v_filtershadow amount 1\nsurface v_matte diff 1\n" + BALL;
    for (const std::string floor :
         {"floor v_plastic diff .5 rough .3\n", "floor v_plastic diff .5 rough .15\n",
          "floor v_metal color .2 rough .3\n", "floor v_metal color .9 rough .3\n",
          "floor v_metal color .2 rough .2\n", "fog v_fog density .06\nfloor v_metal color .2\n"}) {
        const vk_Film alone = drawAll(mirrorRoom(".8", floor), 2, 64);
        for (const std::string &shape : {THIN_GLASS, tint})
            EXPECT_LT(differenceOf(alone, drawAll(mirrorRoom(".8", floor + shape), 2, 64)), 20)
                << floor << shape;
    }
}

// So dim that light which is counted twice, or not at all, would show.
TEST(Renderer, AHoleIsNotThere)
{
    const auto surface = [](const std::string &show) {
        return "source hole.osl\nsurface hole() { " + show + " }\nendsource\nsurface hole.osl ";
    };
    const std::string hole = surface("Ci = transparent();") + "\n" + BALL;
    const std::string holes = hole + "translate 0 .9 -2.5\nsphere radius .6\nidentity\n";
    const std::string thin = surface("Ci = refraction(N, 1.003);") + "show .02 as opacity\n" + BALL;
    const std::string frosted =
        surface("Ci = microfacet(\"ggx\", N, .1, 1.003, 1);") + "show .02 as opacity\n" + BALL;
    const std::string metal = "floor v_metal color .9 rough .3\n";
    const struct {
        std::string lines, intensity;
    } rooms[] = {
        {metal, ".004"},
        {"floor v_metal rough .1\nshadow v_noshadow\n", ".004"},
        {"shadow v_rayshadow color .5\n" + metal, ".004"},
        {"shadow v_filtershadow filter 0\n" + metal, ".004"},
        {"floor v_plastic rough .3\nfog v_fog density .1\n", ".05"},
        {"background off 1 0 0\nfloor v_matte\n", ".1"},
    };
    for (const auto &room : rooms) {
        const vk_Film alone = drawAll(mirrorRoom(room.intensity, room.lines), 2, 256);
        EXPECT_GT(meanOf(alone, 0, 0, 1, 1), 8) << room.lines;
        for (const std::string &shape : {hole, holes, thin, frosted})
            EXPECT_LT(differenceOf(alone,
                                   drawAll(mirrorRoom(room.intensity, room.lines + shape), 2, 256)),
                      4)
                << room.lines << shape;
    }
}

TEST(Renderer, LightPassesByAFloorThatIsNotThere)
{
    const std::string sky = "environment v_studio top .4 horizon .4 ground .4\n";
    const std::string hole = "source hole.osl\nsurface hole() { Ci = transparent(); }\nendsource\n"
                             "floor hole.osl\n";
    const std::string ball = "surface v_matte\ntranslate 0 -2 0\nsphere\n";
    const std::string camera = "picture p.png\nsize 24 24\ncamera from 0 4 6 at 0 -2 0 fov 30\n";
    EXPECT_LT(differenceOf(drawAll(camera + sky + ball, 2, 64),
                           drawAll(camera + sky + hole + ball, 2, 64)),
              4);
}

// What lies behind it, its shadow and what glass shows of it are mixtures, too.
TEST(Renderer, AShapeThatIsThereInPartShowsThatPart)
{
    const auto thread = [](const char *show) {
        return std::string(
                   "source thread.osl\nshader thread(output color c = .5) {}\nendsource\n") +
               "surface thread.osl show 0 as spec " + show + "\n";
    };
    const auto scene = [](const std::string &shape, const std::string &where) {
        const std::string glass = "surface v_glass\ntranslate .9 .4 1.2\nscale .4 .4 .4\nsphere\n";
        return drawAll(STUDIO + ("size 24 24\n" + glass) + "identity\n" + shape + where + "\n", 2,
                       128);
    };
    const std::string where = "translate -.2 0 0\ngrid";
    const vk_Film whole = scene(thread(""), where), bare = scene("", "");
    const vk_Film part = scene(thread("show .4 as opacity"), where);
    const auto light = [](double byte) { return std::pow(byte / 255, 2.2); };
    for (double y = 0; y < .95; y += .25)
        for (double x = 0; x < .95; x += .25) {
            const auto of = [&](const vk_Film &film) {
                return light(meanOf(film, x, y, x + .25, y + .25));
            };
            EXPECT_NEAR(.4 * of(whole) + .6 * of(bare), of(part), .012) << x << ' ' << y;
        }
    EXPECT_GT(differenceOf(whole, bare), 40);
}

// Where it is so dim that twice as much would show.
TEST(Renderer, LightThroughGlassCountsOnce)
{
    const std::string nearLight = "surface v_glass ior 1.01 tint 1\ntranslate 0 2 -4\nsphere\n";
    const std::string floor = "floor v_metal color .9 rough .3\n";
    const vk_Film alone = drawAll(mirrorRoom(".002", floor), 2, 256);
    const auto change = [&](const std::string &shapes) {
        return differenceOf(alone, drawAll(mirrorRoom(".002", floor + shapes), 2, 256));
    };
    for (const std::string &shapes : {THIN_GLASS, nearLight, THIN_GLASS + nearLight})
        EXPECT_LT(change(shapes), 4) << shapes;
    // A frosted ball gathers some light.
    EXPECT_LT(change(THIN_FROSTED), 20);
    for (const std::string shadow : {"shadow v_noshadow\n", "shadow v_rayshadow color .5\n"}) {
        EXPECT_LT(change(shadow + THIN_GLASS), 4) << shadow;
        EXPECT_LT(change(shadow + THIN_FROSTED), 12) << shadow;
    }
    // A stained shape shows itself as well.
    const std::string stained = "shadow v_filtershadow amount 1\nsurface v_matte diff 1\n"
                                "translate 0 2 -4\nsphere radius .6\nidentity\n";
    const vk_Film behind = drawAll(mirrorRoom(".002", floor + stained), 2, 256);
    const vk_Film both = drawAll(mirrorRoom(".002", floor + stained + THIN_FROSTED), 2, 256);
    EXPECT_LT(differenceOf(behind, both), 20);
}

TEST(Renderer, ThinGlassAroundABulbLeavesItsReflection)
{
    const std::string room = "picture \"p.png\"\nsize 24 24\ncamera from 0 3 5 at 0 0 -1 fov 8\n"
                             "environment v_studio intensity 0\nlightplace from 0 1.5 -3.5\n"
                             "light v_point radius .25 intensity .01\n";
    const std::string glass =
        "surface v_glass ior 1.01 tint 1\ntranslate 0 1.5 -3.5\nsphere radius .3\n";
    for (const std::string floor : {"floor v_metal rough .1\n", "floor v_metal rough .4\n"}) {
        const vk_Film bare = drawAll(room + floor, 2, 256);
        EXPECT_GT(meanOf(bare, 0, 0, 1, 1), 20);
        EXPECT_LT(differenceOf(bare, drawAll(room + floor + glass, 2, 256)), 8) << floor;
    }
}

TEST(Renderer, FilteredGlassKeepsLightFromWhatMirrorsIt)
{
    const std::string floor = "floor v_metal color .9 rough .3\n";
    const std::string filter = "shadow v_filtershadow filter 0\n";
    const vk_Film dark = drawAll(mirrorRoom("0", floor), 2, 64);
    for (const std::string &glass : {THIN_GLASS, THIN_FROSTED})
        EXPECT_LT(differenceOf(dark, drawAll(mirrorRoom(".002", floor + filter + glass), 2, 64)),
                  12)
            << glass;
}

// As the camera sees no lights but through shapes, smooth glass shows how bright one is.
TEST(Renderer, FrostedGlassShowsTheLightBehindIt)
{
    const std::string room = "picture \"p.png\"\nsize 24 24\ncamera from 0 0 6 at 0 0 0 fov 20\n"
                             "environment v_studio intensity 0\nlightplace from 0 0 -5 to 0 0 0\n"
                             "light v_area width 1.5 height 1.5 intensity .1\n";
    const vk_Film clear = drawAll(room + "surface v_glass ior 1.01 tint 1\nsphere", 2, 256);
    for (const std::string shadow :
         {"", "shadow v_noshadow\n", "shadow v_filtershadow filter 0\n"}) {
        const std::string frosted = "surface v_frosted ior 1.01 tint 1 rough .1\nsphere";
        EXPECT_LT(differenceOf(clear, drawAll(room + shadow + frosted, 2, 256)), 4) << shadow;
    }
}

TEST(Renderer, TakingNoiseOutLeavesColours)
{
    const struct {
        const char *lines;
        float most;
    } cases[] = {
        // Noise that it leaves, which colours of light behind the glass make visible.
        {"surface v_frosted color 1 0 0 tint 1\nsphere", 12},
        {"surface v_metal color 0 rough .6\nsphere", 7},
        {"surface v_velvet diff 0 0 1\nsphere", 7},
        {"surface v_skin\nsphere", 8},
    };
    for (const auto &c : cases) {
        // Of so many pixels that none of them decides alone.
        const std::string room = roomWith(c.lines, 1) + "size 48 48\n";
        EXPECT_LT(differenceOf(drawAll(room), drawAll(room, 2, 128)), c.most) << c.lines;
    }
}

TEST(Renderer, OneSampleMoreIsNotWorse)
{
    std::string scene = roomWith("surface v_matte\nshaderball", 1);
    for (int i = 0; i < 30; ++i) {
        const std::string place = std::to_string(.37 * i - 5) + " 4 " + std::to_string(i % 7 - 3);
        scene += "light v_point intensity .06 color " +
                 std::string(i % 2 == 0 ? "1 .2 0" : "0 .4 1") + " from " + place + "\n";
    }
    const vk_Film truth = drawAll(scene, 2, 1024);
    const auto noise = [&](const char *samples) {
        const vk_Film film = drawAll(scene + "samples " + samples + "\n");
        double sum = 0;
        for (std::size_t i = 0; i < film.bytes.size(); ++i)
            sum += std::pow(film.bytes[i] - truth.bytes[i], 2);
        return sum;
    };
    EXPECT_LT(noise("5"), 1.1 * noise("4"));
    EXPECT_LT(noise("17"), 1.1 * noise("16"));
    EXPECT_LT(noise("33"), 1.1 * noise("32"));
}

// Though pixels beside them help against noise.
TEST(Renderer, EdgesOfTextureStayAsFixedSamplesShowThem)
{
    const std::string cloth = std::string(STUDIO) + "size 96 96\nsurface v_checker diff1 .75 .72 "
                                                    ".68 diff2 .5 .04 .05 size .25\ngrid\n";
    const vk_Film film = drawAll(cloth), truth = drawAll(cloth, 2, 256);
    double sum = 0;
    for (std::size_t i = 0; i < film.bytes.size(); ++i)
        sum += std::pow(film.bytes[i] - truth.bytes[i], 2);
    EXPECT_LT(std::sqrt(sum / static_cast<double>(film.bytes.size())), 1.5);
}

TEST(Renderer, NoRingRunsAlongASilhouette)
{
    const std::string ball = "picture p.png\nsize 96 96\ncamera from 0 1 8 at 0 1 0 fov 20\n"
                             "background off 3\nenvironment v_studio intensity .3\n"
                             "lightplace from 2 5 6 to 0 0 0\n"
                             "light v_area intensity 1 width 4 height 4\n"
                             "surface v_matte diff .8\nsphere\n";
    const vk_Film film = drawAll(ball), truth = drawAll(ball, 2, 256);
    // Of pixels of the ball beside others that show the backdrop.
    double off = 0, count = 0;
    const auto shown = [&](int x, int y) {
        return truth.bytes[static_cast<std::size_t>(3 * (y * 96 + x))];
    };
    for (int y = 0; y < 96; ++y)
        for (int x = 2; x < 94; ++x)
            if (shown(x, y) < 200 && (shown(x - 2, y) > 230 || shown(x + 2, y) > 230)) {
                off += film.bytes[static_cast<std::size_t>(3 * (y * 96 + x))] - shown(x, y);
                ++count;
            }
    EXPECT_GT(count, 40);
    EXPECT_NEAR(off / count, 0, 1);
}

// Most of this picture is sky that shows no noise at all, so that its mean would allow for dots.
TEST(Renderer, NoPixelIsFarOffAlone)
{
    const std::string glass =
        "picture p.png\nsize 128 128\ncamera from 0 2.3 6.4 at 0 .95 0 fov 22\n"
        "environment v_studio intensity .65\nlightplace from -5.5 5.2 4.2 to 0 1 0\n"
        "light v_area intensity .68 width 3.4 height 3.4\n"
        "surface v_glass tint 1\ntranslate 0 1 0\nsphere";
    const vk_Film film = drawAll(glass), truth = drawAll(glass, 2, 256);
    int most = 0;
    for (std::size_t i = 0; i < film.bytes.size(); ++i)
        most = std::max(most, std::abs(film.bytes[i] - truth.bytes[i]));
    EXPECT_LT(most, 60);
}

// Roulette takes back from some paths what it gave to others, which white does not hold.
TEST(Renderer, WhatIsFarBrighterThanWhiteHasNoBlackSpecks)
{
    const vk_Film film = draw("size 48 48\nexposure 12\nenvironment v_studio intensity 1000\n"
                              "surface v_frosted\nsphere\n",
                              2);
    for (const int byte : film.bytes)
        EXPECT_GT(byte, 200);
}

// Which spreads it by the albedo of what is in front.
TEST(Renderer, WaxBehindAHoleKeepsItsLight)
{
    const std::string scene =
        "picture p.png\nsize 24 24\ncamera from 0 1 6 at 0 1 0 fov 25\nenvironment v_studio\n"
        "source hole.osl\nsurface hole() { Ci = transparent(); }\nendsource\n"
        "surface v_wax diff .8 .3 .2\nsphere\nsurface hole.osl\ntranslate 0 0 2\ngrid\n";
    const vk_Film exact = drawAll(scene, 2, 64), film = drawAll(scene);
    EXPECT_GT(meanOf(exact, .4, .4, .6, .6), 60);
    EXPECT_NEAR(meanOf(exact, .4, .4, .6, .6), meanOf(film, .4, .4, .6, .6), 4);
}

TEST(Renderer, TheShorterSideHoldsTheAngleOfView)
{
    const std::string ball = "samples 16\nbackground off 0\nsurface v_constant\nsphere\n";
    const vk_Film square = drawAll("picture p.png\ncamera\nsize 32 32\n" + ball);
    EXPECT_GT(meanOf(square, 0, 0, 1, 1), 20);
    for (const auto &[size, x, y] :
         {std::tuple("size 64 32\n", .25, 0.), std::tuple("size 32 64\n", 0., .25)}) {
        const vk_Film film = drawAll("picture p.png\ncamera\n" + (size + ball));
        EXPECT_NEAR(meanOf(square, 0, 0, 1, 1), meanOf(film, x, y, 1 - x, 1 - y), 1.5) << size;
        EXPECT_NEAR(meanOf(square, 0, 0, 1, 1) / 2, meanOf(film, 0, 0, 1, 1), 1) << size;
    }
}

// Of a ball's, which hangs above what the camera sees.
TEST(Renderer, SoftnessIsTheWidthOfAShadowsEdge)
{
    const auto edge = [](const std::string &soft) {
        const vk_Film film =
            drawAll("picture p.png\nsize 64 64\ncamera from 0 1.5 2 at 0 0 0 fov 25\n"
                    "environment v_studio intensity 0\nfloor v_matte diff .9\n"
                    "lightplace from 0 6 0 to 0 0 0\n"
                    "light v_area width .6 height .6\nshadow v_softshadow soft " +
                        soft + "\nsurface v_constant color 0\ntranslate 0 2 0\nsphere radius .3\n",
                    2, 16);
        const auto between = [](std::uint8_t byte) { return byte > 30 && byte < 130; };
        return std::count_if(film.bytes.begin(), film.bytes.end(), between) / 3;
    };
    const auto hard = edge("0"), half = edge(".5"), whole = edge("1");
    EXPECT_LT(2 * hard, half);
    EXPECT_LT(1.3 * static_cast<double>(half), whole);
}

TEST(Renderer, FogSendsOnItsColourOnly)
{
    const std::string fog = "size 16 16\nfog v_fog density 5 radius 4 color ";
    const vk_Film red = draw(fog + "1 0 0\n");
    EXPECT_GT(meanOf(red, .3, .3, .7, .7, 0), 60);
    EXPECT_LT(meanOf(red, .3, .3, .7, .7), 5);
}

TEST(Renderer, BeamsDoNotShineThroughWhatStandsInFront)
{
    const std::string haze = "fog v_litfog density .3\nlightplace from -5 .5 -1.3 to 0 .5 -1.3\n"
                             "light v_spot angle 4 intensity 100\n";
    const std::string ball = "surface v_constant color 0\nsphere\n";
    EXPECT_GT(meanOf(drawAll(roomWith(haze, 0)), .4, .4, .6, .6), 40);
    EXPECT_LT(meanOf(drawAll(roomWith(haze + ball, 0)), .4, .4, .6, .6), 5);
}

TEST(Renderer, ConstantsBackdropAndExposureShowWhatTheyDo)
{
    const std::string ball = "size 48 48\nsamples 16\nsphere\n";
    EXPECT_EQ(255, draw("surface v_constant color 100\n" + ball).bytes[3 * (24 * 48 + 24)]);
    EXPECT_NEAR(128, draw("background off\n" + ball).bytes[0], 1);
    EXPECT_GT(draw("background off 1 0 .2\n" + ball).bytes[0], 200);
    EXPECT_LT(draw("background off 1 0 .2\n" + ball).bytes[1], 5);
    // What the exposure makes grey was not cut off before.
    EXPECT_NEAR(128, draw("exposure -8\nbackground off 54.8\n" + ball).bytes[0], 1);
    EXPECT_GT(meanOf(draw("exposure 1\n" + ball), 0, 0, 1, 1), meanOf(draw(ball), 0, 0, 1, 1) + 20);
}

TEST(Renderer, ThreadCountFollowsTheSetting)
{
    ScopedVariable setting("VELDRIN_MAXTHREADS", nullptr);
    const int detected = vk_threadCount();
    EXPECT_GE(detected, 1);
    for (const auto &[value, count] : {std::pair("7", 7), {"0", detected}, {"-1", detected}}) {
        setting.set(value);
        EXPECT_EQ(count, vk_threadCount()) << value;
    }
}
