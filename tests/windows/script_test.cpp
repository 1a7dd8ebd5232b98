// The object's own IDispatch, as script engines use it.
#include <filesystem>
#include <fstream>

#include "tests/windows/recording_host.h"
#include "tests/windows/run_process.h"

namespace corvane::test {
namespace {

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
    EXPECT_EQ(VT_I2, element.vt);
    EXPECT_EQ(4, element.iVal);
    VariantClear(&list);
    EXPECT_EQ(S_OK, InvokeByName(Driver.Get(), L"InputChannels", DISPATCH_PROPERTYGET, {}, &list));
    EXPECT_EQ(VT_ARRAY | VT_I2, list.vt) << "IADC3's own IDispatch keeps the types of the interface";
    VariantClear(&list);

    ASSERT_EQ(S_OK, Invoke(L"InputData", Get, {}, &list));
    ASSERT_EQ(VT_ARRAY | VT_VARIANT, list.vt);
    ASSERT_EQ(2u, SafeArrayGetDim(list.parray));
    EXPECT_EQ(2u, list.parray->rgsabound[1].cElements) << "channels";
    EXPECT_EQ(1u, list.parray->rgsabound[0].cElements) << "kadrs";
    VariantClear(&list);
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
    const struct {
        VARIANT Argument;
        HRESULT Own, Typed;  // by the object's own dispatch, by that of IADC3
    } cases[] = {{typed, S_OK, S_OK},
                 {reference, S_OK, S_OK},
                 {Reference(typed), S_OK, DISP_E_TYPEMISMATCH},
                 {variants, S_OK, DISP_E_TYPEMISMATCH},
                 {Reference(variants), S_OK, DISP_E_TYPEMISMATCH},
                 {VARIANT{}, DISP_E_TYPEMISMATCH, DISP_E_TYPEMISMATCH},
                 {text, DISP_E_TYPEMISMATCH, DISP_E_TYPEMISMATCH}};
    for (const bool recording : {false, true}) {
        SelectChannels(Driver.Get(), {2, 4});
        ASSERT_EQ(recording, recording && Start(1000));
        for (const auto& each : cases) {
            for (const bool own : {true, false}) {
                if (!recording) SelectChannels(Driver.Get(), {2, 4});
                IDispatch* dispatch = own ? Own.Get() : Driver.Get();
                const HRESULT expected = recording ? S_OK : own ? each.Own : each.Typed;
                EXPECT_EQ(expected, InvokeByName(dispatch, L"InputChannels", Put, {each.Argument}, nullptr))
                    << each.Argument.vt << ", own " << own << ", recording " << recording;
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
    EXPECT_EQ(6, kadrs.lVal) << "whole kadrs of 16";
    EXPECT_EQ(96, count.lVal);
    EXPECT_EQ(Read(Driver.Get(), &IADC3::get_InputCountData), remaining.lVal);
    ASSERT_EQ(VT_ARRAY | VT_VARIANT, data.vt);
    EXPECT_EQ(96u, data.parray->rgsabound[0].cElements);
    VariantClear(&data);
    EXPECT_EQ(DISP_E_TYPEMISMATCH, Invoke(L"GetData", Get, {Number(0), Number(100), Number(0)}));
    // One variable may be argument and result.
    short samples[100], range = 5, sample = 9;
    EXPECT_EQ(S_OK, Driver->get_ChannelRange(&range, &range));
    EXPECT_EQ(2, range);
    EXPECT_EQ(S_OK, Driver->GetChannel(&sample, &sample));
    EXPECT_NE(9, sample);
    LONG number = 100, left = 0;
    EXPECT_EQ(S_OK, Driver->GetData(samples, &number, &left, &number));
    EXPECT_EQ(6, number) << "the result is stored last";
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

// The examples as a user runs them, on the simulator's default crate.
TEST_F(Scripts, ExamplesRecordTwoSeconds) {
    const std::wstring folder = ComponentPath().substr(0, ComponentPath().rfind(L'\\') + 1);
    for (const wchar_t* script : {L"record.vbs", L"record.js"}) {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        const std::filesystem::path path = folder + L"script-output.txt";
        const HANDLE output = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr);
        EXPECT_EQ(0u, RunProcess(L"cscript //nologo \"" + folder + script + L"\"", 30000, output));
        CloseHandle(output);
        std::ifstream file(path);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        for (const char* part : {"LTR27, 32 channels, up to 1000 Hz", " at 100 Hz", " mV; "}) {
            EXPECT_NE(std::string::npos, text.find(part)) << text;
        }
    }
}

}  // namespace
}  // namespace corvane::test
