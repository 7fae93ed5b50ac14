#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_SERVICE_CLIENT_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_SERVICE_CLIENT_H_

#include <flutter_linux/flutter_linux.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "flutter_embedding/later.h"
#include "flutter_embedding/preview/runner/preview_options.h"
#include "flutter_embedding/preview/runner/task_phase.h"

namespace preview {

inline constexpr char k_service_channel[] = "com.corvana.channel/proxy_service";

struct Failure {
  std::string code;
  std::string message;
  std::string log_tail;
};

struct ServiceStatus {
  Phase phase = Phase::checking;
  bool core_running = false;
  bool stop_wanted = false;   // asked for while a start runs; carried out when that start has ended
  bool started_here = false;  // this window has started the connected core
  Failure failure;            // what went wrong, in the two failed phases
};

// Starts and stops the proxy through the host and polls its status. At most one task is under way,
// so that an outcome always belongs to the latest task. Main thread only; nothing is called after
// `life` ended.
struct ServiceClient;

// `on_change` is called whenever the status has changed, also from inside the functions below.
// Takes a reference on the messenger.
std::shared_ptr<ServiceClient> service_client_new(
    FlBinaryMessenger* messenger, const Life& life,
    std::function<void(const ServiceStatus&)> on_change);

// Queries the status for the first time.
void service_client_check(ServiceClient* client);

// `config` is a path in UTF-8. Does nothing while a task runs.
void service_client_connect(ServiceClient* client, const std::string& config, ProxyMode mode);

// Does nothing while a stop runs.
void service_client_disconnect(ServiceClient* client);

// Reports a start that failed before the host was asked.
void service_client_fail(ServiceClient* client, Failure failure);

// Look a key up in a value from a channel, which may be null or of any type. A missing key or a
// value of another type gives nothing. Strings are made valid UTF-8, which widgets require.
std::optional<bool> bool_at(FlValue* map, const char* key);
std::optional<std::string> string_at(FlValue* map, const char* key);

}  // namespace preview

#endif
