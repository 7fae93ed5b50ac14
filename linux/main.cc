#include <unistd.h>

#include "exit_cleanup.h"
#include "my_application.h"
#include "support/console.h"
#include "support/leaving.h"
#include "support/shell_command.h"

int main(int argc, char** argv) {
  keep_standard_streams_open();
  prepare_signals();
  MyApplication* const application = my_application_new();
  const int exit_status = g_application_run(G_APPLICATION(application), argc, argv);
  // The clean-up is done. From here on a signal may end the process, because a plugin's teardown
  // may hang.
  stop_watching_exit_signals();
  g_object_unref(application);
  if (is_worker_abandoned()) _exit(exit_status);
  return exit_status;
}
