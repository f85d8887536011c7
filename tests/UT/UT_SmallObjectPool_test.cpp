#include "UT/UT_SmallObjectPool.h"

#include "tests/support/Random.h"

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <list>
#include <map>
#include <set>
#include <thread>
#include <tuple>
#include <vector>

namespace
{
// Which slots an allocator hands out, and what becomes of its pages. Without
// tracking all pages count as one, whose number is 0.
struct PlainPages {
    size_t perPage = 0, stride = 0;
    bool isTracking = false;
    unsigned pages = 0, inUse = 0;
    int reserve = -1;
    std::set<unsigned> released;
    std::list<unsigned> partial; // those with free slots
    std::map<unsigned, std::vector<char *>> free;
    std::map<char *, unsigned> pageOf;

    // The next slot; `fresh` is the first one of a page that may have to be made.
    char *take(char *fresh)
    {
        if (partial.empty())
            makePage(fresh);
        const unsigned page = partial.front();
        reserve = static_cast<int>(page) == reserve ? -1 : reserve;
        char *const slot = free[page].back();
        free[page].pop_back();
        if (free[page].empty())
            partial.pop_front();
        pageOf[slot] = page;
        ++inUse;
        return slot;
    }
    void makePage(char *first)
    {
        unsigned page = released.empty() ? pages++ : *released.rbegin();
        released.erase(page);
        page = isTracking ? page : 0;
        partial.push_front(page);
        for (size_t i = perPage; i-- > 0;)
            free[page].push_back(first + i * stride);
    }
    void giveBack(char *slot)
    {
        const unsigned page = pageOf[slot];
        if (free[page].empty())
            partial.push_front(page);
        free[page].push_back(slot);
        --inUse;
        if (!isTracking || free[page].size() < perPage)
            return;
        if (reserve >= 0) {
            const auto old = static_cast<unsigned>(reserve);
            released.insert(old);
            partial.remove(old);
            free.erase(old);
        }
        reserve = static_cast<int>(page);
    }
};
} // namespace

TEST(SmallObjectPool, HandsOutSlotsFromPagesOfEachSize)
{
    const unsigned sizes[] = {20, 8, 1, 4, 9, 128, 0};
    Random random;
    SCOPED_TRACE(random.seed());
    for (const size_t perPage : {1u, 2u, 3u, 64u})
        for (const bool isTracking : {true, false}) {
            SCOPED_TRACE(testing::Message() << perPage << " slots a page, tracking " << isTracking);
            UT_SmallObjectPool pool(isTracking, static_cast<unsigned>(perPage), 128, isTracking);
            std::map<unsigned, PlainPages> plain;
            std::vector<std::pair<char *, unsigned>> live; // and their sizes
            for (int step = 0; step < 4000; ++step) {
                if (live.empty() || random.below(100) < (step / 1000 % 2 == 0 ? 55 : 45)) {
                    const unsigned size = sizes[random.below(std::size(sizes))];
                    const size_t slotSize = (std::max(size, 4u) + 7) / 8 * 8;
                    const size_t stride = isTracking ? slotSize + sizeof(void *) : slotSize;
                    PlainPages &pages = plain[size];
                    std::tie(pages.perPage, pages.stride, pages.isTracking) =
                        std::tie(perPage, stride, isTracking);
                    char *const slot = static_cast<char *>(pool.allocate(size));
                    ASSERT_EQ(slot, pages.take(slot));
                    std::memset(slot, step % 100, size); // and no page number
                    live.emplace_back(slot, size);
                } else {
                    std::swap(live[random.below(live.size())], live.back());
                    const auto [slot, size] = live.back();
                    plain[size].giveBack(slot);
                    pool.release(slot, size);
                    live.pop_back();
                }
                ASSERT_EQ(plain.size(), pool.allocators().entries());
                auto allocator = pool.allocators().begin(); // in ascending order, too
                for (auto &[size, pages] : plain) {
                    const UT_FixedAllocator &a = **allocator++;
                    const size_t numbers[] = {size, pages.inUse, pages.pages,
                                              pages.released.size()};
                    ASSERT_THAT(numbers, testing::ElementsAre(a.objectSize(), a.inUse(), a.pages(),
                                                              a.releasedPages()));
                    ASSERT_EQ(pages.reserve, a.reservePage());
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
