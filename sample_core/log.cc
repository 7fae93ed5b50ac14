#include "log.h"

#include <glib.h>

#include <algorithm>
#include <cstdio>

static void write_line(FILE* stream, std::string line) {
  std::replace_if(
      line.begin(), line.end(), [](char c) { return g_ascii_iscntrl(c); }, '?');
  line += '\n';
  fwrite(line.data(), 1, line.size(), stream);
  fflush(stream);
}

void log_event(const std::string& text) {
  g_autoptr(GDateTime) now = g_date_time_new_now_local();
  g_autofree char* time = g_date_time_format(now, "%F %T ");
  write_line(stdout, time + text);
}

void print_error(const std::string& text) { write_line(stderr, "error: " + text); }
