#include "log_stream/log_stream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "core/core_paths.h"
#include "log_stream/log_text.h"
#include "support/console.h"
#include "support/guarded.h"
#include "support/unique_fd.h"

static constexpr guint k_poll_interval_ms = 250;
static constexpr int64_t k_max_bytes_per_tick = int64_t{64} * 1024;
static constexpr int64_t k_max_log_size = int64_t{50} * 1024 * 1024;
static constexpr char k_clear_event[] = "__clear__";

// All of it belongs to the main thread.
static FlEventChannel* g_log_event_channel = nullptr;
static bool g_log_listening = false;
static int64_t g_log_file_pos = 0;
static std::string g_log_line_buf;  // the start of a line whose line feed hasn't arrived yet
static guint g_log_timer_id = 0;

static void send_event(const std::string& text) {
  if (g_log_event_channel == nullptr) return;
  g_autoptr(FlValue) event = fl_value_new_string(text.c_str());
  fl_event_channel_send(g_log_event_channel, event, nullptr, nullptr);
}

static void rewind_log() {
  g_log_file_pos = 0;
  g_log_line_buf = std::string();
}

static void stop_timer() {
  if (g_log_timer_id != 0) g_source_remove(g_log_timer_id);
  g_log_timer_id = 0;
}

// Up to one tick's worth of bytes from g_log_file_pos on; "" when there are none. The file is
// opened for each read: a descriptor kept open would still read the old file after a replacement.
static std::string read_next_bytes(const std::string& path, int64_t file_size) {
  const UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file) return "";
  const int64_t length = std::min(file_size - g_log_file_pos, k_max_bytes_per_tick);
  std::string bytes(static_cast<size_t>(length), '\0');
  const ssize_t count = pread(file.get(), bytes.data(), bytes.size(), g_log_file_pos);
  bytes.resize(count < 0 ? 0 : static_cast<size_t>(count));
  return bytes;
}

static void send_new_lines() {
  const std::string path = runtime_log_path();
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return;
  if (status.st_size > k_max_log_size) return;
  if (status.st_size < g_log_file_pos) {
    rewind_log();
    send_event(k_clear_event);
  }
  if (status.st_size <= g_log_file_pos) return;

  const std::string bytes = read_next_bytes(path, status.st_size);
  g_log_file_pos += static_cast<int64_t>(bytes.size());
  std::string batch = take_complete_lines(g_log_line_buf, bytes);
  if (!batch.empty()) send_event(repair_utf8(std::move(batch)));
}

static gboolean log_stream_poll_cb(gpointer) {
  if (!g_log_listening || g_log_event_channel == nullptr) {
    g_log_timer_id = 0;
    return G_SOURCE_REMOVE;
  }
  run_guarded(send_new_lines);
  return G_SOURCE_CONTINUE;
}

static FlMethodErrorResponse* log_stream_listen_cb(FlEventChannel*, FlValue*, gpointer) {
  run_guarded([] {
    g_log_listening = true;
    rewind_log();
    send_event(k_clear_event);
    stop_timer();
    g_log_timer_id = g_timeout_add(k_poll_interval_ms, log_stream_poll_cb, nullptr);
    print_line("log_stream listen - started, log: " + runtime_log_path());
  });
  return nullptr;
}

static FlMethodErrorResponse* log_stream_cancel_cb(FlEventChannel*, FlValue*, gpointer) {
  run_guarded([] {
    g_log_listening = false;
    stop_timer();
    rewind_log();
    print_line("log_stream cancel - stopped");
  });
  return nullptr;
}

void open_log_stream(FlBinaryMessenger* messenger) {
  if (g_log_event_channel != nullptr) return;
  g_autoptr(FlStandardMethodCodec) codec = fl_standard_method_codec_new();
  g_log_event_channel =
      fl_event_channel_new(messenger, "com.corvana.channel/log_stream", FL_METHOD_CODEC(codec));
  fl_event_channel_set_stream_handlers(g_log_event_channel, log_stream_listen_cb,
                                       log_stream_cancel_cb, nullptr, nullptr);
}
