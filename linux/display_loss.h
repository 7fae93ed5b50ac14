#ifndef CORVANA_DISPLAY_LOSS_H_
#define CORVANA_DISPLAY_LOSS_H_

// From now on, when the connection to the display is lost, the host runs leave_cleanly() and ends
// with status 1. On Wayland a loss that GDK meets first, while it draws, still ends the process at
// once. To be called on the main thread, with the display open. Xlib runs the clean-up on the
// thread that finds the loss, which may not be the main thread.
void hook_display_loss();

#endif
