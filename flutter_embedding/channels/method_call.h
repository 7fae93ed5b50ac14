#ifndef CORVANA_FLUTTER_EMBEDDING_CHANNELS_METHOD_CALL_H_
#define CORVANA_FLUTTER_EMBEDDING_CHANNELS_METHOD_CALL_H_

#include <flutter_linux/flutter_linux.h>

#include <memory>

#include "flutter_embedding/channels/pending_reply.h"

// Decodes a call. A malformed message is reported as a GLib warning and gives null; its sender
// learns that nobody handled it. Main thread only.
FlMethodCall* method_call_from_message(const char* channel, GBytes* message,
                                       std::unique_ptr<PendingReply> reply);

#endif
