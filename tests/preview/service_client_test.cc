#include "flutter_embedding/preview/service_client.h"

#include <gtest/gtest.h>

#include <map>

#include "flutter_embedding/engine.h"

namespace {

using preview::Phase;

FlValue* report(bool is_complete, bool task_result, bool core_running) {
  FlValue* map = fl_value_new_map();
  fl_value_set_string_take(map, "isComplete", fl_value_new_bool(is_complete));
  fl_value_set_string_take(map, "taskResult", fl_value_new_bool(task_result));
  fl_value_set_string_take(map, "vpnStatus", fl_value_new_bool(core_running));
  return map;
}

FlValue* record(const char* code, const char* message) {
  FlValue* map = fl_value_new_map();
  fl_value_set_string_take(map, "code", fl_value_new_string(code));
  fl_value_set_string_take(map, "message", fl_value_new_string(message));
  return map;
}

// A host that answers every method from a table; what isn't in there gets a null.
class ServiceClient : public testing::Test {
 protected:
  ServiceClient() {
    g_autoptr(FlStandardMethodCodec) codec = fl_standard_method_codec_new();
    g_autoptr(FlMethodChannel) channel =
        fl_method_channel_new(messenger, preview::kServiceChannel, FL_METHOD_CODEC(codec));
    const auto answer = [](FlMethodChannel*, FlMethodCall* call, gpointer test) {
      const auto& answer_of = static_cast<ServiceClient*>(test)->answers[call_name(call)];
      g_autoptr(FlValue) value = answer_of ? answer_of() : fl_value_new_null();
      g_autoptr(FlMethodSuccessResponse) response = fl_method_success_response_new(value);
      fl_method_call_respond(call, FL_METHOD_RESPONSE(response), nullptr);
    };
    fl_method_channel_set_method_call_handler(channel, answer, this, nullptr);
  }
  ~ServiceClient() override { g_object_unref(engine); }

  static const char* call_name(FlMethodCall* call) { return fl_method_call_get_name(call); }

  void wait_for(Phase phase) {
    for (const gint64 end = g_get_monotonic_time() + 10 * G_USEC_PER_SEC;
         status().phase != phase && g_get_monotonic_time() < end;) {
      g_main_context_iteration(nullptr, TRUE);
    }
    ASSERT_EQ(status().phase, phase);
  }

  void check_finds_core() {
    answers["checkTaskComplete"] = [] { return report(true, false, true); };
    preview::service_client_check(client.get());
    wait_for(Phase::connected);
  }

  const preview::ServiceStatus& status() { return preview::service_client_status(client.get()); }

  std::map<std::string, std::function<FlValue*()>> answers;
  std::shared_ptr<FlDartProject> project{fl_dart_project_new(), g_object_unref};
  FlEngine* engine = fl_engine_new(project.get());
  FlBinaryMessenger* messenger = fl_engine_get_binary_messenger(engine);
  std::shared_ptr<void> life = std::make_shared<char>();
  std::shared_ptr<preview::ServiceClient> client =
      preview::service_client_new(messenger, life, [](const preview::ServiceStatus&) {});
};

TEST_F(ServiceClient, AFailedStopIsExplainedByItsOwnRecordOnly) {
  const std::tuple<const char*, const char*, bool> rows[] = {
      {"thread_failed", "no thread", true}, {"port_not_ready", "an earlier start", false}};
  check_finds_core();
  for (const auto& [code, message, is_its_own] : rows) {
    answers["getLastError"] = [code = code, message = message] { return record(code, message); };
    preview::service_client_disconnect(client.get());
    ASSERT_EQ(status().phase, Phase::stopping);
    wait_for(Phase::stop_failed);
    EXPECT_EQ(status().failure.message == message, is_its_own) << status().failure.message;
    EXPECT_FALSE(status().failure.message.empty());
  }
}

TEST_F(ServiceClient, MissedAnswersDontEndAStart) {
  check_finds_core();
  EXPECT_FALSE(status().started_here);
  int asked = 0;
  answers["startVPN"] = [] { return fl_value_new_bool(true); };
  answers["checkTaskComplete"] = [&asked] {
    return ++asked <= 3 ? fl_value_new_null() : report(true, true, true);
  };
  preview::service_client_connect(client.get(), "/c.json", preview::ProxyMode::no_system_proxy);
  wait_for(Phase::connected);
  EXPECT_EQ(asked, 4);
  EXPECT_TRUE(status().started_here);
}

TEST_F(ServiceClient, LastingSilenceIsAFailure) {
  preview::service_client_check(client.get());
  wait_for(Phase::start_failed);
  EXPECT_EQ(status().failure.code, "no_answer");
}

}  // namespace
