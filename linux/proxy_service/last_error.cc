#include "proxy_service/last_error.h"

#include <mutex>

// g_err_mutex owns the three strings.
static std::mutex g_err_mutex;
static std::string g_last_error_code;
static std::string g_last_error_message;
static std::string g_last_error_log_tail;

void set_last_error(const std::string& code, const std::string& message,
                    const std::string& log_tail) {
  const std::lock_guard<std::mutex> lock(g_err_mutex);
  g_last_error_code = code;
  g_last_error_message = message;
  g_last_error_log_tail = log_tail;
}

void clear_last_error() { set_last_error("", "", ""); }

LastError read_last_error() {
  const std::lock_guard<std::mutex> lock(g_err_mutex);
  return {g_last_error_code, g_last_error_message, g_last_error_log_tail};
}
