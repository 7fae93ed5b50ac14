#ifndef CORVANA_LOG_STREAM_LOG_STREAM_H_
#define CORVANA_LOG_STREAM_LOG_STREAM_H_

#include <flutter_linux/flutter_linux.h>

// Follows the core's log for the user interface. All of this runs on the main thread.

// Opens the event channel on `messenger` and installs the two handlers. Does nothing the second
// time: the channel is kept for the life of the process. Borrows `messenger`.
void open_log_stream(FlBinaryMessenger* messenger);

// Starts over from the beginning of the log: sends "__clear__", then every 250 ms the new complete
// lines as one string. Always succeeds (null).
FlMethodErrorResponse* log_stream_listen_cb(FlEventChannel* channel, FlValue* args,
                                            gpointer user_data);

// Ends the stream. Always succeeds (null).
FlMethodErrorResponse* log_stream_cancel_cb(FlEventChannel* channel, FlValue* args,
                                            gpointer user_data);

#endif
