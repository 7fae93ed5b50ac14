#include <gtest/gtest.h>

#include "core/core_config.h"
#include "flutter_embedding/preview/runner/default_config.h"
#include "flutter_embedding/preview/runner/preview_options.h"

static preview::ParsedOptions parse(std::vector<const char*> arguments) {
  arguments.push_back(nullptr);
  return preview::parse_options(const_cast<char**>(arguments.data()));
}

TEST(Options, AreReadAndAWrongOneGivesOneLineAndCostsOnlyItself) {
  const auto [options, complaint] = parse({"--config", "b.json", "--proxy-mode=4"});
  EXPECT_EQ(complaint, "");
  EXPECT_EQ(options.config.front(), '/');
  EXPECT_EQ(options.proxy_mode, preview::ProxyMode::no_system_proxy);
  for (const char* fault : {"--help", "stray", "--proxy-mode=x", "--proxy-mode=2", "--page=other",
                            "two\nlines", "--config=\xff", "--proxy-mode"}) {
    const auto parsed = parse({"--connect", fault, "--screenshot", "s.png", "--quit"});
    EXPECT_NE(parsed.complaint, "") << fault;
    EXPECT_EQ(parsed.complaint.find('\n'), std::string::npos) << fault;
    EXPECT_EQ(parsed.options.connect, fault == std::string("--page=other")) << fault;
    EXPECT_TRUE(parsed.options.quit) << fault;
    EXPECT_EQ(parsed.options.page + " " + parsed.options.screenshot, "connection s.png") << fault;
  }
}

TEST(DefaultConfig, HasItsKeysInTheOrderThatTheHostReads) {
  const std::string text = preview::default_config_text();
  EXPECT_EQ(std::pair(mixed_port(text), clash_api_port(text)), std::pair(7890, 9090));
  EXPECT_EQ(preview::mixed_port_of(text), 7890);
  EXPECT_EQ(preview::mixed_port_of(R"({"inbounds":[7,{"type":"mixed","listen_port":"80"}]})"),
            std::nullopt);
}
