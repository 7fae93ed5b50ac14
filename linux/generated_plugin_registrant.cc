#include "generated_plugin_registrant.h"

extern "C" {
void platform_device_id_linux_plugin_register_with_registrar(FlPluginRegistrar* registrar);
void screen_retriever_plugin_register_with_registrar(FlPluginRegistrar* registrar);
void sentry_flutter_plugin_register_with_registrar(FlPluginRegistrar* registrar);
void tray_manager_plugin_register_with_registrar(FlPluginRegistrar* registrar);
void url_launcher_plugin_register_with_registrar(FlPluginRegistrar* registrar);
void window_manager_plugin_register_with_registrar(FlPluginRegistrar* registrar);
}

namespace {

struct Plugin {
  const char* name;
  void (*register_with)(FlPluginRegistrar*);
};

}  // namespace

static constexpr Plugin k_plugins[] = {
    {"PlatformDeviceIdLinuxPlugin", platform_device_id_linux_plugin_register_with_registrar},
    {"ScreenRetrieverPlugin", screen_retriever_plugin_register_with_registrar},
    {"SentryFlutterPlugin", sentry_flutter_plugin_register_with_registrar},
    {"TrayManagerPlugin", tray_manager_plugin_register_with_registrar},
    {"UrlLauncherPlugin", url_launcher_plugin_register_with_registrar},
    {"WindowManagerPlugin", window_manager_plugin_register_with_registrar},
};

void fl_register_plugins(FlPluginRegistry* registry) {
  for (const Plugin& plugin : k_plugins) {
    g_autoptr(FlPluginRegistrar) registrar =
        fl_plugin_registry_get_registrar_for_plugin(registry, plugin.name);
    plugin.register_with(registrar);
  }
}
