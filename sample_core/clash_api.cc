#include "clash_api.h"

#include <nlohmann/json.hpp>

#include "http_message.h"
#include "log.h"
#include "version.h"

static constexpr char k_content_type[] = "application/json";

void serve_clash_api(const Client& client) {
  const std::optional<HttpRequest> request = receive_http_request(client);
  if (!request) return;
  log_event("clash api " + request->method + " " + request->target);
  if (request->method != "GET" || request->target != "/version") {
    return send_http_response(client, "404 Not Found", k_content_type,
                              R"({"message":"not found"})");
  }
  const nlohmann::ordered_json version = {
      {"version", k_core_version}, {"meta", false}, {"premium", false}};
  send_http_response(client, "200 OK", k_content_type, version.dump());
}
