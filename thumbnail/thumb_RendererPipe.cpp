#include "thumbnail/thumb_RendererPipe.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <string>

namespace
{

extern "C" void ignoreBrokenPipe(int) {}

// An empty handler and not SIG_IGN: a new program starts with the default action
// in place of a handler, but would inherit SIG_IGN (POSIX exec).
void catchBrokenPipe(struct sigaction &saved)
{
    struct sigaction action = {};
    action.sa_handler = ignoreBrokenPipe;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGPIPE, &action, &saved);
}

// A second reader of the pipe, to look at what the renderer leaves; -1 without
// one. It holds the pipe open, so no more may be written from here on.
int openReadEnd(int writeEnd)
{
    const std::string path = "/proc/self/fd/" + std::to_string(writeEnd);
    return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

bool isDrained(int readEnd)
{
    int unread = 0;
    return ioctl(readEnd, FIONREAD, &unread) != 0 || unread == 0;
}

} // namespace

thumb_RendererPipe::~thumb_RendererPipe()
{
    if (myPipe != nullptr)
        static_cast<void>(close());
}

bool thumb_RendererPipe::open(const char *command)
{
    catchBrokenPipe(mySavedAction);
    myPipe = popen(command, "w");
    if (myPipe == nullptr)
        sigaction(SIGPIPE, &mySavedAction, nullptr);
    return myPipe != nullptr;
}

void thumb_RendererPipe::write(const char *text)
{
    if (ferror(myPipe) == 0)
        fputs(text, myPipe);
}

bool thumb_RendererPipe::close()
{
    // A small scene fits into the pipe, and a renderer that never reads it breaks
    // nothing: only what is left after its end tells.
    bool complete = fflush(myPipe) == 0 && ferror(myPipe) == 0;
    const int readEnd = complete ? openReadEnd(fileno(myPipe)) : -1;
    pclose(myPipe);
    myPipe = nullptr;
    if (readEnd >= 0) {
        complete = isDrained(readEnd);
        ::close(readEnd);
    }
    sigaction(SIGPIPE, &mySavedAction, nullptr);
    return complete;
}
