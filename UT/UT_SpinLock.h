// A non-recursive lock that waits busily and never sleeps: for sections of a few
// instructions. Works with std::lock_guard.
#pragma once

#include <atomic>

class UT_SpinLock
{
public:
    void lock()
    {
        while (myFlag.test_and_set(std::memory_order_acquire)) {
        }
    }
    void unlock() { myFlag.clear(std::memory_order_release); }

private:
    std::atomic_flag myFlag = ATOMIC_FLAG_INIT;
};
