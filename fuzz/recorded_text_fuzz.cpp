// What a report makes of any text that is given as a recording: refused with a reason, or rows that fit together.
#include <sys/mman.h>
#include <unistd.h>

#include <fmt/format.h>

#include "fuzz/fuzz_input.h"
#include "recorder/failure.h"
#include "recorder/page/csv_source.h"

namespace corvane::recorder {
namespace {

void RequireReport(const std::string& path) {
    CsvSource source(path);
    Collected collected(source.Plan(), 100000, 1000000);
    for (KadrBlock<int32_t> block; source.Read(block);) {
        int64_t kadrs = 0;
        for (const MissingRun& run : block.Runs) kadrs += run.Kadrs;
        Require(static_cast<size_t>(kadrs) * source.Plan().Count == block.Samples.size(), "whole rows");
        collected.Add(block);
    }
    const PageSubject subject = source.Subject();
    Require(subject.Decimals.size() == subject.Channels.size(), "decimals of each channel");
    Require(subject.GapOwners.size() == subject.Ending.Gaps.size(), "an owner of each gap");
    for (const size_t owner : subject.GapOwners) Require(owner < subject.Owners.size(), "owners that exist");
    const PageData data = collected.Finish(100000);
    Require((data.Bins - 1) * data.BinKadrs < collected.Kadrs(), "no bin behind the last row");
    for (const ColumnTotals& totals : collected.Totals()) {
        Require(totals.Sums.Count >= 0 && totals.Sums.Count <= collected.Kadrs(), "as many values as rows");
        Require(totals.Sums.Squares >= 0, "squares");
    }
}

}  // namespace
}  // namespace corvane::recorder

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane::recorder;
    static const int file = memfd_create("recording", 0);
    corvane::Require(ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size), "a file");
    try {
        RequireReport(fmt::format("/proc/self/fd/{}", file));
    } catch (const Failure& failure) {
        corvane::Require(failure.Code == ExitCode::Input && failure.what()[0] != '\0', "a reason");
    }
    return 0;
}
