#include <gtest/gtest.h>

#include <deque>
#include <regex>

#include "flutter_embedding/channels/messenger.h"
#include "log_stream/log_stream.h"
#include "proxy_service/tasks.h"
#include "support/channel_client.h"
#include "support/files.h"
#include "support/temporary_home.h"

using Matches = std::sregex_iterator;
static const char k_log_stream[] = "com.corvana.channel/log_stream";
static const char k_proxy_service[] = "com.corvana.channel/proxy_service";
static const char k_core[] =
    "#!/bin/bash\n[[ $1 == version ]] && echo zant version 1.2.3 && exit\n"
    "echo core started; echo listening on 7890; exec -a \"zant $1 $2\" sleep 20\n";

// The page with this machine's paths. The home's path is as long as the page's, so the sizes stay
// right.
static std::string page_for(const TemporaryHome& home) {
  const std::string dir = get_executable_dir();
  g_autofree gchar* app_dir = g_strdup_printf("07 %02zx \"%s\"", dir.size(), dir.c_str());
  std::string page = read_file(DOCS "/embedding.md");
  page = std::regex_replace(page, std::regex("<appDir>"), app_dir);
  return std::regex_replace(page, std::regex("/home/flutterapp"), home.path());
}

static std::string bytes_of(const std::string& notation) {
  static const std::regex token("\"([^\"]*)\"|[^ \n]+");
  std::string bytes;
  for (Matches match(notation.begin(), notation.end(), token), end; match != end; ++match) {
    const bool is_text = (*match)[1].matched;
    bytes += is_text ? match->str(1)
                     : std::string(1, static_cast<char>(std::stoi(match->str(), nullptr, 16)));
  }
  return bytes;
}

// The examples are one session, from the page's first to its last.
TEST(EmbeddingPage, EveryExampleHolds) {
  const TemporaryHome home;
  home.allow_only({"bash", "grep", "head", "nohup", "pkill", "sleep"});
  write_file("empty.json", "{}");
  g_setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
  ChannelClient client;
  open_log_stream(client.messenger());
  std::deque<std::string> arrived;
  const auto receive = [&arrived](GBytes* bytes) {
    const auto data = static_cast<const char*>(g_bytes_get_data(bytes, nullptr));
    arrived.emplace_back(data, g_bytes_get_size(bytes));
  };
  messenger_set_receiver(client.messenger(), k_log_stream, receive);
  const std::string page = page_for(home);
  const std::regex line("\n(given|call|poll|stream|reply|event)( {2}.*(\n {8}.*)*)?(?=\n)");
  for (Matches match(page.begin(), page.end(), line), end; match != end; ++match) {
    const std::string word = match->str(1);
    const std::string bytes = bytes_of(match->str(2));
    if (word == "given") {
      home.add_stand_in("zant", k_core);
    } else if (word == "reply" || word == "event") {
      ASSERT_TRUE(run_main_loop_until([&] { return !arrived.empty(); }, std::chrono::seconds(9)));
      EXPECT_EQ(arrived.front(), bytes) << match->str();
      arrived.pop_front();
    } else {
      if (word == "poll") wait_for_workers();
      g_autoptr(GBytes) message = g_bytes_new(bytes.data(), bytes.size());
      const char* const channel = word == "stream" ? k_log_stream : k_proxy_service;
      messenger_send_to_host(client.messenger(), channel, message, receive);
    }
  }
  const std::regex method("\n\\| `(\\w+)` \\|");
  for (Matches match(page.begin(), page.end(), method), end; match != end; ++match) {
    EXPECT_NE(page.find(" \"" + match->str(1) + "\" "), page.npos) << match->str(1);
  }
}
