// A promise that a fuzz target holds the code to.
#pragma once

#define OVRIN_CHECK(condition)              \
    do {                                    \
        if (!(condition)) __builtin_trap(); \
    } while (false)
