#include "measure.h"

#include "sockets.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

namespace figures {

namespace {

FILE *to_parent = nullptr;

void add (std::vector<Figure> &table, const char *name, double value) {
  const auto found = std::find_if (table.begin (), table.end (),
                                   [name] (const Figure &row) { return std::strcmp (row.name, name) == 0; });
  if (found != table.end ())
    found->values.push_back (value);
  else
    table.push_back ({strdup (name), 0, 0, true, {value}});
}

} // namespace

double at_part (std::vector<double> values, double part) {
  std::sort (values.begin (), values.end ());
  return values.empty () ? 0 : values[static_cast<size_t> (part * static_cast<double> (values.size () - 1))];
}

void note (const char *name, double value) {
  fprintf (to_parent, "%.9g %s\n", value, name);
}

void run_apart (std::vector<Figure> &table, const std::function<void ()> &group) {
  int ends[2];
  if (pipe (ends) != 0)
    give_up ("pipe");
  fflush (stdout);
  const pid_t child = fork ();
  if (child == 0) {
    close (ends[0]);
    to_parent = fdopen (ends[1], "w");
    group ();
    fflush (to_parent);
    _exit (0);
  }
  close (ends[1]);
  FILE *const notes = fdopen (ends[0], "r");
  double value = 0;
  char name[200];
  while (fscanf (notes, "%lf %199[^\n]", &value, name) == 2)
    add (table, name, value);
  fclose (notes);
  int status = 0;
  waitpid (child, &status, 0);
  if (status != 0)
    exit (1);
}

void print (const std::vector<Figure> &table) {
  printf ("| figure | required | aim | reached | |\n|---|--:|--:|--:|---|\n");
  for (const Figure &row : table) {
    const double reached = at_part (row.values, 0.5);
    if (row.required == 0) {
      printf ("| %s | | | %.4g | |\n", row.name, reached);
      continue;
    }
    const bool met = row.more_is_better ? reached >= row.required : reached <= row.required;
    printf ("| %s | %g | %g | %.3g | %s |\n", row.name, row.required, row.aim, reached,
            row.values.empty () ? "not measured"
            : met               ? ""
                                : "missed");
  }
}

double resident_bytes () {
  FILE *const file = fopen ("/proc/self/statm", "r");
  long size = 0, resident = 0;
  if (file == nullptr || fscanf (file, "%ld %ld", &size, &resident) != 2)
    give_up ("statm");
  fclose (file);
  return static_cast<double> (resident) * static_cast<double> (sysconf (_SC_PAGESIZE));
}

} // namespace figures
