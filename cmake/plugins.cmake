# The targets of the six plugin libraries; each library is lib<target>.so.
set(CORVANA_PLUGINS
  platform_device_id_linux_plugin
  screen_retriever_plugin
  sentry_flutter_plugin
  tray_manager_plugin
  url_launcher_linux_plugin
  window_manager_plugin)
