// The contents of a response, for the codec and the user interface. Everything is borrowed. Main
// thread only.

#ifndef CORVANA_FLUTTER_EMBEDDING_CHANNELS_METHOD_RESPONSE_H_
#define CORVANA_FLUTTER_EMBEDDING_CHANNELS_METHOD_RESPONSE_H_

#include <flutter_linux/flutter_linux.h>

// Never null.
FlValue* method_success_response_get_result(FlMethodSuccessResponse* response);

// The code is never null, message and details may be.
const char* method_error_response_get_code(FlMethodErrorResponse* response);
const char* method_error_response_get_message(FlMethodErrorResponse* response);
FlValue* method_error_response_get_details(FlMethodErrorResponse* response);

#endif
