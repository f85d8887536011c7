#include "UT/UT_SmallObjectPool.h"

#include "UT/UT_SpinLock.h"

#include <mutex>
#include <new>

UT_SmallObjectPool::UT_SmallObjectPool(bool trackPages, unsigned objectsPerPage, unsigned maxSize,
                                       bool threadSafe)
    : myLastAlloc(nullptr), myLastFree(nullptr),
      myLock(threadSafe ? std::make_unique<UT_SpinLock>() : nullptr),
      myObjectsPerPage(objectsPerPage), myMaxSize(maxSize), myTrackPages(trackPages)
{
}

UT_SmallObjectPool::~UT_SmallObjectPool()
{
    for (UT_FixedAllocator *const allocator : myAllocators)
        delete allocator;
}

void *UT_SmallObjectPool::allocate(unsigned size)
{
    if (size > myMaxSize)
        return ::operator new(size);
    if (myLock == nullptr)
        return allocateSlot(size);
    const std::lock_guard<UT_SpinLock> guard(*myLock);
    return allocateSlot(size);
}

void UT_SmallObjectPool::release(void *record, unsigned size)
{
    if (size > myMaxSize) {
        ::operator delete(record);
        return;
    }
    if (myLock == nullptr) {
        releaseSlot(record, size);
        return;
    }
    const std::lock_guard<UT_SpinLock> guard(*myLock);
    releaseSlot(record, size);
}

// The first allocator that is large enough, or the number of allocators.
unsigned UT_SmallObjectPool::findSize(unsigned size) const
{
    unsigned i = 0;
    while (i < myAllocators.entries() && myAllocators(i)->objectSize() < size)
        ++i;
    return i;
}

void *UT_SmallObjectPool::allocateSlot(unsigned size)
{
    // Most callers ask for one size again and again.
    if (myLastAlloc == nullptr || myLastAlloc->objectSize() != size) {
        const unsigned i = findSize(size);
        // Sizes are exact, even when they round to the same slot size.
        if (i == myAllocators.entries() || myAllocators(i)->objectSize() != size)
            myAllocators.insertAt(new UT_FixedAllocator(size, myTrackPages, myObjectsPerPage), i);
        myLastAlloc = myAllocators(i);
    }
    return myLastAlloc->allocate();
}

void UT_SmallObjectPool::releaseSlot(void *slot, unsigned size)
{
    if (myLastFree == nullptr || myLastFree->objectSize() != size)
        myLastFree = myAllocators(findSize(size));
    myLastFree->release(slot);
}
