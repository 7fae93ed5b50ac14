#ifndef CORVANA_SAMPLE_CORE_RUN_COMMAND_H_
#define CORVANA_SAMPLE_CORE_RUN_COMMAND_H_

// Runs the proxy core until SIGTERM or SIGINT. `argv[0]` is the subcommand's name, the options
// follow. Returns the process's exit status, after one line on standard error when it isn't 0.
int run_command(int argc, char** argv);

#endif
