#ifndef CORVANA_FLUTTER_EMBEDDING_PLUGIN_REGISTRAR_H_
#define CORVANA_FLUTTER_EMBEDDING_PLUGIN_REGISTRAR_H_

#include <flutter_linux/flutter_linux.h>

// A registrar that a plugin may keep as long as it likes: it doesn't keep the view alive, only the
// messenger. Main thread only.
FlPluginRegistrar* plugin_registrar_new(FlView* view, FlBinaryMessenger* messenger);

#endif
