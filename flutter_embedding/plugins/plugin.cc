// Stands in for one plugin library; the build passes its name and registration function. The real
// plugins also have channels, which nothing here calls.

#include <flutter_linux/flutter_linux.h>

extern "C" void PLUGIN_REGISTRATION_FUNCTION(FlPluginRegistrar* registrar);

void PLUGIN_REGISTRATION_FUNCTION(FlPluginRegistrar* registrar) {
  g_return_if_fail(FL_IS_PLUGIN_REGISTRAR(registrar));
  g_debug("%s registered", PLUGIN_NAME);
}
