#ifndef CORVANA_DISPLAY_LOSS_H_
#define CORVANA_DISPLAY_LOSS_H_

// From now on, the end of the display server or of its connection is a way out like the others:
// what the host has started and set is taken back, then the process ends with status 1. To be
// called when the display is open. Main thread; where the engine uses an X11 connection on a thread
// of its own, that thread may be the one that meets the loss and leaves.
void hook_display_loss();

#endif
