#include "proxy_service/diagnostics.h"

#include <string>

#include "core/core_paths.h"
#include "core/core_process.h"
#include "proxy_service/reply_map.h"
#include "support/files.h"
#include "support/shell_command.h"
#include "system_proxy/desktop_environment.h"

static constexpr size_t k_max_version_size = 255;

static std::string core_version(const std::string& core_path) {
  const std::string command = "\"" + core_path + "\" version 2>/dev/null | head -1";
  const std::string version = first_output_line(command, k_max_version_size);
  return version.empty() ? "unknown" : version;
}

FlValue* collect_diagnostics() {
  FlValue* const report = fl_value_new_map();
  set_text(report, "desktop", detect_desktop_environment());
  set_text(report, "sessionType", environment_value("XDG_SESSION_TYPE"));
  set_bool(report, "hasLibproxy",
           shell_command_succeeds("ldconfig -p 2>/dev/null | grep -q 'libproxy\\.so\\.1'"));
  set_bool(report, "hasTunDevice", path_exists("/dev/net/tun"));
  set_bool(report, "hasZantSystem", has_command(k_core_name));
  set_bool(report, "helperActive",
           shell_command_succeeds("systemctl is-active --quiet corvana-helper 2>/dev/null"));
  set_bool(report, "hasGsettings", has_command("gsettings"));
  set_bool(report, "hasKwriteconfig", has_command("kwriteconfig5") || has_command("kwriteconfig6"));

  const std::string app_dir = get_executable_dir();
  const std::string log_path = runtime_log_path();
  const std::string core_path = find_zant_binary();
  set_text(report, "appDir", app_dir);
  set_text(report, "activeCore", k_core_name);
  set_text(report, "corePath", core_path);
  set_bool(report, "coreExists", !core_path.empty());
  if (!core_path.empty()) set_text(report, "zantVersion", core_version(core_path));
  set_text(report, "runtimeLogPath", log_path);
  return report;
}
