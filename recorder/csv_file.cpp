#include "recorder/csv_file.h"

#include "recorder/report.h"

namespace corvane::recorder {

void CsvFile::Begin(const Recording& recording) {
    Task_ = &recording.Task;
    Writer_.emplace(Task_->Channels, Task_->Rate, Style_, recording.FirstKadr);
    Writer_->AppendHeader(File.Buffer(), recording.Lines());
    File.Write();
}

void CsvFile::Add(const TakenKadrs& kadrs) {
    Writer_->AppendRows(File.Buffer(), kadrs);
    File.WriteWhenLarge();
}

int64_t CsvFile::Room(int64_t bytesMax) const {
    return (bytesMax - File.Bytes()) / Writer_->RowLengthMax();
}

void CsvFile::Flush(const Verdict&) {
    File.WriteToDisk();
}

void CsvFile::Finish(const Verdict& verdict) {
    for (const std::string& remark : Remarks(*Task_, verdict)) File.Buffer() += "# " + remark + '\n';
    File.Complete();
}

}  // namespace corvane::recorder
