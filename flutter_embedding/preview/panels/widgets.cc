#include "flutter_embedding/preview/panels/widgets.h"

#include <utility>

#include "flutter_embedding/guarded.h"

namespace preview {
namespace {

// The theme's colours alone are too pale to read, so they are mixed with that of its text.
constexpr char k_style[] = R"(
.preview-title { font-size: 160%; font-weight: bold; }
.preview-good { color: mix(@success_color, @theme_fg_color, 0.6); }
.preview-bad, entry.error { color: mix(@error_color, @theme_fg_color, 0.6); }
.dim-label { opacity: 0.8; }
.preview-value { font-size: 90%; }
)";

constexpr unsigned k_copied_milliseconds = 1500;
constexpr char k_copy[] = "复制";
constexpr char k_copied[] = "已复制";

using Handler = std::function<void()>;

void run_handler(gpointer data) { run_guarded(*static_cast<Handler*>(data)); }

void free_handler(gpointer data, GClosure*) { delete static_cast<Handler*>(data); }

gboolean restore_copy_label(gpointer button) {
  gtk_button_set_label(GTK_BUTTON(button), k_copy);
  return G_SOURCE_REMOVE;
}

void copy_and_say_so(GtkWidget* button, const std::string& text) {
  gtk_clipboard_set_text(gtk_widget_get_clipboard(button, GDK_SELECTION_CLIPBOARD), text.data(),
                         static_cast<int>(text.size()));
  gtk_button_set_label(GTK_BUTTON(button), k_copied);
  g_timeout_add_full(G_PRIORITY_DEFAULT, k_copied_milliseconds, restore_copy_label,
                     g_object_ref(button), g_object_unref);
}

void use_chinese_glyphs_inside(GtkWidget* widget, gpointer) { use_chinese_glyphs(widget); }

}  // namespace

void load_style() {
  static bool loaded = false;
  if (std::exchange(loaded, true)) return;
  g_autoptr(GtkCssProvider) provider = gtk_css_provider_new();
  gtk_css_provider_load_from_data(provider, k_style, -1, nullptr);
  gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider),
                                            GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

void add_style_class(GtkWidget* widget, const char* style_class) {
  gtk_style_context_add_class(gtk_widget_get_style_context(widget), style_class);
}

void set_style_class(GtkWidget* widget, const char* style_class, bool wanted) {
  const auto set = wanted ? gtk_style_context_add_class : gtk_style_context_remove_class;
  set(gtk_widget_get_style_context(widget), style_class);
}

void set_all_margins(GtkWidget* widget, int margin) {
  g_object_set(widget, "margin", margin, nullptr);
}

void hide_until_wanted(GtkWidget* widget) {
  gtk_widget_show_all(widget);
  gtk_widget_hide(widget);
  gtk_widget_set_no_show_all(widget, TRUE);
}

void use_chinese_glyphs(GtkWidget* widget) {
  pango_context_set_language(gtk_widget_get_pango_context(widget),
                             pango_language_from_string("zh-cn"));
  if (GTK_IS_CONTAINER(widget))
    gtk_container_forall(GTK_CONTAINER(widget), use_chinese_glyphs_inside, nullptr);
}

void on_signal(gpointer object, const char* signal, std::function<void()> handler) {
  // Swapped, so that the handler comes first, whatever arguments the signal has.
  g_signal_connect_data(object, signal, G_CALLBACK(run_handler), new Handler(std::move(handler)),
                        free_handler, G_CONNECT_SWAPPED);
}

GtkWidget* dim_label_new(const char* text) {
  GtkWidget* label = gtk_label_new_with_mnemonic(text);
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  add_style_class(label, "dim-label");
  return label;
}

GtkWidget* caption_new(const char* text, GtkWidget* described) {
  GtkWidget* caption = dim_label_new(text);
  gtk_label_set_mnemonic_widget(GTK_LABEL(caption), described);
  return caption;
}

GtkWidget* value_label_new(const char* text) {
  GtkWidget* label = gtk_label_new(text);
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  gtk_label_set_selectable(GTK_LABEL(label), TRUE);
  gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
  gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
  set_value_language(GTK_LABEL(label), "zh-cn");
  gtk_widget_set_hexpand(label, TRUE);
  return label;
}

void set_value_language(GtkLabel* label, const char* language) {
  g_autoptr(PangoAttrList) attributes = pango_attr_list_new();
  pango_attr_list_insert(attributes, pango_attr_language_new(pango_language_from_string(language)));
  // A hyphen in a wrapped path would look like a part of it.
  pango_attr_list_insert(attributes, pango_attr_insert_hyphens_new(FALSE));
  gtk_label_set_attributes(label, attributes);
}

GtkWidget* button_new(const char* label_with_mnemonic, std::function<void()> on_click) {
  GtkWidget* button = gtk_button_new_with_mnemonic(label_with_mnemonic);
  on_signal(button, "clicked", std::move(on_click));
  return button;
}

GtkWidget* copy_button_new(const char* accessible_name, std::function<std::string()> text) {
  GtkWidget* button = gtk_button_new_with_label(k_copy);
  atk_object_set_name(gtk_widget_get_accessible(button), accessible_name);
  gtk_widget_set_tooltip_text(button, accessible_name);
  gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
  on_signal(button, "clicked",
            [button, text = std::move(text)] { copy_and_say_so(button, text()); });
  return button;
}

void fill_grid(GtkWidget* grid, const std::vector<std::vector<GtkWidget*>>& rows) {
  gtk_grid_set_row_spacing(GTK_GRID(grid), k_spacing);
  gtk_grid_set_column_spacing(GTK_GRID(grid), k_spacing);
  // Screen readers read what was attached last first.
  for (size_t row = rows.size(); row-- > 0;) {
    for (size_t column = rows[row].size(); column-- > 0;) {
      if (rows[row][column] == nullptr) continue;
      gtk_grid_attach(GTK_GRID(grid), rows[row][column], static_cast<int>(column),
                      static_cast<int>(row), 1, 1);
    }
  }
}

GtkWidget* scrolled_new(GtkWidget* content, const char* accessible_name) {
  GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
  atk_object_set_name(gtk_widget_get_accessible(scrolled), accessible_name);
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  // A permanent bar shows that there is more.
  gtk_scrolled_window_set_overlay_scrolling(GTK_SCROLLED_WINDOW(scrolled), FALSE);
  gtk_container_add(GTK_CONTAINER(scrolled), content);
  return scrolled;
}

}  // namespace preview
