#include "driver/com/Corvane.h"

#include "driver/com/guard.h"

namespace corvane {

// Hosts ask for unknown identifiers all the time, so these are answered without Guard's exceptions.
HRESULT Corvane::QueryInterface(REFIID identifier, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (identifier == __uuidof(IADC3)) {
        *object = static_cast<IADC3*>(this);
    } else if (identifier == __uuidof(ICorvaneStatus)) {
        *object = static_cast<ICorvaneStatus*>(this);
    } else if (identifier == __uuidof(IProvideClassInfo)) {
        *object = static_cast<IProvideClassInfo*>(this);
    } else if (identifier == __uuidof(IUnknown) || identifier == __uuidof(IDispatch) ||
               identifier == __uuidof(_Corvane) || identifier == EarlierCorvane) {
        *object = OwnInterface();
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG Corvane::AddRef() {
    return static_cast<ULONG>(InterlockedIncrement(&References_));
}

ULONG Corvane::Release() {
    const LONG left = InterlockedDecrement(&References_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

HRESULT Corvane::GetClassInfo(ITypeInfo** info) {
    return Guard(info, [&] {
        ITypeInfo* own = ClassType_.Get();
        own->AddRef();
        return own;
    });
}

HRESULT Corvane::GetADC3(IUnknown** result) {
    return Guard(result, [&] { return AddRef(), OwnInterface(); });
}

HRESULT Corvane::get_ADCName(BSTR* result) {
    return Guard(result, [&] { return Driver_.ADCName(); });
}

HRESULT Corvane::get_Resolution(unsigned char* result) {
    return Guard(result, [&] { return Driver_.Resolution(); });
}

HRESULT Corvane::get_ChannelsCount(short* result) {
    return Guard(result, [&] { return Driver_.ChannelsCount(); });
}

HRESULT Corvane::get_RateMax(float* result) {
    return Guard(result, [&] { return Driver_.RateMax(); });
}

HRESULT Corvane::get_Ranges(SAFEARRAY** result) {
    return Guard(result, [&] { return Driver_.Ranges(); });
}

HRESULT Corvane::get_Detected(VARIANT_BOOL* result) {
    return Guard(result, [&] { return Driver_.Detected(); });
}

HRESULT Corvane::Test(VARIANT_BOOL* result) {
    return Guard(result, [&] { return Driver_.Test(); });
}

HRESULT Corvane::get_BasePort(short* result) {
    return Guard(result, [&] { return Driver_.BasePort(); });
}

HRESULT Corvane::get_Busy(VARIANT_BOOL* result) {
    return Guard(result, [&] { return Driver_.Busy(); });
}

HRESULT Corvane::get_ChannelName(short* index, BSTR* result) {
    return Guard(
        result, [&] { return Driver_.ChannelName(*index); }, index);
}

HRESULT Corvane::get_ChannelRange(short* index, short* result) {
    return Guard(
        result, [&] { return Driver_.ChannelRange(*index); }, index);
}

HRESULT Corvane::put_ChannelRange(short* index, short rangeIndex) {
    return Guard([&] { Driver_.SetChannelRange(*index, rangeIndex); }, index);
}

HRESULT Corvane::get_ChannelUnitScale(short* index, float* result) {
    return Guard(
        result, [&] { return Driver_.ChannelUnitScale(*index); }, index);
}

HRESULT Corvane::get_ChannelUnitOffset(short* index, float* result) {
    return Guard(
        result, [&] { return Driver_.ChannelUnitOffset(*index); }, index);
}

HRESULT Corvane::get_ChannelUnitName(short* index, BSTR* result) {
    return Guard(
        result, [&] { return Driver_.ChannelUnitName(*index); }, index);
}

HRESULT Corvane::get_Rate(float* result) {
    return Guard(result, [&] { return Driver_.Rate(); });
}

HRESULT Corvane::put_Rate(float rate) {
    return Guard([&] { Driver_.SetRate(rate); });
}

HRESULT Corvane::put_InputSizeData(LONG newSize) {
    return Guard([&] { Driver_.SetInputSizeData(newSize); });
}

HRESULT Corvane::get_InputSizeData(LONG* result) {
    return Guard(result, [&] { return Driver_.InputSizeData(); });
}

HRESULT Corvane::get_InputCountData(LONG* result) {
    return Guard(result, [&] { return Driver_.InputCountData(); });
}

HRESULT Corvane::get_InputSizeKadrs(LONG* result) {
    return Guard(result, [&] { return Driver_.InputSizeKadrs(); });
}

HRESULT Corvane::get_InputCountKadrs(LONG* result) {
    return Guard(result, [&] { return Driver_.InputCountKadrs(); });
}

HRESULT Corvane::get_InputCountChannels(short* result) {
    return Guard(result, [&] { return Driver_.InputCountChannels(); });
}

HRESULT Corvane::get_InputChannels(SAFEARRAY** result) {
    return Guard(result, [&] { return Driver_.InputChannels(); });
}

HRESULT Corvane::put_InputChannels(SAFEARRAY** table) {
    return Guard(
        [&] {
            // While a recording runs every table is ignored, so that none is read.
            if (!Driver_.Busy()) Driver_.SetInputChannels(FromArray(*table));
        },
        table);
}

HRESULT Corvane::GetChannel(short* index, short* result) {
    return Guard(
        result, [&] { return Driver_.GetChannel(*index); }, index);
}

HRESULT Corvane::GetKadr(SAFEARRAY** result) {
    return Guard(result, [&] { return Driver_.GetKadr(); });
}

HRESULT Corvane::StartRecord(VARIANT_BOOL* result) {
    return Guard(result, [&] { return Driver_.StartRecord(); });
}

HRESULT Corvane::StopRecord() {
    return Guard([&] { Driver_.StopRecord(); });
}

HRESULT Corvane::get_InputData(SAFEARRAY** result) {
    return Guard(result, [&] { return TakeInputData(Driver_); });
}

HRESULT Corvane::GetData(short* data, LONG* count, LONG* remaining, LONG* result) {
    static_assert(sizeof(LONG) == sizeof(int32_t));
    return Guard(
        result,
        [&] {
            int32_t samples = *count, unread = 0;
            const int32_t kadrs = Driver_.GetData(data, samples, unread);
            *count = samples;
            *remaining = unread;
            return kadrs;
        },
        data, count, remaining);
}

HRESULT Corvane::get_LastError(BSTR* result) {
    return Guard(result, [&] { return Driver_.LastError(); });
}

HRESULT Corvane::ShowSetting(VARIANT_BOOL* result) {
    return Guard(result, [&] { return Driver_.ShowSetting(); });
}

HRESULT Corvane::get_Parent(IDispatch** result) {
    return Guard(result, [&] { return AddRef(), OwnInterface(); });
}

HRESULT Corvane::get_Interactive(VARIANT_BOOL* result) {
    return Guard(result, [&] { return Driver_.Interactive(); });
}

HRESULT Corvane::put_Interactive(VARIANT_BOOL value) {
    return Guard([&] { Driver_.SetInteractive(value != VARIANT_FALSE); });
}

HRESULT Corvane::get_Server(BSTR* result) {
    return Guard(result, [&] { return Driver_.Server(); });
}

HRESULT Corvane::put_Server(BSTR address) {
    return Guard([&] { Check(Driver_.SetServer(FromBstr(address)) ? S_OK : E_INVALIDARG); });
}

HRESULT Corvane::get_CrateSerial(BSTR* result) {
    return Guard(result, [&] { return Driver_.CrateSerial(); });
}

HRESULT Corvane::put_CrateSerial(BSTR serial) {
    return Guard([&] { Driver_.SetCrateSerial(FromBstr(serial)); });
}

HRESULT Corvane::get_CrateInfo(BSTR* result) {
    return Guard(result, [&] { return Driver_.CrateInfo(); });
}

HRESULT Corvane::get_ModulesCount(short* result) {
    return Guard(result, [&] { return Driver_.ModulesCount(); });
}

HRESULT Corvane::get_ModuleInfo(short index, BSTR* result) {
    return Guard(result, [&] { return Driver_.ModuleInfo(index); });
}

HRESULT Corvane::get_KadrsRecorded(double* result) {
    return Guard(result, [&] { return static_cast<double>(Driver_.KadrsRecorded()); });
}

HRESULT Corvane::get_KadrsRead(double* result) {
    return Guard(result, [&] { return static_cast<double>(Driver_.KadrsRead()); });
}

HRESULT Corvane::get_Gaps(SAFEARRAY** result) {
    return Guard(result, [&] { return Driver_.Gaps(); });
}

}  // namespace corvane
