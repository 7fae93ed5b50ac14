#ifndef CORVANA_SAMPLE_CORE_HTTP_MESSAGE_H_
#define CORVANA_SAMPLE_CORE_HTTP_MESSAGE_H_

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "client.h"

struct HttpRequest {
  std::string method;
  std::string target;   // as the client wrote it
  std::string version;  // "HTTP/1.0" or "HTTP/1.1"
  std::vector<std::pair<std::string, std::string>> headers;
};

// Reads a request head and leaves what follows it in the client's input. A head that is malformed
// or longer than `k_max_head_size` is answered with an error here and gives nothing, as does a
// client that leaves. Blocks; to be called from the client's worker thread.
std::optional<HttpRequest> receive_http_request(const Client& client);

// Sends a whole response and ends the connection. `status` is a code with its reason ("404 Not
// Found"); `body` is UTF-8. Blocks; to be called from the client's worker thread.
void send_http_response(const Client& client, const std::string& status, const char* content_type,
                        const std::string& body);

// The same with `status` and `detail` as a plain text body.
void send_http_error(const Client& client, const std::string& status, const std::string& detail);

#endif
