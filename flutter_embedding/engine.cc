#include "flutter_embedding/engine.h"

#include "flutter_embedding/channels/messenger.h"

struct _FlEngine {
  GObject parent_instance;
  FlBinaryMessenger* messenger;
};

G_DEFINE_FINAL_TYPE(FlEngine, fl_engine, G_TYPE_OBJECT)

static void fl_engine_dispose(GObject* object) {
  messenger_close(FL_ENGINE(object)->messenger);
  G_OBJECT_CLASS(fl_engine_parent_class)->dispose(object);
}

static void fl_engine_finalize(GObject* object) {
  g_clear_object(&FL_ENGINE(object)->messenger);
  G_OBJECT_CLASS(fl_engine_parent_class)->finalize(object);
}

static void fl_engine_class_init(FlEngineClass* klass) {
  G_OBJECT_CLASS(klass)->dispose = fl_engine_dispose;
  G_OBJECT_CLASS(klass)->finalize = fl_engine_finalize;
}

static void fl_engine_init(FlEngine* self) { self->messenger = messenger_new(); }

FlEngine* engine_new() { return FL_ENGINE(g_object_new(fl_engine_get_type(), nullptr)); }

FlBinaryMessenger* fl_engine_get_binary_messenger(FlEngine* self) {
  g_return_val_if_fail(FL_IS_ENGINE(self), nullptr);
  return self->messenger;
}
