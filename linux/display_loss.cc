#include "display_loss.h"

#include <gdk/gdkwayland.h>
#include <gdk/gdkx.h>
#include <glib-unix.h>
#include <unistd.h>
#include <wayland-client-core.h>

#include "exit_cleanup.h"

// GDK would end the process at once, without the clean-up. At the end of a session the display may
// go before any signal comes.
[[noreturn]] static void leave_without_display() {
  announce_leaving("[Corvana] 与显示服务器的连接已断开，清理系统代理后退出");
  leave_cleanly();
  _exit(1);
}

static int on_x11_connection_lost(Display*) { leave_without_display(); }

static gboolean on_wayland_connection_lost(gint, GIOCondition, gpointer) {
  leave_without_display();
}

void hook_display_loss() {
  GdkDisplay* const display = gdk_display_get_default();
  if (GDK_IS_X11_DISPLAY(display)) XSetIOErrorHandler(on_x11_connection_lost);
  // Wayland has no hook for this; watch its socket before GDK does.
  if (GDK_IS_WAYLAND_DISPLAY(display)) {
    const int connection = wl_display_get_fd(gdk_wayland_display_get_wl_display(display));
    g_unix_fd_add_full(G_PRIORITY_HIGH, connection, GIOCondition(G_IO_HUP | G_IO_ERR),
                       on_wayland_connection_lost, nullptr, nullptr);
  }
}
