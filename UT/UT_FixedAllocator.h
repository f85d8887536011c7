// Hands out slots of one size from pages of many.
//
// A page is one block from malloc with a fixed number of slots. Freed slots are
// recycled through a list that runs through the slots themselves. There are two
// modes:
//
//   simple     one list for all pages; no page is ever given back
//   tracking   each slot is followed by its page's number, so that a page with no
//              slot in use can go back to the heap; one such page, the reserve, is
//              kept
//
//       simple    | slot | slot | slot | ...
//       tracking  | slot |page#| slot |page#| ...      page#: 4 bytes, then padding
//                                                      to the alignment of pointers
//       a free slot begins with the address of the next free one, null at the end
//
// All operations are O(1), except for a new page, which is O(slots). There is no
// lock; see UT_SmallObjectPool.
#pragma once

#include "UT/UT_PtrArray.h"

#include <cstddef>
#include <cstdint>

class UT_FixedAllocator
{
public:
    // Slots of objectSize bytes, rounded up to a multiple of 8 (at least 8).
    // REQUIRES: objectsPerPage > 0
    UT_FixedAllocator(unsigned objectSize, bool trackPages, unsigned objectsPerPage);
    ~UT_FixedAllocator(); // frees all pages, with the slots still in use
    UT_FixedAllocator(const UT_FixedAllocator &) = delete;
    UT_FixedAllocator &operator=(const UT_FixedAllocator &) = delete;

    // A slot aligned for pointers, with undefined content.
    [[nodiscard]] void *allocate();

    // REQUIRES: `slot` came from this allocator and is in use
    void release(void *slot);

    unsigned objectSize() const { return myObjectSize; }
    unsigned slotSize() const { return mySlotSize; }
    unsigned inUse() const { return myInUse; } // slots handed out

    // Page numbers in use or given back, those given back, and the number of the
    // reserve page (-1: none).
    unsigned pages() const { return myPages.entries(); }
    unsigned releasedPages() const { return myReleasedPages; }
    int reservePage() const { return myReservePage; }

private:
    struct ut_SmallObjectPage {
        void *myBlock;
        void *myFreeHead; // tracking mode
        ut_SmallObjectPage *myNext;
        ut_SmallObjectPage *myPrev;
        unsigned myFreeCount;
    };

    void *allocateTracked();
    void releaseTracked(void *slot);

    ut_SmallObjectPage *makePage();
    unsigned takePageIndex(ut_SmallObjectPage *page);
    void threadSlots(ut_SmallObjectPage *page, unsigned pageIndex);
    void handBackReserve();

    void link(ut_SmallObjectPage *page);
    void unlink(ut_SmallObjectPage *page);

    uint32_t *pageIndexOf(void *slot) const;
    size_t stride() const; // from one slot to the next

    UT_PtrArray<ut_SmallObjectPage *> myPages; // by page number; null: given back
    ut_SmallObjectPage *myPartialPages;        // those with free slots (tracking mode)
    void *myFreeList;                          // free slots of all pages (simple mode)
    unsigned mySlotSize;
    unsigned myInUse;
    unsigned myObjectSize;
    int myReservePage;
    unsigned myObjectsPerPage;
    unsigned myReleasedPages;
    bool myTrackPages;
};
