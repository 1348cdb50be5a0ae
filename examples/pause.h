/** @file pause.h
 * A pause, which C99 has no function for. */
#ifndef PAUSE_H
#define PAUSE_H

#if defined(_WIN32)
#include <windows.h>

static void pause_milliseconds (unsigned milliseconds) {
  Sleep (milliseconds);
}
#else
#include <poll.h>

static void pause_milliseconds (unsigned milliseconds) {
  poll (NULL, 0, (int)milliseconds);
}
#endif

#endif
