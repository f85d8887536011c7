// Light samples of the vertices of many paths, until their shadow rays are cast together.
// Filled and emptied by vk_DirectLight.
#pragma once

#include "vaskel/trace/vk_Path.h"
#include "vaskel/trace/vk_Shadows.h"

struct vk_LightQueue {
    // What it counts, if nothing is between.
    struct Sample {
        vk_Scattered light; // scattered to the path, over the pdf of the sample
        vk_MisPdfs pdfs;
        vk_Onwards onwards; // of the path's ray at glass
    };
    struct Vertex {
        Vertex(const vk_Path &p, const vk_NextEvent &next, std::size_t endOfSamples)
            : path(p), nextEvent(next), end(endOfSamples)
        {
        }
        vk_Path path; // as it arrived
        vk_NextEvent nextEvent;
        std::size_t end; // of its samples
    };

    void clear()
    {
        vertices.clear();
        samples.clear();
        rays.clear();
    }

    std::vector<Vertex> vertices;
    std::vector<Sample> samples;
    std::vector<vk_ShadowRay> rays; // of the samples
};
