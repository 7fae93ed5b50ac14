#include "my_application.h"

#include <flutter_linux/flutter_linux.h>

#include "core/core_process.h"
#include "desktop_entry.h"
#include "display_loss.h"
#include "exit_cleanup.h"
#include "generated_plugin_registrant.h"
#include "log_stream/log_stream.h"
#include "main_window.h"
#include "proxy_service/method_channel.h"
#include "support/guarded.h"
#include "system_proxy/system_proxy.h"

struct _MyApplication {
  GtkApplication parent_instance;
  char** dart_entrypoint_arguments;  // the command line without the executable's name
};

G_DEFINE_TYPE(MyApplication, my_application, GTK_TYPE_APPLICATION)

static void open_window(MyApplication* self) {
  GtkWindow* const window = GTK_WINDOW(gtk_application_window_new(GTK_APPLICATION(self)));
  set_window_icon(window);
  if (!is_desktop_entry_created()) install_desktop_entry();
  set_window_title(window);
  gtk_window_set_default_size(window, 480, 680);
  gtk_widget_show(GTK_WIDGET(window));

  g_autoptr(FlDartProject) project = fl_dart_project_new();
  fl_dart_project_set_dart_entrypoint_arguments(project, self->dart_entrypoint_arguments);
  FlView* const view = fl_view_new(project);
  gtk_widget_show(GTK_WIDGET(view));
  gtk_container_add(GTK_CONTAINER(window), GTK_WIDGET(view));
  fl_register_plugins(FL_PLUGIN_REGISTRY(view));

  FlBinaryMessenger* const messenger = fl_engine_get_binary_messenger(fl_view_get_engine(view));
  g_autoptr(FlStandardMethodCodec) codec = fl_standard_method_codec_new();
  // The messenger keeps a channel that has a handler, so our own reference need not last.
  g_autoptr(FlMethodChannel) method_channel =
      fl_method_channel_new(messenger, "com.corvana.channel/proxy_service", FL_METHOD_CODEC(codec));
  fl_method_channel_set_method_call_handler(method_channel, method_call_handler, nullptr, nullptr);
  open_log_stream(messenger);

  // A core that runs may be in use through the proxy; without one, a proxy that an earlier run left
  // behind leads nowhere.
  if (!is_core_running()) run_guarded(clear_system_proxy);
  hook_exit_signals(G_APPLICATION(self));
  hook_display_loss();
  gtk_widget_grab_focus(GTK_WIDGET(view));
}

static void my_application_activate(GApplication* application) {
  run_guarded([application] { open_window(MY_APPLICATION(application)); });
}

static gboolean my_application_local_command_line(GApplication* application, char*** arguments,
                                                  int* exit_status) {
  MyApplication* const self = MY_APPLICATION(application);
  g_strfreev(self->dart_entrypoint_arguments);
  self->dart_entrypoint_arguments = g_strdupv(*arguments + 1);

  g_autoptr(GError) error = nullptr;
  if (!g_application_register(application, nullptr, &error)) {
    g_warning("Failed to register: %s", error->message);
    *exit_status = 1;
    return TRUE;
  }
  g_application_activate(application);
  *exit_status = 0;
  return TRUE;
}

static void my_application_shutdown(GApplication* application) {
  // The clean-up may take seconds, and a closed window that stays on the screen looks frozen.
  GdkDisplay* const display = gdk_display_get_default();
  if (display != nullptr) gdk_display_flush(display);
  leave_cleanly();
  G_APPLICATION_CLASS(my_application_parent_class)->shutdown(application);
}

static void my_application_dispose(GObject* object) {
  MyApplication* const self = MY_APPLICATION(object);
  g_clear_pointer(&self->dart_entrypoint_arguments, g_strfreev);
  G_OBJECT_CLASS(my_application_parent_class)->dispose(object);
}

static void my_application_class_init(MyApplicationClass* klass) {
  G_APPLICATION_CLASS(klass)->activate = my_application_activate;
  G_APPLICATION_CLASS(klass)->local_command_line = my_application_local_command_line;
  G_APPLICATION_CLASS(klass)->shutdown = my_application_shutdown;
  G_OBJECT_CLASS(klass)->dispose = my_application_dispose;
}

static void my_application_init(MyApplication*) {}

MyApplication* my_application_new() {
  return MY_APPLICATION(g_object_new(my_application_get_type(), "application-id",
                                     "com.corvana.linux2504", "flags", G_APPLICATION_NON_UNIQUE,
                                     nullptr));
}
