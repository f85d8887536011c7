// Tables of functions of numbers from 0 to 1, in even steps, with straight lines between them.
#pragma once

#include <algorithm>
#include <cstddef>

// A place between two steps of a table.
struct vk_TableStep {
    std::size_t low;
    float part; // of the way to the next

    // What is no number counts as 0: as a place it would lie far outside the table.
    // REQUIRES: steps >= 2
    vk_TableStep(float unit, int steps)
    {
        const float at = unit > 0 ? std::min(unit, 1.0f) * static_cast<float>(steps - 1) : 0;
        // At 1 it is the end of the last interval: none begins there.
        low = static_cast<std::size_t>(std::min(static_cast<int>(at), steps - 2));
        part = at - static_cast<float>(low);
    }
    // Of the values at `low` and one step on.
    float between(float a, float b) const { return a + (b - a) * part; }
};

// The value of a table at a place down its rows and across their columns, each from 0 to 1; what
// lies beyond counts as the end.
template <std::size_t ROWS, std::size_t COLUMNS>
float vk_lookUp(const float (&table)[ROWS][COLUMNS], float atRow, float atColumn)
{
    const vk_TableStep down(atRow, int{ROWS}), across(atColumn, int{COLUMNS});
    const auto row = [&](const float(&of)[COLUMNS]) {
        return across.between(of[across.low], of[across.low + 1]);
    };
    return down.between(row(table[down.low]), row(table[down.low + 1]));
}
