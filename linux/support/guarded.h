#ifndef CORVANA_SUPPORT_GUARDED_H_
#define CORVANA_SUPPORT_GUARDED_H_

#include <exception>

// Prints an error line with `reason`. Doesn't throw. Any thread.
void report_exception(const char* reason) noexcept;

// Runs `step` and catches what derives from std::exception, which would end the process if it left
// a worker or a callback. False, and an error line on the console, when there was one. Any thread.
template <typename Step>
bool run_guarded(const Step& step) noexcept {
  try {
    step();
    return true;
  } catch (const std::exception& error) {
    report_exception(error.what());
    return false;
  }
}

#endif
