// What people see while pictures are made: on a terminal one line that is written over, to
// a file a line for each picture.
#pragma once

#include <string>

struct tm_Options;

class tm_Progress
{
public:
    explicit tm_Progress(const tm_Options &options);
    ~tm_Progress(); // clears the line

    // So many of all are done, `name` is the last one.
    void show(long done, long all, const std::string &name);

    // A line that stays, on standard error.
    void say(const std::string &line);

private:
    void clear();
    std::string timeLeft(long done, long all) const;

    bool isShown;         // at all
    bool isWrittenOver;   // on a terminal
    bool hasLine = false; // that is to be cleared
    double myStart;       // seconds
};
