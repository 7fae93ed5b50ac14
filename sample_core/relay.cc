#include "relay.h"

#include <gio/gio.h>

#include <mutex>

#include "log.h"

struct Relay {
  GSocketConnection* client;
  GSocketConnection* upstream;
  GCancellable* stop;  // cancelled when one direction fails, to end the other
  std::string label;
  int open_directions;
};

// Held while a relay goes from a worker to the main loop, to which it then belongs. GLib's own
// locks would do, but the thread sanitizer can't see them.
static std::mutex g_handover_mutex;

static Relay* relay_new(const Client& client, GSocketConnection* upstream,
                        const std::string& label) {
  return new Relay{G_SOCKET_CONNECTION(g_object_ref(client.connection)),
                   G_SOCKET_CONNECTION(g_object_ref(upstream)), g_cancellable_new(), label, 2};
}

// The direction that ends last takes the relay with it.
static void finish_direction(Relay* relay) {
  if (--relay->open_directions > 0) return;
  g_object_unref(relay->client);
  g_object_unref(relay->upstream);
  g_object_unref(relay->stop);
  delete relay;
}

static void on_direction_ended(Relay* relay, GObject* output, GAsyncResult* result,
                               GSocketConnection* receiver) {
  g_autoptr(GError) error = nullptr;
  if (g_output_stream_splice_finish(G_OUTPUT_STREAM(output), result, &error) >= 0) {
    // One side may still have much to say after the other has finished, so only this half closes.
    g_socket_shutdown(g_socket_connection_get_socket(receiver), FALSE, TRUE, nullptr);
  } else if (!g_cancellable_is_cancelled(relay->stop)) {
    log_event(relay->label + " broken off: " + error->message);
    g_cancellable_cancel(relay->stop);
  }
  finish_direction(relay);
}

static void on_upload_ended(GObject* output, GAsyncResult* result, gpointer user_data) {
  Relay* relay = static_cast<Relay*>(user_data);
  on_direction_ended(relay, output, result, relay->upstream);
}

static void on_download_ended(GObject* output, GAsyncResult* result, gpointer user_data) {
  Relay* relay = static_cast<Relay*>(user_data);
  on_direction_ended(relay, output, result, relay->client);
}

static void pass_bytes(Relay* relay, GSocketConnection* sender, GSocketConnection* receiver,
                       GAsyncReadyCallback on_ended) {
  GSocket* socket = g_socket_connection_get_socket(sender);
  g_socket_set_timeout(socket, 0);       // an idle tunnel is fine
  g_socket_set_keepalive(socket, TRUE);  // a vanished machine at its end is not
  g_output_stream_splice_async(g_io_stream_get_output_stream(G_IO_STREAM(receiver)),
                               g_io_stream_get_input_stream(G_IO_STREAM(sender)),
                               G_OUTPUT_STREAM_SPLICE_NONE, G_PRIORITY_DEFAULT, relay->stop,
                               on_ended, relay);
}

static gboolean begin_relay(gpointer user_data) {
  const std::lock_guard<std::mutex> lock(g_handover_mutex);
  Relay* relay = static_cast<Relay*>(user_data);
  pass_bytes(relay, relay->client, relay->upstream, on_upload_ended);
  pass_bytes(relay, relay->upstream, relay->client, on_download_ended);
  return G_SOURCE_REMOVE;
}

// Splicing out of the buffer itself would take a thread per tunnel: it can't be polled.
static bool send_read_ahead(GBufferedInputStream* input, GSocketConnection* upstream) {
  gsize count = 0;
  const void* bytes = g_buffered_input_stream_peek_buffer(input, &count);
  return send_bytes(upstream, std::string(static_cast<const char*>(bytes), count));
}

void start_relay(const Client& client, GSocketConnection* upstream, const std::string& label) {
  if (!send_read_ahead(client.input, upstream)) {
    log_event(label + " broken off: the server takes no data");
    return;
  }
  const std::lock_guard<std::mutex> lock(g_handover_mutex);
  g_idle_add_full(G_PRIORITY_DEFAULT, begin_relay, relay_new(client, upstream, label), nullptr);
}
