#ifndef CORVANA_FUZZ_FUZZER_H_
#define CORVANA_FUZZ_FUZZER_H_

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>
#include <string>

// What has to hold for every input.
inline void require(bool holds) {
  if (!holds) std::abort();
}

void try_input(FuzzedDataProvider& input);

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // An input that shows a fault could write files or run commands.
  require(std::getenv("CORVANA_SANDBOX") != nullptr);
  FuzzedDataProvider input(data, size);
  try_input(input);
  return 0;
}

#endif
