#include "flutter_embedding/engine.h"
#include "flutter_embedding/plugin_registrar.h"
#include "flutter_embedding/preview/preview.h"

struct _FlView {
  GtkBox parent_instance;
  FlDartProject* project;
  FlEngine* engine;
  GtkWidget* content;  // owned by the box
};

struct _FlPluginRegistryInterface {
  GTypeInterface parent_interface;
};

G_DEFINE_INTERFACE(FlPluginRegistry, fl_plugin_registry, G_TYPE_OBJECT)

static void fl_plugin_registry_default_init(FlPluginRegistryInterface*) {}

// The only implementation of FlPluginRegistry.
G_DEFINE_FINAL_TYPE_WITH_CODE(FlView, fl_view, GTK_TYPE_BOX,
                              G_IMPLEMENT_INTERFACE(fl_plugin_registry_get_type(), nullptr))

// Passes the focus on to the content, unless the content has it already.
static void fl_view_grab_focus(GtkWidget* widget) {
  FlView* self = FL_VIEW(widget);
  if (self->content != nullptr && gtk_container_get_focus_child(GTK_CONTAINER(self)) == nullptr) {
    gtk_widget_child_focus(self->content, GTK_DIR_TAB_FORWARD);
  }
}

static void fl_view_dispose(GObject* object) {
  FlView* self = FL_VIEW(object);
  // The content must be destroyed before the engine, which it uses.
  G_OBJECT_CLASS(fl_view_parent_class)->dispose(object);
  self->content = nullptr;
  // Also closes an engine that is still referenced elsewhere.
  if (self->engine != nullptr) g_object_run_dispose(G_OBJECT(self->engine));
  g_clear_object(&self->engine);
  g_clear_object(&self->project);
}

static void fl_view_class_init(FlViewClass* klass) {
  G_OBJECT_CLASS(klass)->dispose = fl_view_dispose;
  GTK_WIDGET_CLASS(klass)->grab_focus = fl_view_grab_focus;
}

static void fl_view_init(FlView*) {}

FlView* fl_view_new(FlDartProject* project) {
  g_return_val_if_fail(FL_IS_DART_PROJECT(project), nullptr);
  auto* self = FL_VIEW(g_object_new(fl_view_get_type(), nullptr));
  self->project = FL_DART_PROJECT(g_object_ref(project));
  self->engine = engine_new();
  self->content = preview_new(fl_engine_get_binary_messenger(self->engine),
                              fl_dart_project_get_dart_entrypoint_arguments(project));
  gtk_widget_show(self->content);
  gtk_box_pack_start(GTK_BOX(self), self->content, TRUE, TRUE, 0);
  return self;
}

FlEngine* fl_view_get_engine(FlView* self) {
  g_return_val_if_fail(FL_IS_VIEW(self), nullptr);
  return self->engine;
}

FlPluginRegistrar* fl_plugin_registry_get_registrar_for_plugin(FlPluginRegistry* self,
                                                               const gchar* name) {
  g_return_val_if_fail(FL_IS_PLUGIN_REGISTRY(self), nullptr);
  g_return_val_if_fail(name != nullptr, nullptr);
  FlEngine* engine = FL_VIEW(self)->engine;
  g_return_val_if_fail(engine != nullptr, nullptr);
  return plugin_registrar_new(FL_VIEW(self), fl_engine_get_binary_messenger(engine));
}
