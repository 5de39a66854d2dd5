#include <gtest/gtest.h>

#include "support/program.h"

int main(int argumentCount, char** arguments) {
    int exitCode = 0;
    if (support::RunRole(argumentCount, arguments, &exitCode)) {
        return exitCode;
    }
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
