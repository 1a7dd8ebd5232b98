// The names of a recording's files.
#pragma once

#include <string>

namespace corvane::recorder {

// Whether a file of this name is recorded as an array.
bool IsNpy(const std::string& path);

// The name of the JSON file beside an array, also of one that is incomplete or was put aside.
std::string DescriptionPath(const std::string& npyPath);

// Of a recording that is split: "run.csv" to "run-002.csv".
std::string PartName(const std::string& path, int part);

}  // namespace corvane::recorder
