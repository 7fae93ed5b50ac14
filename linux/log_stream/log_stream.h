#ifndef CORVANA_LOG_STREAM_LOG_STREAM_H_
#define CORVANA_LOG_STREAM_LOG_STREAM_H_

#include <flutter_linux/flutter_linux.h>

// Opens the event channel that follows the core's log for the user interface. A "listen" starts
// over from the beginning of the log: it sends "__clear__", then every 250 ms the new complete
// lines, of at most 64 KiB, as one string. "__clear__" is sent again when the log has become
// shorter. A log over 50 MiB isn't read. A "cancel" ends that; both always succeed.
//
// Does nothing the second time: the channel is kept for the life of the process. Borrows
// `messenger`. Main thread.
void open_log_stream(FlBinaryMessenger* messenger);

#endif
