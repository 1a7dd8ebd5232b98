#include "recorder/monitor_picture.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "recorder/fixed_point.h"
#include "recorder/text_columns.h"
#include "recorder/words.h"

namespace corvane::recorder {
namespace {

constexpr size_t BarMin = 10;  // columns, its ends included
constexpr size_t BarMax = 42;
constexpr size_t NameMin = 8;

// Cells of each column without the space that follows; 0: left out.
struct Layout {
    size_t Number = 2;
    size_t Name = 0;
    size_t Value = 0;
    size_t Unit = 0;
    size_t Bar = 0;
    size_t Extremes = 0;  // each
    size_t Mark = 0;
};

std::string ValueText(const Channel& channel, int16_t sample) {
    char text[FixedPoint::LengthMax];
    const FixedPoint number(FixedPoint::DecimalsFor(channel.Scale), '.');
    return {text, number.Write(text, channel.Physical(sample))};
}

std::string NameText(const Channel& channel) {
    return channel.Fitted() ? channel.Name : Say("(empty)");
}

// Takes so many cells and the space after them, or as many as there are; none when that is less than `least`.
size_t TakeColumns(size_t& room, size_t wanted, size_t least) {
    if (wanted == 0 || room < least + 1) return 0;
    const size_t taken = std::min(wanted, room - 1);
    room -= taken + 1;
    return taken;
}

// The number and the value come first, then what is wrong, then unit, name, bar, and extremes.
Layout LayOut(const std::vector<LiveChannel>& channels, size_t columns) {
    Layout layout;
    size_t name = 0, unit = ColumnsOf(Say("Unit"));
    for (const Text mark : {Text("silent"), Text("gap"), Text("empty")}) {
        layout.Mark = std::max(layout.Mark, ColumnsOf(Say(mark)));
    }
    for (const LiveChannel& each : channels) {
        layout.Number = std::max(layout.Number, std::to_string(each.Channel.Number).size());
        for (const int16_t sample : {LiveChannel::Lowest, LiveChannel::Highest}) {
            layout.Value = std::max(layout.Value, ValueText(each.Channel, sample).size());
        }
        name = std::max(name, ColumnsOf(NameText(each.Channel)));
        unit = std::max(unit, ColumnsOf(each.Channel.Unit));
    }
    layout.Value = std::max(layout.Value, ColumnsOf(Say("Value")));
    size_t room = columns;
    layout.Number = TakeColumns(room, layout.Number, layout.Number);
    layout.Value = TakeColumns(room, layout.Value, layout.Value);
    layout.Mark = room >= layout.Mark ? layout.Mark : room;  // the last one, without a space
    room -= layout.Mark;
    layout.Unit = TakeColumns(room, unit, unit);
    layout.Name = TakeColumns(room, name, std::min(name, NameMin));
    const size_t extremes = 2 * layout.Value + 1;
    if (room >= extremes + 1 + BarMin + 1) {
        layout.Extremes = layout.Value;
        room -= extremes + 1;
    }
    layout.Bar = TakeColumns(room, BarMax, BarMin);
    return layout;
}

// Its range from end to end, with "-" from the lowest to the highest value so far, and "#" for the newest.
std::string Bar(const LiveChannel& channel, size_t columns) {
    const size_t cells = columns - 2;
    const bool falls = channel.Channel.Scale < 0;
    const auto place = [&](int16_t sample) {
        const int range = LiveChannel::Highest - LiveChannel::Lowest;
        const int above = std::clamp(sample - LiveChannel::Lowest, 0, range);
        return static_cast<size_t>(falls ? range - above : above) * (cells - 1) / static_cast<size_t>(range);
    };
    std::string bar(cells, ' ');
    if (!channel.Total.Empty()) {
        const auto [from, to] = std::minmax({place(channel.Total.Min), place(channel.Total.Max)});
        std::fill(bar.begin() + static_cast<ptrdiff_t>(from), bar.begin() + static_cast<ptrdiff_t>(to) + 1, '-');
    }
    if (channel.Newest) bar[place(*channel.Newest)] = '#';
    return '[' + bar + ']';
}

// The lowest and the highest value so far.
std::pair<int16_t, int16_t> Extremes(const LiveChannel& channel) {
    const Extent& total = channel.Total;
    return channel.Channel.Scale < 0 ? std::pair(total.Max, total.Min) : std::pair(total.Min, total.Max);
}

class Line {
public:
    void Add(std::string_view text, size_t columns, bool right = false) {
        if (columns == 0) return;
        if (!Text_.empty()) Text_ += ' ';
        Text_ += Fitted(text, columns, right);
    }
    std::string Take() {
        Text_.erase(Text_.find_last_not_of(' ') + 1);
        return std::move(Text_);
    }

private:
    std::string Text_;
};

std::string Titles(const Layout& layout) {
    Line line;
    line.Add(Say("No"), layout.Number, true);
    line.Add(Say("Name"), layout.Name);
    line.Add(Say("Value"), layout.Value, true);
    line.Add(Say("Unit"), layout.Unit);
    line.Add(Say("Range"), layout.Bar);
    line.Add(Say("Min"), layout.Extremes, true);
    line.Add(Say("Max"), layout.Extremes, true);
    return line.Take();
}

std::string ChannelLine(const LiveChannel& channel, const Layout& layout) {
    const auto [low, high] = Extremes(channel);
    const auto text = [&](int16_t sample) {
        return channel.Total.Empty() ? std::string("-") : ValueText(channel.Channel, sample);
    };
    Line line;
    line.Add(std::to_string(channel.Channel.Number), layout.Number, true);
    line.Add(NameText(channel.Channel), layout.Name);
    line.Add(channel.Newest ? ValueText(channel.Channel, *channel.Newest) : "-", layout.Value, true);
    line.Add(channel.Channel.Unit, layout.Unit);
    if (layout.Bar > 0) line.Add(Bar(channel, layout.Bar), layout.Bar);
    line.Add(text(low), layout.Extremes, true);
    line.Add(text(high), layout.Extremes, true);
    line.Add(Say(channel.Mark), layout.Mark);
    return line.Take();
}

std::string GapsText(const MonitorState& state) {
    if (!state.Trouble.empty()) return state.Trouble;
    if (state.Kadrs == 0) return Say("Waiting for data.");
    if (state.Gaps == 0) return Say("Everything measured.");
    return Say("{:.6g} s not measured, in {}.", static_cast<double>(state.Missing) / state.Rate,
               Counted(static_cast<int64_t>(state.Gaps), GapNoun));
}

}  // namespace

std::vector<std::string> MonitorPicture(const MonitorState& state, size_t columns, size_t rows) {
    const Layout layout = LayOut(state.Channels, columns);
    std::vector<std::string> lines;
    const auto add = [&](const std::string& text) {
        std::string line = Fitted(text, columns);
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(std::move(line));
    };
    add(Say("{} {}, {:.6g} Hz, {:.1f} s", state.Device, state.Crate, state.Rate,
            static_cast<double>(state.Kadrs) / state.Rate));
    add(GapsText(state));
    add(Titles(layout));
    const size_t room = rows - std::min(rows, lines.size());
    const size_t shown = room >= state.Channels.size() ? state.Channels.size() : room - std::min<size_t>(room, 1);
    for (size_t i = 0; i < shown; i++) add(ChannelLine(state.Channels[i], layout));
    if (shown < state.Channels.size()) {
        const auto left = static_cast<int64_t>(state.Channels.size() - shown);
        add(Say("and {} below", Counted(left, MoreChannelsNoun)));
    }
    if (lines.size() > rows) lines.resize(rows);
    return lines;
}

std::string MonitorJson(const MonitorState& state) {
    using Json = nlohmann::ordered_json;
    Json channels = Json::array();
    for (const LiveChannel& each : state.Channels) {
        const auto value = [&](bool known, int16_t sample) {
            return known ? Json(each.Channel.Physical(sample)) : Json();
        };
        const auto [low, high] = Extremes(each);
        channels.push_back({{"number", each.Channel.Number},
                            {"name", each.Channel.Name},
                            {"unit", each.Channel.Unit},
                            {"value", value(each.Newest.has_value(), each.Newest.value_or(0))},
                            {"min", value(!each.Total.Empty(), low)},
                            {"max", value(!each.Total.Empty(), high)},
                            {"mark", each.Mark.Empty() ? Json() : Json(each.Mark.In(Language::English))}});
    }
    const Json json = {{"time", state.Time},
                       {"device", state.Device},
                       {"crate", state.Crate},
                       {"rate_hz", state.Rate},
                       {"kadrs", state.Kadrs},
                       {"gaps", state.Gaps},
                       {"kadrs_not_measured", state.Missing},
                       {"trouble", state.Trouble.empty() ? Json() : Json(state.Trouble)},
                       {"channels", channels}};
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace corvane::recorder
