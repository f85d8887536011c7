#include "vaskel/base/vk_Stats.h"

#include <chrono>
#include <cstdio>

std::string vk_Stats::text() const
{
    const auto mean = static_cast<double>(samples) / static_cast<double>(pixels > 0 ? pixels : 1);
    // A type that printf() has a letter for on every system.
    const auto count = [](std::uint64_t n) { return static_cast<unsigned long long>(n); };
    char lines[512];
    std::snprintf(lines, sizeof lines,
                  "reading   %8.1f ms\n"
                  "building  %8.1f ms\n"
                  "tracing   %8.1f ms\n"
                  "writing   %8.1f ms\n"
                  "rays      %llu camera, %llu scattered, %llu shadow\n"
                  "glass     %llu rough vertices\n"
                  "shaders   %llu steps of programs\n"
                  "meshes    %llu corners\n"
                  "samples   %.2f a pixel\n"
                  "NaN       %llu pixels\n",
                  1000 * reading, 1000 * building, 1000 * tracing, 1000 * writing,
                  count(work.camera), count(work.scattered), count(work.shadow), count(work.rough),
                  count(work.steps), count(corners), mean, count(badPixels));
    return lines;
}

double vk_seconds()
{
    // Not the time of day, which somebody may set while a picture is drawn.
    using Clock = std::chrono::steady_clock;
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}
