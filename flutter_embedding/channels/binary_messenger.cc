#include "flutter_embedding/channels/binary_messenger.h"

G_DEFINE_INTERFACE(FlBinaryMessenger, fl_binary_messenger, G_TYPE_OBJECT)

static void fl_binary_messenger_default_init(FlBinaryMessengerInterface*) {}

GQuark messenger_error_quark() { return g_quark_from_static_string("messenger-error"); }

void binary_messenger_set_message_handler(FlBinaryMessenger* messenger, const char* channel,
                                          MessageHandler handler) {
  FL_BINARY_MESSENGER_GET_IFACE(messenger)->set_message_handler(messenger, channel,
                                                                std::move(handler));
}

bool binary_messenger_send_message(FlBinaryMessenger* messenger, const char* channel,
                                   GBytes* message, GError** error) {
  return FL_BINARY_MESSENGER_GET_IFACE(messenger)->send_message(messenger, channel, message, error);
}
