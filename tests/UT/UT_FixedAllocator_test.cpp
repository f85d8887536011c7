#include "UT/UT_FixedAllocator.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace
{
std::vector<void *> allocated(UT_FixedAllocator &allocator, unsigned count)
{
    std::vector<void *> slots;
    while (slots.size() < count)
        slots.push_back(allocator.allocate());
    return slots;
}

void releaseAll(UT_FixedAllocator &allocator, const std::vector<void *> &slots)
{
    for (void *const slot : slots)
        allocator.release(slot);
}
} // namespace

TEST(FixedAllocator, SlotsAreMultiplesOfEight)
{
    const struct {
        unsigned object, slot;
    } cases[] = {{0, 8}, {1, 8}, {4, 8}, {8, 8}, {9, 16}, {12, 16}, {128, 128}};
    for (const auto &c : cases)
        EXPECT_EQ(c.slot, UT_FixedAllocator(c.object, true, 4).slotSize()) << c.object;
}

TEST(FixedAllocator, ASecondFreePageSendsTheOlderOneBackAndItsNumberIsUsedAgain)
{
    UT_FixedAllocator allocator(12, true, 1024);
    const std::vector<void *> first = allocated(allocator, 1024);
    EXPECT_EQ(1u, allocator.pages());
    const std::vector<void *> second = allocated(allocator, 1024);
    EXPECT_EQ(2u, allocator.pages());

    releaseAll(allocator, second);
    EXPECT_EQ(1, allocator.reservePage());
    EXPECT_EQ(0u, allocator.releasedPages());
    releaseAll(allocator, first);
    EXPECT_EQ(0, allocator.reservePage());
    EXPECT_EQ(1u, allocator.releasedPages());
    EXPECT_EQ(0u, allocator.inUse());

    const std::vector<void *> again = allocated(allocator, 1025);
    EXPECT_EQ(-1, allocator.reservePage());
    EXPECT_EQ(2u, allocator.pages());
    EXPECT_EQ(0u, allocator.releasedPages());
}

TEST(FixedAllocator, NewPagesTakeTheHighestFreeNumber)
{
    UT_FixedAllocator allocator(8, true, 2);
    const std::vector<void *> slots = allocated(allocator, 8); // pages 0 to 3
    for (const size_t slot : {0u, 1u, 4u, 5u, 6u, 7u})         // frees pages 0, 2 and 3
        allocator.release(slots[slot]);
    EXPECT_EQ(3, allocator.reservePage());
    EXPECT_EQ(2u, allocator.releasedPages());

    const std::vector<void *> again = allocated(allocator, 4); // pages 3, then 2
    releaseAll(allocator, {again[2], again[3]});
    EXPECT_EQ(2, allocator.reservePage());
    EXPECT_EQ(1u, allocator.releasedPages());
}

TEST(FixedAllocator, WithoutTrackingFreedSlotsAreReusedLastFirst)
{
    UT_FixedAllocator allocator(16, false, 2);
    const std::vector<void *> slots = allocated(allocator, 4);
    releaseAll(allocator, slots);
    EXPECT_EQ(slots[3], allocator.allocate());
    EXPECT_EQ(slots[2], allocator.allocate());
    EXPECT_EQ(2u, allocator.pages());
    EXPECT_EQ(0u, allocator.releasedPages());
}

// Each slot in use is full of one byte: slots that overlap, or a page number that
// is written over, show up.
TEST(FixedAllocator, SlotsStayIntactWhileOthersComeAndGo)
{
    constexpr unsigned SIZE = 20;
    for (const unsigned perPage : {1u, 3u, 64u}) {
        SCOPED_TRACE(perPage);
        std::mt19937 random(perPage);
        UT_FixedAllocator allocator(SIZE, true, perPage);
        std::vector<char *> slots;
        for (int step = 0; step < 2000; ++step) {
            if (slots.empty() || random() % 1000 < (step < 1000 ? 600u : 400u)) {
                slots.push_back(static_cast<char *>(allocator.allocate()));
                ASSERT_EQ(0u, reinterpret_cast<uintptr_t>(slots.back()) % alignof(void *));
                std::memset(slots.back(), static_cast<int>(random() % 128), SIZE);
            } else {
                std::swap(slots[random() % slots.size()], slots.back());
                const std::string content(slots.back(), SIZE);
                ASSERT_EQ(std::string(SIZE, content[0]), content);
                allocator.release(slots.back());
                slots.pop_back();
            }
            ASSERT_EQ(slots.size(), allocator.inUse());
        }
    }
}
