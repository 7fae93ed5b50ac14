#include "relay.h"

#include <gio/gio.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <mutex>

#include "log.h"

static constexpr guint k_silence_check_seconds = 60;
static constexpr guint k_max_silence_milliseconds = 300'000;
static constexpr gsize k_discarded_at_once = 65536;

struct Relay {
  GSocketConnection* client;
  GSocketConnection* upstream;
  GCancellable* stop;  // cancelled when one direction fails, to end the other
  std::string label;
  Upload upload;
  int open_directions = 2;
  // The sender that is left when one direction has ended, and the timer that watches it.
  GSocketConnection* last_sender = nullptr;
  guint silence_check = 0;
};

// Held while a worker hands a relay to the main loop, which owns it from then on. GLib's own locks
// would be enough, but the thread sanitizer can't see them.
static std::mutex g_handover_mutex;

static Relay* relay_new(const Client& client, GSocketConnection* upstream, const std::string& label,
                        Upload upload) {
  return new Relay{G_SOCKET_CONNECTION(g_object_ref(client.connection)),
                   G_SOCKET_CONNECTION(g_object_ref(upstream)), g_cancellable_new(), label, upload};
}

static void free_relay(Relay* relay) {
  if (relay->silence_check != 0) g_source_remove(relay->silence_check);
  g_object_unref(relay->client);
  g_object_unref(relay->upstream);
  g_object_unref(relay->stop);
  delete relay;
}

static int descriptor_of(GSocketConnection* connection) {
  return g_socket_get_fd(g_socket_connection_get_socket(connection));
}

// After a regular end, the receiver would take a cut answer for a complete one.
static void reset_when_closed(GSocketConnection* connection) {
  const linger at_once = {1, 0};
  setsockopt(descriptor_of(connection), SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
}

static void break_off(Relay* relay, const char* reason) {
  if (g_cancellable_is_cancelled(relay->stop)) return;
  log_event(relay->label + " broken off: " + reason);
  reset_when_closed(relay->client);
  reset_when_closed(relay->upstream);
  g_cancellable_cancel(relay->stop);
}

// Not while bytes wait for the receiver: then the sender has to wait too.
static bool has_been_silent(GSocketConnection* sender, GSocketConnection* receiver) {
  int unsent_bytes = 0;
  tcp_info info = {};
  socklen_t size = sizeof info;
  return ioctl(descriptor_of(receiver), SIOCOUTQ, &unsent_bytes) == 0 && unsent_bytes == 0 &&
         getsockopt(descriptor_of(sender), IPPROTO_TCP, TCP_INFO, &info, &size) == 0 &&
         info.tcpi_last_data_recv > k_max_silence_milliseconds;
}

static gboolean end_if_silent(gpointer user_data) {
  Relay* relay = static_cast<Relay*>(user_data);
  GSocketConnection* sender = relay->last_sender;
  GSocketConnection* receiver = sender == relay->client ? relay->upstream : relay->client;
  if (has_been_silent(sender, receiver)) break_off(relay, "silent since one side has ended");
  return G_SOURCE_CONTINUE;
}

// The last direction to end frees the relay. While one is left, only its silence can show that the
// peer is gone.
static void end_direction(Relay* relay, const GError* error, GSocketConnection* receiver) {
  if (error == nullptr) {
    g_socket_shutdown(g_socket_connection_get_socket(receiver), FALSE, TRUE, nullptr);
  } else {
    break_off(relay, error->message);
  }
  if (--relay->open_directions == 0) return free_relay(relay);
  relay->last_sender = receiver;
  relay->silence_check = g_timeout_add_seconds(k_silence_check_seconds, end_if_silent, relay);
}

static void on_direction_ended(Relay* relay, GObject* output, GAsyncResult* result,
                               GSocketConnection* receiver) {
  g_autoptr(GError) error = nullptr;
  g_output_stream_splice_finish(G_OUTPUT_STREAM(output), result, &error);
  end_direction(relay, error, receiver);
}

static void on_upload_ended(GObject* output, GAsyncResult* result, gpointer user_data) {
  Relay* relay = static_cast<Relay*>(user_data);
  on_direction_ended(relay, output, result, relay->upstream);
}

static void on_download_ended(GObject* output, GAsyncResult* result, gpointer user_data) {
  Relay* relay = static_cast<Relay*>(user_data);
  on_direction_ended(relay, output, result, relay->client);
}

static void prepare_for_idling(GSocketConnection* connection) {
  GSocket* socket = g_socket_connection_get_socket(connection);
  g_socket_set_timeout(socket, 0);       // idle tunnels stay open
  g_socket_set_keepalive(socket, TRUE);  // finds a peer that has vanished
}

static void pass_bytes(Relay* relay, GSocketConnection* sender, GSocketConnection* receiver,
                       GAsyncReadyCallback on_ended) {
  g_output_stream_splice_async(g_io_stream_get_output_stream(G_IO_STREAM(receiver)),
                               g_io_stream_get_input_stream(G_IO_STREAM(sender)),
                               G_OUTPUT_STREAM_SPLICE_NONE, G_PRIORITY_DEFAULT, relay->stop,
                               on_ended, relay);
}

static void discard_bytes(Relay* relay);

static void on_discarded(GObject* input, GAsyncResult* result, gpointer user_data) {
  Relay* relay = static_cast<Relay*>(user_data);
  g_autoptr(GError) error = nullptr;
  if (g_input_stream_skip_finish(G_INPUT_STREAM(input), result, &error) > 0) {
    return discard_bytes(relay);
  }
  end_direction(relay, error, relay->upstream);
}

static void discard_bytes(Relay* relay) {
  g_input_stream_skip_async(g_io_stream_get_input_stream(G_IO_STREAM(relay->client)),
                            k_discarded_at_once, G_PRIORITY_DEFAULT, relay->stop, on_discarded,
                            relay);
}

static gboolean begin_relay(gpointer user_data) {
  const std::lock_guard<std::mutex> lock(g_handover_mutex);
  Relay* relay = static_cast<Relay*>(user_data);
  prepare_for_idling(relay->client);
  prepare_for_idling(relay->upstream);
  if (relay->upload == Upload::discarded) {
    discard_bytes(relay);
  } else {
    pass_bytes(relay, relay->client, relay->upstream, on_upload_ended);
  }
  pass_bytes(relay, relay->upstream, relay->client, on_download_ended);
  return G_SOURCE_REMOVE;
}

// The buffer can't be polled, so that splicing from it would take a thread for each tunnel.
static bool send_read_ahead(GBufferedInputStream* input, GSocketConnection* upstream) {
  gsize count = 0;
  const void* bytes = g_buffered_input_stream_peek_buffer(input, &count);
  return send_bytes(upstream, std::string(static_cast<const char*>(bytes), count));
}

void start_relay(const Client& client, GSocketConnection* upstream, const std::string& label,
                 Upload upload) {
  if (upload == Upload::passed_on && !send_read_ahead(client.input, upstream)) {
    log_event(label + " broken off: the server takes no data");
    return;
  }
  const std::lock_guard<std::mutex> lock(g_handover_mutex);
  g_idle_add_full(G_PRIORITY_DEFAULT, begin_relay, relay_new(client, upstream, label, upload),
                  nullptr);
}
