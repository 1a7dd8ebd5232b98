// A plot axis with round numbers.
#pragma once

#include <string>
#include <vector>

namespace corvane::recorder {

class Axis {
public:
    // Puts the values from `from` to `to`, which is larger, onto pixels, with about one tick for each `tickDistance`
    // pixels.
    Axis(double from, double to, double fromPixel, double toPixel, double tickDistance);

    double Pixel(double value) const { return FromPixel_ + (value - From_) * PixelsPerUnit_; }
    std::vector<double> Ticks() const;
    std::string Label(double tick) const;

private:
    double From_;
    double To_;
    double FromPixel_;
    double PixelsPerUnit_;
    double Step_;  // 1, 2 or 5 times a power of ten
};

}  // namespace corvane::recorder
