// What a program sees that runs in a lab: the host's files.
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "PreloadedProgram.h"

namespace {

using LabPreloadFiles = PreloadedBesidePeers;

TEST_F(LabPreloadFiles, EveryFormOfOpenMakesTheHostsFilesInTheLab) {
  ASSERT_FALSE(isOutside(marker));
  const auto form = [](int fd) {
    EXPECT_GE(fd, 0) << std::strerror(errno);
    ::close(fd);
    EXPECT_FALSE(isOutside(marker));
    EXPECT_EQ(::unlink(marker), 0);
  };
  const int make = O_WRONLY | O_CREAT | O_EXCL;
  form(::open(marker, make, 0644));
  form(::open64(marker, make, 0644));
  form(::openat(AT_FDCWD, marker, make, 0644));
  form(::openat64(-1, marker, make, 0644));
  form(::creat(marker, 0644));
  form(::creat64(marker, 0644));
  for (const auto& open : {&::fopen, &::fopen64}) {
    std::FILE* stream = open(marker, "w");
    ASSERT_NE(stream, nullptr);
    std::fclose(stream);
    EXPECT_FALSE(isOutside(marker));
    EXPECT_EQ(::remove(marker), 0);
  }
  const ::mode_t mask = ::umask(0);
  EXPECT_EQ(::close(::open(marker, make, 0640)), 0);
  ::umask(mask);
  EXPECT_EQ(::open(marker, make, 0644), -1);
  EXPECT_EQ(errno, EEXIST);
  for (const int fd : {__open_2(marker, O_RDONLY), __open64_2(marker, O_RDONLY),
                       __openat_2(-1, marker, O_RDONLY), __openat64_2(-1, marker, O_RDONLY)}) {
    EXPECT_GE(fd, 0);
    ::close(fd);
  }
  EXPECT_EQ(status(), "tracing: on");
  EXPECT_EQ(::unlink(marker), 0);
}

TEST_F(LabPreloadFiles, EveryLookAtAFileSeesTheLabs) {
  EXPECT_EQ(::access(marker, F_OK), -1);
  ASSERT_EQ(::close(::creat(marker, 0600)), 0);
  struct stat seen {};
  struct stat64 seen64 {};
  struct statx seenx {};
  EXPECT_EQ(::access(marker, R_OK), 0);
  EXPECT_EQ(::eaccess(marker, R_OK), 0);
  EXPECT_EQ(::euidaccess(marker, R_OK), 0);
  EXPECT_EQ(::faccessat(AT_FDCWD, marker, R_OK, 0), 0);
  EXPECT_EQ(::stat(marker, &seen), 0);
  EXPECT_EQ(::lstat(marker, &seen), 0);
  EXPECT_EQ(::fstatat(-1, marker, &seen, 0), 0);
  EXPECT_EQ(::stat64(marker, &seen64), 0);
  EXPECT_EQ(::lstat64(marker, &seen64), 0);
  EXPECT_EQ(::fstatat64(-1, marker, &seen64, 0), 0);
  EXPECT_EQ(::statx(-1, marker, 0, STATX_MODE, &seenx), 0);
  EXPECT_EQ(seenx.stx_mode & 0777, 0600);
  EXPECT_EQ(::chmod(marker, 0604), 0);
  EXPECT_EQ(::truncate(marker, 5), 0);
  const timespec times[] = {{1000, 0}, {2000, 0}};
  EXPECT_EQ(::utimensat(AT_FDCWD, marker, times, 0), 0);
  EXPECT_EQ(::stat(marker, &seen), 0);
  EXPECT_EQ(seen.st_mode & 0777, 0604u);
  EXPECT_EQ(seen.st_size, 5);
  EXPECT_EQ(seen.st_mtime, 2000);
  EXPECT_EQ(::stat(traceSocket, &seen), 0);
  EXPECT_TRUE(S_ISSOCK(seen.st_mode));
  DIR* folder = ::opendir("/etc/kelpco/hulld");
  ASSERT_NE(folder, nullptr);
  int found = 0;
  while (const dirent* entry = ::readdir(folder)) found += entry->d_name[0] == 'e';
  ::closedir(folder);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(::unlinkat(AT_FDCWD, marker, 0), 0);
  EXPECT_EQ(::access(marker, F_OK), -1);
}

TEST_F(LabPreloadFiles, FilesAndFoldersOfTheHostAreMadeMovedAndRemoved) {
  ASSERT_EQ(::mkdir("/etc/kelpco/made", 0755), 0);
  ASSERT_EQ(::mkdirat(-1, "/etc/kelpco/made/inner", 0755), 0);
  ASSERT_EQ(::close(::creat("/etc/kelpco/made/one", 0600)), 0);
  EXPECT_EQ(::rename("/etc/kelpco/made/one", "/var/run/kelpco/two"), 0);
  EXPECT_EQ(::renameat(-1, "/var/run/kelpco/two", -1, "/var/run/kelpco/three"), 0);
  EXPECT_EQ(::renameat2(-1, "/var/run/kelpco/three", -1, "/etc/kelpco/four", 0), 0);
  std::FILE* stream = ::freopen("/etc/kelpco/four", "w", ::fopen("/dev/null", "w"));
  ASSERT_NE(stream, nullptr);
  std::fputs("text", stream);
  stream = ::freopen64("/etc/kelpco/four", "r", stream);
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(std::fgetc(stream), 't');
  std::fclose(stream);
  for (const char* path : {"/etc/kelpco/made", "/etc/kelpco/four"}) EXPECT_FALSE(isOutside(path));
  EXPECT_EQ(::unlink("/etc/kelpco/four"), 0);
  EXPECT_EQ(::rmdir("/etc/kelpco/made/inner"), 0);
  EXPECT_EQ(::rmdir("/etc/kelpco/made"), 0);
}

TEST_F(LabPreloadFiles, OnlyTheHostsOwnFoldersAreMoved) {
  for (const char* path : {"/etc/kelpco/../hostname-of-nobody", "/etc/kelpcos",
                           "/etc/kelpco/hulld/..", "/var/run/kelpc", "etc/kelpco"}) {
    EXPECT_EQ(::access(path, F_OK) == 0, isOutside(path)) << path;
  }
  EXPECT_EQ(::access("/etc/kelpco/hulld/..", F_OK), -1) << "for the kernel, which has no such";
  EXPECT_EQ(::access("/etc/kelpco/..name", F_OK), -1);
  EXPECT_EQ(::access("/etc/kelpco", F_OK), 0);
  EXPECT_EQ(::access("/etc/kelpco/", F_OK), 0);
  const std::string longest = "/etc/kelpco/" + std::string(4000, 'n');
  EXPECT_EQ(::access(longest.c_str(), F_OK), -1);
  EXPECT_EQ(errno, ENAMETOOLONG);
  const std::string longer = "/etc/kelpco/" + std::string(2000, '/') + std::string(2100, '/');
  EXPECT_EQ(::access(longer.c_str(), F_OK), -1);
  EXPECT_EQ(errno, ENAMETOOLONG);
#ifndef __SANITIZE_THREAD__  // whose own calls read the path
  const char* volatile nowhere = reinterpret_cast<const char*>(16);
  EXPECT_EQ(::access(nowhere, F_OK), -1);
  EXPECT_EQ(errno, EFAULT);
#endif
}

}  // namespace
