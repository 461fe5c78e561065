// Files of the host that programs find in the lab's folder in the place of the machine's own.
#ifndef TARNLAB_HOST_FILES_H
#define TARNLAB_HOST_FILES_H

#include "LabStore.h"

namespace TarnLab::HostFiles {

/// The folder of the lab that stands for the host's root.
inline constexpr const char* root = "root";

/// Whether programs in the lab find this path in the lab's folder: "/var/run/kelpco" and
/// "/etc/kelpco" with what is below them. A path with ".." in it goes elsewhere.
bool isMoved(const char* path);

/// Where the store keeps a file of the host. An absolute path without "." and ".." in it.
std::string fileOf(std::string_view path);

/// Makes the host's folders, and the sockets of the peers, where they are missing. Hold the lock.
void make(const Store& store);

/// Replaces a file of the host on order of a program. Returns 0 or an errno; paths that lead out of
/// the lab's folder, and what is no plain file, are refused. Hold the lock.
int save(const Store& store, std::string_view path, std::string_view content);

}  // namespace TarnLab::HostFiles

#endif
