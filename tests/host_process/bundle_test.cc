#include <set>

#include "host_process/host_process.h"

static std::set<std::string> dynamic_entries(const std::string& tag) {
  std::set<std::string> values;
  for (const std::string& line :
       lines_of(output_of("LC_ALL=C readelf -d '" CORVANA_EXECUTABLE "'"))) {
    if (line.find("(" + tag + ")") == line.npos) continue;
    const size_t start = line.find('[') + 1;
    values.insert(line.substr(start, line.find(']') - start));
  }
  return values;
}

TEST(Bundle, LooksForLibrariesOnlyBesideTheExecutable) {
  std::set<std::string> paths = dynamic_entries("RUNPATH");
  paths.merge(dynamic_entries("RPATH"));
  EXPECT_EQ(std::set<std::string>{"$ORIGIN/lib"}, paths);
}

TEST(Bundle, NeedsTheEngineThePluginsAndTheirLibraries) {
  const std::set<std::string> needed = dynamic_entries("NEEDED");
  for (const char* library : {"libflutter_linux_gtk.so", "libplatform_device_id_linux_plugin.so",
                              "libscreen_retriever_plugin.so", "libsentry_flutter_plugin.so",
                              "libtray_manager_plugin.so", "liburl_launcher_linux_plugin.so",
                              "libwindow_manager_plugin.so", "libdbus-1.so.3", "libproxy.so.1"}) {
    EXPECT_EQ(1u, needed.count(library)) << library;
  }
}
