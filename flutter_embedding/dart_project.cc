#include <flutter_linux/flutter_linux.h>

struct _FlDartProject {
  GObject parent_instance;
  char** arguments;
};

G_DEFINE_FINAL_TYPE(FlDartProject, fl_dart_project, G_TYPE_OBJECT)

static char** copy_vector(char** vector) {
  return vector == nullptr ? g_new0(char*, 1) : g_strdupv(vector);
}

static void fl_dart_project_finalize(GObject* object) {
  g_strfreev(FL_DART_PROJECT(object)->arguments);
  G_OBJECT_CLASS(fl_dart_project_parent_class)->finalize(object);
}

static void fl_dart_project_class_init(FlDartProjectClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = fl_dart_project_finalize;
}

static void fl_dart_project_init(FlDartProject* self) { self->arguments = copy_vector(nullptr); }

FlDartProject* fl_dart_project_new() {
  return FL_DART_PROJECT(g_object_new(fl_dart_project_get_type(), nullptr));
}

void fl_dart_project_set_dart_entrypoint_arguments(FlDartProject* self, char** argv) {
  g_return_if_fail(FL_IS_DART_PROJECT(self));
  char** copy = copy_vector(argv);
  g_strfreev(self->arguments);
  self->arguments = copy;
}

char** fl_dart_project_get_dart_entrypoint_arguments(FlDartProject* self) {
  g_return_val_if_fail(FL_IS_DART_PROJECT(self), nullptr);
  return self->arguments;
}
