// Whole shaders, as people write them (shaders/): each compiles and runs without a message,
// and gives the same at every width.
#include "Shading.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace
{
constexpr int POINTS = 16;

// The outputs at one point, as bits; texts as they are.
std::string outputsAt(const OSL_Shader &shader, const OSL_Context &context, int lane)
{
    std::string all;
    for (const OSL_Parameter &parameter : shader.parameters()) {
        const OSL_Output *output = context.output(parameter.name);
        if (output == nullptr || output->type.isClosure)
            continue;
        for (int word = 0; word < output->words; ++word) {
            const int32_t bits = output->ints[word * output->stride + lane];
            const bool isText = output->type.base == osl_Type::STRING;
            all += (isText ? std::string(context.text(bits)) : std::to_string(bits)) + ' ';
        }
    }
    return all + '\n';
}

// What a shader says, prints and gives, by batches of a width.
std::string resultOf(const OSL_Shader &shader, const std::shared_ptr<const OSL_Program> &program,
                     int width)
{
    float u[POINTS];
    float ones[POINTS];
    std::fill_n(ones, POINTS, 1.0f);
    for (int i = 0; i < POINTS; ++i)
        u[i] = static_cast<float>(i) / (POINTS - 1);
    RecordingShading renderer;
    OSL_Context context(program, renderer, width);
    std::string all;
    for (int first = 0; first < POINTS; first += width) {
        OSL_Points batch;
        batch.first = first;
        batch.count = width;
        for (OSL_Varying *along : {&batch.u, &batch.P, &batch.dPdu}) {
            along->value[0] = u + first;
            along->dx[0] = ones;
        }
        for (OSL_Varying *normal : {&batch.N, &batch.Ng, &batch.I})
            normal->value[2] = ones;
        batch.v.value[0] = batch.P.value[1] = ones;
        if (!context.run(batch))
            all += "stopped\n";
        for (int lane = 0; lane < width; ++lane)
            all += outputsAt(shader, context, lane);
    }
    return renderer.messages + renderer.printed + all;
}
} // namespace

TEST(Shaders, CompileAndRunWithoutAMessage)
{
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(TEST_DATA "/shaders")) {
        SCOPED_TRACE(entry.path().filename());
        ++count;
        OSL_Shader shader;
        ASSERT_TRUE(shader.compileFile(entry.path(), {})) << shader.messages();
        const auto program = shader.link({});
        ASSERT_NE(nullptr, program);
        EXPECT_EQ("", shader.messages());
        const std::string wide = resultOf(shader, program, 16);
        EXPECT_EQ(std::string::npos, wide.find("error: "));
        EXPECT_EQ(std::string::npos, wide.find("stopped"));
        EXPECT_EQ(wide, resultOf(shader, program, 8));
        EXPECT_EQ(wide, resultOf(shader, program, 1));
    }
    EXPECT_LT(10, count);
}
