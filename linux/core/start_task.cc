#include "core/start_task.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

#include "core/core_config.h"
#include "core/core_paths.h"
#include "core/core_process.h"
#include "core/readiness.h"
#include "core/shell_quoting.h"
#include "core/start_failures.h"
#include "proxy_service/last_error.h"
#include "proxy_service/tasks.h"
#include "support/console.h"
#include "support/files.h"
#include "support/guarded.h"
#include "support/leaving.h"
#include "support/shell_command.h"
#include "system_proxy/system_proxy.h"

using namespace std::chrono_literals;

static constexpr int32_t k_clear_proxy_mode = 4;

namespace {

struct Start {
  std::string config_path;  // "" when the user interface named none
  int32_t proxy_mode = 1;
  std::string runtime_dir;
  std::string core_path;   // "" when there is none
  int clash_api_port = 0;  // below 1: unknown
  int mixed_port = 0;      // below 1: unknown
};

}  // namespace

static FlValue* lookup(FlValue* args, const char* key, FlValueType type) {
  if (args == nullptr || fl_value_get_type(args) != FL_VALUE_TYPE_MAP) return nullptr;
  FlValue* const value = fl_value_lookup_string(args, key);
  if (value == nullptr || fl_value_get_type(value) != type) return nullptr;
  return value;
}

static Start prepare_start(FlValue* args) {
  Start start;
  FlValue* const path = lookup(args, "configPath", FL_VALUE_TYPE_STRING);
  const gchar* const text = path == nullptr ? nullptr : fl_value_get_string(path);
  if (text != nullptr) start.config_path = text;
  FlValue* const mode = lookup(args, "proxyMode", FL_VALUE_TYPE_INT);
  if (mode != nullptr) start.proxy_mode = static_cast<int32_t>(fl_value_get_int(mode));
  start.runtime_dir = get_user_runtime_dir();
  start.core_path = find_zant_binary();
  return start;
}

// Quoting can't carry a line feed: the shell would run what follows it.
static bool can_be_quoted(const Start& start) {
  return (start.core_path + start.config_path + start.runtime_dir).find('\n') == std::string::npos;
}

static bool is_possible(const Start& start) {
  if (start.config_path.empty() || !path_exists(start.config_path)) {
    record_config_missing(start.config_path);
    return false;
  }
  if (start.core_path.empty()) {
    record_core_missing();
    return false;
  }
  if (!can_be_quoted(start)) {
    record_core_not_running(runtime_log_in(start.runtime_dir));
    return false;
  }
  return true;
}

static void end_stale_core() {
  if (!is_core_running()) return;
  if (terminate_core()) note_proxy_without_core();
  sleep_unless_leaving(1s);
}

static void read_ports(Start& start) {
  // Read once for each port: where the user interface is still writing, the second read sees more.
  start.clash_api_port = clash_api_port(read_whole_file(start.config_path).value_or(""));
  start.mixed_port = mixed_port(read_whole_file(start.config_path).value_or(""));
  if (start.clash_api_port >= 1) return;
  print_error_line("[Corvana] 警告：无法从 JSON 解析 clash_api 端口，将仅基于进程存活判断成功");
}

static void launch_core(const Start& start) {
  const std::string quoted_dir = escape_path(start.runtime_dir);
  const std::string command = "nohup " + escape_path(start.core_path) + " run -c " +
                              escape_path(start.config_path) + " -D " + quoted_dir + " > " +
                              runtime_log_in(quoted_dir) + " 2>&1 &";
  print_line("[Corvana] 执行(zant): " + command);
  run_shell_command(command);
}

// True when the core is ready or leaving has begun. False when the core has failed; the failure is
// on record then.
static bool wait_until_ready(const Start& start) {
  const std::string log_path = runtime_log_in(start.runtime_dir);
  const bool runs = wait_for_core_process();
  if (runs && wait_for_core_port(start.clash_api_port)) return true;
  if (is_leaving()) return true;
  if (!runs) {
    record_core_not_running(log_path);
    return false;
  }
  record_port_not_ready(start.clash_api_port, log_path);
  terminate_core();
  return false;
}

static void set_proxy_for(const Start& start) {
  if (start.proxy_mode == k_clear_proxy_mode) return clear_system_proxy();
  if (start.mixed_port >= 1) apply_system_proxy(start.mixed_port, start.mixed_port);
}

// A process has no command line for a moment while it changes from the shell to the core's program.
// The kill misses it then, and so would a probe right after the kill. Ends when the probe finds no
// core, or after about k_kill_limit.
static void end_launched_core() {
  const auto began = std::chrono::steady_clock::now();
  do {
    terminate_core();
    std::this_thread::sleep_for(k_check_interval);
  } while (is_core_running() && std::chrono::steady_clock::now() - began < k_kill_limit);
}

static bool start_core(FlValue* args) {
  if (is_leaving()) return false;
  Start start = prepare_start(args);
  if (!is_possible(start)) return false;
  end_stale_core();
  read_ports(start);
  if (is_leaving()) return false;

  launch_core(start);
  if (!wait_until_ready(start)) return false;
  if (!is_leaving()) {
    print_line("[Corvana] zant 启动成功，clash_api=" + std::to_string(start.clash_api_port) +
               " mixed=" + std::to_string(start.mixed_port));
    set_proxy_for(start);
  }
  if (is_leaving()) {
    // The probe isn't asked first, as it may miss the core. The core is killed even if this throws.
    run_guarded(clear_system_proxy);
    end_launched_core();
    return false;
  }
  clear_last_error();
  return true;
}

void start_vpn_thread(FlValue* args) {
  run_task([args] {
    g_autoptr(FlValue) owned_args = args;
    bool started = false;
    if (!run_guarded([&] { started = start_core(owned_args); })) {
      record_thread_failed();
    }
    return started;
  });
}
