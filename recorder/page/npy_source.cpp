#include "recorder/page/npy_source.h"

#include <algorithm>
#include <array>

#include "recorder/fixed_point.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {

std::vector<MissingFrom> RunsOf(std::span<const Gap> gaps, const std::vector<Columns>& columnsOfModule, int64_t first) {
    struct Change {
        int64_t Kadr;
        int32_t Module;
        int Step;  // 1: a gap begins, -1: it is over
    };
    std::vector<Change> changes;
    for (const Gap& gap : gaps) {
        changes.push_back({gap.First, gap.Module, 1});
        changes.push_back({gap.First + gap.Kadrs, gap.Module, -1});
    }
    std::ranges::sort(changes, {}, &Change::Kadr);
    std::vector<MissingFrom> runs = {{first, 0}};
    std::vector<int> open(columnsOfModule.size());
    for (const Change& change : changes) {
        open[static_cast<size_t>(change.Module)] += change.Step;
        Columns missing = 0;
        for (size_t module = 0; module < open.size(); module++) {
            if (open[module] > 0) missing |= columnsOfModule[module];
        }
        const int64_t kadr = std::max(change.Kadr, first);
        if (runs.back().First != kadr) runs.push_back({kadr, 0});
        runs.back().Missing = missing;
    }
    return runs;
}

NpySource::NpySource(const std::string& path)
    : Input_(path, NpyRecording::CutOff::Taken), Path_(path), ColumnsOfModule_(ModulesMax) {
    const std::vector<Channel>& channels = Input_.Recording().Task.Channels;
    for (size_t column = 0; column < channels.size(); column++) {
        ColumnsOfModule_[static_cast<size_t>(channels[column].Number / ModuleChannels)] |= Columns{1} << column;
    }
    Runs_ = RunsOf(Input_.Verdict().Gaps, ColumnsOfModule_, Input_.Recording().FirstKadr);
}

ColumnPlan NpySource::Plan() const {
    const std::vector<Channel>& channels = Input_.Recording().Task.Channels;
    ColumnPlan plan = {channels.size(), sizeof(int16_t), {}, ModulesMax, 0, Kadrs()};
    for (size_t column = 0; column < channels.size(); column++) {
        plan.Masks.push_back(static_cast<size_t>(channels[column].Number / ModuleChannels));
        if (!channels[column].Fitted()) plan.Never |= Columns{1} << column;
    }
    return plan;
}

bool NpySource::Read(KadrBlock<int16_t>& block) {
    const size_t columns = Input_.Recording().Task.Channels.size();
    const int64_t kadrs = std::min(static_cast<int64_t>(BlockSamples / columns), Kadrs() - Kadr_);
    block.Runs.clear();
    block.Samples.resize(static_cast<size_t>(kadrs) * columns);
    if (kadrs == 0) return false;
    Input_.Read(Kadr_, block.Samples);
    const int64_t first = Input_.Recording().FirstKadr + Kadr_;
    for (int64_t kadr = first; kadr < first + kadrs;) {
        while (Run_ + 1 < Runs_.size() && Runs_[Run_ + 1].First <= kadr) Run_++;
        const int64_t next = Run_ + 1 < Runs_.size() ? Runs_[Run_ + 1].First : INT64_MAX;
        const int64_t end = std::min(next, first + kadrs);
        block.Runs.push_back({end - kadr, Runs_[Run_].Missing});
        kadr = end;
    }
    Kadr_ += kadrs;
    return true;
}

PageSubject NpySource::Subject() const {
    const Recording& recording = Input_.Recording();
    PageSubject subject;
    subject.File = Path_;
    subject.Lines = recording.Lines();
    if (!Input_.RecordedBy().empty()) subject.Lines.push_back("Recorder: ltr27rec " + Input_.RecordedBy());
    subject.Simulated = recording.Device.Simulated();
    subject.Channels = recording.Task.Channels;
    for (const Channel& channel : subject.Channels) subject.Decimals.push_back(FixedPoint::DecimalsFor(channel.Scale));
    subject.Rate = recording.Task.Rate;
    subject.Start = recording.Start;
    subject.FirstKadr = recording.FirstKadr;
    subject.PromisedKadrs = Input_.PromisedKadrs();
    subject.Ending = Input_.Verdict();
    for (int32_t module = 0; module < ModulesMax; module++) {
        subject.Owners.push_back(
            {module, recording.Task.SlotOf(module), ColumnsOfModule_[static_cast<size_t>(module)]});
    }
    for (const Gap& gap : subject.Ending.Gaps) subject.GapOwners.push_back(static_cast<size_t>(gap.Module));
    return subject;
}

}  // namespace corvane::recorder
