#ifndef CORVANA_PROXY_SERVICE_LAST_ERROR_H_
#define CORVANA_PROXY_SERVICE_LAST_ERROR_H_

#include <string>

// Why the last start failed, or why a stop got no thread; three empty strings when there is nothing
// to tell. All UTF-8 but for the log tail, which is bytes as the core wrote them.
struct LastError {
  std::string code;      // a fixed word for programs
  std::string message;   // Chinese text for people, may have several lines
  std::string log_tail;  // the core's last lines, each with its line feed
};

// All three strings always change together. Reading leaves the record as it is. Any thread.
void set_last_error(const std::string& code, const std::string& message,
                    const std::string& log_tail);
void clear_last_error();
LastError read_last_error();

#endif
