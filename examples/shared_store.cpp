// A table that several processes share. When one of them sets a key, all of them get the change.
//
//     shared_store ADDRESS NAME
//
// Sets the key NAME to "here" and prints all changes, until somebody sets the key "end".
#include <orva.hpp>

#include <cstdio>
#include <string>

int main (int argc, char **argv) try {
  if (argc != 3) {
    std::printf ("shared_store ADDRESS NAME\n");
    return 2;
  }
  setvbuf (stdout, nullptr, _IONBF, 0);
  orva::Server server (argv[1]);
  server.wait_until_connected ();

  // The prefix separates this table from others in the same folder. The keys here are without it.
  const auto store = server.store ("EXAMPLES", orva::StoreMode::read_write, "shared_store/");
  store.wait_loaded ();
  store.set (argv[2], "here"); // is sent in the background, again and again until the server has accepted it
  store.flush ();              // waits until the server has accepted it

  for (;;) {
    const auto change = store.within (orva::no_limit).next_change ();
    if (!change)
      continue;
    std::printf ("%s = %s\n", change->key.c_str (), change->value.value_or ("(erased)").c_str ());
    if (change->key == "end")
      break;
  }
  return 0;
} catch (const orva::error &failed) {
  std::printf ("%s\n", failed.what ());
  return 1;
}

// Output of "shared_store 127.0.0.1 desk1", while "shared_store 127.0.0.1 desk2" starts and then "end":
//
//     desk1 = here
//     desk2 = here
//     end = here
