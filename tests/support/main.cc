#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // The code under test reads every process of the machine and kills by pattern.
  if (!GTEST_FLAG_GET(list_tests) && std::getenv("CORVANA_SANDBOX") == nullptr) {
    std::fputs("These tests run only inside the sandbox that ./test makes.\n", stderr);
    return 1;
  }
  return RUN_ALL_TESTS();
}
