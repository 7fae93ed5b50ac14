#include "flutter_embedding/preview/log_view_buffer.h"

#include <string>

namespace preview {
namespace {

constexpr char k_chinese_tag[] = "chinese";

std::string_view last_lines(std::string_view text, int count) {
  std::size_t end = text.size();
  while (count-- > 0) {
    const std::size_t line_feed = end == 0 ? std::string_view::npos : text.rfind('\n', end - 1);
    if (line_feed == std::string_view::npos) return text;
    end = line_feed;
  }
  return text.substr(end + 1);
}

std::string_view cut_at_a_character(std::string_view line, std::size_t size) {
  while (size > 0 && (static_cast<unsigned char>(line[size]) & 0xC0) == 0x80) --size;
  return line.substr(0, size);
}

std::string with_cut_lines(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (true) {
    const std::size_t line_feed = text.find('\n');
    const std::string_view line = text.substr(0, line_feed);
    if (line.size() > k_most_bytes_per_log_line) {
      result.append(cut_at_a_character(line, k_most_bytes_per_log_line)).append("…");
    } else {
      result.append(line);
    }
    if (line_feed == std::string_view::npos) return result;
    result.push_back('\n');
    text.remove_prefix(line_feed + 1);
  }
}

void drop_oldest_lines(GtkTextBuffer* buffer) {
  const int surplus = gtk_text_buffer_get_line_count(buffer) - k_most_log_lines;
  if (surplus <= 0) return;
  GtkTextIter start;
  GtkTextIter first_kept;
  gtk_text_buffer_get_start_iter(buffer, &start);
  gtk_text_buffer_get_iter_at_line(buffer, &first_kept, surplus);
  gtk_text_buffer_delete(buffer, &start, &first_kept);
}

}  // namespace

GtkTextBuffer* log_view_buffer_new() {
  GtkTextBuffer* buffer = gtk_text_buffer_new(nullptr);
  gtk_text_buffer_create_tag(buffer, k_chinese_tag, "language", "zh-cn", nullptr);
  return buffer;
}

void log_view_append(GtkTextBuffer* buffer, std::string_view batch) {
  std::string lines = with_cut_lines(last_lines(batch, k_most_log_lines));
  if (gtk_text_buffer_get_char_count(buffer) > 0) lines.insert(lines.begin(), '\n');
  g_autofree char* valid = g_utf8_make_valid(lines.data(), static_cast<gssize>(lines.size()));
  GtkTextIter end;
  gtk_text_buffer_get_end_iter(buffer, &end);
  GtkTextTag* chinese =
      gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), k_chinese_tag);
  gtk_text_buffer_insert_with_tags(buffer, &end, valid, -1, chinese, nullptr);
  drop_oldest_lines(buffer);
}

}  // namespace preview
