// Memory for small records that come and go in large numbers.
//
// Each size that is asked for has a UT_FixedAllocator of its own; sizes above the
// pool's limit come from operator new. Repeated requests of one size are O(1);
// otherwise the few sizes are searched.
#pragma once

#include "UT/UT_FixedAllocator.h"
#include "UT/UT_PtrArray.h"

#include <memory>

class UT_SpinLock;

class UT_SmallObjectPool
{
public:
    // trackPages: give pages without a slot in use back to the heap. threadSafe:
    // allocate and release take a spin lock.
    UT_SmallObjectPool(bool trackPages, unsigned objectsPerPage, unsigned maxSize, bool threadSafe);

    // Frees all pages, with the records still in use; those above the limit are
    // not the pool's.
    ~UT_SmallObjectPool();
    UT_SmallObjectPool(const UT_SmallObjectPool &) = delete;
    UT_SmallObjectPool &operator=(const UT_SmallObjectPool &) = delete;

    // At least `size` bytes, aligned for pointers, with undefined content.
    [[nodiscard]] void *allocate(unsigned size);

    // REQUIRES: `record` came from allocate(size) with this same size
    void release(void *record, unsigned size);

    // The allocators, in ascending order of their object size.
    const UT_PtrArray<UT_FixedAllocator *> &allocators() const { return myAllocators; }

private:
    void *allocateSlot(unsigned size);
    void releaseSlot(void *slot, unsigned size);
    unsigned findSize(unsigned size) const;

    UT_PtrArray<UT_FixedAllocator *> myAllocators; // owned
    UT_FixedAllocator *myLastAlloc;
    UT_FixedAllocator *myLastFree;
    std::unique_ptr<UT_SpinLock> myLock; // null unless thread-safe
    unsigned myObjectsPerPage;
    unsigned myMaxSize;
    bool myTrackPages;
};
