#ifndef CORVANA_GENERATED_PLUGIN_REGISTRANT_H_
#define CORVANA_GENERATED_PLUGIN_REGISTRANT_H_

#include <flutter_linux/flutter_linux.h>

// Written by hand, despite its name. Registers the six plugins, in their fixed order, with the
// view. Borrows `registry`. Main thread.
void fl_register_plugins(FlPluginRegistry* registry);

#endif
