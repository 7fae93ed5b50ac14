#include <unistd.h>

#include <csignal>

#include "exit_cleanup.h"
#include "my_application.h"
#include "support/console.h"
#include "support/leaving.h"

int main(int argc, char** argv) {
  keep_standard_streams_open();
  // A console that has gone away must not end the host before it has taken the proxy back.
  std::signal(SIGPIPE, SIG_IGN);
  // Commands run in process groups of their own, in the terminal's background: a warning of a tool
  // must not stop the tool.
  std::signal(SIGTTOU, SIG_IGN);
  std::signal(SIGTTIN, SIG_IGN);
  // A launcher that ignores this leaves no way to learn how a command has ended.
  std::signal(SIGCHLD, SIG_DFL);
  MyApplication* const application = my_application_new();
  const int exit_status = g_application_run(G_APPLICATION(application), argc, argv);
  // All is taken back: what is left, such as a plugin whose teardown hangs, may be ended.
  stop_watching_exit_signals();
  g_object_unref(application);
  if (is_worker_abandoned()) _exit(exit_status);
  return exit_status;
}
