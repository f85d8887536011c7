// What fuzz targets share.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

// The target: looks at any bytes.
void fuzz(const std::string &bytes);

// Ends the process, as a finding, when two values that must be equal differ.
inline void fuzzExpectEqual(const std::string &expected, const std::string &actual)
{
    if (expected == actual)
        return;
    std::fprintf(stderr, "expected: [%s]\n  actual: [%s]\n", expected.c_str(), actual.c_str());
    std::abort();
}

inline void fuzzExpectEqual(long long expected, long long actual)
{
    fuzzExpectEqual(std::to_string(expected), std::to_string(actual));
}
