#include "flutter_embedding/values/value.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

ValueRef map_of(std::initializer_list<std::pair<const char*, int>> entries) {
  ValueRef map(fl_value_new_map());
  for (auto& [key, n] : entries) fl_value_set_string_take(map.get(), key, fl_value_new_int(n));
  return map;
}

TEST(Value, MapKeepsOrderAndReplacesInPlace) {
  const ValueRef map = map_of({{"b", 1}, {"a", 2}, {"b", 3}}), seven(fl_value_new_int(7));
  fl_value_set_take(map.get(), fl_value_ref(seven.get()), fl_value_new_list());
  fl_value_append_take(fl_value_lookup(map.get(), seven.get()), fl_value_new_float(0.5));
  g_autofree gchar* text = fl_value_to_string(map.get());
  EXPECT_STREQ(text, "{b: 3, a: 2, 7: [0.5]}");
  EXPECT_EQ(fl_value_lookup_string(map.get(), "7"), nullptr);
}

TEST(Value, EqualityIsByTypeAndContent) {
  const std::tuple<ValueRef, ValueRef, bool> rows[] = {
      {ValueRef(fl_value_new_int(1)), ValueRef(fl_value_new_float(1)), false},
      {ValueRef(fl_value_new_string("a")), ValueRef(fl_value_new_string_sized("ab", 1)), true},
      {ValueRef(fl_value_new_string("a")), ValueRef(fl_value_new_string_sized("a\0b", 3)), false},
      {ValueRef(fl_value_new_list()), ValueRef(fl_value_new_int32_list(nullptr, 0)), false},
      {map_of({{"a", 1}, {"b", 2}}), map_of({{"b", 2}, {"a", 1}}), true},
      {map_of({{"a", 1}}), map_of({{"a", 1}, {"b", 2}}), false},
  };
  for (auto& [a, b, equal] : rows) EXPECT_EQ(fl_value_equal(a.get(), b.get()), equal);
}

TEST(Value, MisuseIsOneCriticalAndGivesNothing) {
  int criticals = 0;
  const auto count = [](const gchar*, GLogLevelFlags level, const gchar*, gpointer counter) {
    *static_cast<int*>(counter) += (level & G_LOG_LEVEL_CRITICAL) != 0;
  };
  const GLogFunc previous = g_log_set_default_handler(count, &criticals);
  const ValueRef text(fl_value_new_string("1")), list(fl_value_new_list());
  EXPECT_FALSE(fl_value_get_bool(text.get()));
  EXPECT_EQ(fl_value_get_length(text.get()), 0);
  EXPECT_EQ(fl_value_get_string(list.get()), nullptr);
  EXPECT_EQ(fl_value_lookup_string(list.get(), "a"), nullptr);
  fl_value_set_string_take(list.get(), "a", fl_value_new_null());
  EXPECT_EQ(criticals, 5);
  g_log_set_default_handler(previous, nullptr);
}

// For the sanitizers: a count that isn't atomic, an early end, a leak.
TEST(Value, ReferencesComeAndGoOnManyThreads) {
  ValueRef map = map_of({{"port", 7890}});
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([own = fl_value_ref(map.get())] {
      for (int turn = 0; turn < 10000; ++turn) fl_value_unref(fl_value_ref(own));
      EXPECT_EQ(fl_value_get_int(fl_value_lookup_string(own, "port")), 7890);
      fl_value_unref(own);
    });
  }
  map.reset();
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
