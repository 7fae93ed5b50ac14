#include <gtest/gtest.h>

#include <vector>

#include "flutter_embedding/preview/preview_options.h"

static preview::ParsedOptions parse(std::vector<const char*> arguments) {
  arguments.push_back(nullptr);
  return preview::parse_options(const_cast<char**>(arguments.data()));
}

TEST(Options, AreRead) {
  const auto parsed = parse({"--config", "b.json", "--proxy-mode=4", "--connect", "--page", "log",
                             "--screenshot=s.png", "--quit"});
  EXPECT_EQ(parsed.complaint, "");
  EXPECT_EQ(parsed.options.config.front(), '/');
  EXPECT_EQ(parsed.options.proxy_mode, preview::ProxyMode::no_system_proxy);
  EXPECT_EQ(parsed.options.page, "log");
  EXPECT_TRUE(parsed.options.connect && parsed.options.quit && !parsed.options.screenshot.empty());
  EXPECT_EQ(preview::parse_options(nullptr).complaint, "");
}

TEST(Options, AnyFaultGivesOneLineAndTheDefaults) {
  const char* rows[] = {"--bogus",        "--help",         "stray",        "--proxy-mode",
                        "--proxy-mode=x", "--proxy-mode=2", "--page=other", "two\nlines"};
  for (const char* fault : rows) {
    const auto parsed = parse({"--connect", fault});
    EXPECT_NE(parsed.complaint, "") << fault;
    EXPECT_EQ(parsed.complaint.find('\n'), std::string::npos) << fault;
    EXPECT_FALSE(parsed.options.connect) << fault;
  }
}
