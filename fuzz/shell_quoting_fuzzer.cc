// A real shell takes quoted text as one argument and hands it on byte for byte.
#include <signal.h>
#include <unistd.h>

#include <cstdio>

#include "core/shell_quoting.h"
#include "fuzz/fuzzer.h"

// The fuzzer's own alarm must not end the wait for an answer.
static bool restarts_after_alarms() {
  struct sigaction action = {};
  sigaction(SIGALRM, nullptr, &action);
  action.sa_flags |= SA_RESTART;
  return sigaction(SIGALRM, &action, nullptr) == 0;
}

// One shell for all inputs: it reads its commands line by line.
static std::string shell_answer(const std::string& line) {
  static int ends[2];
  static const bool has_pipe = pipe(ends) == 0 && restarts_after_alarms();
  static FILE* const answers = fdopen(ends[0], "r");
  static FILE* const shell = popen(("exec sh >/dev/fd/" + std::to_string(ends[1])).c_str(), "w");
  static size_t capacity = 0;
  static char* answer = nullptr;
  require(has_pipe && fputs(line.c_str(), shell) >= 0 && fflush(shell) == 0);
  const ssize_t size = getdelim(&answer, &capacity, '\0', answers);
  require(size > 0);
  return std::string(answer, answer + size - 1);
}

void try_input(FuzzedDataProvider& input) {
  const std::string text = input.ConsumeRemainingBytesAsString();
  const std::string left_to_the_shell("*?~#\t\n\0", 7);
  if (text.empty() || text.find_first_of(left_to_the_shell) != text.npos) return;
  require(shell_answer("set -- " + escape_path(text) + "; printf '%s:%s\\0' $# \"$1\"\n") ==
          "1:" + text);
}
