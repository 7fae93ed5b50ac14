#include "core/start_failures.h"

#include "proxy_service/last_error.h"
#include "support/console.h"
#include "support/files.h"
#include "support/guarded.h"

static constexpr size_t k_max_tail_lines = 40;

static constexpr char k_core_missing_message[] =
    "未检测到 zant 二进制。\n"
    "请运行 install.sh 重新安装 Corvana，或 apt/dnf install sing-box。\n"
    "支持位置：系统 PATH / ${app}/bin/zant / /opt/corvana/bin/zant / /usr/local/bin/zant";

static void record_with_log_tail(const std::string& code, const std::string& message,
                                 const std::string& console_line, const std::string& log_path) {
  const std::string log_tail = read_file_tail(log_path, k_max_tail_lines);
  set_last_error(code, message, log_tail);
  print_error_line(console_line + "\n" + log_tail);
}

void record_config_missing(const std::string& config_path) {
  set_last_error("config_failed",
                 "zant 配置文件不存在: " + config_path +
                     "\nDart 侧 ZantConfigBuilder 必须先写入 JSON 再调 startVPN。",
                 "");
}

void record_core_missing() { set_last_error("core_missing", k_core_missing_message, ""); }

void record_core_missing_before_start() {
  set_last_error("core_missing",
                 std::string(k_core_missing_message) + "\n详细排错: linux/packaging/README.md", "");
}

void record_core_not_running(const std::string& log_path) {
  record_with_log_tail("core_exec_failed",
                       "zant 进程未能启动。\n"
                       "常见原因：glibc 版本不兼容 / 配置非法 / TUN 模式但无 CAP_NET_ADMIN。\n"
                       "建议：用 corvana-helper.service 跑（已自动持有 CAP_NET_ADMIN）。",
                       "[Corvana] zant 进程未启动", log_path);
}

void record_port_not_ready(int clash_port, const std::string& log_path) {
  record_with_log_tail("port_not_ready",
                       "zant 已启动但 clash-api 端口 " + std::to_string(clash_port) +
                           " 在 4 秒内未监听。\n可能配置加载失败或端口被占用。",
                       "[Corvana] zant 端口未就绪", log_path);
}

void record_thread_failed() {
  run_guarded([] {
    set_last_error("thread_failed",
                   "无法为此操作创建后台线程，或后台线程意外结束。\n"
                   "系统的内存或进程数可能已用尽，请关闭一些程序后重试。",
                   "");
  });
}
