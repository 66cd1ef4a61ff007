// Asks an X window to close, as a window manager's close button does: sends
// it WM_DELETE_WINDOW. Usage: x11_close WINDOW_ID (decimal or 0x hex).
#include <X11/Xlib.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: x11_close WINDOW_ID\n");
    return 2;
  }
  Display* display = XOpenDisplay(nullptr);
  if (!display) {
    std::fprintf(stderr, "x11_close: cannot open the display\n");
    return 1;
  }
  XEvent e = {};
  e.xclient.type = ClientMessage;
  e.xclient.window = std::strtoul(argv[1], nullptr, 0);
  e.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  e.xclient.format = 32;
  e.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
  e.xclient.data.l[1] = CurrentTime;
  XSendEvent(display, e.xclient.window, False, NoEventMask, &e);
  XCloseDisplay(display);
  return 0;
}
