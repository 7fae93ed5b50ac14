#ifndef CORVANA_FLUTTER_EMBEDDING_PLUGIN_REGISTRAR_H_
#define CORVANA_FLUTTER_EMBEDDING_PLUGIN_REGISTRAR_H_

#include <flutter_linux/flutter_linux.h>

// A registrar, which a plugin may keep. It holds a reference on the messenger but not on the view.
// Main thread only.
FlPluginRegistrar* plugin_registrar_new(FlView* view, FlBinaryMessenger* messenger);

#endif
