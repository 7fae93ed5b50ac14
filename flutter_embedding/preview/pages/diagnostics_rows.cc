#include "flutter_embedding/preview/pages/diagnostics_rows.h"

#include "flutter_embedding/preview/runner/service_client.h"

namespace preview {
namespace {

enum class Kind { text, flag, needed };  // without a needed one nothing works

struct Entry {
  const char* key;
  const char* label;
  Kind kind;
  const char* when_empty;
};

constexpr Entry k_entries[] = {
    {"desktop", "桌面环境", Kind::text, "未知"},
    {"sessionType", "会话类型", Kind::text, "未设置"},
    {"hasLibproxy", "libproxy 库", Kind::flag, "未知"},
    {"hasTunDevice", "TUN 设备", Kind::flag, "未知"},
    {"hasZantSystem", "系统路径中有核心", Kind::flag, "未知"},
    {"helperActive", "辅助服务已启动", Kind::flag, "未知"},
    {"hasGsettings", "gsettings 工具", Kind::flag, "未知"},
    {"hasKwriteconfig", "kwriteconfig 工具", Kind::flag, "未知"},
    {"appDir", "程序目录", Kind::text, "未知"},
    {"activeCore", "当前核心", Kind::text, "未知"},
    {"corePath", "核心路径", Kind::text, "未找到"},
    {"coreExists", "核心可用", Kind::needed, "未知"},
    {"zantVersion", "核心版本", Kind::text, "未找到核心"},
    {"runtimeLogPath", "运行日志", Kind::text, "未知"},
};

DiagnosticsRow flag_row(const Entry& entry, FlValue* report) {
  const auto flag = bool_at(report, entry.key);
  if (!flag) return {entry.label, entry.when_empty, Tone::absent};
  if (*flag) return {entry.label, "✓ 是", Tone::good};
  return {entry.label, "✗ 否", entry.kind == Kind::needed ? Tone::bad : Tone::absent};
}

DiagnosticsRow text_row(const Entry& entry, FlValue* report) {
  const std::string text = string_at(report, entry.key).value_or("");
  if (text.empty()) return {entry.label, entry.when_empty, Tone::absent};
  return {entry.label, text, Tone::plain};
}

}  // namespace

std::vector<DiagnosticsRow> diagnostics_rows(FlValue* report) {
  std::vector<DiagnosticsRow> rows;
  for (const Entry& entry : k_entries) {
    rows.push_back(entry.kind == Kind::text ? text_row(entry, report) : flag_row(entry, report));
  }
  return rows;
}

std::string diagnostics_text(const std::vector<DiagnosticsRow>& rows) {
  std::string text;
  for (const DiagnosticsRow& row : rows) text += std::string(row.label) + "\t" + row.value + "\n";
  return text;
}

}  // namespace preview
