#ifndef CORVANA_FLUTTER_EMBEDDING_CHANNELS_PENDING_REPLY_H_
#define CORVANA_FLUTTER_EMBEDDING_CHANNELS_PENDING_REPLY_H_

#include <glib.h>

#include <functional>
#include <utility>

// Sends the reply to one message. If it is destroyed unused, it sends the null reply, which means
// that nobody handled the message. Main thread only.
class PendingReply {
 public:
  // Null bytes are the null reply. Returns false when the sender of the message is gone.
  using Send = std::function<bool(GBytes* reply)>;

  explicit PendingReply(Send send) : send_(std::move(send)) {}
  PendingReply(const PendingReply&) = delete;
  PendingReply& operator=(const PendingReply&) = delete;
  ~PendingReply() {
    if (!used()) send(nullptr);
  }

  bool used() const { return send_ == nullptr; }

  // Only while not used().
  bool send(GBytes* reply) { return std::exchange(send_, nullptr)(reply); }

 private:
  Send send_;
};

#endif
