#include "flutter_embedding/channels/method_response.h"

struct _FlMethodSuccessResponse {
  FlMethodResponse parent_instance;
  FlValue* result;
};

struct _FlMethodErrorResponse {
  FlMethodResponse parent_instance;
  char* code;
  char* message;
  FlValue* details;
};

struct _FlMethodNotImplementedResponse {
  FlMethodResponse parent_instance;
};

G_DEFINE_ABSTRACT_TYPE(FlMethodResponse, fl_method_response, G_TYPE_OBJECT)
G_DEFINE_FINAL_TYPE(FlMethodSuccessResponse, fl_method_success_response,
                    fl_method_response_get_type())
G_DEFINE_FINAL_TYPE(FlMethodErrorResponse, fl_method_error_response, fl_method_response_get_type())
G_DEFINE_FINAL_TYPE(FlMethodNotImplementedResponse, fl_method_not_implemented_response,
                    fl_method_response_get_type())

static void fl_method_success_response_finalize(GObject* object) {
  g_clear_pointer(&FL_METHOD_SUCCESS_RESPONSE(object)->result, fl_value_unref);
  G_OBJECT_CLASS(fl_method_success_response_parent_class)->finalize(object);
}

static void fl_method_error_response_finalize(GObject* object) {
  FlMethodErrorResponse* self = FL_METHOD_ERROR_RESPONSE(object);
  g_free(self->code);
  g_free(self->message);
  g_clear_pointer(&self->details, fl_value_unref);
  G_OBJECT_CLASS(fl_method_error_response_parent_class)->finalize(object);
}

static void fl_method_response_class_init(FlMethodResponseClass*) {}

static void fl_method_response_init(FlMethodResponse*) {}

static void fl_method_success_response_class_init(FlMethodSuccessResponseClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = fl_method_success_response_finalize;
}

static void fl_method_success_response_init(FlMethodSuccessResponse*) {}

static void fl_method_error_response_class_init(FlMethodErrorResponseClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = fl_method_error_response_finalize;
}

static void fl_method_error_response_init(FlMethodErrorResponse*) {}

static void fl_method_not_implemented_response_class_init(FlMethodNotImplementedResponseClass*) {}

static void fl_method_not_implemented_response_init(FlMethodNotImplementedResponse*) {}

FlMethodSuccessResponse* fl_method_success_response_new(FlValue* result) {
  auto* self =
      FL_METHOD_SUCCESS_RESPONSE(g_object_new(fl_method_success_response_get_type(), nullptr));
  self->result = result == nullptr ? fl_value_new_null() : fl_value_ref(result);
  return self;
}

FlMethodErrorResponse* fl_method_error_response_new(const gchar* code, const gchar* message,
                                                    FlValue* details) {
  g_return_val_if_fail(code != nullptr, nullptr);
  auto* self = FL_METHOD_ERROR_RESPONSE(g_object_new(fl_method_error_response_get_type(), nullptr));
  self->code = g_strdup(code);
  self->message = g_strdup(message);
  self->details = details == nullptr ? nullptr : fl_value_ref(details);
  return self;
}

FlMethodNotImplementedResponse* fl_method_not_implemented_response_new() {
  return FL_METHOD_NOT_IMPLEMENTED_RESPONSE(
      g_object_new(fl_method_not_implemented_response_get_type(), nullptr));
}

FlValue* method_success_response_get_result(FlMethodSuccessResponse* response) {
  return response->result;
}

const char* method_error_response_get_code(FlMethodErrorResponse* response) {
  return response->code;
}

const char* method_error_response_get_message(FlMethodErrorResponse* response) {
  return response->message;
}

FlValue* method_error_response_get_details(FlMethodErrorResponse* response) {
  return response->details;
}
