#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_LOG_PANE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_LOG_PANE_H_

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "flutter_embedding/later.h"
#include "flutter_embedding/preview/panels/text_pane.h"

namespace preview {

// A growing log. While it follows its end it shows only the last lines, because laying lines out is
// most of what a busy log costs. It stops when the user scrolls up, selects or searches: lines that
// come then wait, and the earlier ones appear above once the view is still. It follows again when
// the user scrolls to the end and nothing is selected. `text.widget` is floating; the pane must
// outlive it. Main thread only.
struct LogPane {
  enum class State { follows, stopped, scrolled_away };

  TextPane text;
  Life life;
  std::function<void(bool follows_end)> on_change;
  std::deque<std::string> lines;  // all of the log, up to k_max_log_lines
  size_t later_lines = 0;         // how many of them have come since the pane stopped
  State state = State::follows;
  std::optional<double> held_from_end = 0;  // kept while lines are laid out
  bool is_text_new = false;                 // since the last check
  bool is_check_pending = false;
  unsigned moves = 0;  // a later move makes a waiting task do nothing
};

// `on_change` is called when the pane begins or stops to follow. Nothing happens after `life`
// ended.
std::unique_ptr<LogPane> log_pane_new(const char* accessible_name, const Life& life,
                                      std::function<void(bool follows_end)> on_change);

// Takes lines as text_pane_append does.
void log_pane_append(LogPane* pane, std::string_view batch);

void log_pane_clear(LogPane* pane);

// The selected text or, when nothing is selected, all lines.
std::string log_pane_selected_or_all(const LogPane& pane);

void log_pane_go_to_end(LogPane* pane);

// Searches all lines for the text, in any letter case, from the start of the selection (from its
// end if `behind_selection`) and then from the beginning. Selects the match and scrolls to it.
// False when there is none.
bool log_pane_find(LogPane* pane, const char* text, bool behind_selection);

}  // namespace preview

#endif
