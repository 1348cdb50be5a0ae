#pragma once

#include <string>
#include <string_view>

// Commands in short form, so that a test has one line for each. For example "play Channel=B MinLatency"
// stands for
//
//     <play>
//     <Channel>B</Channel>
//     <MinLatency />
//     </play>
//
// Elements inside an element are in braces, as in "gang_stop ChannelSet{Channel=A Channel=B}". A value with
// spaces is in single quotes.

/// Takes the characters before the first of @p ends.
inline std::string take_until (const char *ends, std::string_view &rest) {
  const std::string word (rest.substr (0, rest.find_first_of (ends)));
  rest.remove_prefix (word.size ());
  return word;
}

/// Takes a value: a word, or anything within single quotes.
inline std::string take_value (std::string_view &rest) {
  if (!rest.starts_with ('\''))
    return take_until (" }", rest);
  rest.remove_prefix (1);
  const std::string value = take_until ("'", rest);
  rest.remove_prefix (1);
  return value;
}

/// Takes elements up to the end or the closing brace. @return their XML as a client writes it
inline std::string take_elements (std::string_view &rest) {
  std::string all;
  while (!rest.empty () && rest.front () != '}') {
    if (rest.front () == ' ') {
      rest.remove_prefix (1);
      continue;
    }
    const std::string name = take_until (" ={}", rest);
    const char next = rest.empty () ? ' ' : rest.front ();
    rest.remove_prefix (next == '=' || next == '{' ? 1 : 0);
    if (next == '=')
      all += "<" + name + ">" + take_value (rest) + "</" + name + ">\r\n";
    else if (next == '{') {
      all += "<" + name + ">\r\n" + take_elements (rest) + "</" + name + ">\r\n";
      rest.remove_prefix (1);
    } else
      all += "<" + name + " />\r\n";
  }
  return all;
}

/// The whole document of a command in short form, as a client writes it.
inline std::string document_of (const std::string &xid, std::string_view command) {
  const std::string name (command.substr (0, command.find (' ')));
  command.remove_prefix (name.size ());
  const std::string inside = take_elements (command);
  const std::string element =
      inside.empty () ? "<" + name + " />" : "<" + name + ">\r\n" + inside + "</" + name + ">";
  return "<cmd>\r\n<xid>" + xid + "</xid>\r\n" + element + "\r\n</cmd>";
}
