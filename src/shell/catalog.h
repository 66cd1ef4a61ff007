// CATALOG and LIBRARY: the files a user keeps programs and data in.
#pragma once
#include <string>

class Console;

// The folder CATALOG lists: "" the current one, "$" the system library
// (BASIC_LIB), "*" the group library (BASIC_GROUP); a library whose variable is
// unset or empty is the current folder.
std::string CatalogFolder(const std::string& which);

// Lists the programs, data files and text files of folder, one line each with
// kind, size and date, sorted by name; on a terminal it pages at the console height.
void Catalog(Console& con, const std::string& folder);
