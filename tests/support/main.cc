#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

// The code under test reads every process of the machine and kills by pattern.
static bool is_safe_to_run() {
  return GTEST_FLAG_GET(list_tests) || std::getenv("CORVANA_SANDBOX") != nullptr;
}

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!is_safe_to_run()) {
    std::fputs("These tests run only inside the sandbox that ./test makes.\n", stderr);
    return 1;
  }
  return RUN_ALL_TESTS();
}
