#include "core/start_task.h"

#include <chrono>
#include <exception>
#include <string>
#include <thread>

#include "core/core_binary.h"
#include "core/core_config.h"
#include "core/core_name.h"
#include "core/process_probe.h"
#include "core/readiness.h"
#include "core/runtime_dir.h"
#include "core/shell_quoting.h"
#include "core/start_failures.h"
#include "core/start_request.h"
#include "core/stranded_proxy.h"
#include "core/termination.h"
#include "proxy_service/last_error.h"
#include "proxy_service/task_state.h"
#include "support/console.h"
#include "support/files.h"
#include "support/leaving.h"
#include "support/shell_command.h"
#include "system_proxy/system_proxy.h"

using namespace std::chrono_literals;

static constexpr int32_t k_clear_proxy_mode = 4;

namespace {

struct CorePorts {
  int clash_api;  // below 1: unknown
  int mixed;      // below 1: unknown
};

}  // namespace

static CorePorts read_core_ports(const std::string& config_path) {
  // Read once for each port: the user interface may still be at work on the file.
  const std::string text_for_clash_api = read_whole_file(config_path).value_or("");
  const std::string text_for_mixed = read_whole_file(config_path).value_or("");
  return {clash_api_port(text_for_clash_api), mixed_port(text_for_mixed)};
}

static void end_stale_core() {
  if (!is_process_running(k_core_name)) return;
  note_stranded_proxy(true);
  terminate_core();
  sleep_unless_leaving(1s);
}

static void launch_core(const std::string& core_path, const std::string& config_path,
                        const std::string& runtime_dir) {
  const std::string quoted_dir = escape_path(runtime_dir);
  const std::string command = "nohup " + escape_path(core_path) + " run -c " +
                              escape_path(config_path) + " -D " + quoted_dir + " > " +
                              runtime_log_in(quoted_dir) + " 2>&1 &";
  print_line("[Corvana] 执行(zant): " + command);
  run_shell_command(command);
}

static void set_proxy_for(const StartRequest& request, int mixed_port) {
  if (request.proxy_mode == k_clear_proxy_mode) return take_back_proxy();
  if (mixed_port < 1) return;
  apply_system_proxy(mixed_port, mixed_port);
  note_stranded_proxy(false);
}

// False also when the host begins to leave on the way; then no failure is recorded.
static bool bring_up_core(const StartRequest& request, const std::string& core_path,
                          const std::string& runtime_dir) {
  const std::string log_path = runtime_log_in(runtime_dir);
  end_stale_core();
  const CorePorts ports = read_core_ports(request.config_path);
  if (ports.clash_api < 1) {
    print_error_line("[Corvana] 警告：无法从 JSON 解析 clash_api 端口，将仅基于进程存活判断成功");
  }
  if (is_leaving()) return false;

  launch_core(core_path, request.config_path, runtime_dir);
  if (!wait_for_core_process()) {
    if (!is_leaving()) record_core_not_running(log_path);
    return false;
  }
  if (!wait_for_core_port(ports.clash_api)) {
    if (is_leaving()) return false;
    record_port_not_ready(ports.clash_api, log_path);
    terminate_core();
    return false;
  }
  if (is_leaving()) return false;
  print_line("[Corvana] zant 启动成功，clash_api=" + std::to_string(ports.clash_api) +
             " mixed=" + std::to_string(ports.mixed));
  set_proxy_for(request, ports.mixed);
  return true;
}

// A core that was just launched may still be on its way from the shell into its own program, where
// the termination command doesn't see it yet: so look again until none is left.
static void take_back_start() {
  take_back_proxy();
  for (int round = 0; round < 20; ++round) {
    terminate_core();
    if (!is_process_running(k_core_name)) return;
    std::this_thread::sleep_for(50ms);
  }
}

static bool run_start(FlValue* args) {
  if (is_leaving()) return false;
  const StartRequest request = read_start_request(args);
  const std::string runtime_dir = get_user_runtime_dir();
  const std::string core_path = find_zant_binary();
  if (request.config_path.empty() || !path_exists(request.config_path)) {
    record_config_missing(request.config_path);
    return false;
  }
  if (core_path.empty()) {
    record_core_missing();
    return false;
  }
  if (is_leaving()) return false;

  const bool up = bring_up_core(request, core_path, runtime_dir);
  if (is_leaving()) {
    take_back_start();
    return false;
  }
  if (up) clear_last_error();
  return up;
}

static bool run_start_without_exceptions(FlValue* args) {
  try {
    return run_start(args);
  } catch (const std::exception&) {
    record_thread_failed();
    return false;
  }
}

void start_vpn_thread(FlValue* args) {
  const auto lifecycle_lock = lock_lifecycle();
  const bool started = run_start_without_exceptions(args);
  fl_value_unref(args);
  publish_task_result(started);
}
