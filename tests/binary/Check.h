// For the check programs: a condition that ends the program with a message when it is false.
#pragma once

#include <cstdio>
#include <cstdlib>

#define CHECK(condition)                                                                 \
    do {                                                                                 \
        if (!(condition)) {                                                              \
            std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
            std::exit(1);                                                                \
        }                                                                                \
    } while (false)
