// A property that must hold for every input of a fuzzer.
#pragma once

#include <cstdlib>

inline void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}
