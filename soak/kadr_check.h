// Compares recorded kadrs of modules that number them with what the modules sent, and with the list of the kadrs that
// were not measured.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "driver/model/gap.h"

namespace corvane {

// Between two gaps a module's numbers count up without a hole. Over a gap they may go on by as many kadrs as the gap
// has, because what came then may have been dropped. A listed kadr never shows the number that is due; where the due
// samples are 0, it may, because 0 also stands for what wasn't measured.
class KadrCheck {
public:
    // The recorded channels. Each module's must contain an even one below 14; the last position holds no mezzanine.
    explicit KadrCheck(std::vector<int16_t> table) : Table_(std::move(table)) {
        for (size_t column = 0; column < Table_.size(); column++) {
            const auto module = static_cast<size_t>(Table_[column] / 16);
            if (Modules_.size() <= module) Modules_.resize(module + 1);
            Modules_[module].Columns.push_back(column);
        }
    }

    // Kadrs in the order of the recording; `first` is the number of the first. `gaps` are the recording's.
    void Take(const int16_t* kadrs, int64_t first, int64_t count, const std::vector<Gap>& gaps) {
        for (size_t m = 0; m < Modules_.size(); m++) {
            std::vector<Listing> listed(static_cast<size_t>(count), Measured);
            for (const Gap& gap : gaps) {
                if (gap.Module != static_cast<int32_t>(m) || Modules_[m].Columns.empty()) continue;
                const int64_t from = std::clamp<int64_t>(gap.First - first, 0, count);
                const int64_t to = std::clamp<int64_t>(gap.First + gap.Kadrs - first, from, count);
                const bool some = gap.Reason == GapReason::Various;
                std::fill_n(listed.data() + from, to - from, some ? MayBeMeasured : NotMeasured);
            }
            for (int64_t k = 0; k < count && !Modules_[m].Columns.empty(); k++) {
                const int16_t* kadr = kadrs + k * static_cast<int64_t>(Table_.size());
                TakeKadr(m, kadr, first + k, listed[static_cast<size_t>(k)]);
            }
        }
        Kadrs += count;
    }

    int64_t Kadrs = 0;
    int64_t Compared = 0;  // kadrs of one module that are as it sent them
    int64_t Listed = 0;    // kadrs of one module that the list names
    int64_t Wrong = 0;     // kadrs of one module that are neither, or that the list names without need
    std::string Fault;     // the first of these

private:
    enum Listing : char { Measured, NotMeasured, MayBeMeasured };

    struct Module {
        std::vector<size_t> Columns;
        int64_t Next = -1;     // number that is due; -1: any
        int64_t GapKadrs = 0;  // since the last measured kadr
    };

    // Whether all samples of the module are those of the kadr with this number.
    bool Shows(const Module& module, const int16_t* kadr, int64_t number) const {
        return std::ranges::all_of(module.Columns, [&](size_t column) {
            const int channel = Table_[column] % 16;
            const int64_t part = channel % 2 == 0 ? number : number / 32768;
            return kadr[column] == (channel < 14 ? part % 32768 - 16384 : 0);
        });
    }

    // The number that a first kadr shows.
    int64_t NumberOf(const Module& module, const int16_t* kadr) const {
        int64_t low = 0, high = 0;
        for (const size_t column : module.Columns) {
            if (Table_[column] % 16 < 14) (Table_[column] % 2 == 0 ? low : high) = kadr[column] + 16384;
        }
        return high * 32768 + low;
    }

    void TakeKadr(size_t index, const int16_t* kadr, int64_t at, Listing listed) {
        Module& module = Modules_[index];
        if (listed != Measured) {
            Listed++;
            module.GapKadrs++;
            const bool zero = std::ranges::all_of(module.Columns, [&](size_t column) { return kadr[column] == 0; });
            const bool due = module.Next > 0 && !zero && Shows(module, kadr, module.Next);
            if (due && listed == NotMeasured) Report(index, kadr, at, "needless");
            return;
        }
        int64_t number = module.Next < 0 ? NumberOf(module, kadr) : module.Next;
        const int64_t last = number + module.GapKadrs;
        while (number < last && !Shows(module, kadr, number)) number++;
        Shows(module, kadr, number) ? void(Compared++) : Report(index, kadr, at, "unlisted");
        module.Next = number + 1;
        module.GapKadrs = 0;
    }

    void Report(size_t index, const int16_t* kadr, int64_t at, const char* what) {
        if (Wrong++ != 0) return;
        Fault = std::string(what) + ": kadr " + std::to_string(at) + " of module " + std::to_string(index) + " shows " +
                std::to_string(NumberOf(Modules_[index], kadr)) + ", due is " + std::to_string(Modules_[index].Next);
    }

    const std::vector<int16_t> Table_;
    std::vector<Module> Modules_;
};

}  // namespace corvane
