#ifndef CORVANA_DESKTOP_ENTRY_H_
#define CORVANA_DESKTOP_ENTRY_H_

// True once install_desktop_entry has run in this process, whatever came of it. Main thread.
bool is_desktop_entry_created();

// Installs the icon and the desktop entry for the current user, replacing older ones, and asks the
// desktop to reread its menus. Reports on the console and lets no error out. Blocks for more than a
// second when it succeeds. Main thread.
void install_desktop_entry();

#endif
