#include "recorder/svg_plot.h"

#include <fmt/format.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <vector>

#include "base/utf8.h"
#include "recorder/axis.h"
#include "recorder/messages.h"
#include "recorder/taken_kadrs.h"
#include "recorder/words.h"

namespace corvane::recorder {
namespace {

// Pixels.
constexpr double Width = 1240;
constexpr double Left = 78;
constexpr double Right = 226;  // the legend
constexpr double Top = 82;
constexpr double Bottom = 58;
constexpr double PanelGap = 34;
constexpr double LegendRow = 31;
constexpr double NoteRow = 15;
constexpr double PlotRight = Width - Right;
constexpr size_t LegendTextMax = 28;  // characters that fit beside the panel

// Colours that also colour-blind readers tell apart, all dark enough for a white ground.
constexpr std::array<const char*, 8> Colours = {"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                                "#e69f00", "#56b4e9", "#882255", "#444444"};

constexpr const char* Style =
    "text{font-family:Helvetica,Arial,'DejaVu Sans',sans-serif;font-size:12px;fill:#4a515c}"
    ".title{font-size:20px;font-weight:600;fill:#1f242b}.unit{font-size:13px;font-weight:600;fill:#1f242b}"
    ".name{fill:#1f242b}.small{font-size:10.5px;fill:#6b7380}.end{text-anchor:end}.middle{text-anchor:middle}"
    ".grid{stroke:#e4e8ed;stroke-width:1}.zero{stroke:#b4bcc8;stroke-width:1}"
    ".frame{fill:none;stroke:#b4bcc8;stroke-width:1}"
    ".line{fill:none;stroke-width:1.4;stroke-linejoin:round;stroke-linecap:round}.band{fill-opacity:.55;stroke-width:."
    "8}";

// What shades the gaps of a module: each with strokes of its own direction, so that both show where they overlap.
constexpr const char* Hatches =
    "<defs><pattern id='gap0' width='7' height='7' patternUnits='userSpaceOnUse' patternTransform='rotate(45)'>"
    "<rect width='7' height='7' fill='#6b7380' fill-opacity='.14'/><path d='M0 0V7' stroke='#6b7380' "
    "stroke-width='1.6'/>"
    "</pattern><pattern id='gap1' width='7' height='7' patternUnits='userSpaceOnUse' patternTransform='rotate(-45)'>"
    "<rect width='7' height='7' fill='#b3261e' fill-opacity='.10'/><path d='M0 0V7' stroke='#b3261e' stroke-width='1'/>"
    "</pattern></defs>\n";
constexpr size_t HatchCount = 2;

struct Panel {
    std::string Unit;
    std::vector<size_t> Channels = {};  // positions in the plot's channels
    std::vector<size_t> Shades = {};    // positions in the plot's modules: those of the channels that have gaps
    double Top = 0;
    double Height = 0;

    double Bottom() const { return Top + Height; }
};

struct TimeUnit {
    Text Name;
    double Seconds;
};

TimeUnit TimeUnitFor(double seconds) {
    if (seconds <= 300) return {"s", 1};
    return seconds <= 4 * 3600 ? TimeUnit{"min", 60} : TimeUnit{"h", 3600};
}

template <class... Arguments>
void Append(std::string& svg, fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    fmt::format_to(std::back_inserter(svg), format, std::forward<Arguments>(arguments)...);
}

// At most LegendTextMax characters, and dots where some are left out.
std::string LegendText(const std::string& name) {
    const size_t length = LengthOfCharacters(name, LegendTextMax);
    return EscapeXml(name.substr(0, length)) + (length < name.size() ? "\u2026" : "");
}

std::vector<size_t> ModulesWithGaps(const Plot& plot, const Panel& panel) {
    std::vector<size_t> modules;
    for (size_t i = 0; i < plot.Modules.size(); i++) {
        const int32_t index = plot.Modules[i].Index;
        const bool hasGaps = std::ranges::any_of(plot.Gaps, [&](const Gap& gap) { return gap.Module == index; });
        const bool shown = std::ranges::any_of(
            panel.Channels, [&](size_t channel) { return plot.Channels[channel].Number / ModuleChannels == index; });
        if (hasGaps && shown) modules.push_back(i);
    }
    return modules;
}

// Channels by unit, in the order in which the units appear; a panel has no more channels than there are colours.
std::vector<Panel> MakePanels(const Plot& plot) {
    const std::span<const Channel> channels = plot.Channels;
    std::vector<Panel> byUnit;
    for (size_t i = 0; i < channels.size(); i++) {
        auto panel = std::find_if(byUnit.begin(), byUnit.end(),
                                  [&](const Panel& other) { return other.Unit == channels[i].Unit; });
        if (panel == byUnit.end()) panel = byUnit.insert(panel, Panel{channels[i].Unit});
        panel->Channels.push_back(i);
    }
    std::vector<Panel> panels;
    for (const Panel& unit : byUnit) {
        const size_t count = unit.Channels.size();
        const size_t share = (count + Colours.size() - 1) / Colours.size();     // panels of this unit
        const auto each = static_cast<ptrdiff_t>((count + share - 1) / share);  // channels of a panel
        for (auto first = unit.Channels.begin(); first != unit.Channels.end();) {
            const auto end = first + std::min(each, unit.Channels.end() - first);
            panels.push_back({unit.Unit, {first, end}});
            first = end;
        }
    }
    double top = Top;
    for (Panel& panel : panels) {
        const double least = panels.size() == 1 ? 420 : panels.size() == 2 ? 300 : 210;
        panel.Shades = ModulesWithGaps(plot, panel);
        panel.Top = top;
        panel.Height = std::max(least, LegendRow * static_cast<double>(panel.Channels.size() + panel.Shades.size()));
        top = panel.Bottom() + PanelGap;
    }
    return panels;
}

// Physical limits of one channel, the smaller one first whatever the sign of its scale. Something was measured there.
std::pair<double, double> Limits(const Plot& plot, size_t channel) {
    const Extent total = plot.Data.Total(channel);
    const double first = plot.Channels[channel].Physical(total.Min);
    const double last = plot.Channels[channel].Physical(total.Max);
    return {std::min(first, last), std::max(first, last)};
}

Axis ValueAxis(const Plot& plot, const Panel& panel) {
    constexpr double LeastCodes = 40;  // so that a few codes of noise don't fill the panel
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    double leastSpan = 0;
    for (const size_t channel : panel.Channels) {
        leastSpan = std::max(leastSpan, LeastCodes / std::abs(plot.Channels[channel].Scale));
        if (plot.Data.Total(channel).Empty()) continue;
        const auto [channelLow, channelHigh] = Limits(plot, channel);
        low = std::min(low, channelLow);
        high = std::max(high, channelHigh);
    }
    if (low > high) low = high = 0;  // nothing was measured
    // The last one keeps low and high different numbers, however large the offset is.
    const double margin = std::max({(high - low) * 0.06, (leastSpan - (high - low)) / 2, std::abs(low) * 1e-9});
    return {low - margin, high + margin, panel.Bottom(), panel.Top, 28};
}

void AppendAxes(std::string& svg, const Panel& panel, const Axis& values, const Axis& time) {
    for (const double tick : time.Ticks()) {
        Append(svg, "<path class='grid' d='M{0:.1f} {1:.1f}V{2:.1f}'/>\n", time.Pixel(tick), panel.Top, panel.Bottom());
    }
    for (const double tick : values.Ticks()) {
        const double y = values.Pixel(tick);
        const std::string label = values.Label(tick);
        Append(svg, "<path class='{}' d='M{:.1f} {:.1f}H{:.1f}'/>\n", label == "0" ? "zero" : "grid", Left, y,
               PlotRight);
        Append(svg, "<text class='end' x='{:.1f}' y='{:.1f}'>{}</text>\n", Left - 9, y + 4, label);
    }
    Append(svg, "<rect class='frame' x='{:.1f}' y='{:.1f}' width='{:.1f}' height='{:.1f}'/>\n", Left, panel.Top,
           PlotRight - Left, panel.Height);
    Append(svg, "<text class='unit' x='{:.1f}' y='{:.1f}'>{}</text>\n", Left, panel.Top - 8, EscapeXml(panel.Unit));
}

void AppendTimeLabels(std::string& svg, const Panel& lowest, const Axis& time, Text unit) {
    for (const double tick : time.Ticks()) {
        Append(svg, "<text class='middle' x='{:.1f}' y='{:.1f}'>{}</text>\n", time.Pixel(tick), lowest.Bottom() + 19,
               time.Label(tick));
    }
    Append(svg, "<text class='middle' x='{:.1f}' y='{:.1f}'>{}</text>\n", (Left + PlotRight) / 2, lowest.Bottom() + 41,
           Say("time, {}", Say(unit)));
}

// Every gap is at least a pixel wide; those that would touch are drawn as one, so there are never many.
void AppendShade(std::string& svg, const Plot& plot, const Panel& panel, size_t module, const Axis& time,
                 double period) {
    Append(svg, "<path fill='url(#gap{})' d='", module % HatchCount);
    double from = 0;
    double to = -1;
    const auto appendSpan = [&] {
        if (from < to) Append(svg, "M{:.1f} {:.1f}H{:.1f}V{:.1f}H{:.1f}Z", from, panel.Top, to, panel.Bottom(), from);
    };
    for (const Gap& gap : plot.Gaps) {
        if (gap.Module != plot.Modules[module].Index) continue;
        const double first = std::max(time.Pixel((static_cast<double>(gap.First) - 0.5) * period), Left);
        const double last = time.Pixel((static_cast<double>(gap.First + gap.Kadrs) - 0.5) * period);
        if (first > to + 1) {
            appendSpan();
            from = first;
        }
        to = std::min(std::max(last, first + 1), PlotRight);
    }
    appendSpan();
    svg += "'/>\n";
}

// Bins in which a channel was measured, one after another.
struct Run {
    size_t First;
    size_t End;
};

std::vector<Run> MeasuredRuns(const Envelope& data, size_t channel) {
    std::vector<Run> runs;
    for (size_t bin = 0; bin < data.Bins(); bin++) {
        if (data.At(channel, bin).Empty()) continue;
        if (runs.empty() || runs.back().End != bin) runs.push_back({bin, bin});
        runs.back().End = bin + 1;
    }
    return runs;
}

// `period`: kadr distance on the time axis. Where nothing was measured, the curve is broken.
void AppendCurve(std::string& svg, const Plot& plot, size_t channel, const char* colour, const Axis& values,
                 const Axis& time, double period) {
    const Envelope& data = plot.Data;
    const bool line = data.BinKadrs() == 1;
    const auto y = [&](int16_t sample) { return values.Pixel(plot.Channels[channel].Physical(sample)); };
    const auto x = [&](size_t bin) {
        const double place = line ? 0 : 0.5;
        return time.Pixel((static_cast<double>(bin) + place) * static_cast<double>(data.BinKadrs()) * period);
    };
    if (line) {
        Append(svg, "<path class='line' stroke='{}' d='", colour);
    } else {
        Append(svg, "<path class='band' fill='{0}' stroke='{0}' d='", colour);
    }
    for (const Run& run : MeasuredRuns(data, channel)) {
        // Forward along the largest samples, and back along the smallest.
        for (size_t bin = run.First; bin < run.End; bin++) {
            Append(svg, "{}{:.1f} {:.1f}", bin == run.First ? 'M' : 'L', x(bin), y(data.At(channel, bin).Max));
        }
        if (line && run.End - run.First == 1) svg += "h0";  // a dot
        if (line) continue;
        for (size_t bin = run.End; bin-- > run.First;) {
            Append(svg, "L{:.1f} {:.1f}", x(bin), y(data.At(channel, bin).Min));
        }
        svg += 'Z';
    }
    svg += "'/>\n";
    constexpr size_t DottedMax = 80;  // kadrs; up to here each can be seen as a dot of its own
    for (size_t bin = 0; data.Bins() <= DottedMax && bin < data.Bins(); bin++) {
        if (data.At(channel, bin).Empty()) continue;
        Append(svg, "<circle cx='{:.1f}' cy='{:.1f}' r='2.4' fill='{}'/>\n", x(bin), y(data.At(channel, bin).Max),
               colour);
    }
}

// Rounded to a whole code, so that the rounding error of a single precision offset does not show as 3e-08.
double WholeCodes(const Channel& channel, double value) {
    return std::round(value * channel.Scale) / channel.Scale + 0.0;  // + 0.0 makes -0 a 0
}

std::string LimitsText(const Plot& plot, size_t position) {
    if (plot.Data.Total(position).Empty()) return Say("nothing measured");
    const Channel& channel = plot.Channels[position];
    const auto [low, high] = Limits(plot, position);
    return fmt::format("{:.4g} \u2026 {:.4g} {}", WholeCodes(channel, low), WholeCodes(channel, high),
                       EscapeXml(channel.Unit));
}

std::string GapsText(const Plot& plot, int32_t module) {
    int64_t gaps = 0;
    int64_t kadrs = 0;
    for (const Gap& gap : plot.Gaps) {
        if (gap.Module != module) continue;
        gaps++;
        kadrs += gap.Kadrs;
    }
    return Say("{:.4g} s in {}", static_cast<double>(kadrs) / plot.Rate, Counted(gaps, GapNoun));
}

void AppendLegend(std::string& svg, const Plot& plot, const Panel& panel) {
    const double x = PlotRight + 20;
    double y = panel.Top + 11;
    for (size_t i = 0; i < panel.Channels.size(); i++, y += LegendRow) {
        const Channel& channel = plot.Channels[panel.Channels[i]];
        Append(svg, "<rect x='{:.1f}' y='{:.1f}' width='14' height='4' rx='2' fill='{}'/>\n", x, y - 6, Colours[i]);
        Append(svg, "<text class='name' x='{:.1f}' y='{:.1f}'>{}</text>\n", x + 22, y, LegendText(channel.Name));
        Append(svg, "<text class='small' x='{:.1f}' y='{:.1f}'>{}</text>\n", x + 22, y + 13,
               LimitsText(plot, panel.Channels[i]));
    }
    for (const size_t shade : panel.Shades) {
        Append(svg, "<rect x='{:.1f}' y='{:.1f}' width='14' height='14' fill='url(#gap{})'/>\n", x, y - 11,
               shade % HatchCount);
        Append(svg, "<text class='name' x='{:.1f}' y='{:.1f}'>{}</text>\n", x + 22, y,
               Say("not measured, slot {}", plot.Modules[shade].Slot));
        Append(svg, "<text class='small' x='{:.1f}' y='{:.1f}'>{}</text>\n", x + 22, y + 13,
               GapsText(plot, plot.Modules[shade].Index));
        y += LegendRow;
    }
}

}  // namespace

std::string EscapeXml(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        switch (character) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#39;";
                break;
            default:
                if (static_cast<unsigned char>(character) >= 0x20 || character == '\t' || character == '\n') {
                    escaped += character;
                }
        }
    }
    return escaped;
}

std::string RenderPlot(const Plot& plot) {
    const bool empty = plot.Data.Kadrs() == 0;
    const std::vector<Panel> panels = empty ? std::vector<Panel>() : MakePanels(plot);
    const double notesTop = empty ? Top + Bottom : panels.back().Bottom() + Bottom;
    const double height = notesTop + NoteRow * static_cast<double>(plot.Notes.size());
    std::string svg;
    Append(svg,
           "<svg xmlns='http://www.w3.org/2000/svg' width='{0:.0f}' height='{1:.0f}' viewBox='0 0 {0:.0f} {1:.0f}'>\n"
           "<style>{2}</style>\n<rect width='100%' height='100%' fill='#ffffff'/>\n"
           "<text class='title' x='{3:.0f}' y='32'>{4}</text>\n<text x='{3:.0f}' y='51'>{5}</text>\n",
           Width, height, Style, Left, EscapeXml(plot.Title), EscapeXml(plot.Details));
    if (!plot.Gaps.empty()) svg += Hatches;
    if (empty) Append(svg, "<text x='{:.0f}' y='{:.0f}'>{}</text>\n", Left, Top + 12, Say("Nothing was recorded."));

    const double seconds = static_cast<double>(plot.Data.Kadrs()) / plot.Rate;
    const TimeUnit unit = TimeUnitFor(seconds);
    for (const Panel& panel : panels) {
        const Axis time(0, seconds / unit.Seconds, Left, PlotRight, 85);
        const Axis values = ValueAxis(plot, panel);
        const double period = 1 / plot.Rate / unit.Seconds;
        for (const size_t shade : panel.Shades) AppendShade(svg, plot, panel, shade, time, period);
        AppendAxes(svg, panel, values, time);
        for (size_t i = 0; i < panel.Channels.size(); i++) {
            AppendCurve(svg, plot, panel.Channels[i], Colours[i], values, time, period);
        }
        AppendLegend(svg, plot, panel);
        if (&panel == &panels.back()) AppendTimeLabels(svg, panel, time, unit.Name);
    }
    for (size_t i = 0; i < plot.Notes.size(); i++) {
        Append(svg, "<text class='small' x='{:.0f}' y='{:.1f}'>{}</text>\n", Left,
               notesTop + NoteRow * static_cast<double>(i), EscapeXml(plot.Notes[i]));
    }
    return svg + "</svg>\n";
}

}  // namespace corvane::recorder
