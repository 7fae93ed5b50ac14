#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_LOG_PANE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_LOG_PANE_H_

#include <functional>
#include <memory>
#include <string_view>

#include "flutter_embedding/later.h"
#include "flutter_embedding/preview/panels/text_pane.h"

namespace preview {

// A log that grows. The pane follows its end until a person scrolls up, and again once a person has
// scrolled down to the end. While it follows, the lines before the last ones are hidden: hidden
// lines need no layout, which is what a busy log costs most. The widget `text.widget` is floating;
// the pane has to outlive it. Main thread only.
struct LogPane {
  TextPane text;
  Life life;
  std::function<void(bool follows_end)> on_change;
  bool follows_end = true;
  bool slides_down = false;  // for as long as the view may still move after a person's scrolling
};

// `on_change` is told when the pane begins or ends to follow. Nothing happens after `life` ended.
std::unique_ptr<LogPane> log_pane_new(const char* accessible_name, const Life& life,
                                      std::function<void(bool follows_end)> on_change);

// Appends as text_pane_append does.
void log_pane_append(LogPane* pane, std::string_view batch);

void log_pane_clear(LogPane* pane);

void log_pane_go_to_end(LogPane* pane);

// Selects the text, in any letter case, from the selection on or behind it, and then from the
// beginning, and shows it. False when there is none.
bool log_pane_find(LogPane* pane, const char* text, bool behind_selection);

}  // namespace preview

#endif
