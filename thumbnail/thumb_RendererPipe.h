// A renderer as a child process whose standard input is written here.
//
// The child shares our standard output and standard error. A renderer that stops
// reading does not end us: until close(), writing into a broken pipe only fails
// (POSIX write, EPIPE). The child itself starts with the signal's default action.
#pragma once

#include <csignal>
#include <cstdio>

class thumb_RendererPipe
{
public:
    thumb_RendererPipe() = default;
    ~thumb_RendererPipe();
    thumb_RendererPipe(const thumb_RendererPipe &) = delete;
    thumb_RendererPipe &operator=(const thumb_RendererPipe &) = delete;

    // Starts the command with a shell. False when no process could be made; a
    // command that the shell does not find is a renderer that reads nothing.
    // REQUIRES: not open
    [[nodiscard]] bool open(const char *command);

    // Buffered; a failure shows in close(), and nothing is written after one.
    // REQUIRES: open
    void write(const char *text);

    // Ends the renderer's input and waits for its end. False when it left a part
    // of what was written unread. REQUIRES: open
    [[nodiscard]] bool close();

private:
    FILE *myPipe = nullptr;
    struct sigaction mySavedAction = {}; // for SIGPIPE, while open
};
