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
  bool started_here = false;  // the core that is connected, by this window
  Failure failure;            // what went wrong, in the two failed phases
};

// Starts and stops the proxy through the host and keeps an eye on it. It never has two tasks under
// way, so that an outcome always belongs to the task that was asked for last. Main thread only;
// nothing is called after `life` ended.
struct ServiceClient;

// `on_change` is called from the main loop whenever the status has changed. Takes a reference on
// the messenger.
std::shared_ptr<ServiceClient> service_client_new(
    FlBinaryMessenger* messenger, const Life& life,
    std::function<void(const ServiceStatus&)> on_change);

// Asks for the first time how things stand.
void service_client_check(ServiceClient* client);

// `config` is a path in UTF-8. Does nothing while a task runs.
void service_client_connect(ServiceClient* client, const std::string& config, ProxyMode mode);

// Does nothing while a stop runs.
void service_client_disconnect(ServiceClient* client);

// Shows a failure that the host never heard of, as one of a start.
void service_client_fail(ServiceClient* client, Failure failure);

// Look a key up in what a channel brought, which may be null or of any type. A missing key or
// another type than the wanted one gives nothing. Texts come out as valid UTF-8, since widgets
// refuse any other.
std::optional<bool> bool_at(FlValue* map, const char* key);
std::optional<std::string> string_at(FlValue* map, const char* key);

}  // namespace preview

#endif
