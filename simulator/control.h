// How tests and tools control the simulator and ask it what it has noticed. Exported by the simulated ltrapi.dll beside
// the vendor's functions, and linked in natively. Safe from any thread.
#pragma once

#include <cstdint>

#ifdef _WIN32
#define LTRSIM_CALL __stdcall
#else
#define LTRSIM_CALL
#endif

extern "C" {

// Replaces the scenario by the given TOML text (null or empty: the built-in default) and forgets connections, counters
// and violations. Returns 0, or -1 with the reason in LtrSim_Message; the old scenario stays then.
int32_t LTRSIM_CALL LtrSim_Configure(const char* tomlText);

// Reason of the last failed LtrSim_Configure, or the first violation; empty text when there is none. Valid until the
// next call on the same thread.
const char* LTRSIM_CALL LtrSim_Message();

// Calls of the simulated functions that no correct driver makes: a wrong record size, a closed or never opened record,
// one record in two threads at once, words that don't start with a kadr, null buffers.
int32_t LTRSIM_CALL LtrSim_Violations();

// Calls of one exported function ("LTR27_Recv") since the last LtrSim_Configure.
int32_t LTRSIM_CALL LtrSim_Calls(const char* function);

// Calls that a fault's delay holds at this moment.
int32_t LTRSIM_CALL LtrSim_DelayedCalls();

// Module and crate connections that are open; modules that are running.
int32_t LTRSIM_CALL LtrSim_OpenConnections();
int32_t LTRSIM_CALL LtrSim_RunningModules();

// The last mark mode, and a word (0 to 6) of the last CrateConfig given to LTR_Config; -1 when there was none.
int32_t LTRSIM_CALL LtrSim_LastMarkMode();
int32_t LTRSIM_CALL LtrSim_LastConfigWord(int32_t index);

// Code (0 to 32767) that the simulated source gives for a channel (0 to 15) of the module in a slot (1 to 16) of the
// first crate, in kadr number `kadr` since its start at `rate` Hz. NaN for a position without a mezzanine.
double LTRSIM_CALL LtrSim_ExpectedCode(int32_t slot, int32_t channel, int64_t kadr, double rate);

// Adds one fault while running, in the TOML form of a [[fault]] table's body. Returns 0 or -1 as LtrSim_Configure.
// Clearing the faults, as LtrSim_Configure does, also brings back the calls that a fault delays.
int32_t LTRSIM_CALL LtrSim_AddFault(const char* tomlText);
void LTRSIM_CALL LtrSim_ClearFaults();

}  // extern "C"
