#include "core/stop_task.h"

#include <chrono>

#include "core/core_process.h"
#include "proxy_service/tasks.h"
#include "support/console.h"
#include "support/leaving.h"
#include "system_proxy/system_proxy.h"

using namespace std::chrono_literals;

// True when no core is left a second later. Leaving cuts the wait short: the clean-up looks again.
static bool terminate_and_look() {
  terminate_core();
  sleep_unless_leaving(1s);
  return !is_core_running();
}

static bool stop_core() {
  if (!is_core_running()) {
    print_line("代理服务未运行");
    return true;
  }
  // The proxy goes first: with the core dead and the proxy set, the desktop has no internet.
  clear_system_proxy();
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

void stop_vpn_thread() {
  run_task([] { return !is_leaving() && stop_core(); });
}
