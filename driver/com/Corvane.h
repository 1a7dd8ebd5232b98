// The component's class as COM sees it: each member checks and converts in Guard and passes on to the driver object.
// Three dual interfaces with an IDispatch each; the object's own is that of _Corvane, which scripts use.
#pragma once

#include <windows.h>

#include <ocidl.h>

#include "driver/com/automation.h"
#include "driver/com/identifiers.h"
#include "driver/com/library_use.h"
#include "driver/com/script_members.h"
#include "driver/driver_object.h"

namespace corvane {

class Corvane final : private LibraryUse,
                      public ScriptMembers,
                      public TypedMembers,
                      public StatusMembers,
                      public IProvideClassInfo {
public:
    // Made with one reference, which is the caller's.
    Corvane() : ScriptMembers(static_cast<IADC3&>(*this), static_cast<ICorvaneStatus&>(*this), Driver_) {}
    Corvane(const Corvane&) = delete;
    Corvane& operator=(const Corvane&) = delete;

    // IUnknown, the same for all interfaces
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    // IProvideClassInfo: tools learn from it that this is a Corvane, and which interfaces it has.
    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override;

    // _Corvane
    HRESULT STDMETHODCALLTYPE GetADC3(IUnknown** result) override;

    // IADC3
    HRESULT STDMETHODCALLTYPE get_ADCName(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE get_Resolution(unsigned char* result) override;
    HRESULT STDMETHODCALLTYPE get_ChannelsCount(short* result) override;
    HRESULT STDMETHODCALLTYPE get_RateMax(float* result) override;
    HRESULT STDMETHODCALLTYPE get_Ranges(SAFEARRAY** result) override;
    HRESULT STDMETHODCALLTYPE get_Detected(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE Test(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE get_BasePort(short* result) override;
    HRESULT STDMETHODCALLTYPE get_Busy(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE get_ChannelName(short* index, BSTR* result) override;
    HRESULT STDMETHODCALLTYPE get_ChannelRange(short* index, short* result) override;
    HRESULT STDMETHODCALLTYPE put_ChannelRange(short* index, short rangeIndex) override;
    HRESULT STDMETHODCALLTYPE get_ChannelUnitScale(short* index, float* result) override;
    HRESULT STDMETHODCALLTYPE get_ChannelUnitOffset(short* index, float* result) override;
    HRESULT STDMETHODCALLTYPE get_ChannelUnitName(short* index, BSTR* result) override;
    HRESULT STDMETHODCALLTYPE get_Rate(float* result) override;
    HRESULT STDMETHODCALLTYPE put_Rate(float rate) override;
    HRESULT STDMETHODCALLTYPE put_InputSizeData(LONG newSize) override;
    HRESULT STDMETHODCALLTYPE get_InputSizeData(LONG* result) override;
    HRESULT STDMETHODCALLTYPE get_InputCountData(LONG* result) override;
    HRESULT STDMETHODCALLTYPE get_InputSizeKadrs(LONG* result) override;
    HRESULT STDMETHODCALLTYPE get_InputCountKadrs(LONG* result) override;
    HRESULT STDMETHODCALLTYPE get_InputCountChannels(short* result) override;
    HRESULT STDMETHODCALLTYPE get_InputChannels(SAFEARRAY** result) override;
    HRESULT STDMETHODCALLTYPE put_InputChannels(SAFEARRAY** table) override;
    HRESULT STDMETHODCALLTYPE GetChannel(short* index, short* result) override;
    HRESULT STDMETHODCALLTYPE GetKadr(SAFEARRAY** result) override;
    HRESULT STDMETHODCALLTYPE StartRecord(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE StopRecord() override;
    HRESULT STDMETHODCALLTYPE get_InputData(SAFEARRAY** result) override;
    HRESULT STDMETHODCALLTYPE GetData(short* data, LONG* count, LONG* remaining, LONG* result) override;
    HRESULT STDMETHODCALLTYPE get_LastError(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE ShowSetting(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE get_Parent(IDispatch** result) override;

    // ICorvaneStatus
    HRESULT STDMETHODCALLTYPE get_Interactive(VARIANT_BOOL* result) override;
    HRESULT STDMETHODCALLTYPE put_Interactive(VARIANT_BOOL value) override;
    HRESULT STDMETHODCALLTYPE get_Server(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_Server(BSTR address) override;
    HRESULT STDMETHODCALLTYPE get_CrateSerial(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE put_CrateSerial(BSTR serial) override;
    HRESULT STDMETHODCALLTYPE get_CrateInfo(BSTR* result) override;
    HRESULT STDMETHODCALLTYPE get_ModulesCount(short* result) override;
    HRESULT STDMETHODCALLTYPE get_ModuleInfo(short index, BSTR* result) override;
    HRESULT STDMETHODCALLTYPE get_KadrsRecorded(double* result) override;
    HRESULT STDMETHODCALLTYPE get_KadrsRead(double* result) override;
    HRESULT STDMETHODCALLTYPE get_Gaps(SAFEARRAY** result) override;

private:
    ~Corvane() = default;
    _Corvane* OwnInterface() { return this; }

    LONG References_ = 1;
    TypeDescription ClassType_{TessmarkResource, __uuidof(::Corvane)};
    DriverObject Driver_;
};

}  // namespace corvane
