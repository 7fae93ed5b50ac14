// Carries messages between the host and the user interface of one engine. Messages and replies are
// delivered by the main loop, in order, never from inside a send. Main thread only.

#ifndef CORVANA_FLUTTER_EMBEDDING_CHANNELS_MESSENGER_H_
#define CORVANA_FLUTTER_EMBEDDING_CHANNELS_MESSENGER_H_

#include <flutter_linux/flutter_linux.h>

#include <functional>
#include <memory>

#include "flutter_embedding/channels/pending_reply.h"
#include "flutter_embedding/later.h"

enum MessengerError {
  MESSENGER_ERROR_CLOSED,            // the engine is gone
  MESSENGER_ERROR_ALREADY_ANSWERED,  // a call has only one answer
};

GQuark messenger_error_quark();

FlBinaryMessenger* messenger_new();

// Called at the engine's end. Destroys every handler and receiver, which also breaks the reference
// cycle of messenger, handler and channel. Pending and later messages are dropped.
void messenger_close(FlBinaryMessenger* messenger);

// Bytes are borrowed. A null reply means that nobody handled the message.
using MessageHandler = std::function<void(GBytes* message, std::unique_ptr<PendingReply> reply)>;
using MessageReceiver = std::function<void(GBytes* message)>;
using ReplyCallback = std::function<void(GBytes* reply)>;

// Each channel has one handler, the host's, and one receiver, the user interface's. A new one
// replaces the earlier one, null removes it. None is destroyed while it runs.
void messenger_set_handler(FlBinaryMessenger* messenger, const char* channel,
                           MessageHandler handler);
void messenger_set_receiver(FlBinaryMessenger* messenger, const char* channel,
                            MessageReceiver receiver);

// Sends to the channel's receiver; without one the message is dropped. False and
// MESSENGER_ERROR_CLOSED when the engine is gone.
bool messenger_send_to_ui(FlBinaryMessenger* messenger, const char* channel, GBytes* message,
                          GError** error);

// Sends to the channel's handler. `on_reply` may be null. On a closed messenger it is never called.
void messenger_send_to_host(FlBinaryMessenger* messenger, const char* channel, GBytes* message,
                            ReplyCallback on_reply);

// For run_later: ends when the messenger is closed.
Life messenger_life(FlBinaryMessenger* messenger);

#endif
