#include "flutter_embedding/preview/panels/manual_window.h"

#include <memory>

#include "flutter_embedding/later.h"
#include "flutter_embedding/preview/panels/text_pane.h"
#include "flutter_embedding/preview/panels/widgets.h"

namespace preview {
namespace {

constexpr char k_manual[] = "linux/packaging/README.md";
constexpr char k_title[] = "Corvana 排错手册";

std::string read_manual() {
  g_autoptr(GError) error = nullptr;
  g_autofree char* program = g_file_read_link("/proc/self/exe", nullptr);
  g_autofree char* folder = g_path_get_dirname(program == nullptr ? "." : program);
  g_autofree char* path = g_build_filename(folder, k_manual, nullptr);
  g_autofree char* text = nullptr;
  if (g_file_get_contents(path, &text, nullptr, &error)) return text;
  return std::string("无法打开手册: ") + error->message;
}

void scroll_to_heading(const TextPane& pane, const std::string& heading) {
  GtkTextIter start;
  GtkTextIter line;
  gtk_text_buffer_get_start_iter(pane.buffer, &start);
  if (!gtk_text_iter_forward_search(&start, ("# " + heading + "\n").c_str(),
                                    GTK_TEXT_SEARCH_TEXT_ONLY, &line, nullptr, nullptr)) {
    line = start;
  }
  gtk_text_buffer_place_cursor(pane.buffer, &line);
  gtk_text_view_scroll_to_mark(pane.view, gtk_text_buffer_get_insert(pane.buffer), 0, TRUE, 0, 0);
}

}  // namespace

void open_manual(GtkWidget* near, const std::string& heading) {
  // A dialog, because Escape closes it.
  GtkWidget* window =
      gtk_dialog_new_with_buttons(k_title, GTK_WINDOW(gtk_widget_get_toplevel(near)),
                                  GTK_DIALOG_DESTROY_WITH_PARENT, nullptr, nullptr);
  gtk_window_set_default_size(GTK_WINDOW(window), 720, 560);
  const TextPane pane = text_pane_new(k_title);
  gtk_text_view_set_wrap_mode(pane.view, GTK_WRAP_WORD_CHAR);
  gtk_container_add(GTK_CONTAINER(gtk_dialog_get_content_area(GTK_DIALOG(window))), pane.widget);
  text_pane_append(pane, read_manual());
  use_chinese_glyphs(window);
  gtk_widget_show_all(window);
  auto life = std::make_shared<char>();
  on_signal(window, "destroy", [life]() mutable { life.reset(); });
  // The heading's position is known once the lines before it are laid out.
  run_when_idle(life, [pane, heading] { scroll_to_heading(pane, heading); });
}

}  // namespace preview
