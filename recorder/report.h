// What the user is told when a recording has ended: warnings, and unless quiet, a summary.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "recorder/options.h"
#include "recorder/progress.h"
#include "recorder/recording_task.h"
#include "recorder/verdict.h"

namespace corvane::recorder {

// Where the user is told: standard output belongs to the data when that goes there.
std::FILE* MessageStream(const Options& options);

// The lines that the CSV file gets below its rows: every gap, every doubt, and the outcome of a recording that is not
// complete.
std::vector<std::string> Remarks(const RecordingTask& task, const Verdict& verdict);

void WarnOfVerdict(const Options& options, const RecordingTask& task, const Verdict& verdict, Progress& progress);

// To stdout: `files` and what is in them, of many gaps only the first.
void WriteSummary(const Options& options, const std::string& files, const RecordingTask& task, const Verdict& verdict);

}  // namespace corvane::recorder
