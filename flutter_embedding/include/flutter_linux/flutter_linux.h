// The C interface between a Flutter host program and the Flutter engine library on Linux.
//
// Main thread only, except the functions on FlValue: values may be used and released on any
// thread. A value's reference count is atomic; its content isn't guarded, so nobody may change a
// value that another thread reads.
//
// Strings, vectors and data that are passed in are copied. A result is a new reference unless its
// comment says "borrowed". A null or wrongly typed argument is a programming error: it is reported
// as a GLib critical, and the function does nothing.

#ifndef CORVANA_FLUTTER_LINUX_FLUTTER_LINUX_H_
#define CORVANA_FLUTTER_LINUX_FLUTTER_LINUX_H_

#include <gtk/gtk.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

G_BEGIN_DECLS

// The order is part of the interface.
typedef enum {
  FL_VALUE_TYPE_NULL,
  FL_VALUE_TYPE_BOOL,
  FL_VALUE_TYPE_INT,
  FL_VALUE_TYPE_FLOAT,
  FL_VALUE_TYPE_STRING,
  FL_VALUE_TYPE_UINT8_LIST,
  FL_VALUE_TYPE_INT32_LIST,
  FL_VALUE_TYPE_INT64_LIST,
  FL_VALUE_TYPE_FLOAT_LIST,
  FL_VALUE_TYPE_LIST,
  FL_VALUE_TYPE_MAP,
  FL_VALUE_TYPE_FLOAT32_LIST,
  FL_VALUE_TYPE_CUSTOM
} FlValueType;

typedef struct _FlValue FlValue;

// Constructors. Lengths are in elements, that of a sized string in bytes. Strings should be UTF-8;
// their bytes are passed on unchecked.
FlValue* fl_value_new_null(void);
FlValue* fl_value_new_bool(bool value);
FlValue* fl_value_new_int(int64_t value);
FlValue* fl_value_new_float(double value);
FlValue* fl_value_new_string(const gchar* value);
FlValue* fl_value_new_string_sized(const gchar* value, size_t value_length);
FlValue* fl_value_new_uint8_list(const uint8_t* values, size_t values_length);
FlValue* fl_value_new_int32_list(const int32_t* values, size_t values_length);
FlValue* fl_value_new_int64_list(const int64_t* values, size_t values_length);
FlValue* fl_value_new_float_list(const double* values, size_t values_length);
FlValue* fl_value_new_float32_list(const float* values, size_t values_length);
FlValue* fl_value_new_list(void);
FlValue* fl_value_new_map(void);

FlValue* fl_value_ref(FlValue* value);
void fl_value_unref(FlValue* value);

// Equal in type and content. The order of a map's entries doesn't count; 1 and 1.0 differ.
bool fl_value_equal(FlValue* a, FlValue* b);

// The "take" forms consume the caller's references, also when they fail.
void fl_value_append(FlValue* list, FlValue* value);
void fl_value_append_take(FlValue* list, FlValue* value);

// A map keeps the order in which keys were first set; setting a key again replaces its value and
// keeps its place.
void fl_value_set(FlValue* map, FlValue* key, FlValue* value);
void fl_value_set_take(FlValue* map, FlValue* key, FlValue* value);
void fl_value_set_string(FlValue* map, const gchar* key, FlValue* value);
void fl_value_set_string_take(FlValue* map, const gchar* key, FlValue* value);

// Getters. Their pointers are borrowed and valid as long as the value. A getter of another type
// than the value's reports a critical and gives zero or null, so ask for the type first.
FlValueType fl_value_get_type(FlValue* value);
bool fl_value_get_bool(FlValue* value);
int64_t fl_value_get_int(FlValue* value);
double fl_value_get_float(FlValue* value);
const gchar* fl_value_get_string(FlValue* value);
const uint8_t* fl_value_get_uint8_list(FlValue* value);
const int32_t* fl_value_get_int32_list(FlValue* value);
const int64_t* fl_value_get_int64_list(FlValue* value);
const double* fl_value_get_float_list(FlValue* value);
const float* fl_value_get_float32_list(FlValue* value);

// The number of a map's entries or of any list's elements.
size_t fl_value_get_length(FlValue* value);

// Borrowed. An index beyond the end reports a critical and gives null.
FlValue* fl_value_get_list_value(FlValue* list, size_t index);
FlValue* fl_value_get_map_key(FlValue* map, size_t index);
FlValue* fl_value_get_map_value(FlValue* map, size_t index);

// Borrowed, or null when the map has no such key.
FlValue* fl_value_lookup(FlValue* map, FlValue* key);
FlValue* fl_value_lookup_string(FlValue* map, const gchar* key);

// A text for debugging. Free it with g_free.
gchar* fl_value_to_string(FlValue* value);

G_DEFINE_AUTOPTR_CLEANUP_FUNC(FlValue, fl_value_unref)

// The Dart program that an engine runs, and its arguments.
G_DECLARE_FINAL_TYPE(FlDartProject, fl_dart_project, FL, DART_PROJECT, GObject)

FlDartProject* fl_dart_project_new(void);

// A null-terminated vector. The getter's result is borrowed and never null; it is empty at first.
void fl_dart_project_set_dart_entrypoint_arguments(FlDartProject* project, char** argv);
char** fl_dart_project_get_dart_entrypoint_arguments(FlDartProject* project);

// Carries encoded messages between the host and the user interface.
G_DECLARE_INTERFACE(FlBinaryMessenger, fl_binary_messenger, FL, BINARY_MESSENGER, GObject)

G_DECLARE_FINAL_TYPE(FlEngine, fl_engine, FL, ENGINE, GObject)

// Borrowed.
FlBinaryMessenger* fl_engine_get_binary_messenger(FlEngine* engine);

// A widget that shows a project. It has an engine of its own, which ends when the widget is
// destroyed.
G_DECLARE_FINAL_TYPE(FlView, fl_view, FL, VIEW, GtkBox)

// A floating widget, which keeps a reference on the project.
FlView* fl_view_new(FlDartProject* project);

// Borrowed; null once the widget is destroyed.
FlEngine* fl_view_get_engine(FlView* view);

// Gives a plugin the messenger and the view.
G_DECLARE_INTERFACE(FlPluginRegistrar, fl_plugin_registrar, FL, PLUGIN_REGISTRAR, GObject)

// Borrowed; the view is null once it is gone.
FlBinaryMessenger* fl_plugin_registrar_get_messenger(FlPluginRegistrar* registrar);
FlView* fl_plugin_registrar_get_view(FlPluginRegistrar* registrar);

G_DECLARE_INTERFACE(FlPluginRegistry, fl_plugin_registry, FL, PLUGIN_REGISTRY, GObject)

FlPluginRegistrar* fl_plugin_registry_get_registrar_for_plugin(FlPluginRegistry* registry,
                                                               const gchar* name);

// The answer to a method call.
G_DECLARE_DERIVABLE_TYPE(FlMethodResponse, fl_method_response, FL, METHOD_RESPONSE, GObject)

struct _FlMethodResponseClass {
  GObjectClass parent_class;
};

G_DECLARE_FINAL_TYPE(FlMethodSuccessResponse, fl_method_success_response, FL,
                     METHOD_SUCCESS_RESPONSE, FlMethodResponse)

// Takes its own reference on the result; null stands for the null value.
FlMethodSuccessResponse* fl_method_success_response_new(FlValue* result);

G_DECLARE_FINAL_TYPE(FlMethodErrorResponse, fl_method_error_response, FL, METHOD_ERROR_RESPONSE,
                     FlMethodResponse)

// Message and details may be null.
FlMethodErrorResponse* fl_method_error_response_new(const gchar* code, const gchar* message,
                                                    FlValue* details);

G_DECLARE_FINAL_TYPE(FlMethodNotImplementedResponse, fl_method_not_implemented_response, FL,
                     METHOD_NOT_IMPLEMENTED_RESPONSE, FlMethodResponse)

FlMethodNotImplementedResponse* fl_method_not_implemented_response_new(void);

// Stands for a channel's encoding. There is only the standard one.
G_DECLARE_DERIVABLE_TYPE(FlMethodCodec, fl_method_codec, FL, METHOD_CODEC, GObject)

struct _FlMethodCodecClass {
  GObjectClass parent_class;
};

G_DECLARE_FINAL_TYPE(FlStandardMethodCodec, fl_standard_method_codec, FL, STANDARD_METHOD_CODEC,
                     FlMethodCodec)

// Values nested deeper than 128 levels can be neither read nor written.
FlStandardMethodCodec* fl_standard_method_codec_new(void);

// A call from the user interface. If it is released unanswered, the caller learns that nobody
// handled it.
G_DECLARE_FINAL_TYPE(FlMethodCall, fl_method_call, FL, METHOD_CALL, GObject)

// Borrowed.
const gchar* fl_method_call_get_name(FlMethodCall* call);
FlValue* fl_method_call_get_args(FlMethodCall* call);

// Fails without any effect when the call was answered before, the response can't be encoded or the
// engine is gone.
gboolean fl_method_call_respond(FlMethodCall* call, FlMethodResponse* response, GError** error);

G_DECLARE_FINAL_TYPE(FlMethodChannel, fl_method_channel, FL, METHOD_CHANNEL, GObject)

FlMethodChannel* fl_method_channel_new(FlBinaryMessenger* messenger, const gchar* name,
                                       FlMethodCodec* codec);

// The call is borrowed; a handler that answers later takes a reference on it.
typedef void (*FlMethodChannelMethodCallHandler)(FlMethodChannel* channel, FlMethodCall* call,
                                                 gpointer user_data);

// A channel name has one handler: a new one replaces it, null removes it. The messenger keeps the
// channel alive while its handler is installed. `destroy` is called with `user_data` once the
// handler is replaced or removed or the engine has ended, but never while the handler runs.
void fl_method_channel_set_method_call_handler(FlMethodChannel* channel,
                                               FlMethodChannelMethodCallHandler handler,
                                               gpointer user_data, GDestroyNotify destroy);

G_DECLARE_FINAL_TYPE(FlEventChannel, fl_event_channel, FL, EVENT_CHANNEL, GObject)

FlEventChannel* fl_event_channel_new(FlBinaryMessenger* messenger, const gchar* name,
                                     FlMethodCodec* codec);

// Returns null for success, or a new error response, which becomes the answer. `args` is borrowed.
typedef FlMethodErrorResponse* (*FlEventChannelHandler)(FlEventChannel* channel, FlValue* args,
                                                        gpointer user_data);

// A null handler accepts every call; two null handlers remove the channel's handlers. Otherwise as
// for the handler of a method channel.
void fl_event_channel_set_stream_handlers(FlEventChannel* channel, FlEventChannelHandler listen,
                                          FlEventChannelHandler cancel, gpointer user_data,
                                          GDestroyNotify destroy);

// Sends even if nobody listens. Fails when the cancellable is cancelled, the event can't be encoded
// or the engine is gone.
gboolean fl_event_channel_send(FlEventChannel* channel, FlValue* event, GCancellable* cancellable,
                               GError** error);

G_END_DECLS

#endif
