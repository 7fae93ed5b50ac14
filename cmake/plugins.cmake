# The six plugin libraries, each lib<target>.so. A row is the target, the name under which the plugin
# asks for its registrar, and what comes before _register_with_registrar in its function, which isn't
# always the library's name.
set(CORVANA_PLUGIN_TABLE
  "platform_device_id_linux_plugin  PlatformDeviceIdLinuxPlugin  platform_device_id_linux_plugin"
  "screen_retriever_plugin          ScreenRetrieverPlugin        screen_retriever_plugin"
  "sentry_flutter_plugin            SentryFlutterPlugin          sentry_flutter_plugin"
  "tray_manager_plugin              TrayManagerPlugin            tray_manager_plugin"
  "url_launcher_linux_plugin        UrlLauncherPlugin            url_launcher_plugin"
  "window_manager_plugin            WindowManagerPlugin          window_manager_plugin")

# The targets alone.
set(CORVANA_PLUGINS ${CORVANA_PLUGIN_TABLE})
list(TRANSFORM CORVANA_PLUGINS REPLACE " .*" "")

# Stops the configuration when the registrant's rows aren't those of the table, in its order.
function(corvana_check_registrant registrant)
  file(STRINGS ${registrant} rows REGEX "^    {\"")
  set(expected "")
  foreach(row IN LISTS CORVANA_PLUGIN_TABLE)
    separate_arguments(row UNIX_COMMAND ${row})
    list(GET row 1 name)
    list(GET row 2 function)
    list(APPEND expected "    {\"${name}\", ${function}_register_with_registrar},")
  endforeach()
  if(NOT rows STREQUAL expected)
    message(FATAL_ERROR "${registrant} doesn't register the plugins of cmake/plugins.cmake")
  endif()
endfunction()
