#include "recorder/csv_file.h"

#include "recorder/report.h"

namespace corvane::recorder {

void CsvFile::Begin(const Recording& recording) {
    Task_ = &recording.Task;
    Writer_.emplace(Task_->Channels, Task_->Rate, Style_, recording.FirstKadr);
    Writer_->AppendHeader(File_.Buffer(), recording.Lines());
    File_.Write();
}

void CsvFile::Add(const TakenKadrs& kadrs) {
    Writer_->AppendRows(File_.Buffer(), kadrs);
    File_.WriteWhenLarge();
}

int64_t CsvFile::Room(int64_t bytesMax) const {
    return (bytesMax - File_.Bytes()) / Writer_->RowLengthMax();
}

void CsvFile::Flush(const Verdict&) {
    File_.WriteToDisk();
}

void CsvFile::Finish(const Verdict& verdict) {
    for (const std::string& remark : Remarks(*Task_, verdict)) File_.Buffer() += "# " + remark + '\n';
    File_.Complete();
}

}  // namespace corvane::recorder
