// The picture of a recording as SVG: a panel for each unit, all over one time axis.
#pragma once

#include <span>
#include <string>

#include "recorder/channel.h"
#include "recorder/envelope.h"
#include "recorder/recording_task.h"

namespace corvane::recorder {

struct Plot {
    std::string Title;
    std::string Details;  // below the title
    double Rate;          // Hz
    std::span<const Channel> Channels;
    const Envelope& Data;  // of the same channels
    std::span<const RecordedModule> Modules = {};
    std::span<const Gap> Gaps = {};
    std::span<const std::string> Notes = {};  // at the bottom, a line each
};

// Draws each kadr while every one has a bin of its own, else the band between smallest and largest samples. A unit with
// more channels than can be told apart by colour gets several panels. Where a module has gaps, the panels of its
// channels are shaded, however short the gap is.
std::string RenderPlot(const Plot& plot);

// Text for XML content and attributes; control characters that XML can't hold are left out.
std::string EscapeXml(const std::string& text);

}  // namespace corvane::recorder
