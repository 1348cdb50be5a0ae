// Key-value stores.

#include "exports/stores.h"
#include "hpp/scripted.h"

#include <optional>
#include <string>
#include <thread>

namespace {

using namespace orva;
using namespace std::chrono_literals;
using support::wait_until;

TEST (KeyValueStores, CarryChangesBothWays) {
  MetadataServer fake;
  fake.put ("cue/first", "1");
  const Connected server (fake);
  const auto store = server.store ("CUES", StoreMode::read_write, "cue/");
  store.wait_loaded ();
  const std::optional<StoreChange> first = store.next_change ();
  ASSERT_TRUE (first);
  EXPECT_EQ (first->key, "first");
  EXPECT_EQ (first->value, "1");
  store.set ("\xC3\xA4", std::string (5000, 'v'));
  store.erase ("first");
  store.flush ();
  EXPECT_EQ (fake.table (), (std::map<std::string, std::string>{{"cue/\xC3\xA4", std::string (5000, 'v')}}));
  fake.report ("<metadata_change><MetadataDatabase>CUES</MetadataDatabase><MetadataPrefix /><MetadataList>" +
               pair_of ("cue/long", std::string (9000, 'w')) + "</MetadataList></metadata_change>");
  for (std::optional<StoreChange> change; (change = store.next_change ());)
    if (change->key == "long") {
      EXPECT_EQ (change->value, std::string (9000, 'w'));
      break;
    }
  fake.report ("<metadata_remove><MetadataDatabase>CUES</MetadataDatabase><MetadataPrefix "
               "/><KeyList><Key>cue/long</Key></KeyList>"
               "</metadata_remove>");
  const std::optional<StoreChange> gone = store.next_change ();
  ASSERT_TRUE (gone);
  EXPECT_EQ (gone->key, "long");
  EXPECT_EQ (gone->value, std::nullopt);
  EXPECT_EQ (store.within (0ms).next_change (), std::nullopt);
}

TEST (KeyValueStores, SayWhatTheyAreNotFor) {
  MetadataServer fake;
  const Connected server (fake);
  const auto reader = server.store ("CUES", StoreMode::read);
  const auto writer = server.store ("CUES", StoreMode::write);
  EXPECT_EQ (thrown ([&] { reader.set ("k", "v"); }), Kind::invalid);
  EXPECT_EQ (thrown ([&] { reader.erase ("k"); }), Kind::invalid);
  EXPECT_EQ (thrown ([&] { reader.flush (); }), Kind::invalid);
  EXPECT_EQ (thrown ([&] { writer.next_change (); }), Kind::invalid);
  EXPECT_EQ (thrown ([&] { writer.set ("\xFF", "v"); }), Kind::invalid);
  EXPECT_EQ (thrown ([&] { writer.set ("k", std::string ("\0", 1)); }), Kind::invalid);
  writer.close ();
  EXPECT_EQ (thrown ([&] { writer.set ("k", "v"); }), Kind::invalid);
}

TEST (KeyValueStores, AreOpenedWhileTheServerIsAway) {
  MetadataServer fake (support::FakeServer::Start::refusing);
  fake.put ("key", "value");
  const Server server (fake.address ());
  const auto store = server.store ("CUES", StoreMode::read_write);
  EXPECT_EQ (thrown ([&] { store.within (5ms).wait_loaded (); }), Kind::timed_out);
  store.set ("mine", "1");
  EXPECT_EQ (thrown ([&] { store.within (5ms).flush (); }), Kind::timed_out);
  fake.listen ();
  store.within (generous).wait_loaded ();
  store.within (generous).flush ();
  EXPECT_EQ (fake.table ().count ("mine"), 1u);
}

TEST (KeyValueStores, TakeAllForms) {
  MetadataServer fake;
  const Connected server (fake);
  result<StoreControl<returning>> store = server.nothrow ().store ("CUES", StoreMode::read_write);
  ASSERT_TRUE (store);
  EXPECT_TRUE (store->set ("k", "v"));
  EXPECT_TRUE (store->flush ());
  auto change = store->async ().next_change ();
  fake.report ("<metadata_change><MetadataDatabase>CUES</MetadataDatabase><MetadataPrefix /><MetadataList>" +
               pair_of ("k", "v") + "</MetadataList></metadata_change>");
  EXPECT_EQ ((*change.get ())->key, "k");
  EXPECT_TRUE (server.async ().store ("CUES", StoreMode::read).get ());
}

TEST (KeyValueStores, AreClosedWithTheLastCopy) {
  MetadataServer fake;
  const Connected server (fake);
  {
    const auto store = server.store ("CUES", StoreMode::read_write);
    auto copy = store.within (generous);
    copy.set ("k", "v");
  }
  EXPECT_EQ (fake.table ().count ("k"), 1u) << "what was pending had its time";
}

TEST (KeyValueStores, EndWaitsWhenTheServerGoes) {
  MetadataServer fake;
  std::optional<Server> server (fake.address ());
  server->wait_until_connected ();
  const auto store = server->store ("CUES", StoreMode::read);
  auto change = store.async ().within (no_limit).next_change ();
  server.reset ();
  EXPECT_EQ (change.get ().failure ().kind, Kind::invalid);
}

} // namespace
