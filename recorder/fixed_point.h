// Numbers with a fixed count of decimals, as the cells of a CSV file have them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace corvane::recorder {

class FixedPoint {
public:
    static constexpr int DecimalsMax = 12;
    static constexpr size_t LengthMax =
        352;  // bytes that Write may touch; a double has at most 309 digits before the point

    // Fewest decimals whose last place is no larger than a tenth of a code, of which `scale` make a unit: the text then
    // adds no error worth naming.
    static int DecimalsFor(double scale);
    // `decimals`: 0 to DecimalsMax.
    FixedPoint(int decimals, char point);

    int Decimals() const { return Decimals_; }
    // Writes the number nearest to the exact value, and never "-0.0". Returns the end of what was written.
    char* Write(char* text, double value) const;
    // Bytes that no value between these two takes more of, a sign included.
    size_t LengthBetween(double one, double other) const;

private:
    char* WriteExactly(char* text, double value) const;

    int Decimals_;
    char Point_;
    double UnitsPerOne_;   // units of the last decimal
    uint32_t WholeUnits_;  // the same, or as many as there can be: then every number here is less than 1
};

// Writes the last `count` digits of a number, or all. Returns the end.
char* WriteDigits(char* text, uint32_t number, int count);
char* WriteDigits(char* text, uint32_t number);

}  // namespace corvane::recorder
