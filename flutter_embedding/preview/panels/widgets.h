#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_WIDGETS_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_WIDGETS_H_

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

// What the pages share. Every maker returns a floating widget that its container shows with
// gtk_widget_show_all. Main thread only.
namespace preview {

inline constexpr int k_margin = 18;
inline constexpr int k_spacing = 12;

// Loads the few rules that GTK's own style classes don't cover, once per process.
void load_style();

void add_style_class(GtkWidget* widget, const char* style_class);
void set_style_class(GtkWidget* widget, const char* style_class, bool wanted);
void set_all_margins(GtkWidget* widget, int margin);

// Shows what the widget holds and hides the widget itself; gtk_widget_show_all of the window won't
// bring it back.
void hide_until_wanted(GtkWidget* widget);

// Gives the widget and what it holds by now the Chinese forms of the characters that Chinese and
// Japanese share, whatever the locale.
void use_chinese_glyphs(GtkWidget* widget);

// Connects a handler to a signal that has no arguments of its own; the handler goes when the object
// goes.
void on_signal(gpointer object, const char* signal, std::function<void()> handler);

// A left-aligned text that steps back behind others. One with a mnemonic, or a caption, is bound to
// what it describes, also for screen readers.
GtkWidget* dim_label_new(const char* text);
GtkWidget* caption_new(const char* text, GtkWidget* described);

// A left-aligned text that wraps anywhere, can be selected and copied.
GtkWidget* value_label_new(const char* text);

// Picks the fonts of a value label's text: digits and paths look foreign in a Chinese font.
void set_value_language(GtkLabel* label, const char* language);

GtkWidget* button_new(const char* label_with_mnemonic, std::function<void()> on_click);

// Copies what `text` gives at that moment and says so on its face for a moment. `accessible_name`
// names what it copies.
GtkWidget* copy_button_new(const char* accessible_name, std::function<std::string()> text);

// Fills the grid row by row from the top left; null leaves a place empty. Screen readers read in that
// order.
void fill_grid(GtkWidget* grid, const std::vector<std::vector<GtkWidget*>>& rows);

// Scrolls up and down, never sideways.
GtkWidget* scrolled_new(GtkWidget* content, const char* accessible_name);

}  // namespace preview

#endif
