// Keeps this thread's signals back as long as it lives, for moments in which a process must
// not die by one. SIGKILL does not wait (POSIX pthread_sigmask).
// REQUIRES: no other thread that takes signals; it would still get them.
#pragma once

#include <csignal>

class UT_SignalPause
{
public:
    UT_SignalPause()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &myBefore);
    }
    ~UT_SignalPause() { pthread_sigmask(SIG_SETMASK, &myBefore, nullptr); }
    UT_SignalPause(const UT_SignalPause &) = delete;
    UT_SignalPause &operator=(const UT_SignalPause &) = delete;

private:
    sigset_t myBefore;
};
