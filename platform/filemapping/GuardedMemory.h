#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

/// Reads and writes of memory that another process may take away while it is touched: a file that
/// is cut short leaves its mapping in place, and a touch of what is gone raises SIGBUS.
///
/// Why this holds: the signal of such a touch comes on the very thread that touched, at the
/// instruction. So a handler that finds the fault's address within what its thread is just copying
/// leaves the copy by a jump; between the two there is nothing that would have to be undone. All
/// other signals go to the handler that stood before, such as one that reports a crash. That one
/// has to be installed before the first call of any of these functions.
///
/// On any thread. What is read may change at any time and is foreign.
namespace GuardedMemory {

/// Copies out of such memory. False if it was taken away; what was copied until then is there.
bool read(void *to, const void *from, std::size_t bytes);

/// Copies into such memory. False if it was taken away.
bool write(void *to, const void *from, std::size_t bytes);

/// Reads a flag at an even address, with acquire order; none if it was taken away.
std::optional<std::uint16_t> load(const void *flag);

/// Writes a flag at an even address, with release order. False if it was taken away.
bool store(void *flag, std::uint16_t value);

} // namespace GuardedMemory
