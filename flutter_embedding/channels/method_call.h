#ifndef CORVANA_FLUTTER_EMBEDDING_CHANNELS_METHOD_CALL_H_
#define CORVANA_FLUTTER_EMBEDDING_CHANNELS_METHOD_CALL_H_

#include <flutter_linux/flutter_linux.h>

#include <memory>

#include "flutter_embedding/channels/pending_reply.h"

// Reads the call that came in on a channel. A message that is no call is reported as a GLib warning
// and gives null; the reply then goes out as unhandled. Main thread only.
FlMethodCall* method_call_from_message(const char* channel, GBytes* message,
                                       std::unique_ptr<PendingReply> reply);

#endif
