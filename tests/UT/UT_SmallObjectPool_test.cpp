#include "UT/UT_SmallObjectPool.h"

#include "tests/support/Random.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <thread>

TEST(SmallObjectPool, RecordsOfEachSizeHavePagesThatGoWhenTheyAreEmpty)
{
    Random random;
    SCOPED_TRACE(random.seed());
    for (const unsigned perPage : {1u, 2u, 3u, 64u})
        for (const bool isTracking : {true, false}) {
            SCOPED_TRACE(testing::Message() << perPage << " slots a page, tracking " << isTracking);
            UT_SmallObjectPool pool(isTracking, perPage, 128, isTracking);
            std::map<unsigned, std::pair<unsigned, unsigned>> inUse; // of a size: now, at most
            std::vector<std::pair<char *, std::string>> live;        // with what was written there
            for (unsigned step = 0; step < 4000 || !live.empty(); ++step) {
                const bool isLast = step >= 4000;
                if (live.empty() ||
                    (!isLast && random.below(100) < (step / 1000 % 2 == 0 ? 55 : 45))) {
                    const unsigned sizes[] = {20, 8, 1, 4, 9, 128, 0};
                    const unsigned size = sizes[random.below(std::size(sizes))];
                    const std::string bytes(size, static_cast<char>(step % 100));
                    live.push_back({static_cast<char *>(pool.allocate(size)), bytes});
                    ASSERT_EQ(0u, reinterpret_cast<uintptr_t>(live.back().first) % sizeof(void *));
                    bytes.copy(live.back().first, size);
                    auto &[now, most] = inUse[size];
                    most = std::max(most, ++now);
                } else {
                    std::swap(live[random.below(live.size())], live.back());
                    const auto [slot, bytes] = live.back();
                    const auto size = static_cast<unsigned>(bytes.size());
                    ASSERT_EQ(bytes, std::string(slot, size)) << "nobody else's";
                    pool.release(slot, size);
                    --inUse[size].first;
                    live.pop_back();
                }
                ASSERT_EQ(inUse.size(), pool.allocators().entries());
                auto allocator = pool.allocators().begin(); // in ascending order, too
                for (const auto &[size, counts] : inUse) {
                    const UT_FixedAllocator &a = **allocator++;
                    const auto [now, most] = counts;
                    const unsigned pages = a.pages() - a.releasedPages();
                    ASSERT_EQ(size, a.objectSize());
                    ASSERT_EQ(now, a.inUse());
                    ASSERT_LE(now, pages * perPage);
                    ASSERT_LE(pages, isTracking ? now + 1 : (most + perPage - 1) / perPage);
                    ASSERT_TRUE(pages <= now || !isTracking || a.reservePage() >= 0) << size;
                }
            }
        }
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
    pool.release(pool.allocate(129), 129); // above the limit
    EXPECT_EQ(3u, pool.allocators().entries());
    for (const UT_FixedAllocator *const allocator : pool.allocators())
        EXPECT_EQ(0u, allocator->inUse()) << allocator->objectSize();
}
