#include "flutter_embedding/codec/codec_error.h"

GQuark codec_error_quark() { return g_quark_from_static_string("codec-error"); }
