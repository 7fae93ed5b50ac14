#ifndef CORVANA_FLUTTER_EMBEDDING_ENGINE_H_
#define CORVANA_FLUTTER_EMBEDDING_ENGINE_H_

#include <flutter_linux/flutter_linux.h>

// An engine without a view. Disposing it closes its messenger. Main thread only.
FlEngine* engine_new();

#endif
