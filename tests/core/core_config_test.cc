#include "core/core_config.h"

#include <gtest/gtest.h>

using PortRows = std::vector<std::pair<const char*, int>>;

TEST(CoreConfig, ClashApiPort) {
  const PortRows rows = {
      {R"({"external_controller":"0.0.0.0:9090"})", 9090},
      {"\"external_controller\"\t:\r\n \":9090\"", 9090},
      {R"("external_controller": "[::1]:9090")", 0},
      {R"("external_controller": "x:2147483648")", 0},
      {R"({"external_controller": 1, "external_controller": "x:9090"})", 0},
  };
  for (const auto& [config, port] : rows) EXPECT_EQ(clash_api_port(config), port) << config;
}

TEST(CoreConfig, MixedPort) {
  const PortRows rows = {
      {R"({"type": "mixed", "listen_port": "7890"})", 7890},
      {"\"mixed\" \"listen_port\":\n7890", 0},
      {R"([{"type": "socks", "listen_port": 1}, {"type": "mixed", "listen_port": 2}])", 2},
      {R"([{"listen_port": 1, "type": "mixed"}, {"type": "socks", "listen_port": 2}])", 2},
      {R"({"type": "mixed-in", "listen_port": 7890})", 0},
  };
  for (const auto& [config, port] : rows) EXPECT_EQ(mixed_port(config), port) << config;
}
