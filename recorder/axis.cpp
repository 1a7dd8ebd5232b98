#include "recorder/axis.h"

#include <fmt/format.h>
#include <algorithm>
#include <cmath>

namespace corvane::recorder {
namespace {

double RoundStep(double least) {
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least) return factor * power;
    }
    return 10 * power;
}

}  // namespace

Axis::Axis(double from, double to, double fromPixel, double toPixel, double tickDistance)
    : From_(from),
      To_(to),
      FromPixel_(fromPixel),
      PixelsPerUnit_((toPixel - fromPixel) / (to - from)),
      Step_(RoundStep((to - from) * tickDistance / std::abs(toPixel - fromPixel))) {}

std::vector<double> Axis::Ticks() const {
    std::vector<double> ticks;
    const double first = std::ceil(From_ / Step_ - 1e-9);
    const double last = std::floor(To_ / Step_ + 1e-9);
    for (double number = first; number <= last; number++) ticks.push_back(number * Step_);
    return ticks;
}

std::string Axis::Label(double tick) const {
    if (std::abs(tick) < Step_ / 2) return "0";
    if (Step_ >= 1e6 || Step_ < 1e-6) return fmt::format("{:.6g}", tick);
    const int decimals = std::max(0, -static_cast<int>(std::floor(std::log10(Step_) + 1e-9)));
    return fmt::format("{}{:.{}f}", tick < 0 ? "\u2212" : "", std::abs(tick), decimals);  // the true minus sign
}

}  // namespace corvane::recorder
