#include "flutter_embedding/preview/default_config.h"

#include <gtest/gtest.h>

// The host reads the ports by searching the text.
TEST(DefaultConfig, HasItsKeysInTheOrderThatTheHostReads) {
  const std::string text = preview::default_config_text();
  const auto port = text.find("listen_port\": 7890");
  EXPECT_NE(port, std::string::npos);
  EXPECT_EQ(text.find("listen_port", text.find("\"mixed\"")), port);
  EXPECT_NE(text.find("\"external_controller\": \"127.0.0.1:9090\""), std::string::npos);
  EXPECT_EQ(preview::mixed_port_of(text), 7890);
}

TEST(MixedPort, IsTheMixedInboundsOwn) {
  const char* second =
      R"({"inbounds":[{"listen_port":1,"type":"tun"},{"listen_port":2,"type":"mixed"}]})";
  EXPECT_EQ(preview::mixed_port_of(second), 2);
  const char* without[] = {R"({"inbounds":[{"type":"mixed","listen_port":70000}]})",
                           R"({"inbounds":[{"type":"mixed","listen_port":"80"}]})",
                           R"({"inbounds":[7,{"type":7}]})",
                           R"({"inbounds":{}})",
                           "[]",
                           "{",
                           ""};
  for (const char* text : without) EXPECT_EQ(preview::mixed_port_of(text), std::nullopt) << text;
  EXPECT_EQ(preview::mixed_port_of_file("/dev/zero"), std::nullopt);
}
