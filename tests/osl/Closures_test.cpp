// Closures: what they hold, and how they add up.
#include "Shading.h"

#include <gtest/gtest.h>

TEST(Closures, ShowTheirParameters)
{
    const struct {
        const char *call, *shown;
    } rows[] = {
        {"diffuse(N)", R"(diffuse ((0, 0, 1), "label", ""))"},
        {"oren_nayar(N, 0.5)", "oren_nayar ((0, 0, 1), 0.5)"},
        {"translucent(N)", "translucent ((0, 0, 1))"},
        {"phong(N, 20)", R"(phong ((0, 0, 1), 20, "label", ""))"},
        {"ward(N, dPdu, 0.1, 0.2)", "ward ((0, 0, 1), (0, 0, 0), 0.1, 0.2)"},
        {"microfacet(\"ggx\", N, 0.1, 1.5, 0)",
         R"(microfacet ("ggx", (0, 0, 1), (0, 0, 0), 0.1, 0.1, 1.5, 0))"},
        {"microfacet(\"ggx\", N, vector(1, 0, 0), 0.1, 0.2, 1.5, 1)",
         R"(microfacet ("ggx", (0, 0, 1), (1, 0, 0), 0.1, 0.2, 1.5, 1))"},
        {"reflection(N)", "reflection ((0, 0, 1), 0)"},
        {"refraction(N, 1.3)", "refraction ((0, 0, 1), 1.3)"},
        {"debug(\"x\")", R"(debug ("x"))"},
        {"henyey_greenstein(0.3)", "henyey_greenstein (0.3)"},
        {"burley_diffuse_bsdf(N, color(1), 0.2, \"label\", \"a\")",
         R"(burley_diffuse_bsdf ((0, 0, 1), (1, 1, 1), 0.2, "label", "a"))"},
        {"oren_nayar_diffuse_bsdf(N, color(1), 0.5, \"energy_compensation\", 1)",
         R"(oren_nayar_diffuse_bsdf ((0, 0, 1), (1, 1, 1), 0.5, "label", "", "energy_compensation", 1))"},
        {"uniform_edf(color(2))", R"(uniform_edf ((2, 2, 2), "label", ""))"},
        {"anisotropic_vdf(color(1), color(2), 0.5)",
         R"(anisotropic_vdf ((1, 1, 1), (2, 2, 2), 0.5, "label", ""))"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.call);
        EXPECT_EQ("(1, 1, 1) * " + std::string(row.shown),
                  printedBy(std::string("printf(\"%s\", ") + row.call + ");"));
    }
}

TEST(Closures, AreWeightedAndAdded)
{
    const struct {
        const char *what, *body, *shown;
    } rows[] = {
        {"by a number from both sides", "Ci = 0.5 * emission() * 4;", "(2, 2, 2) * emission ()"},
        {"by a colour", "Ci = color(1, 0, 0.5) * emission();", "(1, 0, 0.5) * emission ()"},
        {"sign", "Ci = -emission();", "(-1, -1, -1) * emission ()"},
        {"the same ones stay apart", "Ci = emission() + emission();",
         "(1, 1, 1) * emission ()\n\t+ (1, 1, 1) * emission ()"},
        {"weights of sums", "Ci = (emission() + holdout()) * 0.5;",
         "(0.5, 0.5, 0.5) * emission ()\n\t+ (0.5, 0.5, 0.5) * holdout ()"},
        {"nothing and something", "closure color c = 0; Ci = c + emission();",
         "(1, 1, 1) * emission ()"},
        {"taken back", "Ci = emission(); Ci = 0;", ""},
        {"assigned with a product", "Ci = emission(); Ci *= 0.25; Ci += Ci;",
         "(0.25, 0.25, 0.25) * emission ()\n\t+ (0.25, 0.25, 0.25) * emission ()"},
        {"chosen", "Ci = u > 0.2 ? emission() : holdout();", "(1, 1, 1) * emission ()"},
        {"mixed by a colour", "Ci = mix(emission(), holdout(), color(0.5, 0, 1));",
         "(0.5, 1, 0) * emission ()\n\t+ (0.5, 0, 1) * holdout ()"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(row.shown, printedBy(std::string(row.body) + "printf(\"%s\", Ci);"));
    }
}

TEST(Closures, OfARenderersHeaderDoNothing)
{
    const Shaded shaded = shade("closure color toon(normal N, float size) BUILTIN;\n"
                                "closure color ramp(normal N, color c[8]) BUILTIN;\n"
                                "shader t() { color c[8]; Ci = toon(N, 0.5) + ramp(N, c) + "
                                "emission(); printf(\"%s\", Ci); }");
    EXPECT_EQ("", shaded.compiler);
    EXPECT_EQ("(1, 1, 1) * emission ()", shaded.printed);
}
