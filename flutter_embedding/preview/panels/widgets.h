#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_WIDGETS_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_WIDGETS_H_

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

// Helpers of the pages. Every ..._new returns a floating widget, which its container shows with
// gtk_widget_show_all. Main thread only.
namespace preview {

inline constexpr int k_margin = 18;
inline constexpr int k_spacing = 12;

// Loads the style rules of the window, once per process.
void load_style();

void add_style_class(GtkWidget* widget, const char* style_class);
void set_style_class(GtkWidget* widget, const char* style_class, bool wanted);
void set_all_margins(GtkWidget* widget, int margin);

// Hides the widget but not its children; gtk_widget_show_all of a parent won't show it.
void hide_until_wanted(GtkWidget* widget);

// Gives the widget and its present children the Chinese forms of the characters that Chinese and
// Japanese share, whatever the locale.
void use_chinese_glyphs(GtkWidget* widget);

// Connects a handler that ignores the signal's arguments. It is destroyed with the object.
void on_signal(gpointer object, const char* signal, std::function<void()> handler);

// A left-aligned, dimmed label. A caption is the label of `described`, also for its mnemonic and
// for screen readers.
GtkWidget* dim_label_new(const char* text);
GtkWidget* caption_new(const char* text, GtkWidget* described);

// A left-aligned label that wraps anywhere and can be selected.
GtkWidget* value_label_new(const char* text);

// Selects the fonts of a value label: digits and paths look wrong in a Chinese font.
void set_value_language(GtkLabel* label, const char* language);

GtkWidget* button_new(const char* label_with_mnemonic, std::function<void()> on_click);

// A click copies the result of `text` and changes the button's label for a moment.
// `accessible_name` says what is copied.
GtkWidget* copy_button_new(const char* accessible_name, std::function<std::string()> text);

// Fills the grid row by row from the top left; null leaves a place empty. Screen readers read in
// that order.
void fill_grid(GtkWidget* grid, const std::vector<std::vector<GtkWidget*>>& rows);

// Scrolls vertically only.
GtkWidget* scrolled_new(GtkWidget* content, const char* accessible_name);

}  // namespace preview

#endif
