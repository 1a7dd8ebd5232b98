// IADC3 at its border: null pointers and arrays.
#include <functional>

#include "tests/windows/com_host.h"
#include "tests/windows/recording_host.h"

namespace corvane::test {
namespace {

using Members = DriverTest;

TEST_F(Members, AnswerNullPointersWithoutHarm) {
    short index = 0, sample = 0;
    LONG count = 1, remaining = 0, kadrs = 0;
    using Call = std::function<HRESULT(IADC3*)>;
    const std::pair<const char*, Call> calls[] = {
        {"ADCName", [](IADC3* driver) { return driver->get_ADCName(nullptr); }},
        {"Resolution", [](IADC3* driver) { return driver->get_Resolution(nullptr); }},
        {"ChannelsCount", [](IADC3* driver) { return driver->get_ChannelsCount(nullptr); }},
        {"RateMax", [](IADC3* driver) { return driver->get_RateMax(nullptr); }},
        {"Ranges", [](IADC3* driver) { return driver->get_Ranges(nullptr); }},
        {"Detected", [](IADC3* driver) { return driver->get_Detected(nullptr); }},
        {"Test", [](IADC3* driver) { return driver->Test(nullptr); }},
        {"BasePort", [](IADC3* driver) { return driver->get_BasePort(nullptr); }},
        {"Busy", [](IADC3* driver) { return driver->get_Busy(nullptr); }},
        {"ChannelName", [&](IADC3* driver) { return driver->get_ChannelName(&index, nullptr); }},
        {"ChannelName index",
         [](IADC3* driver) {
             BSTR text;
             return driver->get_ChannelName(nullptr, &text);
         }},
        {"ChannelRange", [&](IADC3* driver) { return driver->get_ChannelRange(&index, nullptr); }},
        {"ChannelRange index", [&](IADC3* driver) { return driver->get_ChannelRange(nullptr, &sample); }},
        {"put ChannelRange", [](IADC3* driver) { return driver->put_ChannelRange(nullptr, 0); }},
        {"ChannelUnitScale", [&](IADC3* driver) { return driver->get_ChannelUnitScale(&index, nullptr); }},
        {"ChannelUnitScale index",
         [](IADC3* driver) {
             float x;
             return driver->get_ChannelUnitScale(nullptr, &x);
         }},
        {"ChannelUnitOffset", [&](IADC3* driver) { return driver->get_ChannelUnitOffset(&index, nullptr); }},
        {"ChannelUnitOffset index",
         [](IADC3* driver) {
             float x;
             return driver->get_ChannelUnitOffset(nullptr, &x);
         }},
        {"ChannelUnitName", [&](IADC3* driver) { return driver->get_ChannelUnitName(&index, nullptr); }},
        {"ChannelUnitName index",
         [](IADC3* driver) {
             BSTR text;
             return driver->get_ChannelUnitName(nullptr, &text);
         }},
        {"Rate", [](IADC3* driver) { return driver->get_Rate(nullptr); }},
        {"InputSizeData", [](IADC3* driver) { return driver->get_InputSizeData(nullptr); }},
        {"InputCountData", [](IADC3* driver) { return driver->get_InputCountData(nullptr); }},
        {"InputSizeKadrs", [](IADC3* driver) { return driver->get_InputSizeKadrs(nullptr); }},
        {"InputCountKadrs", [](IADC3* driver) { return driver->get_InputCountKadrs(nullptr); }},
        {"InputCountChannels", [](IADC3* driver) { return driver->get_InputCountChannels(nullptr); }},
        {"InputChannels", [](IADC3* driver) { return driver->get_InputChannels(nullptr); }},
        {"put InputChannels", [](IADC3* driver) { return driver->put_InputChannels(nullptr); }},
        {"GetChannel", [&](IADC3* driver) { return driver->GetChannel(&index, nullptr); }},
        {"GetChannel index", [&](IADC3* driver) { return driver->GetChannel(nullptr, &sample); }},
        {"GetKadr", [](IADC3* driver) { return driver->GetKadr(nullptr); }},
        {"StartRecord", [](IADC3* driver) { return driver->StartRecord(nullptr); }},
        {"InputData", [](IADC3* driver) { return driver->get_InputData(nullptr); }},
        {"GetData data", [&](IADC3* driver) { return driver->GetData(nullptr, &count, &remaining, &kadrs); }},
        {"GetData count", [&](IADC3* driver) { return driver->GetData(&sample, nullptr, &remaining, &kadrs); }},
        {"GetData remaining", [&](IADC3* driver) { return driver->GetData(&sample, &count, nullptr, &kadrs); }},
        {"GetData", [&](IADC3* driver) { return driver->GetData(&sample, &count, &remaining, nullptr); }},
        {"LastError", [](IADC3* driver) { return driver->get_LastError(nullptr); }},
        {"ShowSetting", [](IADC3* driver) { return driver->ShowSetting(nullptr); }},
        {"Parent", [](IADC3* driver) { return driver->get_Parent(nullptr); }},
    };
    for (const auto& [name, call] : calls) EXPECT_EQ(E_POINTER, call(Driver.Get())) << name;
    EXPECT_FALSE(True(Driver.Get(), &IADC3::get_Detected)) << "Test with a null result opened the device";
}

TEST_F(Members, InputChannelsTakesArraysOfAnyLowerBound) {
    for (const LONG lowerBound : {0, 1, -3}) {
        const Array owner = MakeShorts({5, 3, 3, 99, -1}, lowerBound);
        SAFEARRAY* array = owner.get();
        ASSERT_EQ(S_OK, Driver->put_InputChannels(&array));
        EXPECT_EQ(owner.get(), array);
        EXPECT_EQ((std::vector<short>{3, 5}), SelectedChannels(Driver.Get())) << lowerBound;
    }
    short channels[] = {9, 7};
    SAFEARRAY own = {1, FADF_STATIC | FADF_FIXEDSIZE, sizeof(short), 0, channels, {{2, 0}}};
    SAFEARRAY* array = &own;
    EXPECT_EQ(S_OK, Driver->put_InputChannels(&array)) << "a host's own descriptor, without a type";
    EXPECT_EQ((std::vector<short>{7, 9}), SelectedChannels(Driver.Get()));
    SelectChannels(Driver.Get(), {});
    EXPECT_EQ(std::vector<short>{0}, SelectedChannels(Driver.Get()));
}

TEST_F(Members, InputChannelsRefusesOtherArraysAndKeepsTheTable) {
    SelectChannels(Driver.Get(), {2, 4});
    SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
    SAFEARRAY unallocated = {1, FADF_STATIC | FADF_FIXEDSIZE, sizeof(short), 0, nullptr, {{2, 0}}};
    const std::pair<const char*, SAFEARRAY*> arrays[] = {
        {"null array", nullptr},
        {"two dimensions", SafeArrayCreate(VT_I2, 2, bounds)},
        {"long", SafeArrayCreate(VT_I4, 1, bounds)},
        {"same size, other type", SafeArrayCreate(VT_BOOL, 1, bounds)},
        {"VARIANT", SafeArrayCreate(VT_VARIANT, 1, bounds)},
        {"no data", &unallocated},
    };
    for (const auto& [name, array] : arrays) {
        SAFEARRAY* argument = array;
        EXPECT_EQ(E_INVALIDARG, Driver->put_InputChannels(&argument)) << name;
        EXPECT_EQ((std::vector<short>{2, 4}), SelectedChannels(Driver.Get())) << name;
        if (array != &unallocated) SafeArrayDestroy(array);
    }
}

// IADC3's own IDispatch keeps the types of the interface.
TEST_F(Members, DispatchPassesTypedArraysAndReferences) {
    const Array owner = MakeShorts({6, 2}, 1);
    SAFEARRAY* array = owner.get();
    VARIANT argument = {};
    argument.vt = VT_BYREF | VT_ARRAY | VT_I2;
    argument.pparray = &array;
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters = {&argument, &put, 1, 1};
    constexpr DISPID inputChannels = 21, channelRange = 11;
    EXPECT_EQ(S_OK,
              Driver->Invoke(inputChannels, IID_NULL, 0, DISPATCH_PROPERTYPUT, &parameters, nullptr, nullptr, nullptr));
    EXPECT_EQ((std::vector<short>{2, 6}), SelectedChannels(Driver.Get()));

    VARIANT result = {};
    DISPPARAMS none = {};
    EXPECT_EQ(S_OK, Driver->Invoke(inputChannels, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr));
    EXPECT_EQ(VT_ARRAY | VT_I2, result.vt);
    VariantClear(&result);

    short channel = 7;
    argument.vt = VT_BYREF | VT_I2;
    argument.piVal = &channel;
    parameters = {&argument, nullptr, 1, 0};
    EXPECT_EQ(S_OK,
              Driver->Invoke(channelRange, IID_NULL, 0, DISPATCH_PROPERTYGET, &parameters, &result, nullptr, nullptr));
    EXPECT_EQ(VT_I2, result.vt);
    EXPECT_EQ(3, result.iVal);
}

TEST_F(Members, TextsCrossTheBorderWhole) {
    ASSERT_TRUE(OpenSequence(2));
    const Array ranges(Read(Driver.Get(), &IADC3::get_Ranges));
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(S_OK, SafeArrayGetVartype(ranges.get(), &type));
    EXPECT_EQ(VT_BSTR, type);
    LONG lower = 1, upper = 0;
    SafeArrayGetLBound(ranges.get(), 1, &lower);
    SafeArrayGetUBound(ranges.get(), 1, &upper);
    EXPECT_EQ(0, lower);
    EXPECT_EQ(15, upper);
    BSTR last = nullptr;
    ASSERT_EQ(S_OK, SafeArrayGetElement(ranges.get(), &upper, &last));
    EXPECT_STREQ(L"\u00B110 V", last);
    SysFreeString(last);

    short index = 17;
    BSTR name = nullptr;
    ASSERT_EQ(S_OK, Driver->get_ChannelName(&index, &name));
    EXPECT_STREQ(L"02_1-2_H-27U", name);
    SysFreeString(name);
}

TEST_F(Members, InputDataHoldsChannelsByKadrs) {
    ASSERT_TRUE(OpenSequence(2));
    SelectChannels(Driver.Get(), {1, 4, 5, 21});
    Driver->put_Rate(1000);
    ASSERT_TRUE(True(Driver.Get(), &IADC3::StartRecord)) << "not started";
    ASSERT_TRUE(WaitFor([&] { return Read(Driver.Get(), &IADC3::get_InputCountKadrs) >= 128; }, 5000));
    ASSERT_EQ(S_OK, Driver->StopRecord());

    const Array data(Read(Driver.Get(), &IADC3::get_InputData));
    ASSERT_EQ(2u, SafeArrayGetDim(data.get()));
    LONG bounds[4] = {-1, -1, -1, -1};
    for (UINT dimension : {1u, 2u}) {
        SafeArrayGetLBound(data.get(), dimension, &bounds[2 * dimension - 2]);
        SafeArrayGetUBound(data.get(), dimension, &bounds[2 * dimension - 1]);
    }
    EXPECT_EQ(0, bounds[0]);
    EXPECT_EQ(3, bounds[1]);
    EXPECT_EQ(0, bounds[2]);
    ASSERT_GE(bounds[3], 128);
    const auto at = [&](LONG channel, LONG kadr) {
        LONG position[] = {channel, kadr};
        short sample = 0;
        EXPECT_EQ(S_OK, SafeArrayGetElement(data.get(), position, &sample));
        return sample;
    };
    EXPECT_EQ((std::vector<short>{1, 4, 5, 21}), (std::vector<short>{at(0, 0), at(1, 0), at(2, 0), at(3, 0)}));
    EXPECT_EQ(at(1, 1) + 127, at(1, 128)) << "channel 4 counts kadrs";
    EXPECT_EQ(-16384, at(2, 128)) << "channel 5 counts rounds of 32768 kadrs";
    EXPECT_EQ(at(1, 7), static_cast<const short*>(data->pvData)[7 * 4 + 1]) << "samples of a kadr are adjacent";

    const Array empty(Read(Driver.Get(), &IADC3::get_InputData));
    EXPECT_EQ(1u, empty->rgsabound[0].cElements) << "only the channel numbers are left";
}

}  // namespace
}  // namespace corvane::test
