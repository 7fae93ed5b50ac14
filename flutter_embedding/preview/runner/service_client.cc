#include "flutter_embedding/preview/runner/service_client.h"

#include <utility>

#include "flutter_embedding/channels/references.h"
#include "flutter_embedding/ui_channel.h"

namespace preview {

struct ServiceClient {
  std::shared_ptr<FlBinaryMessenger> messenger;
  Life life;
  std::function<void(const ServiceStatus&)> on_change;
  ServiceStatus status;
  // The number of the latest task. The answer to an earlier query is ignored.
  unsigned epoch = 0;
  bool task_was_seen = false;  // an answer has reported this task as running
  // Consecutive answers that the core's presence contradicts, or that are missing.
  unsigned contradictions = 0;
};

namespace {

constexpr unsigned k_busy_poll_milliseconds = 150;
// Each query makes the host read the whole process table, so an idle window asks rarely.
constexpr unsigned k_watch_milliseconds = 2000;
// About two seconds of busy polling.
constexpr unsigned k_max_contradictions = 14;

const Failure k_no_reason = {"", "启动失败，后台服务没有给出原因。", ""};
const Failure k_no_answer = {"no_answer", "后台服务没有应答，请重新打开 Corvana。", ""};
constexpr char k_stop_never_ran[] = "thread_failed";
const Failure k_stop_failed = {
    "", "核心没有停止，它可能属于其他用户，或拒绝退出。\n系统代理已经恢复，可以稍后再试一次。", ""};

FlValue* value_at(FlValue* map, const char* key, FlValueType type) {
  if (map == nullptr || fl_value_get_type(map) != FL_VALUE_TYPE_MAP) return nullptr;
  FlValue* value = fl_value_lookup_string(map, key);
  return value != nullptr && fl_value_get_type(value) == type ? value : nullptr;
}

void ask(ServiceClient* client);

void call(ServiceClient* client, const char* method, FlValue* args,
          std::function<void(const UiReply&)> on_reply) {
  ui_invoke_method(client->messenger.get(), k_service_channel, method, args,
                   [life = client->life, on_reply = std::move(on_reply)](const UiReply& reply) {
                     if (!life.expired()) on_reply(reply);
                   });
}

void set_phase(ServiceClient* client, Phase phase, Failure failure = {}) {
  client->status.phase = phase;
  client->status.failure = std::move(failure);
  if (phase != Phase::starting) client->status.stop_wanted = false;
  client->on_change(client->status);
}

bool waits_for_answer(Phase phase) { return is_busy(phase) || phase == Phase::checking; }

void ask_later(ServiceClient* client) {
  const Phase phase = client->status.phase;
  const bool watches = phase == Phase::connected || phase == Phase::stop_failed;
  const bool waits = waits_for_answer(phase);
  if (!waits && !watches) return;
  run_later(waits ? k_busy_poll_milliseconds : k_watch_milliseconds, client->life,
            [client, epoch = client->epoch] {
              if (epoch == client->epoch) ask(client);
            });
}

void begin_task(ServiceClient* client, Phase phase) {
  ++client->epoch;
  client->contradictions = 0;
  client->task_was_seen = false;
  set_phase(client, phase);
}

Failure failure_in(FlValue* record) {
  return {string_at(record, "code").value_or(""), string_at(record, "message").value_or(""),
          string_at(record, "logTail").value_or("")};
}

void stop(ServiceClient* client);

void fetch_start_failure(ServiceClient* client) {
  call(client, "getLastError", nullptr, [client](const UiReply& reply) {
    // The core of an earlier start may still be running.
    if (client->status.stop_wanted && client->status.core_running) return stop(client);
    Failure failure = failure_in(reply.value);
    if (failure.message.empty()) failure = k_no_reason;
    set_phase(client, Phase::start_failed, std::move(failure));
  });
}

// A stop records an error only when its thread can't start. If the stop was seen running, or the
// code differs, the error is from an earlier task.
void fetch_stop_failure(ServiceClient* client) {
  call(client, "getLastError", nullptr, [client](const UiReply& reply) {
    const Failure failure = failure_in(reply.value);
    const bool never_ran = failure.code == k_stop_never_ran && !client->task_was_seen;
    set_phase(client, Phase::stop_failed, never_ran ? failure : k_stop_failed);
    ask_later(client);
  });
}

void stop(ServiceClient* client) {
  begin_task(client, Phase::stopping);
  // The answer to stopVPN is false also when all goes well, so only its arrival counts.
  call(client, "stopVPN", nullptr, [client](const UiReply& reply) {
    if (reply.kind != UiReply::Kind::success) set_phase(client, Phase::stop_failed, k_no_answer);
    ask_later(client);
  });
}

void take_report(ServiceClient* client, const TaskReport& report) {
  const Phase now = client->status.phase;
  client->task_was_seen |= !report.is_complete;
  client->contradictions = is_busy(now) && report.is_complete ? client->contradictions + 1 : 0;
  const Phase next = next_phase(now, report, client->contradictions > k_max_contradictions);
  const bool core_came_or_went = client->status.core_running != report.core_running;
  client->status.core_running = report.core_running;

  if (next == Phase::start_failed && now != next) return fetch_start_failure(client);
  if (next == Phase::stop_failed && now != next) return fetch_stop_failure(client);
  if (next == Phase::connected && client->status.stop_wanted) return stop(client);
  if (next != now) {
    client->status.started_here = next == Phase::connected && now == Phase::starting;
    set_phase(client, next);
  } else if (core_came_or_went) {
    client->on_change(client->status);
  }
  ask_later(client);
}

// One missed answer says nothing about the task, which may still succeed.
void take_silence(ServiceClient* client) {
  const Phase now = client->status.phase;
  if (!waits_for_answer(now) || ++client->contradictions <= k_max_contradictions) {
    return ask_later(client);
  }
  set_phase(client, now == Phase::stopping ? Phase::stop_failed : Phase::start_failed, k_no_answer);
  ask_later(client);
}

void ask(ServiceClient* client) {
  call(client, "checkTaskComplete", nullptr, [client, epoch = client->epoch](const UiReply& reply) {
    if (epoch != client->epoch) return;
    const auto is_complete = bool_at(reply.value, "isComplete");
    if (!is_complete) return take_silence(client);
    take_report(client, {*is_complete, bool_at(reply.value, "taskResult").value_or(false),
                         bool_at(reply.value, "vpnStatus").value_or(false)});
  });
}

}  // namespace

std::shared_ptr<ServiceClient> service_client_new(
    FlBinaryMessenger* messenger, const Life& life,
    std::function<void(const ServiceStatus&)> on_change) {
  auto client = std::make_shared<ServiceClient>();
  client->messenger = share_object(messenger);
  client->life = life;
  client->on_change = std::move(on_change);
  return client;
}

void service_client_check(ServiceClient* client) { ask(client); }

void service_client_connect(ServiceClient* client, const std::string& config, ProxyMode mode) {
  if (is_busy(client->status.phase)) return;
  begin_task(client, Phase::starting);
  g_autoptr(FlValue) args = fl_value_new_map();
  fl_value_set_string_take(args, "configPath", fl_value_new_string(config.c_str()));
  fl_value_set_string_take(args, "proxyMode", fl_value_new_int(static_cast<int64_t>(mode)));
  call(client, "startVPN", args, [client](const UiReply& reply) {
    if (reply.kind != UiReply::Kind::success)
      return set_phase(client, Phase::start_failed, k_no_answer);
    const bool accepted =
        fl_value_get_type(reply.value) == FL_VALUE_TYPE_BOOL && fl_value_get_bool(reply.value);
    if (!accepted) return fetch_start_failure(client);
    ask_later(client);
  });
}

void service_client_disconnect(ServiceClient* client) {
  if (client->status.phase == Phase::stopping) return;
  if (client->status.phase != Phase::starting) return stop(client);
  // The answers don't tell which of two tasks has ended, so the stop waits for the start's end.
  client->status.stop_wanted = true;
  client->on_change(client->status);
}

void service_client_fail(ServiceClient* client, Failure failure) {
  set_phase(client, Phase::start_failed, std::move(failure));
}

std::optional<bool> bool_at(FlValue* map, const char* key) {
  FlValue* value = value_at(map, key, FL_VALUE_TYPE_BOOL);
  if (value == nullptr) return std::nullopt;
  return fl_value_get_bool(value);
}

std::optional<std::string> string_at(FlValue* map, const char* key) {
  FlValue* value = value_at(map, key, FL_VALUE_TYPE_STRING);
  if (value == nullptr) return std::nullopt;
  g_autofree char* text = g_utf8_make_valid(fl_value_get_string(value), -1);
  return std::string(text);
}

}  // namespace preview
