#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

#include "executable_dir.h"
#include "support/channel_client.h"
#include "support/temporary_home.h"

TEST(Diagnostics, EveryProbeFalse) {
  const TemporaryHome home;
  home.allow_only({});
  ChannelClient client;
  EXPECT_EQ(client.call("getDiagnostics"),
            "{desktop: other, sessionType: , hasLibproxy: false, hasTunDevice: false,"
            " hasZantSystem: false, helperActive: false, hasGsettings: false,"
            " hasKwriteconfig: false, appDir: " +
                get_executable_dir() +
                ", activeCore: zant, corePath: , coreExists: false, runtimeLogPath: " +
                home.path() + "/.local/share/Corvana/run/runtime.log}");
}

TEST(Diagnostics, EveryProbeTrue) {
  const TemporaryHome home;
  home.allow_only({"grep", "head"});
  home.add_recorders({"gsettings", "kwriteconfig6", "systemctl"});
  home.add_stand_in("ldconfig", "#!/bin/sh\necho '\tlibproxy.so.1 (libc6,x86-64) => /lib/x'\n");
  home.add_stand_in("zant", "#!/bin/sh\necho \"zant $1 9\"\n");
  setenv("XDG_CURRENT_DESKTOP", "KDE", 1);
  setenv("XDG_SESSION_TYPE", "wayland", 1);
  // The sandbox's own /dev, which has no such device.
  std::filesystem::create_directory("/dev/net");
  write_file("/dev/net/tun", "");
  ChannelClient client;
  EXPECT_EQ(client.call("getDiagnostics"),
            "{desktop: kde, sessionType: wayland, hasLibproxy: true, hasTunDevice: true,"
            " hasZantSystem: true, helperActive: true, hasGsettings: true,"
            " hasKwriteconfig: true, appDir: " +
                get_executable_dir() + ", activeCore: zant, corePath: " + home.bin() +
                "/zant, coreExists: true,"
                " zantVersion: zant version 9, runtimeLogPath: " +
                home.path() + "/.local/share/Corvana/run/runtime.log}");
  EXPECT_EQ(home.recorded_commands(),
            std::vector<std::string>({"systemctl is-active --quiet corvana-helper"}));
  std::filesystem::remove_all("/dev/net");
}

TEST(Diagnostics, ShapesOfTheVersion) {
  const std::string long_line(300, 'v');
  const struct {
    std::string script;
    std::string version;
  } rows[] = {
      {"echo 1.2; echo more", "1.2"},
      {"echo; echo 1.2", "unknown"},
      {"true", "unknown"},
      {"echo 1.2 >&2", "unknown"},
      {"printf '1.2\\r\\n'", "1.2"},
      {"echo " + long_line + "; exit 3", long_line.substr(0, 255)},
      {"printf '1.2\\377\\n'", "1.2\xEF\xBF\xBD"},
  };
  for (const auto& row : rows) {
    const TemporaryHome home;
    home.add_stand_in("zant", "#!/bin/sh\n" + row.script + "\n");
    ChannelClient client;
    EXPECT_NE(client.call("getDiagnostics").find(" zantVersion: " + row.version + ", runtime"),
              std::string::npos)
        << row.script;
  }
}
