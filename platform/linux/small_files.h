// Small whole files, read and replaced in one step. Failures throw std::system_error with the reason.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace orvex::port {

// Reads at most `maximumBytes` + 1 bytes, so that the caller can tell a file that is too long.
std::string ReadSmallFile(const std::filesystem::path& path, std::size_t maximumBytes);

// True for a relative path without empty and hidden parts, ".." among them, and without a zero byte.
bool IsPlainPath(const std::string& path);

// False for a pipe, a device and the like; errno is then EINVAL. Never throws.
bool IsRegularFile(int fd);

// One write; only what the kernel cut off is written in a further one. False: errno tells why. Never throws.
bool WriteWhole(int fd, const std::string& text);

// A name beside `path` that no other thread and no other process uses. Hidden, so that watchers of the folder can leave
// it aside.
std::filesystem::path TemporaryName(const std::filesystem::path& path);

// Writes a hidden file beside `path` and renames it to `path`.
void ReplaceFile(const std::filesystem::path& path, const std::string& content);

// As ReplaceFile(), but an existing file is left as it is. False: it existed.
bool CreateFileOnce(const std::filesystem::path& path, const std::string& content);

}  // namespace orvex::port
