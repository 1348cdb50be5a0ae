#pragma once

#include <string>
#include <vector>

namespace sim {

class World;

/// Creates the clips that the options of the server ask for: those of a file, or a few built-in ones, and any
/// number of generated ones. When the database has clips already, the built-in ones are not added. A name
/// that exists already is left as it is.
/// @throws std::runtime_error when the file cannot be read or has a bad line. The text has its number.
///
/// A line of the file is `directory NAME`, or `clip NAME` followed by any of these attributes. A value with
/// blanks is put in double quotes:
/// `length=FIELDS tracks=video,audio angles=N title="A title" creator=X project=X standard=1080_50i loop=loop
/// loop_in=N loop_out=N stripe=FIELD read_only read_only_meta read_only_content meta.KEY=VALUE`. Empty lines
/// and lines that start with `#` are skipped.
void take_clips (World &world);

/// Returns a clip with attributes as in the file, such as `length=100`. It does not add the clip to the
/// world.
/// @throws std::runtime_error when an attribute is bad
struct Clip clip_from (const World &world, const std::string &id, const std::vector<std::string> &attributes);

} // namespace sim
