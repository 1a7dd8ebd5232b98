// The object's own IDispatch, as script engines use it.
#include <algorithm>
#include <fstream>

#include "tests/windows/recording_host.h"

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
        ASSERT_EQ(S_OK, Driver->QueryInterface(__uuidof(IDispatch), reinterpret_cast<void**>(Own.GetAddressOf())));
    }
    void TearDown() override {
        Own.Reset();
        DriverTest::TearDown();
    }

    // Arguments in the order of the declaration; a put names its last one.
    HRESULT Invoke(const wchar_t* name, WORD flags, std::vector<VARIANT> arguments, VARIANT* result = nullptr) {
        std::wstring text = name;
        LPOLESTR names = text.data();
        DISPID id = 0, put = DISPID_PROPERTYPUT;
        const HRESULT known = Own->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
        if (FAILED(known)) return known;
        std::reverse(arguments.begin(), arguments.end());
        DISPPARAMS parameters = {arguments.data(), &put, static_cast<UINT>(arguments.size()),
                                 flags == DISPATCH_PROPERTYPUT ? 1u : 0u};
        UINT argument = 0;
        return Own->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, nullptr, &argument);
    }

    ComPtr<IDispatch> Own;
};

constexpr WORD Get = DISPATCH_PROPERTYGET | DISPATCH_METHOD;  // what an expression asks for
constexpr WORD Put = DISPATCH_PROPERTYPUT;

TEST_F(Scripts, ChannelsComeInAnyArray) {
    for (const VARTYPE type : {VT_VARIANT, VT_I2, VT_I4, VT_R8, VT_UI1}) {
        SelectChannels(Driver.Get(), {9});
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
        EXPECT_EQ(S_OK, Invoke(L"InputChannels", Put, {list})) << type;
        EXPECT_EQ((std::vector<short>{3, 5}), SelectedChannels(Driver.Get())) << type;
        SelectChannels(Driver.Get(), {9});
        EXPECT_EQ(S_OK, Invoke(L"InputChannels", Put, {Reference(list)})) << type;
        EXPECT_EQ((std::vector<short>{3, 5}), SelectedChannels(Driver.Get())) << type;
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

    VARIANT data = {};
    ASSERT_EQ(S_OK, Invoke(L"InputData", Get, {}, &data));
    ASSERT_EQ(VT_ARRAY | VT_VARIANT, data.vt);
    LONG bounds[2] = {};
    SafeArrayGetUBound(data.parray, 1, &bounds[0]);
    SafeArrayGetUBound(data.parray, 2, &bounds[1]);
    EXPECT_EQ(1, bounds[0]) << "channels";
    EXPECT_EQ(0, bounds[1]) << "kadrs";
    VariantClear(&data);
}

TEST_F(Scripts, GetDataFillsAVariable) {
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
        const std::wstring outputPath = folder + L"script-output.txt";
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        const HANDLE output = CreateFileW(outputPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(INVALID_HANDLE_VALUE, output);
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = startup.hStdError = output;
        PROCESS_INFORMATION process = {};
        std::wstring command = L"cscript //nologo \"" + folder + script + L"\"";
        ASSERT_TRUE(
            CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process));
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process.hProcess, 30000));
        TerminateProcess(process.hProcess, 1);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        CloseHandle(output);
        std::ifstream file(std::string(outputPath.begin(), outputPath.end()));
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        EXPECT_NE(std::string::npos, text.find("LTR27, 32 channels, up to 1000 Hz")) << text;
        EXPECT_NE(std::string::npos, text.find(" at 100 Hz")) << text;
        EXPECT_NE(std::string::npos, text.find(" mV; ")) << "no physical values: " << text;
    }
}

}  // namespace
}  // namespace corvane::test
