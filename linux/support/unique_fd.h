#ifndef CORVANA_SUPPORT_UNIQUE_FD_H_
#define CORVANA_SUPPORT_UNIQUE_FD_H_

#include <unistd.h>

// Owns one file descriptor and closes it; -1 stands for none.
class UniqueFd {
 public:
  explicit UniqueFd(int fd) : fd_(fd) {}
  ~UniqueFd() { reset(); }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;

  int get() const { return fd_; }
  void reset() {
    if (fd_ >= 0) close(fd_);
    fd_ = -1;
  }
  explicit operator bool() const { return fd_ >= 0; }

 private:
  int fd_;
};

#endif
