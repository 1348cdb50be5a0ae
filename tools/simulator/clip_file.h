#pragma once

#include <string>
#include <vector>

namespace sim {

class World;

/// Creates the clips of a new server as its options say: those of a file, or a few of its own, and any number
/// of generated ones. A database that holds clips already gets no clips of its own, and no name twice.
/// @throws std::runtime_error when the file cannot be read, with the number of a bad line.
///
/// A line of the file is `directory NAME`, or `clip NAME` with any of these behind it, blanks being quoted:
/// `length=FIELDS tracks=video,audio angles=N title="A title" creator=X project=X standard=1080_50i loop=loop
/// loop_in=N loop_out=N stripe=FIELD read_only read_only_meta read_only_content meta.KEY=VALUE`. Empty lines
/// and lines that start with `#` are passed over.
void take_clips (World &world);

/// A clip with attributes as in the file, such as `length=100`, which is not taken in.
/// @throws std::runtime_error for a bad one
struct Clip clip_from (const World &world, const std::string &id, const std::vector<std::string> &attributes);

} // namespace sim
