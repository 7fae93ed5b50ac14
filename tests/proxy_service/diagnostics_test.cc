#include <gtest/gtest.h>
#include <stdlib.h>

#include <csignal>
#include <filesystem>

#include "support/channel_client.h"
#include "support/files.h"
#include "support/temporary_home.h"

TEST(Diagnostics, EveryProbeTrueAndTheShapesOfTheVersion) {
  std::signal(SIGPIPE, SIG_IGN);  // as the host does
  const TemporaryHome home;
  home.allow_only({"grep", "head"});
  home.add_recorders({"gsettings", "kwriteconfig6", "systemctl"});
  home.add_stand_in("ldconfig", "#!/bin/sh\necho '\tlibproxy.so.1 (libc6,x86-64) => /lib/x'\n");
  setenv("XDG_CURRENT_DESKTOP", "KDE", 1);
  setenv("XDG_SESSION_TYPE", "wayland", 1);
  // The sandbox's own /dev, which has no such device.
  std::filesystem::create_directory("/dev/net");
  write_file("/dev/net/tun", "");
  const std::string long_line(300, 'v');
  const std::pair<std::string, std::string> rows[] = {
      {"echo \"zant $1 9\"; echo more", "zant version 9"},
      {"echo 1.2 >&2", "unknown"},
      {"echo " + long_line + "; exit 3", long_line.substr(0, 255)},
      {"printf '1.2\\377\\r\\n'", "1.2\uFFFD"},
      {"i=0; while [ $((i += 1)) -lt 100000 ]; do echo 1; done; echo >still-printing", "1"},
  };
  for (const auto& [script, version] : rows) {
    home.add_stand_in("zant", "#!/bin/sh\n" + script + "\n");
    EXPECT_EQ(ChannelClient().call("getDiagnostics"),
              "{desktop: kde, sessionType: wayland, hasLibproxy: true, hasTunDevice: true,"
              " hasZantSystem: true, helperActive: true, hasGsettings: true,"
              " hasKwriteconfig: true, appDir: " +
                  get_executable_dir() + ", activeCore: zant, corePath: " + home.bin() +
                  "/zant, coreExists: true, zantVersion: " + version +
                  ", runtimeLogPath: " + home.path() + "/.local/share/Corvana/run/runtime.log}");
  }
  EXPECT_EQ(read_file("still-printing"), "") << "a core that nobody reads any more ends";
  EXPECT_EQ(home.recorded_commands().front(), "systemctl is-active --quiet corvana-helper");
  std::filesystem::remove_all("/dev/net");
}
