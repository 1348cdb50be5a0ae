/** @file text.h
 * Prints texts of the library on the terminal, and reads an address from the command line. */
#ifndef TEXT_H
#define TEXT_H

#include "orva.h"

#include <stdio.h>
#include <stdlib.h>

#define TEXT_CAPACITY 4096

/* Prints one code point as UTF-8. */
static inline void print_code_point (unsigned long c) {
  if (c < 0x80) {
    putchar ((int)c);
  } else if (c < 0x800) {
    putchar ((int)(0xC0 | c >> 6));
    putchar ((int)(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    putchar ((int)(0xE0 | c >> 12));
    putchar ((int)(0x80 | (c >> 6 & 0x3F)));
    putchar ((int)(0x80 | (c & 0x3F)));
  } else {
    putchar ((int)(0xF0 | c >> 18));
    putchar ((int)(0x80 | (c >> 12 & 0x3F)));
    putchar ((int)(0x80 | (c >> 6 & 0x3F)));
    putchar ((int)(0x80 | (c & 0x3F)));
  }
}

/* The library never cuts a surrogate pair. */
static inline void print_text (const orva_char *units) {
  for (; *units != 0; ++units) {
    unsigned long c = *units;
    if (c >= 0xD800 && c < 0xDC00) {
      ++units;
      c = 0x10000 + ((c - 0xD800) << 10) + ((unsigned long)*units - 0xDC00);
    }
    print_code_point (c);
  }
}

static inline OrvaStringBuffer buffer_of (orva_char *units) {
  OrvaStringBuffer buffer;
  buffer.text = units;
  buffer.capacity = TEXT_CAPACITY;
  return buffer;
}

static inline void print_last_error (const char *what) {
  orva_char units[TEXT_CAPACITY];
  orva_get_last_error (buffer_of (units));
  printf ("%s: ", what);
  print_text (units);
  printf ("\n");
}

/* Ends the program when a call that must succeed has failed. */
static inline void must (const char *what, uint32_t code) {
  if (code == ORVA_OK)
    return;
  print_last_error (what);
  exit (1);
}

/* Turns a text like `127.0.0.1` into a number for orva_connect(). Ends the program when it is no address. */
static inline uint32_t parse_address (const char *text) {
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (sscanf (text, "%u.%u.%u.%u", &a, &b, &c, &d) != 4 || a > 255 || b > 255 || c > 255 || d > 255) {
    printf ("not an address: %s\n", text);
    exit (2);
  }
  return (uint32_t)(a << 24 | b << 16 | c << 8 | d);
}

#endif
