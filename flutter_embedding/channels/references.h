// Shared pointers that hold a reference on a GLib object.

#ifndef CORVANA_FLUTTER_EMBEDDING_CHANNELS_REFERENCES_H_
#define CORVANA_FLUTTER_EMBEDDING_CHANNELS_REFERENCES_H_

#include <gio/gio.h>

#include <memory>

// Each takes a reference of its own. Any thread.
template <typename Object>
std::shared_ptr<Object> share_object(Object* object) {
  return {static_cast<Object*>(g_object_ref(object)), g_object_unref};
}

inline std::shared_ptr<GBytes> share_bytes(GBytes* bytes) {
  return {bytes == nullptr ? nullptr : g_bytes_ref(bytes), g_bytes_unref};
}

// Calls `destroy`, if given, when the last copy goes, also for null data.
inline std::shared_ptr<void> share_user_data(gpointer user_data, GDestroyNotify destroy) {
  return {user_data, [destroy](gpointer data) {
            if (destroy != nullptr) destroy(data);
          }};
}

#endif
