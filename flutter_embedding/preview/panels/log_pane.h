#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_LOG_PANE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_LOG_PANE_H_

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "flutter_embedding/later.h"
#include "flutter_embedding/preview/panels/text_pane.h"

namespace preview {

// A log that grows. The pane follows its end until a person scrolls up, and again once a person has
// scrolled down to the end. While it follows, the lines before the last ones are hidden, because
// the layout of lines is most of what a busy log costs. `text.widget` is floating; the pane must
// outlive it. Main thread only.
struct LogPane {
  TextPane text;
  Life life;
  std::function<void(bool follows_end)> on_change;
  bool follows_end = true;
  bool is_laid_out_anew = false;  // from the showing of hidden lines on until their layout is done
  int slides_down = 0;            // scrolls down after which the view may still be moving
};

// `on_change` is called when the pane begins or ends to follow. Nothing happens after `life` ended.
std::unique_ptr<LogPane> log_pane_new(const char* accessible_name, const Life& life,
                                      std::function<void(bool follows_end)> on_change);

// Appends as text_pane_append does.
void log_pane_append(LogPane* pane, std::string_view batch);

void log_pane_clear(LogPane* pane);

// Also what is hidden.
std::string log_pane_selected_or_all(const LogPane& pane);

void log_pane_go_to_end(LogPane* pane);

// Selects the text, in any letter case, from the selection on or behind it, and then from the
// beginning, and shows it. False when there is none.
bool log_pane_find(LogPane* pane, const char* text, bool behind_selection);

}  // namespace preview

#endif
