#include "http_message.h"

#include <algorithm>
#include <string_view>

#include "log.h"

static constexpr std::string_view k_line_end = "\r\n";
static constexpr std::string_view k_head_end = "\r\n\r\n";

enum class HeadOutcome { complete, too_large, client_left };

static HeadOutcome read_head(GBufferedInputStream* input, std::string* head) {
  size_t searched = 0;
  while (true) {
    gsize count = 0;
    const void* bytes = g_buffered_input_stream_peek_buffer(input, &count);
    const std::string_view available(static_cast<const char*>(bytes), count);
    const size_t end = available.find(k_head_end, searched);
    if (end != std::string_view::npos) {
      head->assign(available.substr(0, end + k_line_end.size()));
      g_input_stream_skip(G_INPUT_STREAM(input), end + k_head_end.size(), nullptr, nullptr);
      return HeadOutcome::complete;
    }
    if (count >= k_max_head_size) return HeadOutcome::too_large;
    searched = count < k_head_end.size() ? 0 : count - k_head_end.size() + 1;
    if (g_buffered_input_stream_fill(input, -1, nullptr, nullptr) <= 0)
      return HeadOutcome::client_left;
  }
}

static bool parse_request_line(const std::string& line, HttpRequest* request) {
  const size_t first = line.find(' ');
  const size_t last = line.rfind(' ');
  if (first == 0 || first == std::string::npos || last <= first + 1) return false;
  request->method = line.substr(0, first);
  request->target = line.substr(first + 1, last - first - 1);
  request->version = line.substr(last + 1);
  return request->target.find(' ') == std::string::npos &&
         (request->version == "HTTP/1.1" || request->version == "HTTP/1.0");
}

static bool parse_header(const std::string& line, HttpRequest* request) {
  const size_t colon = line.find(':');
  if (colon == 0 || colon == std::string::npos) return false;
  const std::string name = line.substr(0, colon);
  if (name.find_first_of(" \t") != std::string::npos) return false;
  g_autofree char* value = g_strstrip(g_strdup(line.c_str() + colon + 1));
  request->headers.emplace_back(name, value);
  return true;
}

// Strict about line ends and blanks: where two servers read a head differently, one request can be
// smuggled inside another.
static std::optional<HttpRequest> parse_head(const std::string& head) {
  HttpRequest request;
  for (size_t start = 0; start < head.size();) {
    const size_t end = head.find(k_line_end, start);
    const std::string line = head.substr(start, end - start);
    const auto is_forbidden = [](char c) { return g_ascii_iscntrl(c) && c != '\t'; };
    if (std::any_of(line.begin(), line.end(), is_forbidden)) return std::nullopt;
    if (!(start == 0 ? parse_request_line(line, &request) : parse_header(line, &request))) {
      return std::nullopt;
    }
    start = end + k_line_end.size();
  }
  return request;
}

std::optional<HttpRequest> receive_http_request(const Client& client) {
  std::string head;
  const HeadOutcome outcome = read_head(client.input, &head);
  if (outcome == HeadOutcome::client_left) return std::nullopt;
  if (outcome == HeadOutcome::too_large) {
    log_event("http request refused: its head is too large");
    send_http_error(client, "431 Request Header Fields Too Large", "at most 64 KiB are read");
    return std::nullopt;
  }
  std::optional<HttpRequest> request = parse_head(head);
  if (request) return request;
  log_event("http request refused: it can't be understood");
  send_http_error(client, "400 Bad Request", "the request can't be understood");
  return std::nullopt;
}

void send_http_response(const Client& client, const std::string& status, const char* content_type,
                        const std::string& body) {
  send_bytes(client.connection, "HTTP/1.1 " + status + "\r\nContent-Type: " + content_type +
                                    "\r\nContent-Length: " + std::to_string(body.size()) +
                                    "\r\nConnection: close\r\n\r\n" + body);
  close_gently(client);
}

void send_http_error(const Client& client, const std::string& status, const std::string& detail) {
  send_http_response(client, status, "text/plain; charset=utf-8", status + ": " + detail + "\n");
}
