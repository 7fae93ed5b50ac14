#include "flutter_embedding/plugin_registrar.h"

struct _FlPluginRegistrarInterface {
  GTypeInterface parent_interface;
};

G_DEFINE_INTERFACE(FlPluginRegistrar, fl_plugin_registrar, G_TYPE_OBJECT)

static void fl_plugin_registrar_default_init(FlPluginRegistrarInterface*) {}

// The only implementation of FlPluginRegistrar.
G_DECLARE_FINAL_TYPE(FlViewRegistrar, fl_view_registrar, FL, VIEW_REGISTRAR, GObject)

struct _FlViewRegistrar {
  GObject parent_instance;
  FlView* view;  // weak
  FlBinaryMessenger* messenger;
};

G_DEFINE_FINAL_TYPE_WITH_CODE(FlViewRegistrar, fl_view_registrar, G_TYPE_OBJECT,
                              G_IMPLEMENT_INTERFACE(fl_plugin_registrar_get_type(), nullptr))

static void fl_view_registrar_finalize(GObject* object) {
  FlViewRegistrar* self = FL_VIEW_REGISTRAR(object);
  g_clear_weak_pointer(&self->view);
  g_clear_object(&self->messenger);
  G_OBJECT_CLASS(fl_view_registrar_parent_class)->finalize(object);
}

static void fl_view_registrar_class_init(FlViewRegistrarClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = fl_view_registrar_finalize;
}

static void fl_view_registrar_init(FlViewRegistrar*) {}

FlPluginRegistrar* plugin_registrar_new(FlView* view, FlBinaryMessenger* messenger) {
  auto* self = FL_VIEW_REGISTRAR(g_object_new(fl_view_registrar_get_type(), nullptr));
  g_set_weak_pointer(&self->view, view);
  self->messenger = FL_BINARY_MESSENGER(g_object_ref(messenger));
  return FL_PLUGIN_REGISTRAR(self);
}

FlBinaryMessenger* fl_plugin_registrar_get_messenger(FlPluginRegistrar* self) {
  g_return_val_if_fail(FL_IS_PLUGIN_REGISTRAR(self), nullptr);
  return FL_VIEW_REGISTRAR(self)->messenger;
}

FlView* fl_plugin_registrar_get_view(FlPluginRegistrar* self) {
  g_return_val_if_fail(FL_IS_PLUGIN_REGISTRAR(self), nullptr);
  return FL_VIEW_REGISTRAR(self)->view;
}
