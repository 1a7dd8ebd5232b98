#include "recorder/recording_json.h"

#include <corvane_version.h>
#include <fmt/format.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "recorder/messages.h"
#include "recorder/recorded_gaps.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {
namespace {

using Json = nlohmann::ordered_json;

constexpr int FormatVersion = 1;
constexpr int DepthMax = 8;
constexpr double RateMin = 1e-3, RateMax = 1e6;  // Hz
constexpr double SecondsMax = 1e9;               // from the start of a recording to its end
constexpr auto KadrsMax = static_cast<int64_t>(SecondsMax * RateMax);
constexpr int SlotMax = 99;

constexpr std::pair<End, const char*> Endings[] = {{End::Complete, "complete"},
                                                   {End::Interrupted, "interrupted"},
                                                   {End::Stalled, "stalled"},
                                                   {End::Stopped, "stopped"},
                                                   {End::Continued, "continued"}};

constexpr GapReason Reasons[] = {GapReason::Various, GapReason::CutShort, GapReason::NothingCame,
                                 GapReason::NotProcessed};

Json OrNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

Json ModulesJson(const Recording& recording) {
    Json modules = Json::array();
    for (size_t i = 0; i < recording.Device.Modules.size(); i++) {
        const ModuleSummary& module = recording.Device.Modules[i];
        modules.push_back({{"module", i},
                           {"name", OrNull(module.Name)},
                           {"slot", module.Slot.empty() ? Json() : Json(std::atoi(module.Slot.c_str()))},
                           {"serial", OrNull(module.Serial)},
                           {"firmware", OrNull(module.Firmware)}});
    }
    return modules;
}

Json ChannelsJson(const Recording& recording) {
    Json channels = Json::array();
    for (const Channel& channel : recording.Task.Channels) {
        channels.push_back({{"number", channel.Number},
                            {"name", channel.Name},
                            {"unit", channel.Unit},
                            {"scale", channel.Scale},
                            {"offset", channel.Offset},
                            {"range", channel.Range},
                            {"fitted", channel.Fitted()}});
    }
    return channels;
}

Json LibrariesJson(const Recording& recording) {
    Json libraries = Json::array();
    for (const Library& library : recording.Device.Libraries) {
        libraries.push_back({{"name", library.Name},
                             {"version", OrNull(library.Version)},
                             {"simulated", library.Simulated},
                             {"file", OrNull(library.File)}});
    }
    return libraries;
}

Json GapsJson(const Recording& recording, const Verdict& verdict) {
    Json gaps = Json::array();
    for (const Gap& gap : verdict.Gaps) {
        gaps.push_back({{"module", gap.Module},
                        {"slot", recording.Task.SlotOf(gap.Module)},
                        {"first_kadr", gap.First},
                        {"kadrs", gap.Kadrs},
                        {"reason", ReasonText(gap.Reason)}});
    }
    return gaps;
}

Json EndedJson(End end) {
    const auto* found = std::ranges::find(Endings, end, &std::pair<End, const char*>::first);
    return found == std::end(Endings) ? Json() : Json(found->second);
}

// What is read ends up in lines of text.
std::string TextIn(const Json& object, const char* key) {
    const Json& value = object.at(key);
    std::string text = value.is_null() ? "" : value.get<std::string>();
    std::ranges::replace_if(
        text, [](char character) { return static_cast<uint8_t>(character) < ' '; }, ' ');
    return text;
}

void Require(bool condition, const std::string& key) {
    if (!condition) throw std::runtime_error(key);
}

void Require(bool condition, Text what) {
    if (!condition) throw std::runtime_error(Say(what));
}

int64_t CountIn(const Json& object, const char* key, int64_t max) {
    const Json& value = object.at(key);
    const bool whole = value.is_number_unsigned() && value.get<uint64_t>() <= static_cast<uint64_t>(max);
    Require(whole, key);
    return value.get<int64_t>();
}

double NumberIn(const Json& object, const char* key) {
    Require(object.at(key).is_number(), key);
    return object.at(key).get<double>();
}

Channel ChannelIn(const Json& json) {
    Channel channel;
    channel.Number = static_cast<int16_t>(CountIn(json, "number", ModulesMax * ModuleChannels - 1));
    channel.Name = TextIn(json, "name");
    channel.Range = TextIn(json, "range");
    channel.Unit = TextIn(json, "unit");
    channel.Scale = NumberIn(json, "scale");
    channel.Offset = NumberIn(json, "offset");
    Require(std::isnormal(channel.Scale) && std::isfinite(channel.Offset), Text("scale or offset"));
    return channel;
}

DeviceSummary DeviceIn(const Json& json) {
    DeviceSummary device;
    device.Name = TextIn(json, "device");
    device.Server = TextIn(json, "server");
    device.CrateName = TextIn(json.at("crate"), "name");
    device.CrateSerial = TextIn(json.at("crate"), "serial");
    device.CratePort = TextIn(json.at("crate"), "port");
    for (const Json& module : json.at("modules")) {
        const bool known = !module.at("slot").is_null();
        device.Modules.push_back({TextIn(module, "name"), known ? std::to_string(CountIn(module, "slot", SlotMax)) : "",
                                  TextIn(module, "serial"), TextIn(module, "firmware")});
    }
    Require(device.Modules.size() <= ModulesMax, Text("modules: too many"));
    device.StartMark = TextIn(json, "start_mark");
    for (const Json& library : json.at("libraries")) {
        device.Libraries.push_back({TextIn(library, "name"), TextIn(library, "version"), TextIn(library, "file"),
                                    library.at("simulated").get<bool>()});
    }
    return device;
}

RecordingTask TaskIn(const Json& json, int64_t channels) {
    RecordingTask task;
    task.Rate = NumberIn(json, "rate_hz");
    Require(task.Rate >= RateMin && task.Rate <= RateMax, std::string("rate_hz"));
    for (const Json& channel : json.at("channels")) task.Channels.push_back(ChannelIn(channel));
    Require(static_cast<int64_t>(task.Channels.size()) == channels,
            Text("channels: not as many as the array has columns"));
    const Json& wanted = json.at("kadrs_wanted");
    task.WantedKadrs = wanted.is_null() ? UntilInterrupted : CountIn(json, "kadrs_wanted", UntilInterrupted);
    for (const Channel& channel : task.Channels) {
        const int32_t index = channel.Number / ModuleChannels;
        if (!task.Modules.empty() && task.Modules.back().Index == index) continue;
        const Json& slot = json.at("modules").at(static_cast<size_t>(index)).at("slot");
        task.Modules.push_back({index, slot.is_null() ? 0 : slot.get<int>()});
    }
    return task;
}

GapReason ReasonIn(const Json& gap) {
    const std::string text = TextIn(gap, "reason");
    const auto* found = std::ranges::find_if(Reasons, [&](GapReason reason) { return text == ReasonText(reason); });
    return found == std::end(Reasons) ? GapReason::Various : *found;
}

Verdict VerdictIn(const Json& json, const Recording& recording, int64_t kadrs) {
    Verdict verdict;
    verdict.HowItEnded = End::Unknown;
    const std::string ended = TextIn(json, "ended");
    for (const auto& [end, text] : Endings) {
        if (ended == text) verdict.HowItEnded = end;
    }
    Require(ended.empty() || verdict.HowItEnded != End::Unknown, std::string("ended"));
    Require(ended.empty() || CountIn(json, "kadrs", KadrsMax) == kadrs,
            Text("kadrs: not as many as the array has rows"));
    verdict.Reason = TextIn(json, "reason");
    verdict.Kadrs = recording.FirstKadr + kadrs;
    verdict.WantedKadrs = recording.Task.WantedKadrs;
    for (const Json& doubt : json.at("doubts")) verdict.Doubts.push_back(TextIn({{"doubt", doubt}}, "doubt"));
    Require(json.at("gaps").size() <= RecordedGaps::KeptMax + ModulesMax, Text("gaps: too many"));
    for (const Json& gap : json.at("gaps")) {
        const Gap one = {static_cast<int32_t>(CountIn(gap, "module", ModulesMax - 1)),
                         CountIn(gap, "first_kadr", KadrsMax), CountIn(gap, "kadrs", KadrsMax), ReasonIn(gap)};
        verdict.Gaps.push_back(one);
    }
    // A recording that still runs has more by now than the array had when it was asked.
    verdict.Gaps = GapsWithin(verdict.Gaps, recording.FirstKadr, verdict.Kadrs);
    verdict.Unfitted = recording.Task.Unfitted();
    return verdict;
}

}  // namespace

std::string DescriptionText(const Recording& recording, const Verdict& verdict, int64_t kadrs) {
    const RecordingTask& task = recording.Task;
    const DeviceSummary& device = recording.Device;
    const Json text = {{"format", FormatVersion},
                       {"recorder", CORVANE_VERSION},
                       {"start", recording.Start},
                       {"rate_hz", task.Rate},
                       {"part", recording.Part},
                       {"first_kadr", recording.FirstKadr},
                       {"kadrs", verdict.HowItEnded == End::Unknown ? Json() : Json(kadrs)},
                       {"kadrs_wanted", task.WantedKadrs == UntilInterrupted ? Json() : Json(task.WantedKadrs)},
                       {"ended", EndedJson(verdict.HowItEnded)},
                       {"reason", OrNull(verdict.Reason)},
                       {"simulated", device.Simulated()},
                       {"device", device.Name},
                       {"server", OrNull(device.Server)},
                       {"crate",
                        {{"name", OrNull(device.CrateName)},
                         {"serial", OrNull(device.CrateSerial)},
                         {"port", OrNull(device.CratePort)}}},
                       {"modules", ModulesJson(recording)},
                       {"start_mark", OrNull(device.StartMark)},
                       {"libraries", LibrariesJson(recording)},
                       {"note", OrNull(recording.Note)},
                       {"value", "sample / scale + offset"},
                       {"channels", ChannelsJson(recording)},
                       {"gaps", GapsJson(recording, verdict)},
                       {"doubts", verdict.Doubts}};
    return text.dump(1, ' ', false, Json::error_handler_t::replace) + '\n';
}

Description ParseDescription(std::string_view text, int64_t kadrs, int64_t channels) try {
    const auto shallow = [](int depth, Json::parse_event_t, Json&) {
        Require(depth <= DepthMax, Text("nested too deeply"));
        return true;
    };
    const Json json = Json::parse(text, shallow);
    Require(CountIn(json, "format", INT64_MAX) == FormatVersion, Text("format: made by another version"));
    Description description;
    Recording& recording = description.Recording;
    recording.Device = DeviceIn(json);
    recording.Task = TaskIn(json, channels);
    recording.Start = TextIn(json, "start");
    recording.Note = TextIn(json, "note");
    recording.Part = static_cast<int>(CountIn(json, "part", INT32_MAX));
    recording.FirstKadr = CountIn(json, "first_kadr", KadrsMax);
    Require(static_cast<double>(recording.FirstKadr + kadrs) <= SecondsMax * recording.Task.Rate,
            std::string("first_kadr"));
    description.Verdict = VerdictIn(json, recording, kadrs);
    description.RecordedBy = TextIn(json, "recorder");
    return description;
} catch (const nlohmann::json::exception& error) {
    throw std::runtime_error(error.what());
}

}  // namespace corvane::recorder
