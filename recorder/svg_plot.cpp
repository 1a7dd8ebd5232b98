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
    ".line{fill:none;stroke-width:1.4;stroke-linejoin:round}.band{fill-opacity:.55;stroke-width:.8}";

struct Panel {
    std::string Unit;
    std::vector<size_t> Channels;  // positions in the plot's channels
    double Top = 0;
    double Height = 0;

    double Bottom() const { return Top + Height; }
};

struct TimeUnit {
    const char* Name;
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

// Channels by unit, in the order in which the units appear; a panel has no more channels than there are colours.
std::vector<Panel> MakePanels(std::span<const Channel> channels) {
    std::vector<Panel> byUnit;
    for (size_t i = 0; i < channels.size(); i++) {
        auto panel = std::find_if(byUnit.begin(), byUnit.end(),
                                  [&](const Panel& other) { return other.Unit == channels[i].Unit; });
        if (panel == byUnit.end()) panel = byUnit.insert(panel, Panel{channels[i].Unit, {}});
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
        panel.Top = top;
        panel.Height = std::max(least, LegendRow * static_cast<double>(panel.Channels.size()));
        top = panel.Bottom() + PanelGap;
    }
    return panels;
}

// Physical limits of one channel, the smaller one first whatever the sign of its scale.
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
        const auto [channelLow, channelHigh] = Limits(plot, channel);
        low = std::min(low, channelLow);
        high = std::max(high, channelHigh);
        leastSpan = std::max(leastSpan, LeastCodes / std::abs(plot.Channels[channel].Scale));
    }
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

void AppendTimeLabels(std::string& svg, const Panel& lowest, const Axis& time, const char* unit) {
    for (const double tick : time.Ticks()) {
        Append(svg, "<text class='middle' x='{:.1f}' y='{:.1f}'>{}</text>\n", time.Pixel(tick), lowest.Bottom() + 19,
               time.Label(tick));
    }
    Append(svg, "<text class='middle' x='{:.1f}' y='{:.1f}'>time, {}</text>\n", (Left + PlotRight) / 2,
           lowest.Bottom() + 41, unit);
}

// `period`: kadr distance on the time axis.
void AppendCurve(std::string& svg, const Plot& plot, size_t channel, const char* colour, const Axis& values,
                 const Axis& time, double period) {
    const Envelope& data = plot.Data;
    const auto y = [&](int16_t sample) { return values.Pixel(plot.Channels[channel].Physical(sample)); };
    if (data.BinKadrs() == 1) {
        constexpr size_t DottedMax = 80;  // kadrs; up to here each can be seen as a dot of its own
        Append(svg, "<polyline class='line' stroke='{}' points='", colour);
        std::string dots;
        for (size_t bin = 0; bin < data.Bins(); bin++) {
            const double x = time.Pixel(static_cast<double>(bin) * period);
            Append(svg, "{:.1f},{:.1f} ", x, y(data.At(channel, bin).Min));
            if (data.Bins() > DottedMax) continue;
            Append(dots, "<circle cx='{:.1f}' cy='{:.1f}' r='2.4' fill='{}'/>", x, y(data.At(channel, bin).Min),
                   colour);
        }
        svg += "'/>\n" + dots;
        return;
    }
    Append(svg, "<path class='band' fill='{0}' stroke='{0}' d='", colour);
    const auto x = [&](size_t bin) {
        return time.Pixel((static_cast<double>(bin) + 0.5) * static_cast<double>(data.BinKadrs()) * period);
    };
    // Forward along the largest samples, back along the smallest.
    for (size_t bin = 0; bin < data.Bins(); bin++) {
        Append(svg, "{}{:.1f} {:.1f}", bin == 0 ? 'M' : 'L', x(bin), y(data.At(channel, bin).Max));
    }
    for (size_t bin = data.Bins(); bin-- > 0;) Append(svg, "L{:.1f} {:.1f}", x(bin), y(data.At(channel, bin).Min));
    svg += "Z'/>\n";
}

// Rounded to a whole code, so that the rounding error of a single precision offset does not show as 3e-08.
double WholeCodes(const Channel& channel, double value) {
    return std::round(value * channel.Scale) / channel.Scale + 0.0;  // + 0.0 makes -0 a 0
}

void AppendLegend(std::string& svg, const Plot& plot, const Panel& panel) {
    const double x = PlotRight + 20;
    double y = panel.Top + 11;
    for (size_t i = 0; i < panel.Channels.size(); i++, y += LegendRow) {
        const Channel& channel = plot.Channels[panel.Channels[i]];
        const auto [low, high] = Limits(plot, panel.Channels[i]);
        Append(svg, "<rect x='{:.1f}' y='{:.1f}' width='14' height='4' rx='2' fill='{}'/>\n", x, y - 6, Colours[i]);
        Append(svg, "<text class='name' x='{:.1f}' y='{:.1f}'>{}</text>\n", x + 22, y, LegendText(channel.Name));
        Append(svg, "<text class='small' x='{:.1f}' y='{:.1f}'>{:.4g} \u2026 {:.4g} {}</text>\n", x + 22, y + 13,
               WholeCodes(channel, low), WholeCodes(channel, high), EscapeXml(channel.Unit));
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
    const std::vector<Panel> panels = empty ? std::vector<Panel>() : MakePanels(plot.Channels);
    const double notesTop = empty ? Top + Bottom : panels.back().Bottom() + Bottom;
    const double height = notesTop + NoteRow * static_cast<double>(plot.Notes.size());
    std::string svg;
    Append(svg,
           "<svg xmlns='http://www.w3.org/2000/svg' width='{0:.0f}' height='{1:.0f}' viewBox='0 0 {0:.0f} {1:.0f}'>\n"
           "<style>{2}</style>\n<rect width='100%' height='100%' fill='#ffffff'/>\n"
           "<text class='title' x='{3:.0f}' y='32'>{4}</text>\n<text x='{3:.0f}' y='51'>{5}</text>\n",
           Width, height, Style, Left, EscapeXml(plot.Title), EscapeXml(plot.Details));
    if (empty) Append(svg, "<text x='{:.0f}' y='{:.0f}'>Nothing was recorded.</text>\n", Left, Top + 12);

    const double seconds = static_cast<double>(plot.Data.Kadrs()) / plot.Rate;
    const TimeUnit unit = TimeUnitFor(seconds);
    for (const Panel& panel : panels) {
        const Axis time(0, seconds / unit.Seconds, Left, PlotRight, 85);
        const Axis values = ValueAxis(plot, panel);
        AppendAxes(svg, panel, values, time);
        for (size_t i = 0; i < panel.Channels.size(); i++) {
            AppendCurve(svg, plot, panel.Channels[i], Colours[i], values, time, 1 / plot.Rate / unit.Seconds);
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
