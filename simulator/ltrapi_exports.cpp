// The server and crate functions of the vendor's ltrapi library.
#include <algorithm>
#include <cstring>

#include "base/dotted_address.h"
#include "hardware/vendor_imports.h"
#include "simulator/vendor_call.h"

using namespace ltrsim;
using corvane::CrateConnection;

namespace {

// LTR_Init writes the server's port to the record's first reserved field, which shows that a record has been prepared.
constexpr uint16_t ServerPort = corvane::ModulePort;

bool Prepared(const CrateConnection& record) {
    return std::memcmp(record.Reserved1, &ServerPort, sizeof(ServerPort)) == 0;
}

uint32_t IdOf(const CrateConnection& record) {
    uint32_t id;
    std::memcpy(&id, record.Reserved2, sizeof(id));
    return id;
}

void SetId(CrateConnection& record, uint32_t id) {
    std::memcpy(record.Reserved2, &id, sizeof(id));
}

std::shared_ptr<CrateLink> LinkOf(World& world, const CrateConnection& record) {
    return Prepared(record) ? world.FindLink(IdOf(record)) : nullptr;
}

std::string SerialOf(const CrateConnection& record) {
    return std::string(record.CrateSerial, strnlen(record.CrateSerial, sizeof(record.CrateSerial)));
}

// Runs `body(link)` on an open connection; `buffer` is the caller's second argument.
template <class Body>
int32_t LinkCall(const char* function, CrateConnection* record, const void* buffer, Body body) noexcept {
    return VendorCall(function, [&](World& world) {
        if (!record || !buffer) return world.Violation(function, "record or buffer is null", BadArgument);
        return ConnectedCall(world, function, LinkOf(world, *record),
                             [&](CrateLink& link, const Verdict&) { return body(link); });
    });
}

// As LinkCall, for what only a crate can do.
template <class Body>
int32_t CrateCall(const char* function, CrateConnection* record, const void* buffer, Body body) noexcept {
    return LinkCall(function, record, buffer, [&](CrateLink& link) { return link.Crate ? body(link) : NoCrate; });
}

}  // namespace

int32_t VENDOR_CALL LTR_Init(CrateConnection* connection) {
    return VendorCall("LTR_Init", [&](World& world) {
        if (!connection) return world.Violation("LTR_Init", "the record is null", BadArgument);
        if (LinkOf(world, *connection)) {
            return world.Violation("LTR_Init", "the record is still open", BadArgument);
        }
        const Verdict verdict = world.Judge("LTR_Init", {});
        if (verdict.Error != Success) return verdict.Error;
        *connection = {};
        connection->ServerAddress = corvane::ThisMachine;
        std::memcpy(connection->Reserved1, &ServerPort, sizeof(ServerPort));
        return Success;
    });
}

int32_t VENDOR_CALL LTR_Open(CrateConnection* connection) {
    return VendorCall("LTR_Open", [&](World& world) {
        if (!connection) return world.Violation("LTR_Open", "the record is null", BadArgument);
        if (!Prepared(*connection)) {
            return world.Violation("LTR_Open", "LTR_Init has not prepared the record", NotInitialised);
        }
        if (LinkOf(world, *connection)) {
            return world.Violation("LTR_Open", "the record is still open", BadArgument);
        }
        const std::string serial = SerialOf(*connection);
        const Verdict verdict = world.Judge("LTR_Open", {connection->ServerAddress, serial, 0});
        if (verdict.Error != Success) return verdict.Error;
        if (connection->Channel != 0) return NoModule;
        uint32_t id = 0;
        uint32_t timeMark = 0;
        const int32_t code = world.OpenLink(connection->ServerAddress, serial, id, timeMark);
        SetId(*connection, id);
        if (code == Success) connection->TimeMark = verdict.Marks.value_or(timeMark);
        return code;
    });
}

int32_t VENDOR_CALL LTR_Close(CrateConnection* connection) {
    return VendorCall("LTR_Close", [&](World& world) {
        if (!connection) return world.Violation("LTR_Close", "the record is null", BadArgument);
        return CloseCall(world, "LTR_Close", LinkOf(world, *connection), [&] {
            world.CloseLink(IdOf(*connection));
            SetId(*connection, 0);
        });
    });
}

int32_t VENDOR_CALL LTR_GetCrates(CrateConnection* connection, uint8_t (*serials)[corvane::VendorTextSize]) {
    return LinkCall("LTR_GetCrates", connection, serials, [&](CrateLink& link) {
        std::memset(serials, 0, corvane::MaxCrates * sizeof(*serials));
        for (const Crate& crate : link.Lists->Crates) {
            std::memcpy(serials[crate.ListPosition], crate.Serial.data(), crate.Serial.size());
        }
        return Success;
    });
}

int32_t VENDOR_CALL LTR_GetCrateInfo(CrateConnection* connection, corvane::CrateInfoRecord* info) {
    return CrateCall("LTR_GetCrateInfo", connection, info, [&](CrateLink& link) {
        info->Type = link.Crate->Definition.Type;
        info->Interface = link.Crate->Definition.Interface;
        return Success;
    });
}

int32_t VENDOR_CALL LTR_GetCrateModules(CrateConnection* connection, uint16_t* ids) {
    return CrateCall("LTR_GetCrateModules", connection, ids, [&](CrateLink& link) {
        std::fill_n(ids, corvane::CrateSlots, uint16_t{0});
        for (const Module& module : link.Crate->Definition.Modules) ids[module.Slot - 1] = module.Id;
        return Success;
    });
}

int32_t VENDOR_CALL LTR_Config(CrateConnection* connection, corvane::CrateConfig* config) {
    return CrateCall("LTR_Config", connection, config, [&](CrateLink&) {
        World::Instance().RememberConfig(*config);
        return Success;
    });
}

int32_t VENDOR_CALL LTR_MakeStartMark(CrateConnection* connection, int32_t markMode) {
    return CrateCall("LTR_MakeStartMark", connection, connection, [&](CrateLink& link) {
        if (markMode < 0 || markMode > 5) return BadArgument;
        World::Instance().RequestStartMark(link, markMode);
        return Success;
    });
}

const char* VENDOR_CALL LTR_GetErrorString(int32_t code) {
    return VendorErrorText("LTR_GetErrorString", code);
}
