#include "flutter_embedding/preview/panels/text_pane.h"

#include <string>
#include <utility>

#include "flutter_embedding/preview/panels/widgets.h"

namespace preview {
namespace {

constexpr int k_text_margin = 6;
constexpr char k_chinese_tag[] = "chinese";
constexpr char k_warning_tag[] = "warning";
constexpr char k_error_tag[] = "error";

// What cores write near the beginning of a line, and the tag of such a line.
constexpr std::size_t k_level_range = 64;
constexpr std::pair<const char*, const char*> k_level_marks[] = {
    {"ERROR", k_error_tag},        {"FATAL", k_error_tag},      {"PANIC", k_error_tag},
    {"level=error", k_error_tag},  {"error:", k_error_tag},     {"level=fatal", k_error_tag},
    {"level=warn", k_warning_tag}, {"warning:", k_warning_tag}, {"WARN", k_warning_tag}};

std::string_view cut_at_a_character(std::string_view line, std::size_t size) {
  while (size > 0 && (static_cast<unsigned char>(line[size]) & 0xC0) == 0x80) --size;
  return line.substr(0, size);
}

void replace_all(std::string& text, std::string_view part, std::string_view replacement) {
  for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at)) {
    text.replace(at, part.size(), replacement);
  }
}

std::string shown_lines(std::string_view text) {
  std::string result;
  while (true) {
    const std::size_t line_feed = text.find('\n');
    result.append(shown_line(text.substr(0, line_feed)));
    if (line_feed == text.npos) return result;
    result.push_back('\n');
    text.remove_prefix(line_feed + 1);
  }
}

const char* level_tag_of(std::string_view line) {
  const std::string_view start = line.substr(0, k_level_range);
  for (const auto& [mark, tag] : k_level_marks) {
    if (start.find(mark) != start.npos) return tag;
  }
  return nullptr;
}

void mark_levels(GtkTextBuffer* buffer, int first_line, int last_line) {
  for (int number = first_line; number <= last_line; ++number) {
    GtkTextIter start;
    gtk_text_buffer_get_iter_at_line(buffer, &start, number);
    GtkTextIter end = start;
    if (!gtk_text_iter_ends_line(&end)) gtk_text_iter_forward_to_line_end(&end);
    g_autofree char* line = gtk_text_iter_get_slice(&start, &end);
    const char* tag = level_tag_of(line);
    if (tag != nullptr) gtk_text_buffer_apply_tag_by_name(buffer, tag, &start, &end);
  }
}

void insert_lines(GtkTextBuffer* buffer, GtkTextIter* place, const std::string& lines) {
  GtkTextTag* chinese =
      gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), k_chinese_tag);
  const int first_line = gtk_text_iter_get_line(place);
  gtk_text_buffer_insert_with_tags(buffer, place, lines.data(), static_cast<int>(lines.size()),
                                   chinese, nullptr);
  mark_levels(buffer, first_line, gtk_text_iter_get_line(place));
}

void drop_oldest_lines(GtkTextBuffer* buffer, std::size_t max_lines) {
  const int surplus = gtk_text_buffer_get_line_count(buffer) - static_cast<int>(max_lines);
  if (surplus <= 0) return;
  GtkTextIter start;
  GtkTextIter first_kept;
  gtk_text_buffer_get_start_iter(buffer, &start);
  gtk_text_buffer_get_iter_at_line(buffer, &first_kept, surplus);
  gtk_text_buffer_delete(buffer, &start, &first_kept);
}

GtkTextView* view_new(const char* accessible_name) {
  g_autoptr(GtkTextBuffer) buffer = gtk_text_buffer_new(nullptr);
  // The Chinese forms of the characters that Chinese and Japanese share, whatever the locale.
  gtk_text_buffer_create_tag(buffer, k_chinese_tag, "language", "zh-cn", nullptr);
  gtk_text_buffer_create_tag(buffer, k_warning_tag, "style", PANGO_STYLE_ITALIC, nullptr);
  gtk_text_buffer_create_tag(buffer, k_error_tag, "weight", PANGO_WEIGHT_BOLD, nullptr);
  GtkWidget* widget = gtk_text_view_new_with_buffer(buffer);
  GtkTextView* view = GTK_TEXT_VIEW(widget);
  gtk_text_view_set_editable(view, FALSE);
  gtk_text_view_set_cursor_visible(view, FALSE);
  gtk_text_view_set_monospace(view, TRUE);
  gtk_text_view_set_left_margin(view, k_text_margin);
  gtk_text_view_set_right_margin(view, k_text_margin);
  gtk_text_view_set_top_margin(view, k_text_margin);
  gtk_text_view_set_bottom_margin(view, k_text_margin);
  add_style_class(widget, "preview-value");
  atk_object_set_name(gtk_widget_get_accessible(widget), accessible_name);
  return view;
}

}  // namespace

TextPane text_pane_new(const char* accessible_name) {
  GtkTextView* view = view_new(accessible_name);
  GtkWidget* scrolled = scrolled_new(GTK_WIDGET(view), accessible_name);
  // Lines aren't wrapped: wrapping adds hyphens and is slow.
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_AUTOMATIC,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
  gtk_widget_set_vexpand(scrolled, TRUE);
  return {scrolled, view, gtk_text_view_get_buffer(view),
          gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scrolled))};
}

void text_pane_follow_end(const TextPane& pane) {
  // The height grows as lines are laid out; each change is signalled.
  on_signal(pane.position, "changed", [position = pane.position] {
    gtk_adjustment_set_value(position, gtk_adjustment_get_upper(position));
  });
}

std::string shown_line(std::string_view line) {
  std::string text(line);
  if (line.size() > k_max_log_line_size) {
    text.assign(cut_at_a_character(line, k_max_log_line_size)).append("…");
  }
  for (const char* line_end : {"\r", "\u2029"}) replace_all(text, line_end, " ");
  g_autofree char* valid = g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
  return valid;
}

void text_pane_append(const TextPane& pane, std::string_view lines, std::size_t max_lines) {
  GtkTextIter end;
  gtk_text_buffer_get_end_iter(pane.buffer, &end);
  const bool is_empty = gtk_text_buffer_get_char_count(pane.buffer) == 0;
  insert_lines(pane.buffer, &end, (is_empty ? "" : "\n") + shown_lines(lines));
  drop_oldest_lines(pane.buffer, max_lines);
}

void text_pane_prepend(const TextPane& pane, std::string_view lines) {
  GtkTextIter start;
  gtk_text_buffer_get_start_iter(pane.buffer, &start);
  insert_lines(pane.buffer, &start, shown_lines(lines) + "\n");
}

}  // namespace preview
