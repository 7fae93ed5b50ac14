// The host's end of the wire: what method and event channels build on. Main thread only.

#ifndef CORVANA_FLUTTER_EMBEDDING_CHANNELS_BINARY_MESSENGER_H_
#define CORVANA_FLUTTER_EMBEDDING_CHANNELS_BINARY_MESSENGER_H_

#include <flutter_linux/flutter_linux.h>

#include <functional>
#include <memory>

#include "flutter_embedding/channels/pending_reply.h"

enum MessengerError {
  MESSENGER_ERROR_CLOSED,            // the engine is gone
  MESSENGER_ERROR_ALREADY_ANSWERED,  // a call has only one answer
};

GQuark messenger_error_quark();

// The message is borrowed.
using MessageHandler = std::function<void(GBytes* message, std::unique_ptr<PendingReply> reply)>;

struct _FlBinaryMessengerInterface {
  GTypeInterface parent_interface;

  void (*set_message_handler)(FlBinaryMessenger* messenger, const char* channel,
                              MessageHandler handler);
  bool (*send_message)(FlBinaryMessenger* messenger, const char* channel, GBytes* message,
                       GError** error);
};

// Installs the one handler of a channel, in place of an earlier one; null removes it. A handler
// is destroyed when it is out of use, but never while it runs; once the engine is gone, at once.
void binary_messenger_set_message_handler(FlBinaryMessenger* messenger, const char* channel,
                                          MessageHandler handler);

// Sends to the user interface, which drops the message when nobody there waits for it. False and
// MESSENGER_ERROR_CLOSED when the engine is gone.
bool binary_messenger_send_message(FlBinaryMessenger* messenger, const char* channel,
                                   GBytes* message, GError** error);

#endif
