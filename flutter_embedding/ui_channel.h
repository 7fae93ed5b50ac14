// The user interface's end of the platform channels, with the standard codec.
//
// Main thread only. Callbacks run from the main loop, never inside a call here. Once the engine is
// gone, calls do nothing; callbacks are destroyed uncalled, at the latest when the host releases
// its FlMethodCall.

#ifndef CORVANA_FLUTTER_EMBEDDING_UI_CHANNEL_H_
#define CORVANA_FLUTTER_EMBEDDING_UI_CHANNEL_H_

#include <flutter_linux/flutter_linux.h>

#include <functional>
#include <string>

struct UiReply {
  enum class Kind { success, error, not_implemented };

  Kind kind = Kind::not_implemented;
  FlValue* value = nullptr;   // a success's result, borrowed for the callback; otherwise null
  std::string error_code;     // of an error
  std::string error_message;  // of an error; empty when it has none
};

// Calls a method. `args` is borrowed, and null is sent as the null value. A channel without a
// handler answers "not implemented". A call that can't be encoded and a reply that can't be decoded
// are errors with the code "codec".
void ui_invoke_method(FlBinaryMessenger* messenger, const char* channel, const char* method,
                      FlValue* args, std::function<void(const UiReply&)> on_reply);

// Installs the receiver of a channel's events, in place of an earlier one, then calls "listen".
// Each event is borrowed for the callback. A refused listen and an event that is an error or
// malformed are GLib warnings. The end of the stream removes the receiver.
void ui_listen(FlBinaryMessenger* messenger, const char* channel,
               std::function<void(FlValue* event)> on_event);

#endif
