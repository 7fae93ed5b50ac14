#include "core/core_config.h"

#include <gtest/gtest.h>

struct PortRow {
  const char* config;
  int port;
};

TEST(CoreConfig, ClashApiPort) {
  const PortRow rows[] = {
      {R"({"external_controller": "127.0.0.1:9090"})", 9090},
      {R"({"external_controller":"0.0.0.0:9090"})", 9090},
      {R"("external_controller" : ":9090")", 9090},
      {R"("external_controller": "localhost: 9090")", 9090},
      {R"("external_controller": "localhost:9090abc")", 9090},
      {R"("external_controller": "localhost:-5")", -5},
      {"\"external_controller\"\t:\r\n \"127.0.0.1:9090\"", 9090},
      {R"("external_controller": "[::1]:9090")", 0},
      {R"("external_controller": "127.0.0.1")", 0},
      {R"("external_controller": "127.0.0.1:")", 0},
      {R"("external_controller": "127.0.0.1:2147483648")", 0},
      {R"("external_controller": "127.0.0.1:2147483647")", 2147483647},
      {R"("external_controller": 9090)", 0},
      {R"("external_controller": "127.0.0.1:9090)", 0},
      {R"("external_controller": )", 0},
      {R"("external_controller")", 0},
      {R"(external_controller)", 0},
      {R"({"external_controller": 1, "external_controller": "x:9090"})", 0},
      {"", 0},
  };
  for (const PortRow& row : rows) EXPECT_EQ(clash_api_port(row.config), row.port) << row.config;
}

TEST(CoreConfig, MixedPort) {
  const PortRow rows[] = {
      {R"({"type": "mixed", "listen_port": 7890})", 7890},
      {R"({"type": "mixed", "listen_port": "7890"})", 7890},
      {"\"mixed\" listen_port\t:7890", 7890},
      {"\"mixed\" \"listen_port\":\n7890", 0},
      {R"([{"type": "socks", "listen_port": 1}, {"type": "mixed", "listen_port": 2}])", 2},
      {R"([{"listen_port": 1, "type": "mixed"}, {"type": "socks", "listen_port": 2}])", 2},
      {R"({"tag": "mixed", "type": "http", "listen_port": 3})", 3},
      {R"({"type": "mixed-in", "listen_port": 7890})", 0},
      {R"({"type": "mixed"})", 0},
      {R"("mixed" "listen_port")", 0},
      {R"("mixed" "listen_port": -1)", 0},
      {R"("mixed" "listen_port": 99999999999)", 0},
      {R"("mixed" "listen_port": 007)", 7},
      {"", 0},
  };
  for (const PortRow& row : rows) EXPECT_EQ(mixed_port(row.config), row.port) << row.config;
}
