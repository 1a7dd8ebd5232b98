// IADC3 at its border: null pointers, arrays and texts; and the object's own IDispatch, as script engines use it.
#include <filesystem>
#include <fstream>
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
    EXPECT_TRUE(SafeArrayGetVartype(ranges.get(), &type) == S_OK && type == VT_BSTR);
    ASSERT_TRUE(ranges->rgsabound[0].lLbound == 0 && ranges->rgsabound[0].cElements == 16);
    EXPECT_STREQ(L"\u00B110 \u0412", static_cast<BSTR*>(ranges->pvData)[13]);
    EXPECT_STREQ(L"-10\u2026+2,5 \u0412", static_cast<BSTR*>(ranges->pvData)[14]) << "a Russian user's comma";
    short index = 17;
    BSTR name = nullptr;
    ASSERT_EQ(S_OK, Driver->get_ChannelName(&index, &name));
    EXPECT_STREQ(L"02_1-2_SEQ", name);
    SysFreeString(name);
}

VARIANT Number(short value) {
    VARIANT number = {};
    number.vt = VT_I2;
    number.iVal = value;
    return number;
}

VARIANT Reference(VARIANT& variable) {
    VARIANT reference = {};
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &variable;
    return reference;
}

class Scripts : public DriverTest {
protected:
    void SetUp() override {
        DriverTest::SetUp();
        ASSERT_EQ(S_OK, Driver.As(&Own));
    }
    void TearDown() override {
        Own.Reset();
        DriverTest::TearDown();
    }

    HRESULT Invoke(const wchar_t* name, WORD flags, std::vector<VARIANT> arguments, VARIANT* result = nullptr) {
        return InvokeByName(Own.Get(), name, flags, std::move(arguments), result);
    }

    ComPtr<IDispatch> Own;
};

constexpr WORD Get = DISPATCH_PROPERTYGET | DISPATCH_METHOD;  // what an expression asks for
constexpr WORD Put = DISPATCH_PROPERTYPUT;

TEST_F(Scripts, ChannelsComeInAnyArray) {
    for (const VARTYPE type : {VT_VARIANT, VT_I2, VT_I4, VT_R8, VT_UI1}) {
        SAFEARRAYBOUND bound = {2, 1};
        const Array array(SafeArrayCreate(type, 1, &bound));
        for (LONG i = 1; i <= 2; i++) {
            VARIANT element = Number(static_cast<short>(7 - 2 * i));  // 5, 3
            if (type != VT_VARIANT) VariantChangeType(&element, &element, 0, type);
            SafeArrayPutElement(array.get(), &i, type == VT_VARIANT ? static_cast<void*>(&element) : &element.lVal);
        }
        VARIANT list = {};
        list.vt = static_cast<VARTYPE>(VT_ARRAY | type);
        list.parray = array.get();
        for (const VARIANT& argument : {list, Reference(list)}) {
            SelectChannels(Driver.Get(), {9});
            EXPECT_EQ(S_OK, Invoke(L"InputChannels", Put, {argument})) << type;
            EXPECT_EQ((std::vector<short>{3, 5}), SelectedChannels(Driver.Get())) << type;
        }
    }
}

TEST_F(Scripts, ArraysGoOutAsVariants) {
    SelectChannels(Driver.Get(), {2, 4});
    VARIANT list = {};
    ASSERT_EQ(S_OK, Invoke(L"InputChannels", Get, {}, &list));
    ASSERT_EQ(VT_ARRAY | VT_VARIANT, list.vt);
    VARIANT element = {};
    LONG last = 1;
    EXPECT_EQ(S_OK, SafeArrayGetElement(list.parray, &last, &element));
    EXPECT_TRUE(element.vt == VT_I2 && element.iVal == 4);
    VariantClear(&list);
    EXPECT_EQ(S_OK, InvokeByName(Driver.Get(), L"InputChannels", DISPATCH_PROPERTYGET, {}, &list));
    EXPECT_EQ(VT_ARRAY | VT_I2, list.vt) << "IADC3's own IDispatch keeps the types of the interface";
    VariantClear(&list);

    ASSERT_EQ(S_OK, Invoke(L"InputData", Get, {}, &list));
    ASSERT_TRUE(list.vt == (VT_ARRAY | VT_VARIANT) && SafeArrayGetDim(list.parray) == 2);
    const SAFEARRAYBOUND *kadrs = list.parray->rgsabound, *channels = kadrs + 1;
    EXPECT_TRUE(channels->cElements == 2 && kadrs->cElements == 1);
    VariantClear(&list);
}

// Leaves no piece of this process's address space larger than 1 MB but one.
class ScarceMemory {
public:
    ScarceMemory() {
        for (size_t size = 512 * MiB; size >= MiB; size /= 2) {
            while (void* piece = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS)) Taken_.push_back(piece);
        }
        VirtualFree(Taken_.back(), 0, MEM_RELEASE);
        Taken_.pop_back();
    }
    ~ScarceMemory() {
        for (void* piece : Taken_) VirtualFree(piece, 0, MEM_RELEASE);
    }
    ScarceMemory(const ScarceMemory&) = delete;

private:
    static constexpr size_t MiB = 1024 * 1024;
    std::vector<void*> Taken_;
};

// An array of VARIANT takes eight times the memory of the samples in it.
TEST_F(Scripts, WhatThereIsNoMemoryForStaysUnread) {
    ASSERT_TRUE(OpenSequence(2));
    ASSERT_EQ(S_OK, Driver->put_InputSizeData(4096));
    ASSERT_TRUE(Start(1000));
    ASSERT_TRUE(WaitForKadrs(4096));
    ASSERT_EQ(S_OK, Driver->StopRecord());
    VARIANT data = {}, count = {}, remaining = {}, kadrs = {};
    count.vt = VT_I4;
    count.lVal = 4096 * 32;
    HRESULT results[2] = {};
    {
        const ScarceMemory scarce;
        results[0] = Invoke(L"InputData", Get, {}, &data);
        results[1] = Invoke(L"GetData", Get, {Reference(data), count, Reference(remaining)}, &kadrs);
    }
    EXPECT_TRUE(results[0] == E_OUTOFMEMORY && results[1] == E_OUTOFMEMORY) << results[0] << ' ' << results[1];
    EXPECT_EQ(4096, Read(Driver.Get(), &IADC3::get_InputCountKadrs));
    ASSERT_EQ(S_OK, Invoke(L"InputData", Get, {}, &data));
    VARIANT first = {}, last = {};
    LONG at[] = {16, 1};
    EXPECT_EQ(S_OK, SafeArrayGetElement(data.parray, at, &first));
    at[1] = 4096;
    EXPECT_EQ(S_OK, SafeArrayGetElement(data.parray, at, &last));
    EXPECT_EQ(4095, last.iVal - first.iVal);
    VariantClear(&data);
}

// An array that was never allocated is an empty one; while a recording runs no table counts, and none is a mistake.
TEST_F(Scripts, NullTablesAreEmptyAndARecordingKeepsItsOwn) {
    ASSERT_TRUE(OpenSequence(1));
    SAFEARRAY* none = nullptr;
    VARIANT typed = {}, reference = {}, variants = {}, text = {};
    typed.vt = VT_ARRAY | VT_I2;
    reference.vt = VT_BYREF | VT_ARRAY | VT_I2;
    reference.pparray = &none;
    variants.vt = VT_ARRAY | VT_VARIANT;
    text.vt = VT_BSTR;
    // The argument; its result by the object's own dispatch, and by that of IADC3.
    const std::tuple<VARIANT, HRESULT, HRESULT> cases[] = {{typed, S_OK, S_OK},
                                                           {reference, S_OK, S_OK},
                                                           {Reference(typed), S_OK, DISP_E_TYPEMISMATCH},
                                                           {variants, S_OK, DISP_E_TYPEMISMATCH},
                                                           {Reference(variants), S_OK, DISP_E_TYPEMISMATCH},
                                                           {VARIANT{}, DISP_E_TYPEMISMATCH, DISP_E_TYPEMISMATCH},
                                                           {text, DISP_E_TYPEMISMATCH, DISP_E_TYPEMISMATCH}};
    for (const bool recording : {false, true}) {
        SelectChannels(Driver.Get(), {2, 4});
        ASSERT_EQ(recording, recording && Start(1000));
        for (const auto& [argument, ownResult, typedResult] : cases) {
            for (const bool own : {true, false}) {
                if (!recording) SelectChannels(Driver.Get(), {2, 4});
                IDispatch* dispatch = own ? Own.Get() : Driver.Get();
                const HRESULT expected = recording ? S_OK : own ? ownResult : typedResult;
                EXPECT_EQ(expected, InvokeByName(dispatch, L"InputChannels", Put, {argument}, nullptr))
                    << argument.vt << ", own " << own << ", recording " << recording;
                const bool taken = !recording && expected == S_OK;
                EXPECT_EQ(taken ? std::vector<short>{0} : std::vector<short>({2, 4}), SelectedChannels(Driver.Get()));
            }
        }
    }
    EXPECT_EQ(S_OK, Driver->StopRecord());
}

TEST_F(Scripts, GetDataFillsAVariableThatMayBeItsResultToo) {
    ASSERT_TRUE(OpenSequence(1));
    ASSERT_TRUE(Start(1000));
    ASSERT_TRUE(WaitForKadrs(64));
    ASSERT_EQ(S_OK, Driver->StopRecord());
    VARIANT data = {}, count = Number(100), remaining = {}, kadrs = {};
    ASSERT_EQ(S_OK, Invoke(L"GetData", Get, {Reference(data), Reference(count), Reference(remaining)}, &kadrs));
    EXPECT_TRUE(kadrs.lVal == 6 && count.lVal == 96) << "whole kadrs of 16";
    EXPECT_EQ(Read(Driver.Get(), &IADC3::get_InputCountData), remaining.lVal);
    ASSERT_EQ(VT_ARRAY | VT_VARIANT, data.vt);
    EXPECT_EQ(96u, data.parray->rgsabound[0].cElements);
    VariantClear(&data);
    EXPECT_EQ(DISP_E_TYPEMISMATCH, Invoke(L"GetData", Get, {Number(0), Number(100), Number(0)}));
    // One variable may be argument and result, which is stored last.
    short samples[100], range = 5, sample = 9;
    EXPECT_TRUE(Driver->get_ChannelRange(&range, &range) == S_OK && range == 2);
    EXPECT_TRUE(Driver->GetChannel(&sample, &sample) == S_OK && sample != 9);
    LONG number = 100, left = 0;
    EXPECT_TRUE(Driver->GetData(samples, &number, &left, &number) == S_OK && number == 6);
}

TEST_F(Scripts, MistakesHaveAutomationsResults) {
    VARIANT text = {}, large = {}, index = Number(7), result = {};
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(L"none");
    large.vt = VT_I4;
    large.lVal = 70000;
    EXPECT_EQ(S_OK, Invoke(L"ChannelRange", Get, {Reference(index)}, &result));
    EXPECT_EQ(3, result.iVal);
    EXPECT_EQ(DISP_E_UNKNOWNNAME, Invoke(L"Channel", Get, {}));
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, Invoke(L"Test", Get, {index}));
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, Invoke(L"GetData", Get, {index}));
    EXPECT_EQ(DISP_E_TYPEMISMATCH, Invoke(L"ChannelName", Get, {text}, &result));
    EXPECT_EQ(DISP_E_OVERFLOW, Invoke(L"ChannelName", Get, {large}, &result));
    EXPECT_EQ(DISP_E_TYPEMISMATCH, Invoke(L"InputChannels", Put, {index}));
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, Invoke(L"ADCName", Put, {text}));
    DISPPARAMS none = {};
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, Own->Invoke(99, IID_NULL, 0, Get, &none, nullptr, nullptr, nullptr));
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, Own->Invoke(1, IID_IUnknown, 0, Get, &none, nullptr, nullptr, nullptr));
    SysFreeString(text.bstrVal);
}

// The examples as a user runs them: on the simulator's default crate, and on one that pauses for a block.
TEST_F(Scripts, ExamplesRecordTwoSeconds) {
    const std::wstring folder = ComponentPath().substr(0, ComponentPath().rfind(L'\\') + 1);
    const std::filesystem::path scenario = folder + L"script.toml";
    std::ofstream(scenario) << SequenceCrate({1}, "1") << "[[fault]]\ncall = \"LTR27_Recv\"\n"
                            << "after = 5\ntimes = 1\nstall = true\n";
    // What the script says of either crate.
    const std::vector<const char*> ofDefault = {"LTR27, 32 channels, up to 1000 Hz", " at 100 Hz", " mV; "};
    const std::vector<const char*> ofPausing = {"Not measured: module 0, 8 kadrs from 40, reason 2\r\n"};
    for (const std::wstring script : {L"record.vbs", L"record.js"}) {
        for (const bool pausing : {false, true}) {
            SetEnvironmentVariableW(L"LTRSIM_SCENARIO", pausing ? scenario.c_str() : nullptr);
            SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
            const std::filesystem::path path = folder + L"script-output.txt";
            const HANDLE output = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                                              FILE_ATTRIBUTE_NORMAL, nullptr);
            EXPECT_EQ(0u, RunProcess(L"cscript //nologo \"" + folder + script + L"\"", 30000, output));
            CloseHandle(output);
            std::ifstream file(path, std::ios::binary);
            const std::string text{std::istreambuf_iterator<char>(file), {}};
            for (const char* part : pausing ? ofPausing : ofDefault) {
                EXPECT_NE(std::string::npos, text.find(part)) << text;
            }
            EXPECT_EQ(pausing, text.find("Not measured") != std::string::npos) << text;
        }
    }
    SetEnvironmentVariableW(L"LTRSIM_SCENARIO", nullptr);
    DeleteFileW(scenario.c_str());
}

}  // namespace
}  // namespace corvane::test
