// Reads what the build recorded about the libraries, and what the library's sources declare.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace facts
{

std::string readFile(const std::string& path);
std::vector<std::string> linesOf(const std::string& path);

// Names marked TARN_EXPORT in the public headers.
std::set<std::string> declaredNames();

// Names in the version script.
std::set<std::string> scriptedNames();

// Names that libtarn.so exports, and names it needs from elsewhere, without their versions; weak ones are left out.
std::set<std::string> exportedNames();
std::set<std::string> undefinedNames();

// File names of the shared libraries that libtarn.so needs.
std::set<std::string> neededLibraries();

// Total size in bytes of all sections of libtarn.a whose name starts so.
std::uint64_t sizeOfSections(const std::string& prefix);

} // namespace facts
