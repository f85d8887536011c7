#include "UT/UT_FixedAllocator.h"

#include "UT/UT_Memory.h"

#include <algorithm>
#include <cstdlib>

namespace
{
constexpr unsigned MIN_SLOT = 4;
constexpr unsigned SLOT_STEP = 8;
static_assert(SLOT_STEP % alignof(void *) == 0 && sizeof(void *) <= SLOT_STEP,
              "each slot can hold the address of the next free one");

constexpr size_t roundUp(size_t size, size_t step)
{
    return (size + step - 1) / step * step;
}

// Free slots hold the list that they are in.
void *&nextFree(void *slot)
{
    return *static_cast<void **>(slot);
}

void *popFrom(void *&list)
{
    void *const slot = list;
    list = nextFree(slot);
    return slot;
}

void pushOnto(void *&list, void *slot)
{
    nextFree(slot) = list;
    list = slot;
}
} // namespace

UT_FixedAllocator::UT_FixedAllocator(unsigned objectSize, bool trackPages, unsigned objectsPerPage)
    : myPartialPages(nullptr), myFreeList(nullptr),
      mySlotSize(static_cast<unsigned>(roundUp(std::max(objectSize, MIN_SLOT), SLOT_STEP))),
      myInUse(0), myObjectSize(objectSize), myReservePage(-1), myObjectsPerPage(objectsPerPage),
      myReleasedPages(0), myTrackPages(trackPages)
{
}

UT_FixedAllocator::~UT_FixedAllocator()
{
    for (unsigned i = myPages.entries(); i-- > 0;) {
        // Numbers of pages that were given back stay free for new ones.
        if (myPages(i) == nullptr)
            continue;
        std::free(myPages(i)->myBlock);
        delete myPages(i);
    }
}

void *UT_FixedAllocator::allocate()
{
    ++myInUse;
    if (myTrackPages)
        return allocateTracked();
    if (myFreeList == nullptr)
        myFreeList = makePage()->myFreeHead;
    return popFrom(myFreeList);
}

void UT_FixedAllocator::release(void *slot)
{
    --myInUse;
    if (myTrackPages)
        releaseTracked(slot);
    else
        pushOnto(myFreeList, slot);
}

void *UT_FixedAllocator::allocateTracked()
{
    if (myPartialPages == nullptr)
        link(makePage());
    ut_SmallObjectPage *const page = myPartialPages;
    void *const slot = popFrom(page->myFreeHead);
    --page->myFreeCount;
    // A reserve page that is used is none any more.
    const bool wasFree = page->myFreeCount == myObjectsPerPage - 1;
    if (wasFree && myReservePage >= 0 && myPages(static_cast<unsigned>(myReservePage)) == page)
        myReservePage = -1;
    if (page->myFreeCount == 0)
        unlink(page);
    return slot;
}

void UT_FixedAllocator::releaseTracked(void *slot)
{
    const uint32_t pageIndex = *pageIndexOf(slot);
    ut_SmallObjectPage *const page = myPages(pageIndex);
    pushOnto(page->myFreeHead, slot);
    ++page->myFreeCount;
    if (page->myFreeCount == 1)
        link(page); // it was full
    // The older reserve goes rather than this page, which the next allocation is
    // likelier to find in the processor's cache.
    if (page->myFreeCount == myObjectsPerPage) {
        handBackReserve();
        myReservePage = static_cast<int>(pageIndex);
    }
}

// ---- Pages -----------------------------------------------------------------

UT_FixedAllocator::ut_SmallObjectPage *UT_FixedAllocator::makePage()
{
    auto *const page = new ut_SmallObjectPage();
    threadSlots(page, takePageIndex(page));
    return page;
}

// The highest number of a page that was given back, else a new one.
unsigned UT_FixedAllocator::takePageIndex(ut_SmallObjectPage *page)
{
    if (myReleasedPages == 0)
        return myPages.append(page);
    --myReleasedPages;
    unsigned index = myPages.entries() - 1;
    while (myPages(index) != nullptr)
        --index;
    myPages(index) = page;
    return index;
}

void UT_FixedAllocator::threadSlots(ut_SmallObjectPage *page, unsigned pageIndex)
{
    page->myBlock = UTallocate(myObjectsPerPage * stride());
    page->myFreeCount = myObjectsPerPage;
    char *const first = static_cast<char *>(page->myBlock);
    // From the last slot to the first, so that they are handed out in address order.
    for (unsigned i = myObjectsPerPage; i-- > 0;) {
        void *const slot = first + i * stride();
        pushOnto(page->myFreeHead, slot);
        if (myTrackPages)
            *pageIndexOf(slot) = pageIndex;
    }
}

void UT_FixedAllocator::handBackReserve()
{
    if (myReservePage < 0)
        return;
    ut_SmallObjectPage *&entry = myPages(static_cast<unsigned>(myReservePage));
    unlink(entry);
    std::free(entry->myBlock);
    delete entry;
    entry = nullptr;
    ++myReleasedPages;
}

// At the head of the pages with free slots.
void UT_FixedAllocator::link(ut_SmallObjectPage *page)
{
    page->myPrev = nullptr;
    page->myNext = myPartialPages;
    if (myPartialPages != nullptr)
        myPartialPages->myPrev = page;
    myPartialPages = page;
}

void UT_FixedAllocator::unlink(ut_SmallObjectPage *page)
{
    (page->myPrev != nullptr ? page->myPrev->myNext : myPartialPages) = page->myNext;
    if (page->myNext != nullptr)
        page->myNext->myPrev = page->myPrev;
}

uint32_t *UT_FixedAllocator::pageIndexOf(void *slot) const
{
    return reinterpret_cast<uint32_t *>(static_cast<char *>(slot) + mySlotSize);
}

size_t UT_FixedAllocator::stride() const
{
    return myTrackPages ? roundUp(mySlotSize + sizeof(uint32_t), alignof(void *)) : mySlotSize;
}
