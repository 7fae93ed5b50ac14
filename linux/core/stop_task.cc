#include "core/stop_task.h"

#include <chrono>
#include <exception>

#include "core/core_name.h"
#include "core/process_probe.h"
#include "core/stranded_proxy.h"
#include "core/termination.h"
#include "proxy_service/task_state.h"
#include "support/console.h"
#include "support/leaving.h"

using namespace std::chrono_literals;

// True when no core is left a second later. Leaving cuts the wait short: the way out looks again.
static bool terminate_and_look() {
  terminate_core();
  sleep_unless_leaving(1s);
  return !is_process_running(k_core_name);
}

static bool stop_core() {
  if (!is_process_running(k_core_name)) {
    print_line("代理服务未运行");
    return true;
  }
  take_back_proxy();
  if (terminate_and_look()) {
    print_line("已停止代理服务");
    return true;
  }
  if (is_leaving()) return false;
  print_error_line("停止代理服务失败，尝试强制终止...");
  if (terminate_and_look()) {
    print_line("已成功强制终止代理服务");
    return true;
  }
  print_error_line("无法终止代理服务");
  return false;
}

static bool stop_core_without_exceptions() {
  try {
    return !is_leaving() && stop_core();
  } catch (const std::exception&) {
    return false;
  }
}

void stop_vpn_thread() {
  const auto lifecycle_lock = lock_lifecycle();
  const bool stopped = stop_core_without_exceptions();
  publish_task_result(stopped);
}
