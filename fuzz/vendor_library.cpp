#include "fuzz/vendor_library.h"

#include "hardware/vendor_imports.h"

namespace corvane {

VendorAnswers Answers;

namespace {

constexpr uint16_t Ltr27 = 0x1B1B;
constexpr uint8_t Open = 0x5A;  // marks a record that is open, in the library's own bytes

// Mostly success.
int32_t Result(FuzzInput* input) {
    const uint8_t byte = input != nullptr ? input->Byte() : uint8_t{0};
    if (byte < 0xE0) return 0;
    return byte < 0xF0 ? input->Any<int32_t>() : byte - 0x100;
}

// Any bytes, as short as the fuzzer wants them, again and again.
void Repeat(FuzzInput& input, void* destination, size_t size) {
    const size_t period = input.Any<uint16_t>() % (size + 1);
    auto* bytes = static_cast<uint8_t*>(destination);
    if (period == 0) return;
    input.Fill(bytes, period);
    for (size_t at = period; at < size; at++) bytes[at] = bytes[at - period];
}

// Opens or closes a record, whatever the server has written to the rest of it.
void Mark(uint8_t& mark, bool open) {
    Answers.Connections += int{open} - int{mark == Open};
    mark = open ? Open : uint8_t{0};
}

template <size_t Size>
void SetText(char (&field)[Size], const char* text) {
    std::strncpy(field, text, Size);
}

void DescribeWell(TLTR27& record) {
    SetText(record.ModuleName, "LTR27");
    for (size_t k = 0; k < MezzaninePositions; k++) {
        record.Description[k].Active = 1;
        SetText(record.Description[k].Name, "H-27");
        SetText(record.Config[k].Unit, "V");
        record.Config[k].Scale = 20.0 / 32768;
        record.Config[k].Offset = -10;
    }
}

// The whole record of any bytes, then the coefficients that are easily wrong.
int32_t Describe(TLTR27* record) {
    FuzzInput* input = Answers.Modules;
    if (input == nullptr) {
        DescribeWell(*record);
        return 0;
    }
    const uint8_t mark = record->Reserved1[0];
    Repeat(*input, record, sizeof *record);
    record->Reserved1[0] = mark;
    const uint8_t fitted = input->Byte();
    for (size_t k = 0; k < MezzaninePositions; k++) {
        if ((fitted >> k & 1) == 0) continue;
        record->Description[k].Active = 1;
        record->Config[k].Scale = input->Double();
        record->Config[k].Offset = input->Double();
        input->Fill(record->Description[k].Name, VendorTextSize);
        input->Fill(record->Config[k].Unit, VendorTextSize);
    }
    return Result(input);
}

const char* ErrorText(FuzzInput* input) {
    static char text[400];
    text[0] = '\0';
    if (input == nullptr) return text;
    if (input->Byte() == 1) return nullptr;
    std::memset(text, 'e', sizeof text);
    input->Fill(text, input->Byte());
    text[399] = '\0';
    return text;
}

}  // namespace
}  // namespace corvane

using namespace corvane;

int32_t VENDOR_CALL LTR_Init(CrateConnection*) {
    return Result(Answers.Crates);
}

int32_t VENDOR_CALL LTR_Open(CrateConnection* connection) {
    const int32_t result = Result(Answers.Crates);
    if (result == 0) Mark(connection->Reserved2[0], true);
    if (Answers.Crates != nullptr) connection->TimeMark = Answers.Crates->Any<uint32_t>();
    return result;
}

int32_t VENDOR_CALL LTR_Close(CrateConnection* connection) {
    Mark(connection->Reserved2[0], false);
    return Result(Answers.Crates);
}

int32_t VENDOR_CALL LTR_GetCrates(CrateConnection*, uint8_t (*serials)[VendorTextSize]) {
    if (Answers.Crates != nullptr) {
        Repeat(*Answers.Crates, serials, MaxCrates * sizeof *serials);
    } else {
        serials[0][0] = 'C';
    }
    return Result(Answers.Crates);
}

int32_t VENDOR_CALL LTR_GetCrateInfo(CrateConnection*, CrateInfoRecord* info) {
    if (Answers.Crates != nullptr) Answers.Crates->Fill(info, sizeof *info);
    return Result(Answers.Crates);
}

int32_t VENDOR_CALL LTR_GetCrateModules(CrateConnection*, uint16_t* ids) {
    const uint16_t slots = Answers.Crates != nullptr ? Answers.Crates->Any<uint16_t>() : Answers.Slots;
    for (size_t slot = 0; slot < CrateSlots; slot++) ids[slot] = (slots >> slot & 1) != 0 ? Ltr27 : uint16_t{0};
    if (Answers.Crates != nullptr) Answers.Crates->Fill(ids, size_t{2} * Answers.Crates->Byte() % 33);
    return Result(Answers.Crates);
}

int32_t VENDOR_CALL LTR_Config(CrateConnection*, CrateConfig*) {
    return Result(Answers.Crates);
}

int32_t VENDOR_CALL LTR_MakeStartMark(CrateConnection*, int32_t) {
    return Result(Answers.Stream != nullptr ? Answers.Stream : Answers.Crates);
}

const char* VENDOR_CALL LTR_GetErrorString(int32_t) {
    return ErrorText(Answers.Crates);
}

int32_t VENDOR_CALL LTR27_Init(TLTR27*) {
    return Result(Answers.Modules);
}

int32_t VENDOR_CALL LTR27_Open(TLTR27* record, uint32_t, uint32_t, const char*, uint32_t slot) {
    record->Reserved1[1] = static_cast<uint8_t>(slot);
    const int32_t result = Result(Answers.Modules);
    if (result == 0) Mark(record->Reserved1[0], true);
    return result;
}

int32_t VENDOR_CALL LTR27_Close(TLTR27* record) {
    Mark(record->Reserved1[0], false);
    return Result(Answers.Modules);
}

int32_t VENDOR_CALL LTR27_GetConfig(TLTR27* record) {
    return Describe(record);
}

int32_t VENDOR_CALL LTR27_GetDescription(TLTR27* record, uint32_t) {
    return Describe(record);
}

int32_t VENDOR_CALL LTR27_SetConfig(TLTR27*) {
    return Result(Answers.Stream);
}

int32_t VENDOR_CALL LTR27_ADCStart(TLTR27*) {
    return Result(Answers.Stream);
}

int32_t VENDOR_CALL LTR27_ADCStop(TLTR27*) {
    return Result(Answers.Stream);
}

// The second module always sends something: a block of which nothing comes costs its time.
int32_t VENDOR_CALL LTR27_Recv(TLTR27* record, uint32_t* words, uint32_t* tMarksOrNull, uint32_t count, uint32_t) {
    FuzzInput* input = Answers.Stream;
    const auto asked = static_cast<int32_t>(count);
    if (input == nullptr) return asked;
    std::fill_n(words, count, 0);
    if (tMarksOrNull != nullptr) {
        std::fill_n(tMarksOrNull, count, input->Empty() ? ~0u : 0u);
        Repeat(*input, tMarksOrNull, count * sizeof *tMarksOrNull);
    }
    const uint8_t choice = input->Byte();
    const int32_t received = choice < 0x80   ? asked
                             : choice < 0xF0 ? asked * (choice - 0x80) / 0x70
                                             : input->Any<int32_t>();
    return record->Reserved1[1] == 2 ? std::max(received, std::min(asked, 17)) : received;
}

// What can be measured becomes 1000, or a number out of bounds, which is measured as well.
int32_t VENDOR_CALL LTR27_ProcessData(TLTR27*, const uint32_t*, double* values, uint32_t* sizeInOut, int32_t, int32_t) {
    using Limits = std::numeric_limits<double>;
    constexpr double Wrong[] = {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), 1e300, 40000, -5};
    FuzzInput* input = Answers.Stream;
    const uint32_t size = *sizeInOut;
    std::fill_n(values, size, 1000.0);
    if (input == nullptr) return 0;
    while (size > 0 && input->Byte() % 2 != 0) values[input->Any<uint16_t>() % size] = Wrong[input->Byte() % 6];
    if (input->Byte() >= 0xF0) *sizeInOut = input->Any<uint32_t>();
    return Result(input);
}

const char* VENDOR_CALL LTR27_GetErrorString(int32_t) {
    return ErrorText(Answers.Modules);
}
