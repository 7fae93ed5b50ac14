// Every call gets exactly one reply, and every task comes to an end. What touches other processes
// and what waits for them is replaced below: no command is ever run.
#include "core/process_probe.h"
#include "core/readiness.h"
#include "flutter_embedding/codec/standard_codec.h"
#include "flutter_embedding/engine.h"
#include "flutter_embedding/ui_channel.h"
#include "fuzz/fuzzer.h"
#include "proxy_service/last_error.h"
#include "proxy_service/method_channel.h"
#include "proxy_service/tasks.h"
#include "support/shell_command.h"

// Answers every command. The worker and the main thread never draw from it at the same time.
static FuzzedDataProvider* g_input;

static std::string text_without_nul(size_t most) {
  const std::string text = g_input->ConsumeRandomLengthString(most);
  return text.substr(0, text.find('\0'));
}

int run_shell_command(const std::string&) { return g_input->ConsumeBool() ? 0 : -1; }
bool shell_command_succeeds(const std::string&) { return g_input->ConsumeBool(); }
std::string command_output(const std::string&) { return g_input->ConsumeRandomLengthString(); }
std::string first_output_line(const std::string& command, size_t size) {
  if (command.rfind("command -v", 0) == 0) return g_input->ConsumeBool() ? "/bin/true" : "";
  return text_without_nul(size - 1);
}
std::chrono::milliseconds time_since_shell_activity() { return {}; }
bool is_process_running(const std::string&) { return false; }
bool wait_for_core_process() { return g_input->ConsumeBool(); }
bool wait_for_core_port(int) { return g_input->ConsumeBool(); }

static const char* const k_methods[] = {"checkVpnIsOpen",    "startVPN",      "stopVPN",
                                        "checkTaskComplete", "getTaskResult", "getLastError",
                                        "getDiagnostics",    "setLogEnabled"};

static void refuse_critical(const gchar*, GLogLevelFlags level, const gchar*, gpointer) {
  require((level & G_LOG_LEVEL_CRITICAL) == 0);
}

static FlEngine* engine_with_handler() {
  g_log_set_default_handler(refuse_critical, nullptr);
  FlEngine* const engine = engine_new();
  g_autoptr(FlStandardMethodCodec) codec = fl_standard_method_codec_new();
  g_autoptr(FlMethodChannel) channel =
      fl_method_channel_new(fl_engine_get_binary_messenger(engine), "", FL_METHOD_CODEC(codec));
  fl_method_channel_set_method_call_handler(channel, method_call_handler, nullptr, nullptr);
  return engine;
}

void try_input(FuzzedDataProvider& input) {
  static FlEngine* const engine = engine_with_handler();
  g_input = &input;
  const std::string method = input.PickValueInArray(k_methods);
  const std::string prefix = text_without_nul(20);
  const auto bytes = input.ConsumeBytes<uint8_t>(input.ConsumeIntegralInRange<size_t>(0, 4096));
  g_autoptr(GBytes) message = g_bytes_new(bytes.data(), bytes.size());
  const ValueRef args = decode_value(message, nullptr);

  std::string replies;
  const auto collect = [&replies](const UiReply& reply) {
    replies += reply.value == nullptr ? "none" + reply.error_code : "value";
  };
  ui_invoke_method(fl_engine_get_binary_messenger(engine), "", (prefix + method).c_str(),
                   args.get(), collect);
  while (g_main_context_iteration(nullptr, FALSE)) continue;
  require(wait_for_workers());
  require(replies == (prefix.empty() ? "value" : "none"));
  if (!prefix.empty() || (method != "startVPN" && method != "stopVPN")) return;
  const auto [complete, result] = read_task_state();
  require(complete && (method == "stopVPN" || result == read_last_error().code.empty()));
}
