#ifndef CORVANA_FLUTTER_EMBEDDING_ENGINE_H_
#define CORVANA_FLUTTER_EMBEDDING_ENGINE_H_

#include <flutter_linux/flutter_linux.h>

// An engine without a view: all that channels need. It keeps a reference on the project. When it
// goes, its messenger is closed, whoever else still holds that. Main thread only.
FlEngine* fl_engine_new(FlDartProject* project);

#endif
