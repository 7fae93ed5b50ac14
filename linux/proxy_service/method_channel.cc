#include "proxy_service/method_channel.h"

#include <cstring>
#include <functional>
#include <utility>

#include "core/core_paths.h"
#include "core/core_process.h"
#include "core/start_failures.h"
#include "core/start_task.h"
#include "core/stop_task.h"
#include "proxy_service/diagnostics.h"
#include "proxy_service/last_error.h"
#include "proxy_service/reply_map.h"
#include "proxy_service/tasks.h"
#include "support/guarded.h"

static FlValue* check_vpn_is_open(FlValue*) { return fl_value_new_bool(is_core_running()); }

static bool hand_to_worker(std::function<void()> body) {
  const bool started = start_worker(std::move(body));
  if (!started) record_thread_failed();
  return started;
}

static FlValue* start_vpn(FlValue* args) {
  if (find_zant_binary().empty()) {
    record_core_missing_before_start();
    publish_task_result(false);
    return fl_value_new_bool(false);
  }
  clear_last_error();
  fl_value_ref(args);
  const bool started = hand_to_worker([args] { start_vpn_thread(args); });
  if (!started) fl_value_unref(args);
  return fl_value_new_bool(started);
}

// The reply is false also when the stop will succeed: the user interface looks at the task state.
static FlValue* stop_vpn(FlValue*) {
  hand_to_worker(stop_vpn_thread);
  return fl_value_new_bool(false);
}

static FlValue* task_status(FlValue*) {
  const bool core_runs = is_core_running();
  const TaskState state = read_task_state();
  FlValue* const status = fl_value_new_map();
  set_bool(status, "isComplete", state.complete);
  set_bool(status, "taskResult", state.result);
  set_bool(status, "vpnStatus", core_runs);
  return status;
}

static FlValue* last_error(FlValue*) {
  const LastError error = read_last_error();
  FlValue* const record = fl_value_new_map();
  set_text(record, "code", error.code);
  set_text(record, "message", error.message);
  set_text(record, "logTail", error.log_tail);
  return record;
}

static FlValue* diagnostics(FlValue*) { return collect_diagnostics(); }

// The log stream always runs when it is listened to; the method is kept for user interfaces that
// still call it.
static FlValue* set_log_enabled(FlValue*) { return fl_value_new_bool(true); }

namespace {

struct Method {
  const char* name;
  FlValue* (*answer)(FlValue* args);  // the caller owns the reply value
};

}  // namespace

static constexpr Method k_methods[] = {
    {"checkVpnIsOpen", check_vpn_is_open},
    {"startVPN", start_vpn},
    {"stopVPN", stop_vpn},
    {"checkTaskComplete", task_status},
    {"getTaskResult", task_status},
    {"getLastError", last_error},
    {"getDiagnostics", diagnostics},
    {"setLogEnabled", set_log_enabled},
};

// After an exception a null tells the user interface that there is no answer this time.
static FlMethodResponse* answer_with(const Method& method, FlValue* args) {
  g_autoptr(FlValue) reply = nullptr;
  if (!run_guarded([&] { reply = method.answer(args); })) reply = fl_value_new_null();
  return FL_METHOD_RESPONSE(fl_method_success_response_new(reply));
}

static FlMethodResponse* respond_to(const char* name, FlValue* args) {
  for (const Method& method : k_methods) {
    if (std::strcmp(name, method.name) == 0) return answer_with(method, args);
  }
  return FL_METHOD_RESPONSE(fl_method_not_implemented_response_new());
}

void method_call_handler(FlMethodChannel*, FlMethodCall* method_call, gpointer) {
  g_autoptr(FlMethodResponse) response =
      respond_to(fl_method_call_get_name(method_call), fl_method_call_get_args(method_call));
  fl_method_call_respond(method_call, response, nullptr);
}
