// Contract: where a file that lives on the television's own file system is found.
#pragma once

#include <string>

// Maps a fixed absolute path of the television to the path to open. Any thread. A television port returns the path as
// it is; a port on an ordinary computer returns where its copy lies. The file need not exist: the caller finds that out
// by opening it.
std::string file_location(const std::string& fixedPath);
