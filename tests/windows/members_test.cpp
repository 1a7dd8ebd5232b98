// IADC3 at its border: null pointers, arrays and texts.
#include <tuple>

#include "tests/windows/recording_host.h"

namespace corvane::test {
namespace {

using Members = DriverTest;

using Results = std::vector<HRESULT>;

// What each of these members answers to a null result.
template <class... Values>
Results OfNull(IADC3* driver, HRESULT (STDMETHODCALLTYPE IADC3::*... members)(Values*)) {
    return {(driver->*members)(nullptr)...};
}

// The same of members with an index: to a null result, and to a null index.
template <class... Values>
Results OfNullResult(IADC3* driver, HRESULT (STDMETHODCALLTYPE IADC3::*... members)(short*, Values*)) {
    short index = 0;
    return {(driver->*members)(&index, nullptr)...};
}

template <class... Values>
Results OfNullIndex(IADC3* driver, HRESULT (STDMETHODCALLTYPE IADC3::*... members)(short*, Values*)) {
    std::tuple<Values...> values;
    return {(driver->*members)(nullptr, &std::get<Values>(values))...};
}

TEST_F(Members, AnswerNullPointersWithoutHarm) {
    IADC3* driver = Driver.Get();
    short sample = 0;
    LONG count = 1, remaining = 0, kadrs = 0;
    const Results answers[] = {
        OfNull(driver, &IADC3::get_ADCName, &IADC3::get_Resolution, &IADC3::get_ChannelsCount, &IADC3::get_RateMax,
               &IADC3::get_Ranges, &IADC3::get_Detected, &IADC3::Test, &IADC3::get_BasePort, &IADC3::get_Busy,
               &IADC3::get_Rate, &IADC3::get_InputSizeData, &IADC3::get_InputCountData, &IADC3::get_InputSizeKadrs,
               &IADC3::get_InputCountKadrs, &IADC3::get_InputCountChannels, &IADC3::get_InputChannels,
               &IADC3::put_InputChannels, &IADC3::GetKadr, &IADC3::StartRecord, &IADC3::get_InputData,
               &IADC3::get_LastError, &IADC3::ShowSetting, &IADC3::get_Parent),
        OfNullResult(driver, &IADC3::get_ChannelName, &IADC3::get_ChannelRange, &IADC3::get_ChannelUnitScale,
                     &IADC3::get_ChannelUnitOffset, &IADC3::get_ChannelUnitName, &IADC3::GetChannel),
        OfNullIndex(driver, &IADC3::get_ChannelName, &IADC3::get_ChannelRange, &IADC3::get_ChannelUnitScale),
        OfNullIndex(driver, &IADC3::get_ChannelUnitOffset, &IADC3::get_ChannelUnitName, &IADC3::GetChannel),
        {driver->put_ChannelRange(nullptr, 0), driver->GetData(nullptr, &count, &remaining, &kadrs),
         driver->GetData(&sample, nullptr, &remaining, &kadrs), driver->GetData(&sample, &count, nullptr, &kadrs),
         driver->GetData(&sample, &count, &remaining, nullptr)},
    };
    for (const Results& each : answers) EXPECT_EQ(Results(each.size(), E_POINTER), each);
    sample = 7;
    EXPECT_EQ(E_POINTER, driver->get_ChannelRange(nullptr, &sample));
    EXPECT_EQ(0, sample) << "the result of a failure";
    EXPECT_FALSE(True(driver, &IADC3::get_Detected)) << "Test with a null result opened the device";
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

TEST_F(Members, InputChannelsRefusesOtherArraysAndWhileRecordingHearsNone) {
    ASSERT_TRUE(OpenSequence(1));
    SelectChannels(Driver.Get(), {2, 4});
    SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
    SAFEARRAY unallocated = {1, FADF_STATIC | FADF_FIXEDSIZE, sizeof(short), 0, nullptr, {{2, 0}}};
    const std::pair<const char*, SAFEARRAY*> arrays[] = {
        {"two dimensions", SafeArrayCreate(VT_I2, 2, bounds)},
        {"long", SafeArrayCreate(VT_I4, 1, bounds)},
        {"same size, other type", SafeArrayCreate(VT_BOOL, 1, bounds)},
        {"VARIANT", SafeArrayCreate(VT_VARIANT, 1, bounds)},
        {"no data", &unallocated},
    };
    for (const bool recording : {false, true}) {
        ASSERT_EQ(recording, recording && Start(1000));
        for (const auto& [name, array] : arrays) {
            SAFEARRAY* argument = array;
            EXPECT_EQ(recording ? S_OK : E_INVALIDARG, Driver->put_InputChannels(&argument)) << name;
            EXPECT_EQ((std::vector<short>{2, 4}), SelectedChannels(Driver.Get())) << name;
            if (recording && array != &unallocated) SafeArrayDestroy(array);
        }
    }
    EXPECT_EQ(S_OK, Driver->StopRecord());
}

TEST_F(Members, TextsCrossTheBorderWhole) {
    std::string scenario = SequenceScenario(2);
    scenario.replace(scenario.rfind("top = 10"), 8, "top = 2.5");
    ASSERT_EQ(0, LtrSim_Configure(scenario.c_str())) << LtrSim_Message();
    ASSERT_TRUE(True(Driver.Get(), &IADC3::Test));
    const Array ranges(Read(Driver.Get(), &IADC3::get_Ranges));
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(S_OK, SafeArrayGetVartype(ranges.get(), &type));
    EXPECT_EQ(VT_BSTR, type);
    EXPECT_EQ(0, ranges->rgsabound[0].lLbound);
    ASSERT_EQ(16u, ranges->rgsabound[0].cElements);
    EXPECT_STREQ(L"\u00B110 \u0412", static_cast<BSTR*>(ranges->pvData)[13]);
    EXPECT_STREQ(L"-10\u2026+2,5 \u0412", static_cast<BSTR*>(ranges->pvData)[14]) << "a Russian user's comma";
    short index = 17;
    BSTR name = nullptr;
    ASSERT_EQ(S_OK, Driver->get_ChannelName(&index, &name));
    EXPECT_STREQ(L"02_1-2_SEQ", name);
    SysFreeString(name);
}

}  // namespace
}  // namespace corvane::test
