#pragma once

/// What the programs of the load benchmark share: their result, and the file of what they made.

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

/// The most memory that the process has had resident, in kilobytes; 0 where the host doesn't say.
///
/// A parent's resource usage of its child would count the parent too, in whose memory the child was
/// born.
inline unsigned long peakKilobytes() {
  char text[4096];
  const int descriptor = open("/proc/self/status", O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return 0;
  const ssize_t size = read(descriptor, text, sizeof text - 1);
  close(descriptor);
  if (size <= 0) return 0;
  text[size] = '\0';
  unsigned long peak = 0;
  const char* const line = std::strstr(text, "VmHWM:");
  return line != nullptr && std::sscanf(line, "VmHWM: %lu", &peak) == 1 ? peak : 0;
}

/// Prints how many bytes were made and the peak memory. Allocates nothing: a buffer of the standard
/// output would make the allocator tidy up what the run has freed, on the run's account.
inline void tell(std::size_t bytes) {
  static char buffer[256];
  std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
  std::printf("%zu %lu\n", bytes, peakKilobytes());
}

/// Writes bytes into a new file; false when that fails.
inline bool writeWhole(const char* name, const void* bytes, std::size_t size) {
  std::FILE* file = std::fopen(name, "wb");
  if (file == nullptr) return false;
  const bool written = std::fwrite(bytes, 1, size, file) == size;
  return std::fclose(file) == 0 && written;
}
