#include "my_application.h"

#include <flutter_linux/flutter_linux.h>
#include <gdk/gdkx.h>
#undef None  // names of the test library too
#undef Bool
#include <gtest/gtest.h>

#include "support/temporary_home.h"

// As a window manager announces its name.
static void announce_window_manager(const char* name) {
  GdkWindow* const root = gdk_get_default_root_window();
  const auto check_window = static_cast<gulong>(gdk_x11_window_get_xid(root));
  const GdkAtom check = gdk_atom_intern("_NET_SUPPORTING_WM_CHECK", FALSE);
  gdk_property_change(root, check, gdk_atom_intern("WINDOW", FALSE), 32, GDK_PROP_MODE_REPLACE,
                      reinterpret_cast<const guchar*>(&check_window), 1);
  gdk_property_change(root, gdk_atom_intern("_NET_WM_NAME", FALSE),
                      gdk_atom_intern("UTF8_STRING", FALSE), 8, GDK_PROP_MODE_REPLACE,
                      reinterpret_cast<const guchar*>(name), static_cast<int>(strlen(name)));
}

class MyApplicationTest : public testing::TestWithParam<const char*> {};

TEST_P(MyApplicationTest, OpensTheWindowAndGivesTheViewTheFocus) {
  const TemporaryHome home;
  home.allow_only({});
  setenv("HOME", "", 1);  // no desktop entry
  gtk_init(nullptr, nullptr);
  if (*GetParam() != '\0') announce_window_manager(GetParam());
  const std::unique_ptr<MyApplication, void (*)(gpointer)> application(my_application_new(),
                                                                       g_object_unref);
  g_idle_add(
      [](gpointer data) -> gboolean {
        GtkWindow* const window = gtk_application_get_active_window(GTK_APPLICATION(data));
        int width = 0, height = 0;
        gtk_window_get_default_size(window, &width, &height);
        EXPECT_EQ(std::pair(width, height), std::pair(480, 680));
        GtkWidget* const bar = gtk_window_get_titlebar(window);
        EXPECT_EQ(bar != nullptr, GetParam() == std::string("GNOME Shell"));
        EXPECT_STREQ(bar == nullptr ? gtk_window_get_title(window)
                                    : gtk_header_bar_get_title(GTK_HEADER_BAR(bar)),
                     "Corvana");
        EXPECT_TRUE(bar == nullptr || gtk_header_bar_get_show_close_button(GTK_HEADER_BAR(bar)));
        EXPECT_TRUE(gtk_window_get_focus(window) != nullptr &&
                    gtk_widget_is_ancestor(gtk_window_get_focus(window),
                                           gtk_bin_get_child(GTK_BIN(window))));
        EXPECT_STREQ(gtk_window_get_icon_name(window), "{CONF_MERCHANT_BRAND_NAME_EN_LOWER}");
        g_application_quit(G_APPLICATION(data));
        return G_SOURCE_REMOVE;
      },
      application.get());
  char name[] = "Corvana";
  char* argv[] = {name, nullptr};
  EXPECT_EQ(g_application_run(G_APPLICATION(application.get()), 1, argv), 0);
}

INSTANTIATE_TEST_SUITE_P(Under, MyApplicationTest, testing::Values("", "GNOME Shell", "Xfwm4"));
