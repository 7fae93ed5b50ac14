// The wire between the host and the user interface of one engine. The host's end is the interface
// FlBinaryMessenger; the user interface's end is here. Main thread only.

#ifndef CORVANA_FLUTTER_EMBEDDING_CHANNELS_ENGINE_MESSENGER_H_
#define CORVANA_FLUTTER_EMBEDDING_CHANNELS_ENGINE_MESSENGER_H_

#include <functional>

#include "flutter_embedding/channels/binary_messenger.h"

G_DECLARE_FINAL_TYPE(FlEngineMessenger, fl_engine_messenger, FL, ENGINE_MESSENGER, GObject)

FlEngineMessenger* fl_engine_messenger_new();

// Called when the engine is destroyed. Destroys every handler, receiver and waiting reply callback
// and drops pending deliveries; the messenger ignores every later message. Also breaks the reference
// cycle of messenger, handler and channel.
void fl_engine_messenger_close(FlEngineMessenger* messenger);

// Bytes are borrowed for the call. The reply is null when nobody handled the message.
using ReplyCallback = std::function<void(GBytes* reply)>;
using MessageReceiver = std::function<void(GBytes* message)>;

// The reply comes from the main loop, later. On a closed messenger it never comes, and the
// callback is destroyed.
void fl_engine_messenger_send_to_host(FlEngineMessenger* messenger, const char* channel,
                                      GBytes* message, ReplyCallback on_reply);

// The one receiver of what the host sends on a channel; null removes it.
void fl_engine_messenger_set_receiver(FlEngineMessenger* messenger, const char* channel,
                                      MessageReceiver receiver);

// Runs `action` from the main loop, after what is already queued. A closed messenger drops it.
void fl_engine_messenger_run_later(FlEngineMessenger* messenger, std::function<void()> action);

#endif
