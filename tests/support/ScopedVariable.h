// An environment variable that has a value (or, with null, none) for as long as the
// object lives; the settings follow, there and back.
#pragma once

#include "UT/UT_EnvControl.h"
#include "UT/UT_Environment.h"

#include <optional>
#include <string>

class ScopedVariable
{
public:
    ScopedVariable(const char *name, const char *value) : myName(name)
    {
        if (const char *before = UTgetenv(name))
            myBefore = before;
        set(value);
    }
    ~ScopedVariable() { set(myBefore ? myBefore->c_str() : nullptr); }
    ScopedVariable(const ScopedVariable &) = delete;
    ScopedVariable &operator=(const ScopedVariable &) = delete;

    void set(const char *value)
    {
        if (value != nullptr)
            UTsetenv(myName.c_str(), value);
        else
            UTunsetenv(myName.c_str());
        UT_EnvControl::instance().updateVariable(myName.c_str());
    }

private:
    std::string myName;
    std::optional<std::string> myBefore;
};
