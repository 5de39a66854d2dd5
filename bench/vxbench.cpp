// vxbench [samples]: compares library calls with the bare driver requests they consist of.
#include <cstdio>
#include <cstdlib>

#include "benchmarks.h"

int main(int argumentCount, char** arguments) {
    const int samples = argumentCount > 1 ? atoi(arguments[1]) : 200;
    if (samples < 1) {
        fprintf(stderr, "usage: vxbench [samples]\n");
        return 2;
    }
    bench::RunAgainstNullDriver(static_cast<uint32_t>(samples));
    bench::RunAgainstRealDriver(static_cast<uint32_t>(samples));
    return 0;
}
