// The functions of the two vendor libraries, ltr27api.dll and ltrapi.dll. The Windows build binds them when the
// component is loaded; the native build links the simulator, which implements the same declarations. Functions with a
// number as their result return 0 (or a count) for success and a negative code for failure.
#pragma once

#include <cstdint>

#include "hardware/vendor_records.h"

// The one place that names the libraries' calling convention, which only 32-bit Windows needs.
#ifdef _WIN32
#define VENDOR_CALL __stdcall
#else
#define VENDOR_CALL
#endif

extern "C" {

// ltr27api.dll
int32_t VENDOR_CALL LTR27_Init(corvane::TLTR27* record);
int32_t VENDOR_CALL LTR27_Open(corvane::TLTR27* record, uint32_t serverAddress, uint32_t serverPort,
                               const char* crateSN, uint32_t slot);
int32_t VENDOR_CALL LTR27_Close(corvane::TLTR27* record);
int32_t VENDOR_CALL LTR27_GetConfig(corvane::TLTR27* record);
int32_t VENDOR_CALL LTR27_SetConfig(corvane::TLTR27* record);
int32_t VENDOR_CALL LTR27_GetDescription(corvane::TLTR27* record, uint32_t flags);
int32_t VENDOR_CALL LTR27_ADCStart(corvane::TLTR27* record);
int32_t VENDOR_CALL LTR27_ADCStop(corvane::TLTR27* record);
int32_t VENDOR_CALL LTR27_Recv(corvane::TLTR27* record, uint32_t* words, uint32_t* tMarksOrNull, uint32_t count,
                               uint32_t timeoutMs);
int32_t VENDOR_CALL LTR27_ProcessData(corvane::TLTR27* record, const uint32_t* words, double* values,
                                      uint32_t* sizeInOut, int32_t flag1, int32_t flag2);
const char* VENDOR_CALL LTR27_GetErrorString(int32_t code);

// ltrapi.dll
int32_t VENDOR_CALL LTR_Init(corvane::CrateConnection* connection);
int32_t VENDOR_CALL LTR_Open(corvane::CrateConnection* connection);
int32_t VENDOR_CALL LTR_Close(corvane::CrateConnection* connection);
int32_t VENDOR_CALL LTR_GetCrates(corvane::CrateConnection* connection, uint8_t (*serials)[corvane::VendorTextSize]);
int32_t VENDOR_CALL LTR_GetCrateInfo(corvane::CrateConnection* connection, corvane::CrateInfoRecord* info);
int32_t VENDOR_CALL LTR_GetCrateModules(corvane::CrateConnection* connection, uint16_t* ids);
int32_t VENDOR_CALL LTR_Config(corvane::CrateConnection* connection, corvane::CrateConfig* config);
int32_t VENDOR_CALL LTR_MakeStartMark(corvane::CrateConnection* connection, int32_t markMode);
const char* VENDOR_CALL LTR_GetErrorString(int32_t code);

}  // extern "C"
