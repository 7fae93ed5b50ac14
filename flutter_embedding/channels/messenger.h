// The wire between the host and the user interface of one engine. Neither end ever runs inside a
// call of the other: the main loop hands over messages and replies, in order. Main thread only.

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

// Called when the engine is destroyed. Destroys every handler and receiver, which also breaks the
// reference cycle of messenger, handler and channel. Nothing is handed over any more, and the
// messenger ignores every later message.
void messenger_close(FlBinaryMessenger* messenger);

// Bytes are borrowed for the call. The reply is null when nobody handled the message.
using MessageHandler = std::function<void(GBytes* message, std::unique_ptr<PendingReply> reply)>;
using MessageReceiver = std::function<void(GBytes* message)>;
using ReplyCallback = std::function<void(GBytes* reply)>;

// The host's end of a channel has one handler, that of the user interface one receiver: a new one
// replaces the earlier one, null removes it. Each is destroyed when it is out of use, but never
// while it runs.
void messenger_set_handler(FlBinaryMessenger* messenger, const char* channel,
                           MessageHandler handler);
void messenger_set_receiver(FlBinaryMessenger* messenger, const char* channel,
                            MessageReceiver receiver);

// Sends to the user interface, which drops the message when nobody there waits for it. False and
// MESSENGER_ERROR_CLOSED when the engine is gone.
bool messenger_send_to_ui(FlBinaryMessenger* messenger, const char* channel, GBytes* message,
                          GError** error);

// Sends to the host. `on_reply` may be null. On a closed messenger the reply never comes.
void messenger_send_to_host(FlBinaryMessenger* messenger, const char* channel, GBytes* message,
                            ReplyCallback on_reply);

// Ends with the engine, for run_later.
Life messenger_life(FlBinaryMessenger* messenger);

#endif
