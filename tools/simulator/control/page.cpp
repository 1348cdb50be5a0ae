#include "control/page.h"

namespace sim {

// Everything that comes from outside is set as text, never as markup.
const std::string_view control_page = R"page(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Simulator</title>
<style>
:root { color-scheme: dark; --line: #334; --soft: #9ab; --go: #3c8; --bad: #e65; --mark: #fb4; }
* { box-sizing: border-box; }
body { margin: 0; padding: .7rem; background: #10141c; color: #e8edf4; font: 15px/1.4 system-ui, sans-serif; }
h1 { font-size: 1.1rem; margin: 0 0 .6rem; } h2 { font-size: .95rem; margin: 1.1rem 0 .4rem; color: var(--soft); }
.cards { display: grid; gap: .6rem; grid-template-columns: repeat(auto-fill, minmax(15.5rem, 1fr)); }
.card { border: 1px solid var(--line); border-radius: .5rem; padding: .6rem; background: #161c27; min-width: 0; }
.row { display: flex; justify-content: space-between; gap: .5rem; }
.clip { font-weight: 600; overflow: hidden; text-overflow: ellipsis; white-space: nowrap; }
.time { font: 1.25rem ui-monospace, monospace; } .soft { color: var(--soft); font-size: .85rem; }
.status { text-transform: uppercase; font-size: .75rem; padding: .1rem .4rem; border-radius: .3rem; background: #2a3344; }
.status.play { background: var(--go); color: #021; } .status.record, .status.insert { background: var(--bad); color: #200; }
.bar { position: relative; height: .6rem; border-radius: .3rem; background: #2a3344; margin: .4rem 0; overflow: hidden; }
.range { position: absolute; top: 0; bottom: 0; background: #3d4f6d; } .loop { position: absolute; bottom: 0; height: 3px; background: var(--mark); }
.now { position: absolute; top: 0; bottom: 0; width: 3px; margin-left: -1px; background: #fff; }
button { font: inherit; color: inherit; background: #26314a; border: 1px solid #40506f; border-radius: .4rem; padding: .35rem .7rem; margin: 0 .3rem .3rem 0; }
ul { margin: 0; padding: 0; list-style: none; } li { padding: .2rem 0; border-bottom: 1px solid var(--line); overflow-wrap: anywhere; }
.lists { display: grid; gap: 0 1.2rem; grid-template-columns: repeat(auto-fit, minmax(17rem, 1fr)); } .bad { color: var(--bad); }
</style>
</head>
<body>
<h1><span id="name"></span> <span class="soft" id="about"></span> <span class="bad" id="link"></span></h1>
<div class="cards" id="channels"></div>
<div class="lists">
<section><h2>Faults</h2><div id="buttons"></div><ul id="faults"></ul></section>
<section><h2>Time</h2><div id="time"></div></section>
<section><h2>Last commands</h2><ul id="commands"></ul></section>
<section><h2>Clients</h2><ul id="clients"></ul></section>
<section><h2>Clips</h2><ul id="clips"></ul></section>
<section><h2>Lists</h2><ul id="lists"></ul></section>
</div>
<script>
"use strict";
const byId = id => document.getElementById(id);
const make = (name, kind, text) => {
  const node = document.createElement(name);
  if (kind) node.className = kind;
  if (text !== undefined) node.textContent = text;
  return node;
};
const here = new URLSearchParams(location.search);
const withQuery = path => {
  const query = new URLSearchParams();
  for (const name of ["token", "server"]) if (here.has(name)) query.set(name, here.get(name));
  return query.toString() ? path + "?" + query : path;
};
const call = async (method, path, body) => {
  const answer = await fetch(withQuery(path), {method, body: body && JSON.stringify(body),
                                               headers: body ? {"Content-Type": "application/json"} : {}});
  const json = await answer.json();
  byId("link").textContent = answer.ok ? "" : json.error;
  return json;
};
const button = (text, act) => {
  const node = make("button", "", text);
  node.onclick = act;
  return node;
};
const fill = (id, items) => byId(id).replaceChildren(...(items.length ? items : [make("li", "soft", "none")]));
const share = (field, length) => length > 0 ? Math.min(100, 100 * field / length) + "%" : "0%";

const cards = [];
const makeCard = channel => {
  const card = make("div", "card");
  const part = {clip: make("span", "clip"), status: make("span", "status"), time: make("span", "time"),
                speed: make("span", "soft"), more: make("div", "soft"), list: make("div", "soft"),
                range: make("div", "range"), loop: make("div", "loop"), now: make("div", "now")};
  const bar = make("div", "bar"), top = make("div", "row"), middle = make("div", "row");
  card.id = "channel-" + channel;
  part.clip.dataset.part = "clip"; part.status.dataset.part = "status"; part.time.dataset.part = "time";
  top.append(part.clip, part.status);
  middle.append(part.time, part.speed);
  bar.append(part.range, part.loop, part.now);
  card.append(top, middle, bar, part.more, part.list);
  byId("channels").append(card);
  return part;
};
const showChannel = (channel, index) => {
  const part = cards[index] ??= makeCard(channel.channel);
  part.clip.textContent = channel.channel + "  " + (channel.clip || "empty");
  part.status.textContent = channel.status;
  part.status.className = "status " + channel.status;
  part.time.textContent = channel.timecode;
  part.speed.textContent = channel.speed + "X   " + channel.position + " / " + channel.length;
  part.range.style.left = share(channel.in, channel.length);
  part.range.style.width = share(channel.out + 1 - channel.in, channel.length);
  part.loop.style.display = channel.loop === "off" ? "none" : "block";
  part.loop.style.left = share(channel.loop_in, channel.length);
  part.loop.style.width = share(channel.loop_out + 1 - channel.loop_in, channel.length);
  part.now.style.left = share(channel.position, channel.length);
  part.more.textContent = "loop " + channel.loop + ", EE " + (channel.auto_ee ? "auto" : "0x" + channel.ee_mask.toString(16)) +
    (channel.edit_mask ? ", edit 0x" + channel.edit_mask.toString(16) : "");
  part.list.textContent = (channel.precued.length ? "next: " + channel.precued.join(", ") : "nothing precued") +
    (channel.list ? ", list " + channel.list.id : "") + (channel.chase ? ", chase " + channel.chase.id : "");
};

let clipsShown = "";
const showClips = async state => {
  const mark = state.clips + "/" + state.mark;
  if (mark === clipsShown) return;
  clipsShown = mark;
  const names = await call("GET", "/clips");
  const shown = names.slice(0, 200).map(name => make("li", "", name));
  if (state.clips > shown.length) shown.push(make("li", "soft", "and " + (state.clips - shown.length) + " more"));
  fill("clips", shown);
};

let time = {};
const show = state => {
  byId("name").textContent = state.name;
  byId("about").textContent = state.address + ", " + state.standard;
  state.channels.forEach(showChannel);
  fill("commands", state.commands.slice().reverse().map(entry => {
    const bad = entry.faults.length || entry.answers.some(answer => answer.includes("<error>"));
    return make("li", bad ? "bad" : "", "#" + entry.client + " " + entry.command + " " +
      JSON.stringify(entry.arguments ?? {}) + (entry.faults.length ? "  [" + entry.faults.join(", ") + "]" : ""));
  }));
  const clients = state.clients.map(client => {
    const item = make("li", "", "#" + client.client + " from " + client.address + ", unsent " + client.unsent + " ");
    item.append(button("close", () => call("DELETE", "/clients/" + client.client)));
    return item;
  });
  const unlisted = state.client_count - clients.length;
  if (unlisted > 0) clients.push(make("li", "soft", "and " + unlisted + " more"));
  fill("clients", clients);
  fill("lists", state.lists.playlists.map(name => make("li", "", name)).concat(
    state.lists.chases.map(name => make("li", "", "chase " + name))));
  fill("faults", state.faults.map(rule => {
    const item = make("li", "", rule.fault + " " + (rule.command ?? rule.report ?? "") + ", applied " + rule.applied + " ");
    item.append(button("remove", () => call("DELETE", "/faults/" + rule.id)));
    return item;
  }));
  time = state.time;
  byId("when").textContent = "field " + time.field + ", " + (time.paused ? "paused" : time.rate + " times");
  showClips(state);
};

const faults = [["Refuse all", {fault: "refuse", command: "*"}], ["No answers", {fault: "no_answer", command: "*"}],
  ["Delay 1 s", {fault: "delay", command: "*", ms: 1000}], ["Malformed", {fault: "malformed", command: "*", times: 1}],
  ["Oversized", {fault: "oversized", command: "*", times: 1}], ["Cut", {fault: "cut", command: "*", times: 1}],
  ["Freeze 5 s", {fault: "freeze", for_ms: 5000}], ["Refuse connections 5 s", {fault: "refuse_connections", for_ms: 5000}],
  ["Away 5 s", {fault: "go_away", for_ms: 5000}], ["Reset all", {fault: "reset"}]];
byId("buttons").append(...faults.map(([text, rule]) => button(text, () => call("POST", "/faults", rule))),
  button("Remove all", () => call("DELETE", "/faults")));
byId("time").append(make("div", "soft"), button("Pause", () => call("PUT", "/time", {paused: true})),
  button("Run", () => call("PUT", "/time", {paused: false})),
  button("Step", () => call("POST", "/time/step", {fields: 1})));
byId("time").firstChild.id = "when";

const events = new EventSource(withQuery("/events"));
events.onmessage = event => { byId("link").textContent = ""; show(JSON.parse(event.data)); };
events.onerror = () => { byId("link").textContent = "not connected"; };
</script>
</body>
</html>
)page";

} // namespace sim
