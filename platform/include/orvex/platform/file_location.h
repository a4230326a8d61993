// Contract: where a file that lives on the television's own file system is found.
//
// The service asks for its test sound, the one file that it reads. The files that it writes are in /tmp and not asked
// for.
#pragma once

#include <string>

// Maps a fixed absolute path of the television to the path to open. A television port returns the path as it is; a
// port on an ordinary computer returns where its copy lies.
//
// Any thread. The file need not exist: the caller finds that out by opening the path that it gets, which is never
// empty.
std::string file_location(const std::string& fixedPath);
