// The module functions of the vendor's ltr27api library.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "hardware/vendor_imports.h"
#include "simulator/record_fields.h"
#include "simulator/vendor_call.h"

using namespace ltrsim;
using corvane::ModuleChannels;
using corvane::TLTR27;

namespace {

constexpr uint32_t LargestCount = 1 << 24;  // words of one call, 17 minutes at the top rate; more is a mistake
constexpr uint32_t ModuleFlag = 1;          // of LTR27_GetDescription; mezzanine k has the flag 2 << k
constexpr double TopRate = 1000;            // Hz, at divisor 0
constexpr uint32_t MarkStep = 0x9E3779B9;   // between two wrong time marks: no two of them in a row look alike

// The library's own bytes in a record. They are copied with it, so a copied record uses the same connection.
struct RecordState {
    uint32_t Initialised;
    uint32_t ConnectionId;
};
static_assert(sizeof(RecordState) <= sizeof(TLTR27::Reserved1));
constexpr uint32_t InitialisedMagic = 0x37324C54;

RecordState StateOf(const TLTR27& record) {
    RecordState state;
    std::memcpy(&state, record.Reserved1, sizeof(state));
    return state;
}

void SetState(TLTR27& record, RecordState state) {
    std::memcpy(record.Reserved1, &state, sizeof(state));
}

std::shared_ptr<ModuleConnection> ConnectionOf(World& world, const TLTR27& record) {
    const RecordState state = StateOf(record);
    return state.Initialised == InitialisedMagic ? world.FindModule(state.ConnectionId) : nullptr;
}

// Success, or the code of the violation.
int32_t CheckRecord(World& world, const char* function, const TLTR27* record) {
    if (!record) return world.Violation(function, "the record is null", BadArgument);
    if (record->Size != sizeof(TLTR27)) return world.Violation(function, "wrong record size", WrongRecordSize);
    return Success;
}

template <class Body>
int32_t ModuleCall(const char* function, TLTR27* record, Body body) noexcept {
    return VendorCall(function, [&](World& world) {
        if (const int32_t code = CheckRecord(world, function, record)) return code;
        const auto connection = ConnectionOf(world, *record);
        const int32_t code = ConnectedCall(world, function, connection, body);
        // A module without its power forgets that it was started.
        if (code == Unplugged) connection->Stream.Stop();
        return code;
    });
}

// Words must begin with channel 0 and have no gap: their lower halves count up by one.
bool WordsInOrder(const uint32_t* words, uint32_t count) {
    const uint32_t first = words[0] & 0xFFFF;
    uint32_t differences = first % ModuleChannels;
    for (uint32_t at = 0; at < count; at++) differences |= (words[at] ^ (first + at)) & 0xFFFF;
    return differences == 0;
}

// value = (raw + Add) * Multiply + Shift, for each of the 16 channels.
struct Conversion {
    double Add[ModuleChannels];
    double Multiply[ModuleChannels];
    double Shift[ModuleChannels];
};

Conversion ConversionOf(const TLTR27& record, bool calibrate, bool toUnits) {
    Conversion conversion;
    for (size_t c = 0; c < ModuleChannels; c++) {
        const corvane::MezzanineConfig& config = record.Config[c / MezzanineChannels];
        const size_t pair = c % MezzanineChannels * 2;
        conversion.Add[c] = calibrate ? config.Calibration[pair] : 0;
        conversion.Multiply[c] = (calibrate ? config.Calibration[pair + 1] : 1) * (toUnits ? config.Scale : 1);
        conversion.Shift[c] = toUnits ? config.Offset : 0;
    }
    return conversion;
}

void Convert(const Conversion& conversion, const uint32_t* words, double* values, uint32_t count) {
    const auto convert = [&](uint32_t at, uint32_t c) {
        const double raw = static_cast<int32_t>(words[at] >> RawCodeShift);
        values[at] = (raw + conversion.Add[c]) * conversion.Multiply[c] + conversion.Shift[c];
    };
    uint32_t at = 0;
    for (; at + ModuleChannels <= count; at += ModuleChannels) {
        for (uint32_t c = 0; c < ModuleChannels; c++) convert(at + c, c);
    }
    for (uint32_t c = 0; at + c < count; c++) convert(at + c, c);
}

}  // namespace

int32_t VENDOR_CALL LTR27_Init(TLTR27* record) {
    return VendorCall("LTR27_Init", [&](World& world) {
        if (const int32_t code = CheckRecord(world, "LTR27_Init", record)) return code;
        if (ConnectionOf(world, *record)) {
            return world.Violation("LTR27_Init", "the record is still open", BadArgument);
        }
        const Verdict verdict = world.Judge("LTR27_Init", {});
        if (verdict.Error != Success) return verdict.Error;
        const uint32_t size = record->Size;
        *record = {};
        record->Size = size;
        SetState(*record, {InitialisedMagic, 0});
        return Success;
    });
}

int32_t VENDOR_CALL LTR27_Open(TLTR27* record, uint32_t serverAddress, uint32_t serverPort, const char* crateSerial,
                               uint32_t slot) {
    return VendorCall("LTR27_Open", [&](World& world) {
        if (const int32_t code = CheckRecord(world, "LTR27_Open", record)) return code;
        if (StateOf(*record).Initialised != InitialisedMagic) {
            return world.Violation("LTR27_Open", "LTR27_Init has not prepared the record", NotInitialised);
        }
        if (ConnectionOf(world, *record)) {
            return world.Violation("LTR27_Open", "the record is still open", BadArgument);
        }
        if (!crateSerial) return world.Violation("LTR27_Open", "the crate serial is null", BadArgument);
        const Verdict verdict = world.Judge("LTR27_Open", {serverAddress, crateSerial, slot});
        if (verdict.Error != Success) return verdict.Error;
        if (serverPort != corvane::ModulePort) return WrongPort;
        uint32_t id = 0;
        const int32_t code = world.OpenModule(serverAddress, crateSerial, slot, id);
        SetState(*record, {InitialisedMagic, id});
        return code;
    });
}

int32_t VENDOR_CALL LTR27_Close(TLTR27* record) {
    return VendorCall("LTR27_Close", [&](World& world) {
        if (!record) return world.Violation("LTR27_Close", "the record is null", BadArgument);
        const auto connection = ConnectionOf(world, *record);
        return CloseCall(world, "LTR27_Close", connection, [&] {
            connection->Stream.Abandon();
            world.CloseModule(StateOf(*record).ConnectionId);
            SetState(*record, {InitialisedMagic, 0});
        });
    });
}

int32_t VENDOR_CALL LTR27_GetConfig(TLTR27* record) {
    return ModuleCall("LTR27_GetConfig", record, [&](ModuleConnection& module, const Verdict&) {
        record->FrequencyDivisor = module.FrequencyDivisor;
        std::copy(module.Config.begin(), module.Config.end(), record->Config);
        return Success;
    });
}

int32_t VENDOR_CALL LTR27_SetConfig(TLTR27* record) {
    return ModuleCall("LTR27_SetConfig", record, [&](ModuleConnection& module, const Verdict&) {
        if (module.Stream.Running()) return ModuleRuns;
        module.FrequencyDivisor = record->FrequencyDivisor;
        std::copy(std::begin(record->Config), std::end(record->Config), module.Config.begin());
        return Success;
    });
}

int32_t VENDOR_CALL LTR27_GetDescription(TLTR27* record, uint32_t flags) {
    return ModuleCall("LTR27_GetDescription", record, [&](ModuleConnection& module, const Verdict&) {
        if (flags & ModuleFlag) DescribeModule(module.Board, *record);
        for (size_t position = 0; position < corvane::MezzaninePositions; position++) {
            if (flags & ModuleFlag << 1 << position) {
                record->Description[position] = Describe(module.Board.Mezzanines[position]);
            }
        }
        return Success;
    });
}

int32_t VENDOR_CALL LTR27_ADCStart(TLTR27* record) {
    return ModuleCall("LTR27_ADCStart", record, [](ModuleConnection& module, const Verdict&) {
        if (module.Stream.Running()) return ModuleRuns;
        World::Instance().StartModule(module, TopRate / (module.FrequencyDivisor + 1));
        return Success;
    });
}

int32_t VENDOR_CALL LTR27_ADCStop(TLTR27* record) {
    return ModuleCall("LTR27_ADCStop", record, [](ModuleConnection& module, const Verdict&) {
        module.Stream.Stop();
        return Success;
    });
}

int32_t VENDOR_CALL LTR27_Recv(TLTR27* record, uint32_t* words, uint32_t* timeMarksOrNull, uint32_t count,
                               uint32_t timeoutMs) {
    return ModuleCall("LTR27_Recv", record, [&](ModuleConnection& module, const Verdict& verdict) {
        if (!words || count == 0 || count > LargestCount) {
            return World::Instance().Violation("LTR27_Recv", "null buffer or senseless count", BadArgument);
        }
        if (verdict.Stall) {
            module.Stream.WaitInVain(timeoutMs);
            return Success;
        }
        const uint32_t wanted = std::min(count, verdict.Short.value_or(count));
        const uint32_t received = module.Stream.Receive(words, timeMarksOrNull, wanted, timeoutMs);
        for (uint32_t at = 0; verdict.Marks && timeMarksOrNull && at < received; at++) {
            timeMarksOrNull[at] = *verdict.Marks + at * MarkStep;
        }
        return static_cast<int32_t>(received == count ? received + verdict.Excess : received);
    });
}

int32_t VENDOR_CALL LTR27_ProcessData(TLTR27* record, const uint32_t* words, double* values, uint32_t* sizeInOut,
                                      int32_t flag1, int32_t flag2) {
    return ModuleCall("LTR27_ProcessData", record, [&](ModuleConnection&, const Verdict& verdict) {
        World& world = World::Instance();
        if (!words || !values || !sizeInOut || *sizeInOut == 0 || *sizeInOut > LargestCount) {
            return world.Violation("LTR27_ProcessData", "null buffer or senseless size", BadArgument);
        }
        if (!WordsInOrder(words, *sizeInOut)) {
            return world.Violation("LTR27_ProcessData", "the words are no unbroken run of kadrs", WrongWords);
        }
        const uint32_t made = std::min(*sizeInOut, verdict.Size.value_or(*sizeInOut));
        Convert(ConversionOf(*record, flag1 & 1, flag2 != 0), words, values, made);
        if (verdict.Value && made > 0) values[made / 2 / ModuleChannels * ModuleChannels] = *verdict.Value;
        *sizeInOut = verdict.Size.value_or(made);
        return Success;
    });
}

const char* VENDOR_CALL LTR27_GetErrorString(int32_t code) {
    return VendorErrorText("LTR27_GetErrorString", code);
}
