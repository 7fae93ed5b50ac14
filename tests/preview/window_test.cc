#include <gtest/gtest.h>

#include <algorithm>

#include "flutter_embedding/preview/preview.h"
#include "support/channel_client.h"
#include "support/temporary_home.h"

using Names = std::vector<std::string>;

// What a screen reader says: the widget's own name, or that of its label.
static std::string spoken_name(GtkWidget* widget) {
  AtkObject* const accessible = gtk_widget_get_accessible(widget);
  g_autoptr(AtkRelationSet) relations = atk_object_ref_relation_set(accessible);
  AtkRelation* const label =
      atk_relation_set_get_relation_by_type(relations, ATK_RELATION_LABELLED_BY);
  gpointer const named =
      label == nullptr ? accessible : g_ptr_array_index(atk_relation_get_target(label), 0);
  const char* const name = atk_object_get_name(ATK_OBJECT(named));
  return name == nullptr ? "" : name;
}

// What the Tab key reaches, from the first control to where it comes back to that.
static Names tab_round(GtkWindow* window, GtkDirectionType direction) {
  Names names;
  gtk_window_set_focus(window, nullptr);
  gtk_widget_child_focus(GTK_WIDGET(window), GTK_DIR_TAB_FORWARD);
  GtkWidget* const first = gtk_window_get_focus(window);
  do {
    names.push_back(spoken_name(gtk_window_get_focus(window)));
    gtk_widget_child_focus(GTK_WIDGET(window), direction);
  } while (gtk_window_get_focus(window) != first && names.size() < 50);
  return names;
}

TEST(Window, TabReachesAllOfEachPageBothWaysAndEverythingHasAName) {
  const TemporaryHome home;
  gtk_init(nullptr, nullptr);
  const ChannelClient client;
  const std::pair<const char*, Names> rows[] = {
      {"connection", {"连接", "配置文件(F)", "浏览(B)…", "设置系统代理(S)", "连接(C)"}},
      {"log", {"日志", "核心日志", "复制选中的日志，未选中时复制全部", "清空"}},
      {"diagnostics", {"诊断", "桌面环境", "核心可用", "运行日志", "复制全部诊断结果", "刷新"}},
  };
  for (const auto& [page, expected] : rows) {
    const char* arguments[] = {"--page", page, nullptr};
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_container_add(GTK_CONTAINER(window),
                      preview_new(client.messenger(), const_cast<char**>(arguments)));
    gtk_widget_show(window);
    gdk_window_focus(gtk_widget_get_window(window), GDK_CURRENT_TIME);
    Names names;
    const auto reaches_all = [&, &wanted = expected] {
      if (!gtk_window_has_toplevel_focus(GTK_WINDOW(window))) return false;
      while (g_main_context_pending(nullptr)) g_main_context_iteration(nullptr, FALSE);  // layout
      names = tab_round(GTK_WINDOW(window), GTK_DIR_TAB_FORWARD);
      auto at = names.begin();
      for (const std::string& name : wanted) at = std::find(at, names.end(), name);
      return at != names.end();
    };
    EXPECT_TRUE(run_main_loop_until(reaches_all, std::chrono::seconds(20)))
        << testing::PrintToString(names);
    EXPECT_EQ(std::count(names.begin(), names.end(), ""), 0);
    std::reverse(names.begin() + 1, names.end());
    EXPECT_EQ(tab_round(GTK_WINDOW(window), GTK_DIR_TAB_BACKWARD), names) << page;
    gtk_widget_destroy(window);
  }
}
