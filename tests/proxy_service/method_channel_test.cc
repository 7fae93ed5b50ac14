#include <dirent.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <filesystem>
#include <fstream>

#include "proxy_service/tasks.h"
#include "support/channel_client.h"
#include "support/leaving.h"
#include "support/temporary_home.h"

using namespace std::chrono_literals;

// Whether a core that dies at once is still seen alive is a matter of moments, unless none is seen.
static std::atomic<bool> g_hidden_processes{false};

extern "C" DIR* opendir(const char* path) {
  static const auto real = reinterpret_cast<decltype(&opendir)>(dlsym(RTLD_NEXT, "opendir"));
  return real(g_hidden_processes && std::string(path) == "/proc" ? "/proc/self/task" : path);
}

static const char k_config[] =
    R"({"experimental": {"clash_api": {"external_controller": "127.0.0.1:9090"}},
        "inbounds": [{"type": "mixed", "listen_port": 7890}]})";
static const char k_no_error[] = "{code: , message: , logTail: }";

static std::string error_reply(const std::string& code, const std::string& message,
                               const std::string& log_tail) {
  return "{code: " + code + ", message: " + message + ", logTail: " + log_tail + "}";
}

static std::string not_running(const std::string& log_tail) {
  return error_reply("core_exec_failed",
                     "zant 进程未能启动。\n"
                     "常见原因：glibc 版本不兼容 / 配置非法 / TUN 模式但无 CAP_NET_ADMIN。\n"
                     "建议：用 corvana-helper.service 跑（已自动持有 CAP_NET_ADMIN）。",
                     log_tail);
}

static std::string port_not_ready(const std::string& port, const std::string& log_tail) {
  return error_reply(
      "port_not_ready",
      "zant 已启动但 clash-api 端口 " + port + " 在 4 秒内未监听。\n可能配置加载失败或端口被占用。",
      log_tail);
}

static std::string status_reply(bool complete, bool result, bool core_runs) {
  const auto word = [](bool value) { return value ? "true" : "false"; };
  return std::string("{isComplete: ") + word(complete) + ", taskResult: " + word(result) +
         ", vpnStatus: " + word(core_runs) + "}";
}

class MethodChannel : public testing::Test {
 protected:
  MethodChannel() {
    home_.add_stand_in("gsettings", "#!/bin/sh\n[ $3 = mode ] && printf '%s;' $4 >>modes\n");
    setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
    write_file("config.json", k_config);
  }
  ~MethodChannel() override {
    begin_leaving();
    wait_for_workers();
    system("pkill -9 -f 'zant +run +-c'");
  }

  // A single process that looks like a core and does nothing.
  void use_idle_core() {
    home_.add_stand_in("zant", "#!/bin/bash\nexec -a \"zant $1 $2\" sleep 99\n");
  }

  std::string start(const char* config_path, int64_t mode = 1) {
    g_autoptr(FlValue) args = fl_value_new_map();
    fl_value_set_string_take(args, "configPath", fl_value_new_string(config_path));
    fl_value_set_string_take(args, "proxyMode", fl_value_new_int(mode));
    return client_.call("startVPN", args);
  }

  // Polls as the user interface does, and checks that the main thread is never held up.
  std::string poll() {
    run_main_loop_until([] { return false; }, 20ms);
    const auto asked = std::chrono::steady_clock::now() - time_without_processor();
    client_.call("getLastError");
    const auto answered = std::chrono::steady_clock::now() - time_without_processor();
    slowest_answer_ = std::max(slowest_answer_, answered - asked);
    return client_.call("checkTaskComplete");
  }

  // A core that was just killed may still be seen by the first status after the task's end.
  void expect_end(const std::string& end) {
    const auto deadline = std::chrono::steady_clock::now() + 30s;
    std::string status = poll();
    while (status != end && std::chrono::steady_clock::now() < deadline) status = poll();
    EXPECT_EQ(status, end);
  }

  // How long this thread could have run but others did: a busy machine is not a held lock.
  static std::chrono::nanoseconds time_without_processor() {
    int64_t running = 0, ready = 0;
    std::ifstream("/proc/thread-self/schedstat") >> running >> ready;
    return std::chrono::nanoseconds(ready);
  }

  // The modes of the desktop's proxy, in the order in which they were set.
  static std::string gnome_modes() { return read_file("modes"); }

  const TemporaryHome home_;
  ChannelClient client_;
  std::chrono::steady_clock::duration slowest_answer_{0};
};

TEST_F(MethodChannel, ArgumentsOfTheWrongShapeMeanNoConfiguration) {
  use_idle_core();
  g_autoptr(FlValue) wrong_types = fl_value_new_map();
  fl_value_set_string_take(wrong_types, "configPath", fl_value_new_int(1));
  fl_value_set_string_take(wrong_types, "proxyMode", fl_value_new_string("4"));
  g_autoptr(FlValue) missing = fl_value_new_map();
  fl_value_set_string_take(missing, "configPath", fl_value_new_string("missing.json"));
  const std::pair<FlValue*, std::string> rows[] = {
      {nullptr, ""}, {wrong_types, ""}, {missing, "missing.json"}};
  for (const auto& [args, path] : rows) {
    EXPECT_EQ(client_.call("startVPN", args), "true");
    expect_end(status_reply(true, false, false));
    EXPECT_EQ(client_.call("getLastError"),
              error_reply("config_failed",
                          "zant 配置文件不存在: " + path +
                              "\nDart 侧 ZantConfigBuilder 必须先写入 JSON 再调 startVPN。",
                          ""));
  }
}

TEST_F(MethodChannel, FailuresOfACoreThatDoesNotComeUp) {
  const struct {
    const char* core;
    const char* config;
    std::string failure;
    const char* console;
    const char* path = "config.json";
  } rows[] = {
      {"", k_config, not_running("sh: 1: nohup: not found\n"),
       "[Corvana] zant 进程未启动\nsh: 1: nohup: not found\n\n"},
      {"#!/bin/bash\necho $'de\\377'; exec -a \"zant run -c\" sleep 99\n", k_config,
       port_not_ready("9090", "de\uFFFD\n"), "[Corvana] zant 端口未就绪\nde\xFF\n\n"},
      {"#!/bin/bash\nexec -a \"zant run -c\" sleep 0.3\n", "{}", port_not_ready("0", ""),
       "[Corvana] 警告：无法从 JSON 解析 clash_api 端口，将仅基于进程存活判断成功\n"
       "[Corvana] zant 端口未就绪\n\n"},
      // The shell would run what follows the line feed.
      {"#!/bin/sh\n", k_config, not_running(""), "[Corvana] zant 进程未启动\n\n", "a\n>executed"},
  };
  for (const auto& row : rows) {
    home_.add_stand_in("zant", row.core);
    write_file(row.path, row.config);
    write_file(".local/share/Corvana/run/runtime.log", "");
    const std::string path = getenv("PATH");
    g_hidden_processes = *row.core == '\0';
    if (g_hidden_processes) setenv("PATH", home_.bin().c_str(), 1);  // without nohup
    testing::internal::CaptureStderr();
    EXPECT_EQ(start(row.path), "true");
    EXPECT_EQ(client_.call("getLastError"), k_no_error) << "emptied at once";
    expect_end(status_reply(true, false, false));
    setenv("PATH", path.c_str(), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), row.console);
    EXPECT_EQ(client_.call("getLastError"), row.failure) << "reading changes nothing";
    EXPECT_EQ(gnome_modes(), "") << "a failed start leaves the proxy alone";
    EXPECT_FALSE(std::filesystem::exists("executed"));
  }
}

TEST_F(MethodChannel, StartsTwiceAndStopsWithACore) {
  std::filesystem::copy_file(SAMPLE_CORE, home_.bin() + "/zant");
  const auto begun = std::chrono::steady_clock::now();
  EXPECT_EQ(start("config.json"), "true");
  EXPECT_EQ(start("config.json", 4), "true");
  EXPECT_EQ(client_.call("stopVPN"), "false") << "during the starts";
  for (int most = 1000; most > 0 && gnome_modes() != "manual;none;none;"; --most) poll();
  EXPECT_EQ(gnome_modes(), "manual;none;none;");
  EXPECT_TRUE(wait_for_workers());
  expect_end(status_reply(true, true, false));
  EXPECT_EQ(client_.call("getLastError"), k_no_error);
  EXPECT_LT(slowest_answer_, 20ms);
  // A second each after the end of the first core and of the second one.
  EXPECT_GE(std::chrono::steady_clock::now() - begun, 2s);

  testing::internal::CaptureStdout();
  EXPECT_EQ(client_.call("stopVPN"), "false");
  expect_end(status_reply(true, true, false));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "代理服务未运行\n");
}

TEST_F(MethodChannel, WithoutPortsACoreThatLivesIsASuccess) {
  use_idle_core();
  write_file("config.json", "{}");
  EXPECT_EQ(start("config.json"), "true");
  expect_end(status_reply(true, true, true));
  EXPECT_EQ(gnome_modes(), "");
  EXPECT_EQ(client_.call("checkVpnIsOpen"), "true");
}
