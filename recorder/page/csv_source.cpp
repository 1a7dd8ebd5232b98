#include "recorder/page/csv_source.h"

#include <algorithm>
#include <cmath>

#include "recorder/failure.h"
#include "recorder/file_system.h"
#include "recorder/messages.h"
#include "recorder/page/csv_head.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {
namespace {

constexpr size_t ReadSize = 1024 * 1024;     // bytes read at once
constexpr size_t HeadMax = 1024 * 1024;      // bytes; a recorder writes a few kilobytes
constexpr size_t LineMax = 64 * 1024;        // bytes of a row
constexpr size_t TailMax = 4 * 1024 * 1024;  // bytes; with all gaps that a recording keeps it is shorter
constexpr size_t MissingMax = 20000;         // runs; a recording keeps fewer gaps
constexpr size_t OwnersMax = 8;              // of gaps that no line names
constexpr int64_t DigitsMax = 1'000'000'000'000'000;

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// Digits, of which there are at most fifteen. Returns how many.
int TakeDigits(const char*& place, const char* end, int64_t& number) {
    const char* from = place;
    for (; place < end && IsDigit(*place) && number < DigitsMax; place++) number = 10 * number + (*place - '0');
    return static_cast<int>(place - from);
}

}  // namespace

CsvSource::CsvSource(const std::string& path) : Path_(path) {
    const FileKind kind = KindOf(path);
    if (kind == FileKind::Folder || kind == FileKind::Device) Throw(Say("{} is no file.", path));
    File_.reset(OpenForReading(path));
    if (!File_) Throw(Say("{} can't be opened ({}).", path, SystemErrorText()));
    Subject_.File = path;
    Subject_.FromText = true;
    Subject_.Ending.HowItEnded = End::Complete;
    ReadHead();
    Columns_.resize(Subject_.Channels.size());
}

// False: there is no more.
bool CsvSource::Refill() {
    if (AllRead_) return false;
    Text_.erase(0, Place_);
    Place_ = 0;
    const size_t before = Text_.size();
    Text_.resize(before + ReadSize);
    Text_.resize(before + std::fread(Text_.data() + before, 1, ReadSize, File_.get()));
    AllRead_ = Text_.size() == before;
    return !AllRead_;
}

void CsvSource::ReadHead() {
    const std::string noRecording = Say("{} is no recording of this recorder, neither an array nor CSV text.", Path_);
    while (Text_.size() < HeadMax && Refill()) {
    }
    if (Text_.starts_with("\xEF\xBB\xBF")) Place_ = 3;
    while (Text_.compare(Place_, 2, "# ") == 0) {
        const size_t end = Text_.find('\n', Place_);
        if (end == std::string::npos) Throw(noRecording);
        std::string_view line = std::string_view(Text_).substr(Place_ + 2, end - Place_ - 2);
        if (line.ends_with('\r')) line.remove_suffix(1);
        UnderstandHeadLine(line, Subject_);
        Place_ = end + 1;
    }
    const auto names = UnderstandNames(std::string_view(Text_).substr(Place_), Subject_, Separator_, Point_);
    const bool said = std::ranges::any_of(Subject_.Lines, [](const auto& line) { return line.starts_with("Rate: "); });
    if (!names || !said) Throw(noRecording);
    Place_ += *names;
    Period_ = std::llround(1e6 / Subject_.Rate);
    const size_t count = Subject_.Channels.size();
    if (count > ColumnsMax) Throw(Say("{} has {} columns: a recording has at most {}.", Path_, count, ColumnsMax));
    for (size_t column = 0; column < count; column++) {
        if (!Subject_.Channels[column].Fitted()) Never_ |= Columns{1} << column;
    }
}

ColumnPlan CsvSource::Plan() const {
    ColumnPlan plan = {Columns_.size(), sizeof(int32_t), {}, Columns_.size(), Never_};
    for (size_t column = 0; column < Columns_.size(); column++) plan.Masks.push_back(column);
    return plan;
}

bool CsvSource::Read(KadrBlock<int32_t>& block) {
    block.Samples.clear();
    block.Runs.clear();
    while (block.Samples.size() < BlockSamples) {
        const size_t end = Text_.find('\n', Place_);
        if (end == std::string::npos) {
            if (Text_.size() - Place_ > LineMax && !Tail_) ThrowRow(Say("the line is too long"));
            // A last line without an end is one that was being written.
            if (!Refill()) break;
            continue;
        }
        std::string_view line = std::string_view(Text_).substr(Place_, end - Place_);
        Place_ = end + 1;
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.starts_with("# ")) {
            Tail_ = true;
            TailSize_ += line.size();
            if (TailSize_ > TailMax) Throw(Say("{} has too much text behind its rows.", Path_));
            UnderstandTailLine(line.substr(2), Subject_);
        } else {
            if (Tail_) ThrowRow(Say("rows follow the remarks at the end"));
            ReadRow(line, block);
        }
    }
    return !block.Samples.empty();
}

bool CsvSource::ReadRow(std::string_view row, KadrBlock<int32_t>& block) {
    const char* place = row.data();
    const char* end = place + row.size();
    ReadTime(place, end);
    Columns missing = 0;
    for (size_t i = 0; i < Columns_.size(); i++) {
        if (place == end || *place != Separator_) ThrowRow(Say("a row has {} values", Columns_.size()));
        place++;
        if (place == end || *place == Separator_) {
            missing |= Columns{1} << i;
            block.Samples.push_back(0);
        } else {
            block.Samples.push_back(ReadNumber(place, end, Columns_[i]));
        }
    }
    if (place != end) ThrowRow(Say("a value is no number, or one too many"));
    NoteMissing(missing & ~Never_, block);
    Rows_++;
    return true;
}

// Each row has its time, and none is left out.
void CsvSource::ReadTime(const char*& place, const char* end) {
    int64_t seconds = 0;
    int64_t parts = 0;
    const int digits = TakeDigits(place, end, seconds);
    const bool pointed = place < end && *place == Point_;
    if (pointed) place++;
    const int decimals = TakeDigits(place, end, parts);
    if (digits == 0 || digits > 10 || !pointed || (decimals != 3 && decimals != 6)) ThrowRow(Say("there is no time"));
    const int64_t time = seconds * 1'000'000 + (decimals == 3 ? parts * 1000 : parts);
    if (Rows_ == 0) Subject_.FirstKadr = time / Period_;
    if (time != (Subject_.FirstKadr + Rows_ * Subject_.Step) * Period_)
        ThrowRow(Say("the time does not follow the rate"));
}

// Numbers are kept as distances from the column's first one, in units of the last decimal: exact, and short enough.
int32_t CsvSource::ReadNumber(const char*& place, const char* end, Column& column) {
    const bool minus = *place == '-';
    if (minus) place++;
    int64_t number = 0;
    int decimals = 0;
    int digits = TakeDigits(place, end, number);
    if (digits > 0 && place < end && *place == Point_) {
        place++;
        decimals = TakeDigits(place, end, number);
        if (decimals == 0) digits = 0;
    }
    if (digits == 0) ThrowRow(Say("a value is no number"));
    if (minus) number = -number;
    if (column.Decimals < 0) column = {decimals, number};
    if (column.Decimals != decimals) ThrowRow(Say("a column's values have different numbers of decimals"));
    const int64_t distance = number - column.First;
    if (distance < INT32_MIN || distance > INT32_MAX) ThrowRow(Say("a value is far from the ones before"));
    return static_cast<int32_t>(distance);
}

void CsvSource::NoteMissing(Columns missing, KadrBlock<int32_t>& block) {
    if (!block.Runs.empty() && block.Runs.back().Missing == missing) {
        block.Runs.back().Kadrs++;
    } else {
        block.Runs.push_back({1, missing});
    }
    if (missing == 0) return;
    const bool goesOn = !Missing_.empty() && Missing_.back().First + Missing_.back().Rows == Rows_;
    if (goesOn && (Missing_.back().Which == missing || Missing_.size() == MissingMax)) {
        Missing_.back().Rows++;
        Missing_.back().Which |= missing;
    } else if (Missing_.size() < MissingMax) {
        Missing_.push_back({Rows_, 1, missing});
    }
}

PageSubject CsvSource::Subject() {
    Verdict& ending = Subject_.Ending;
    ending.Kadrs = Subject_.FirstKadr + Rows_ * Subject_.Step;
    ending.Unfitted = static_cast<int>(
        std::ranges::count_if(Subject_.Channels, [](const Channel& channel) { return !channel.Fitted(); }));
    // Text that was cut off has no line that says so.
    const bool whole = ending.WantedKadrs == ending.Kadrs || Tail_;
    const bool part = std::ranges::any_of(
        Subject_.Lines, [](const auto& line) { return line.starts_with("Selected: ") || line.starts_with("Rows: "); });
    if (ending.HowItEnded == End::Complete && !whole && !part) ending.HowItEnded = End::Unknown;
    for (size_t i = 0; i < Columns_.size(); i++) {
        const int decimals = std::max(Columns_[i].Decimals, 0);
        Subject_.Decimals.push_back(decimals);
        Subject_.Channels[i].Scale = std::pow(10.0, decimals);
        Subject_.Channels[i].Offset = static_cast<double>(Columns_[i].First) / Subject_.Channels[i].Scale;
    }
    if (ending.Gaps.empty()) {
        MakeGaps();
    } else {
        NameOwners();
    }
    return Subject_;
}

// The lines name modules, and the columns don't: a module's are those that are empty in all of its gaps.
void CsvSource::NameOwners() {
    for (GapOwner& owner : Subject_.Owners) {
        owner.Channels = Missing_.empty() ? ~Columns{0} : ~Never_;
    }
    Subject_.FilledIn = Missing_.empty();
    for (const Gap& gap : Subject_.Ending.Gaps) {
        Subject_.GapOwners.push_back(static_cast<size_t>(gap.Module));
        if (gap.Reason == GapReason::Various) continue;  // measured kadrs may lie between
        const int64_t first = (gap.First - Subject_.FirstKadr + Subject_.Step - 1) / Subject_.Step;
        const int64_t last = (gap.First + gap.Kadrs - 1 - Subject_.FirstKadr) / Subject_.Step;
        auto run = std::ranges::partition_point(Missing_,
                                                [&](const Missing& each) { return each.First + each.Rows <= first; });
        for (; run != Missing_.end() && run->First <= last; run++) {
            Subject_.Owners[static_cast<size_t>(gap.Module)].Channels &= run->Which;
        }
    }
}

void CsvSource::MakeGaps() {
    for (const Missing& run : Missing_) {
        auto owner = std::ranges::find(Subject_.Owners, run.Which, &GapOwner::Channels);
        if (owner == Subject_.Owners.end() && Subject_.Owners.size() < OwnersMax) {
            owner = Subject_.Owners.insert(owner, {-1, 0, run.Which});
        } else if (owner == Subject_.Owners.end()) {
            owner--;
            owner->Channels |= run.Which;
        }
        Subject_.GapOwners.push_back(static_cast<size_t>(owner - Subject_.Owners.begin()));
        Subject_.Ending.Gaps.push_back(
            {0, Subject_.FirstKadr + run.First * Subject_.Step, run.Rows * Subject_.Step, GapReason::Various});
    }
}

void CsvSource::Throw(const std::string& what) const {
    throw Failure(ExitCode::Input, what);
}

void CsvSource::ThrowRow(const std::string& what) const {
    Throw(Say("{}, row {}: {}. Give it as the recorder has written it.", Path_, Rows_ + 1, what));
}

}  // namespace corvane::recorder
