// The language of the recorder, and the help of every command in it.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace corvane::recorder {

// Takes "--lang ru" or "--lang=ru" out, wherever it stands, and chooses that language: even what is said of the other
// arguments is in it. Throws Failure with ExitCode::Usage where the language is another one.
void TakeLanguage(std::vector<std::string>& arguments);

// Before commands and options are added, which take it over.
void SpeakUserLanguage(CLI::App& app);

}  // namespace corvane::recorder
