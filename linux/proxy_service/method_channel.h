#ifndef CORVANA_PROXY_SERVICE_METHOD_CHANNEL_H_
#define CORVANA_PROXY_SERVICE_METHOD_CHANNEL_H_

#include <flutter_linux/flutter_linux.h>

// Answers each call before it returns, with a success response, or with the standard
// not-implemented response for an unknown name; never with an error. A start or stop is handed to a
// worker and its outcome told by the task state. Main thread.
void method_call_handler(FlMethodChannel* channel, FlMethodCall* method_call, gpointer user_data);

#endif
