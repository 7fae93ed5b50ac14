#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PAGES_DIAGNOSTICS_ROWS_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PAGES_DIAGNOSTICS_ROWS_H_

#include <flutter_linux/flutter_linux.h>

#include <string>
#include <vector>

namespace preview {

enum class Tone { plain, good, bad, absent };

struct DiagnosticsRow {
  const char* label;  // static
  std::string value;  // never empty, valid UTF-8
  Tone tone;
};

// The host's report in readable words and in a fixed order, one row for each thing that is known
// about it. A null report, or one of another type, gives rows without values. Pure.
std::vector<DiagnosticsRow> diagnostics_rows(FlValue* report);

// The rows as text to paste into a message: a line for each, label and value parted by a tab.
std::string diagnostics_text(const std::vector<DiagnosticsRow>& rows);

}  // namespace preview

#endif
