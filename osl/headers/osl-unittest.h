// Checks for shaders that test: each prints when it fails, and always where
// OSL_UNITTEST_VERBOSE is 1.
#pragma once

#ifndef OSL_UNITTEST_VERBOSE
#define OSL_UNITTEST_VERBOSE 0
#endif

#define OSL_CHECK(x)                                                         \
    do {                                                                     \
        if (x) {                                                             \
            if (OSL_UNITTEST_VERBOSE)                                        \
                printf("PASS: %s\n", #x);                                    \
        } else {                                                             \
            printf("FAIL: %s:%d: %s\n", __FILE__, __LINE__, #x);             \
        }                                                                    \
    } while (0)

#define OSL_CHECK_EQUAL(x, y)                                                \
    do {                                                                     \
        if ((x) == (y)) {                                                    \
            if (OSL_UNITTEST_VERBOSE)                                        \
                printf("PASS: %s == %s\n", #x, #y);                          \
        } else {                                                             \
            printf("FAIL: %s:%d: %s == %s\n", __FILE__, __LINE__, #x, #y);   \
        }                                                                    \
    } while (0)
