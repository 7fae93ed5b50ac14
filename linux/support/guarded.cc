#include "support/guarded.h"

#include <string>

#include "support/console.h"

void report_exception(const char* reason) noexcept {
  try {
    print_error_line(std::string("[Corvana] 操作因内部错误中断: ") + reason);
  } catch (const std::exception&) {
    // Not even the memory for the line is left.
  }
}
