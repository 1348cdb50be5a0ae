#pragma once

#include <cstdint>
#include <string_view>

/// The sockets of the measurement: the server's and those of the clients that the library is compared with.
namespace figures {

/// A socket that listens on the library's port at a loopback address of its own. @param address receives it
int listen_somewhere (uint32_t &address);
/// A connection to a server of this program. It ends the program when it cannot connect.
int connect_to (uint32_t address);
/// One system call, or several when the system takes a part.
bool send_all (int s, std::string_view bytes);

/// Binds the calling thread, and those it starts from then on, to one processor; -1 frees it again.
void bind_to_processor (int processor);

[[noreturn]] void give_up (const char *what);

} // namespace figures
