#include "UT/UT_SmallObjectPool.h"

#include <gmock/gmock.h>
#include <thread>
#include <vector>

namespace
{
std::vector<unsigned> sizesOf(const UT_SmallObjectPool &pool)
{
    std::vector<unsigned> sizes;
    for (const UT_FixedAllocator *const allocator : pool.allocators())
        sizes.push_back(allocator->objectSize());
    return sizes;
}
} // namespace

TEST(SmallObjectPool, EachSizeHasItsOwnAllocatorInAscendingOrder)
{
    UT_SmallObjectPool pool(true, 16, 128, true);
    for (const unsigned size : {8u, 1u, 128u, 4u, 8u, 1u})
        pool.release(pool.allocate(size), size);
    EXPECT_THAT(sizesOf(pool), testing::ElementsAre(1, 4, 8, 128));
    for (const UT_FixedAllocator *const allocator : pool.allocators())
        EXPECT_EQ(0u, allocator->inUse()) << allocator->objectSize();
}

TEST(SmallObjectPool, SizesAboveTheLimitBypassThePages)
{
    UT_SmallObjectPool pool(true, 16, 128, false);
    pool.release(pool.allocate(129), 129);
    EXPECT_TRUE(sizesOf(pool).empty());
}

TEST(SmallObjectPool, AThreadSafePoolServesThreadsAtOnce)
{
    UT_SmallObjectPool pool(true, 4, 128, true);
    const auto work = [&pool](unsigned size) {
        for (int round = 0; round < 500; ++round) {
            void *const a = pool.allocate(size);
            void *const b = pool.allocate(16);
            pool.release(a, size);
            pool.release(b, 16);
        }
    };
    std::thread other(work, 24);
    work(32);
    other.join();
    for (const UT_FixedAllocator *const allocator : pool.allocators())
        EXPECT_EQ(0u, allocator->inUse()) << allocator->objectSize();
}
