/* A table that several processes share. Start the program twice and type into one of them; the other one
 * shows the change. The table is a metadata database on the server. Each program keeps a copy of it with a
 * key-value store. A change never waits for the network. Changes that are typed while the server is away are
 * sent when it is back.
 *
 *     mirror [address]             127.0.0.1 when none is given
 *
 * Each line is a change: KEY=VALUE sets a key, -KEY erases one. An empty line shows the table. The end of the
 * input ends the program.
 */
#include "orva.h"
#include "text.h"
#include "threads_and_locks.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef struct Entry {
  struct Entry *next;
  orva_char *key, *value;
} Entry;

/* This process's copy of the table, in the order of the first changes. The lock guards it. */
static Lock lock = LOCK_INITIALISER;
static Entry *table = NULL;
static int finished = 0;

static uint32_t store = 0;

static int equal (const orva_char *a, const orva_char *b) {
  while (*a != 0 && *a == *b)
    ++a, ++b;
  return *a == *b;
}

static void *allocate (size_t size) {
  void *memory = malloc (size);
  if (memory == NULL)
    abort ();
  return memory;
}

static orva_char *duplicate (const orva_char *text) {
  size_t count = 1;
  orva_char *copy;
  while (text[count - 1] != 0)
    ++count;
  copy = allocate (count * sizeof (orva_char));
  memcpy (copy, text, count * sizeof (orva_char));
  return copy;
}

/* Returns the address of the pointer to the key's entry. When there is no such entry, that pointer is the
 * null pointer at the end of the table. */
static Entry **find (const orva_char *key) {
  Entry **link = &table;
  while (*link != NULL && !equal ((*link)->key, key))
    link = &(*link)->next;
  return link;
}

/* Returns whether the table has changed. */
static int note_setting (const orva_char *key, const orva_char *value) {
  Entry **link = find (key);
  if (*link == NULL) {
    *link = allocate (sizeof (Entry));
    (*link)->next = NULL;
    (*link)->key = duplicate (key);
  } else if (equal ((*link)->value, value)) {
    return 0;
  } else {
    free ((*link)->value);
  }
  (*link)->value = duplicate (value);
  return 1;
}

/* Returns whether the table has changed. */
static int note_erasure (const orva_char *key) {
  Entry **link = find (key), *entry = *link;
  if (entry == NULL)
    return 0;
  *link = entry->next;
  free (entry->key);
  free (entry->value);
  free (entry);
  return 1;
}

static void print_pair (const orva_char *key, const orva_char *value) {
  print_text (key);
  printf (" = ");
  print_text (value);
  printf ("\n");
}

static void print_table (void) {
  const Entry *entry;
  for (entry = table; entry != NULL; entry = entry->next)
    print_pair (entry->key, entry->value);
  printf ("That is the table.\n");
}

/* Handles one report of the store, and prints it when it changes the table. A store also reports its own
 * changes, and it reports every key again after a lost connection. Such reports usually change nothing here,
 * so the program prints what others did. A key that others erase while the connection is lost is not reported
 * and stays in the table. */
static void take_change (uint32_t type, const orva_char *key, const orva_char *value) {
  if (type == ORVA_STORE_CHANGE_SET) {
    if (note_setting (key, value))
      print_pair (key, value);
  } else if (note_erasure (key)) {
    print_text (key);
    printf (" is gone\n");
  }
}

/* Returns whether there was a change. */
static int take_next_change (uint32_t wait_milliseconds) {
  orva_char key[TEXT_CAPACITY], value[TEXT_CAPACITY];
  uint32_t type = 0;
  if (orva_kvstore_get_change (store, wait_milliseconds, &type, buffer_of (key), buffer_of (value)) !=
      ORVA_OK)
    return 0;
  take_lock (&lock);
  take_change (type, key, value);
  release_lock (&lock);
  return 1;
}

static int is_finished (void) {
  int answer;
  take_lock (&lock);
  answer = finished;
  release_lock (&lock);
  return answer;
}

static THREAD_BODY (follow) {
  (void)unused;
  while (!is_finished ())
    take_next_change (100);
  return 0;
}

/* Reads one code point of UTF-8. Returns '?' for bytes that are not UTF-8. */
static unsigned long take_code_point (const char **utf8) {
  const unsigned char first = (unsigned char)*(*utf8)++;
  unsigned more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : 0;
  unsigned long c = more == 0 ? first : first & (0x3Fu >> more);
  if (first >= 0xF8 || (first >= 0x80 && first < 0xC0))
    return '?';
  for (; more != 0 && ((unsigned char)**utf8 & 0xC0) == 0x80; --more)
    c = c << 6 | ((unsigned char)*(*utf8)++ & 0x3F);
  return more != 0 || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000) ? '?' : c;
}

/* Converts to UTF-16. The result never has more units than the text has bytes. */
static void read_text (const char *utf8, orva_char *units) {
  while (*utf8 != 0) {
    const unsigned long c = take_code_point (&utf8);
    if (c >= 0x10000)
      *units++ = (orva_char)(0xD7C0 + (c >> 10));
    *units++ = (orva_char)(c >= 0x10000 ? 0xDC00 | (c & 0x3FF) : c);
  }
  *units = 0;
}

static void set (const char *name, const char *text) {
  orva_char key[TEXT_CAPACITY], value[TEXT_CAPACITY];
  read_text (name, key);
  read_text (text, value);
  note_setting (key, value);
  must ("setting", orva_kvstore_set (store, key, value));
}

static void erase (const char *name) {
  orva_char key[TEXT_CAPACITY];
  read_text (name, key);
  note_erasure (key);
  must ("erasing", orva_kvstore_erase (store, key));
}

static void carry_out (char *line) {
  char *equals = strchr (line, '=');
  if (*line == 0) {
    print_table ();
  } else if (*line == '-' && line[1] != 0) {
    erase (line + 1);
  } else if (equals != NULL && equals != line) {
    *equals = 0;
    set (line, equals + 1);
  } else {
    printf ("KEY=VALUE or -KEY, please\n");
  }
}

static void carry_out_all_lines (void) {
  char line[TEXT_CAPACITY];
  while (fgets (line, sizeof (line), stdin) != NULL) {
    line[strcspn (line, "\r\n")] = 0;
    take_lock (&lock);
    carry_out (line);
    release_lock (&lock);
  }
  take_lock (&lock);
  finished = 1;
  release_lock (&lock);
}

int main (int argc, char **argv) {
  static const orva_char folder[] = {'M', 'I', 'R', 'R', 'O', 'R', 0}, no_prefix[] = {0};
  const uint32_t server = orva_connect (parse_address (argc > 1 ? argv[1] : "127.0.0.1"));
  Thread follower;
  setvbuf (stdout, NULL, _IONBF, 0);
  must ("opening", orva_open_kvstore (server, folder, no_prefix, ORVA_STORE_READ_WRITE, &store));
  if (orva_kvstore_wait_scan (store, 2000) != ORVA_OK)
    printf ("There is no server yet. The table follows when there is one.\n");
  while (take_next_change (0))
    continue;
  printf ("Ready.\n");
  if (!start_thread (&follower, follow))
    abort ();
  carry_out_all_lines ();
  join_thread (follower);
  orva_close_key_value_store (store); /* waits up to two seconds until the last changes are sent */
  orva_close (server);
  printf ("That is all.\n");
  return 0;
}
