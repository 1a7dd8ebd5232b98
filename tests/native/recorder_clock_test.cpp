// When the recorder doubts that data comes at the rate it was asked for.
#include <gtest/gtest.h>

#include <chrono>
#include <tuple>

#include "recorder/data_check.h"
#include "recorder/data_clock.h"

namespace corvane::recorder {
namespace {

TEST(RecorderDataClock, DoubtsDataAtAnotherPace) {
    // The pace of the data, a silence from and until, in ms, after which the driver catches up at once, from when on
    // the host does not look either until its end, and whether there is doubt: of data that a clock paces, and of
    // data that none does.
    const std::tuple<const char*, double, int, int, int, bool, bool> cases[] = {
        {"in step", 1, 0, 0, 0, false, false},
        {"late start", 1, 0, 5000, 5000, false, false},
        {"quartz", 1.0005, 0, 0, 0, false, false},
        {"slow", 0.85, 0, 0, 0, true, true},
        {"fast", 1.15, 0, 0, 0, true, false},
        {"short silence", 1, 8000, 8800, 8800, false, false},
        {"long silence", 1, 8000, 9500, 9500, true, true},
        {"machine asleep", 1, 8000, 9500, 8000, false, false}};
    for (const auto& [what, pace, silenceFrom, silenceUntil, looksUntil, doubtful, doubtfulUntimed] : cases) {
        const auto start = DataClock::Clock::now();
        DataClock clock(100, true), untimed(100, false);
        const int first = silenceFrom == 0 ? silenceUntil : 0;
        double arrived = 0;
        for (int time = 0; time < 20000; time += 40) {
            const bool silent = time >= silenceFrom && time < silenceUntil;
            // The first data after a silence is late, the rest follows within 0.2 s.
            if (!silent && time > first && time - silenceUntil >= 200)
                arrived = (time - first) * pace / 10;
            else if (!silent)
                arrived += 4;
            if (silent && time >= looksUntil) continue;
            for (DataClock* each : {&clock, &untimed})
                each->Observe(static_cast<int64_t>(arrived), start + std::chrono::milliseconds(time));
        }
        EXPECT_EQ(clock.Doubtful(), doubtful) << what << ' ' << clock.WorstLead();
        EXPECT_EQ(untimed.Doubtful(), doubtfulUntimed) << what << ' ' << untimed.WorstLead();
    }
}

TEST(RecorderDataClock, SaysNothingOfASimulatorThatHurries) {
    RecordingTask task;
    task.Rate = 100;
    for (const bool simulated : {false, true}) {
        DeviceSummary device;
        device.Libraries = {{"ltrapi", "", "", simulated}};
        DataCheck check(task, device);
        const auto start = DataClock::Clock::now();
        for (int time = 0; time < 5000; time += 40) {
            check.Observe(time, 0, 10000, start + std::chrono::milliseconds(time));  // ten times as many as the rate
        }
        EXPECT_EQ(check.Doubts().empty(), simulated);
    }
}

}  // namespace
}  // namespace corvane::recorder
