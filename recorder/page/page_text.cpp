#include "recorder/page/page_text.h"

#include <page_template.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>

#include "recorder/recorded_gaps.h"
#include "recorder/svg_plot.h"

namespace corvane::recorder {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::array Endings = {"complete", "interrupted", "stalled", "stopped", "continued", "unknown"};
constexpr size_t TagMax = 64;  // bytes of the tags around a column's data

// The page's program with places for what is different in each page, in this order.
constexpr std::array<std::string_view, 4> Places = {"{{language}}", "{{title}}", "{{about}}", "{{data}}"};

// The names of what a file has are those of its page's program.
Json ChannelJson(const PageSubject& subject, size_t column, const ColumnTotals& totals, const ColumnPlan& plan,
                 const PageData& data) {
    const Channel& channel = subject.Channels[column];
    const ColumnSums& sums = totals.Sums;
    const bool some = sums.Count > 0;
    const double one = some ? channel.Physical(sums.Min) : 0;
    const double other = some ? channel.Physical(sums.Max) : 0;
    const double deviation =
        some ? std::sqrt(sums.Squares / static_cast<double>(sums.Count)) / std::abs(channel.Scale) : 0;
    const size_t mask = plan.Masks[column];
    const auto orNull = [&](double value) { return some ? Json(value) : Json(); };
    return {{"number", subject.FromText ? Json() : Json(channel.Number)},
            {"name", channel.Name},
            {"unit", channel.Unit},
            {"range", channel.Range},
            {"fitted", channel.Fitted()},
            {"scale", channel.Scale},
            {"offset", channel.Offset},
            {"decimals", subject.Decimals[column]},
            {"mask", data.Masks[mask].empty() ? Json() : Json(mask)},
            {"count", sums.Count},
            {"limits", subject.FromText ? Json() : Json(totals.AtLimits)},
            {"min", orNull(std::min(one, other))},
            {"max", orNull(std::max(one, other))},
            {"mean", orNull(some ? channel.Physical(sums.Mean()) : 0)},
            {"deviation", orNull(deviation)}};
}

Json GapsJson(const PageSubject& subject, int64_t endKadr) {
    Json gaps = Json::array();
    for (size_t i = 0; i < subject.Ending.Gaps.size(); i++) {
        const Gap& gap = subject.Ending.Gaps[i];
        const int64_t kadrs = std::min(gap.First + gap.Kadrs, endKadr) - gap.First;
        if (kadrs > 0) gaps.push_back({subject.GapOwners[i], gap.First, kadrs, static_cast<int>(gap.Reason)});
    }
    return gaps;
}

Json OwnersJson(const PageSubject& subject) {
    Json owners = Json::array();
    for (const GapOwner& owner : subject.Owners) {
        Json channels = Json::array();
        for (size_t column = 0; column < subject.Channels.size(); column++) {
            if ((owner.Channels >> column & 1) != 0) channels.push_back(column);
        }
        owners.push_back({{"module", owner.Module}, {"slot", owner.Slot}, {"channels", channels}});
    }
    return owners;
}

Json AboutJson(const PageSubject& subject, const Collected& collected, const PageData& data) {
    const Verdict& ending = subject.Ending;
    const int64_t end = subject.FirstKadr + collected.Kadrs() * subject.Step;
    Json about = {{"file", subject.File},
                  {"lines", subject.Lines},
                  {"simulated", subject.Simulated},
                  {"fromText", subject.FromText},
                  {"filledIn", subject.FilledIn},
                  {"rate", subject.Rate},
                  {"start", subject.Start},
                  {"first", subject.FirstKadr},
                  {"step", subject.Step},
                  {"rows", collected.Kadrs()},
                  {"promised", std::max(subject.PromisedKadrs, collected.Kadrs())},
                  {"ended", Endings[static_cast<size_t>(ending.HowItEnded)]},
                  {"reason", ending.Reason},
                  {"wanted", ending.WantedKadrs == UntilInterrupted ? Json() : Json(ending.WantedKadrs)},
                  {"doubts", ending.Doubts},
                  {"sampleBytes", collected.Plan().SampleBytes},
                  {"blockNumbers", PackedNumbers::BlockNumbers},
                  {"binRows", data.BinKadrs},
                  {"bins", data.Bins},
                  {"owners", OwnersJson(subject)},
                  {"gaps", GapsJson(subject, end)}};
    Json& channels = about["channels"] = Json::array();
    for (size_t column = 0; column < subject.Channels.size(); column++) {
        channels.push_back(ChannelJson(subject, column, collected.Totals()[column], collected.Plan(), data));
    }
    return about;
}

std::string AboutText(const PageSubject& subject, const Collected& collected, const PageData& data) {
    const Json about = AboutJson(subject, collected, data);
    return JsonForHtml(about.dump(-1, ' ', true, Json::error_handler_t::replace));
}

void AppendData(OutputFile& file, const char* kind, const std::vector<Pieces>& data) {
    for (size_t i = 0; i < data.size(); i++) {
        if (data[i].empty()) continue;
        file.Buffer() += "<script type=\"text/plain\" id=\"" + std::string(kind) + std::to_string(i) + "\">";
        for (const std::string& piece : data[i]) {
            AppendBase64(file.Buffer(), piece);
            file.WriteWhenLarge();
        }
        file.Buffer() += "</script>\n";
    }
}

}  // namespace

size_t DataRoom() {
    return (PageMax - PageTemplate.size()) / 4 * 3;
}

std::string JsonForHtml(const std::string& json) {
    std::string text;
    text.reserve(json.size());
    for (const char character : json) {
        if (character == '<') {
            text += "\\u003c";
        } else {
            text += character;
        }
    }
    return text;
}

int64_t WritePage(OutputFile& file, const PageSubject& subject, Collected& collected, Language language) {
    // What is said of the data is hardly shorter without the data.
    PageData nothing;
    nothing.Masks.resize(collected.Plan().MaskCount);
    const size_t said = AboutText(subject, collected, nothing).size();
    const std::string title = EscapeXml(subject.File);
    const size_t reserve = 2 * (subject.Channels.size() + 4) * TagMax + 4096;
    const size_t taken = PageTemplate.size() + said + title.size() + reserve;
    const PageData data = collected.Finish((PageMax - std::min(taken, PageMax)) / 4 * 3);

    std::string_view rest = PageTemplate;
    for (const std::string_view place : Places) {
        const size_t found = rest.find(place);
        file.Buffer() += rest.substr(0, found);
        rest.remove_prefix(found + place.size());
        if (place == Places[0]) file.Buffer() += language == Language::Russian ? "ru" : "en";
        if (place == Places[1]) file.Buffer() += title;
        if (place == Places[2]) file.Buffer() += AboutText(subject, collected, data);
        if (place == Places[3]) {
            AppendData(file, "c", data.Numbers);
            AppendData(file, "m", data.Masks);
        }
        file.WriteWhenLarge();
    }
    file.Buffer() += rest;
    return data.BinKadrs;
}

}  // namespace corvane::recorder
