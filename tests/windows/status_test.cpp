// ICorvaneStatus: through the compiled interface, by name, and from another process.
#include <tuple>

#include "tests/windows/recording_host.h"

namespace corvane::test {
namespace {

using Results = std::vector<HRESULT>;

class Status : public DriverTest {
protected:
    void SetUp() override {
        DriverTest::SetUp();
        ASSERT_EQ(S_OK, Driver.As(&Face));
        ASSERT_EQ(S_OK, Driver.As(&Own));
    }
    void TearDown() override {
        Own.Reset();
        Face.Reset();
        DriverTest::TearDown();
    }

    // A member that has one value and no argument.
    template <class Value>
    Value Get(HRESULT (STDMETHODCALLTYPE ICorvaneStatus::*member)(Value*)) {
        Value value = {};
        EXPECT_EQ(S_OK, (Face.Get()->*member)(&value));
        return value;
    }

    std::wstring Text(HRESULT (STDMETHODCALLTYPE ICorvaneStatus::*member)(BSTR*)) { return Taken(Get(member)); }
    HRESULT Put(HRESULT (STDMETHODCALLTYPE ICorvaneStatus::*member)(BSTR), const wchar_t* text) {
        BSTR argument = SysAllocString(text);
        const HRESULT result = (Face.Get()->*member)(argument);
        SysFreeString(argument);
        return result;
    }
    std::vector<double> Gaps() { return GapNumbers(Array(Get(&ICorvaneStatus::get_Gaps)).get()); }
    std::wstring ModuleInfo(short index) {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, Face->get_ModuleInfo(index, &text));
        return Taken(text);
    }
    static std::wstring Taken(BSTR text) {
        const std::wstring copy(text, SysStringLen(text));
        SysFreeString(text);
        return copy;
    }

    ComPtr<ICorvaneStatus> Face;
    ComPtr<IDispatch> Own;
};

TEST_F(Status, ChoicesAreKeptAndAnythingButAnAddressIsRefused) {
    IUnknown *first = nullptr, *second = nullptr;
    EXPECT_TRUE(Face.Get()->QueryInterface(&first) == S_OK && Driver.Get()->QueryInterface(&second) == S_OK);
    EXPECT_EQ(first, second) << "one object";
    for (IUnknown* same : {first, second}) same->Release();

    EXPECT_EQ(VARIANT_TRUE, Get(&ICorvaneStatus::get_Interactive));
    EXPECT_EQ(S_OK, Face->put_Interactive(7));
    EXPECT_EQ(VARIANT_TRUE, Get(&ICorvaneStatus::get_Interactive));
    EXPECT_EQ(S_OK, Face->put_Interactive(VARIANT_FALSE));
    EXPECT_EQ(VARIANT_FALSE, Get(&ICorvaneStatus::get_Interactive));
    EXPECT_EQ(VARIANT_FALSE, Read(Driver.Get(), &IADC3::ShowSetting));

    // The address put, its result, the address then.
    const std::tuple<const wchar_t*, HRESULT, const wchar_t*> addresses[] = {
        {L"10.0.0.7", S_OK, L"10.0.0.7"},        {nullptr, S_OK, L""},
        {L"10.0.0.8", S_OK, L"10.0.0.8"},        {L"server", E_INVALIDARG, L"10.0.0.8"},
        {L"10.0.0", E_INVALIDARG, L"10.0.0.8"},  {L"10.0.0.256", E_INVALIDARG, L"10.0.0.8"},
        {L"0.0.0.0", E_INVALIDARG, L"10.0.0.8"}, {L"", S_OK, L""}};
    EXPECT_EQ(L"", Text(&ICorvaneStatus::get_Server));
    for (const auto& [address, result, then] : addresses) {
        EXPECT_EQ(result, Put(&ICorvaneStatus::put_Server, address)) << then;
        EXPECT_EQ(then, Text(&ICorvaneStatus::get_Server));
    }
    const Results nothing = {
        Face->get_Interactive(nullptr),   Face->get_Server(nullptr),       Face->get_CrateSerial(nullptr),
        Face->get_CrateInfo(nullptr),     Face->get_ModulesCount(nullptr), Face->get_ModuleInfo(0, nullptr),
        Face->get_KadrsRecorded(nullptr), Face->get_KadrsRead(nullptr),    Face->get_Gaps(nullptr)};
    EXPECT_EQ(Results(nothing.size(), E_POINTER), nothing);
}

TEST_F(Status, TheCrateIsTheOneAskedForAndNoOther) {
    ASSERT_EQ(0, LtrSim_Configure(
                     ("speed = 0\n" + Server("127.0.0.1") + Crate("CRATE1", {1}) + Crate("CRATE2", {1, 3})).c_str()));
    Face->put_Interactive(VARIANT_FALSE);
    EXPECT_TRUE(!True(Driver.Get(), &IADC3::Test) && Text(&ICorvaneStatus::get_CrateInfo).empty());
    EXPECT_NE(std::wstring::npos, LastError(Driver.Get()).find(L"\"CRATE1\", \"CRATE2\""));
    Put(&ICorvaneStatus::put_CrateSerial, L"CRATE3");
    EXPECT_FALSE(True(Driver.Get(), &IADC3::Test));
    EXPECT_EQ(L"There is no crate with the serial number \"CRATE3\". Found: \"CRATE1\", \"CRATE2\".",
              LastError(Driver.Get()));
    Put(&ICorvaneStatus::put_CrateSerial, L"CRATE2");
    ASSERT_TRUE(True(Driver.Get(), &IADC3::Test));
    EXPECT_NE(std::wstring::npos, Text(&ICorvaneStatus::get_CrateInfo).find(L"CRATE2"));
    EXPECT_EQ(2, Get(&ICorvaneStatus::get_ModulesCount));
    EXPECT_NE(std::wstring::npos, ModuleInfo(1).find(L"1.2.3.4")) << ModuleInfo(1);
    EXPECT_EQ(L"", ModuleInfo(-1) + ModuleInfo(2));
}

// The last block again, where and only where the gap says so.
TEST_F(Status, ListsTheKadrsThatWereFilledInBeforeTheyAreRead) {
    ASSERT_TRUE(OpenSequence(2));
    EXPECT_EQ(std::vector<double>{}, Gaps());
    ASSERT_EQ(0, LtrSim_AddFault("call = \"LTR27_Recv\"\nslot = 2\nafter = 8\ntimes = 1\nstall = true\n"));
    ASSERT_TRUE(Start(1000));
    ASSERT_TRUE(WaitForKadrs(64 * 12));
    ASSERT_EQ(S_OK, Driver->StopRecord());
    const std::vector<double> gaps = Gaps();
    ASSERT_EQ(4u, gaps.size());
    EXPECT_TRUE(gaps[0] == 1 && gaps[1] > 0 && gaps[2] == 64 && gaps[3] == 2) << gaps[1] << ' ' << gaps[2];
    const LONG recorded = Read(Driver.Get(), &IADC3::get_InputCountKadrs);
    EXPECT_EQ(recorded, Get(&ICorvaneStatus::get_KadrsRecorded));
    std::vector<short> samples(static_cast<size_t>(recorded) * 32);
    LONG count = 64 * 32, remaining = 0, kadrs = 0;
    ASSERT_EQ(S_OK, Driver->GetData(samples.data(), &count, &remaining, &kadrs));
    EXPECT_EQ(64, Get(&ICorvaneStatus::get_KadrsRead));
    count = (recorded - 64) * 32;
    ASSERT_EQ(S_OK, Driver->GetData(samples.data() + 64 * 32, &count, &remaining, &kadrs));
    for (LONG kadr = 64; kadr < recorded; kadr++) {
        const short* last = &samples[static_cast<size_t>(kadr) * 32];
        EXPECT_EQ(kadr >= gaps[1] && kadr < gaps[1] + gaps[2], last[16] == last[16 - 64 * 32]) << kadr;
        EXPECT_NE(last[0], last[-64 * 32]) << kadr;
    }

    // By name, as scripts ask: arrays of VARIANT.
    VARIANT list = {}, module = {}, info = {}, text = {}, result = {};
    ASSERT_EQ(S_OK, InvokeByName(Own.Get(), L"gaps", DISPATCH_PROPERTYGET, {}, &list));
    ASSERT_TRUE(list.vt == (VT_ARRAY | VT_VARIANT) && SafeArrayGetDim(list.parray) == 2);
    for (LONG i = 0; i < 4; i++) {
        LONG position[] = {i, 0};
        VARIANT number = {};
        EXPECT_EQ(S_OK, SafeArrayGetElement(list.parray, position, &number));
        EXPECT_TRUE(number.vt == VT_R8 && number.dblVal == gaps[static_cast<size_t>(i)]) << i;
    }
    VariantClear(&list);
    module.vt = VT_I4;
    EXPECT_EQ(S_OK, InvokeByName(Own.Get(), L"ModuleInfo", DISPATCH_PROPERTYGET, {module}, &info));
    EXPECT_TRUE(info.vt == VT_BSTR && ModuleInfo(0) == info.bstrVal);
    VariantClear(&info);
    EXPECT_EQ(S_OK, InvokeByName(Own.Get(), L"Interactive", DISPATCH_PROPERTYPUT, {module}, nullptr));
    EXPECT_EQ(VARIANT_FALSE, Get(&ICorvaneStatus::get_Interactive));
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(L"nowhere");
    EXPECT_EQ(DISP_E_EXCEPTION, InvokeByName(Own.Get(), L"Server", DISPATCH_PROPERTYPUT, {text}, nullptr));
    EXPECT_EQ(DISP_E_UNKNOWNNAME, InvokeByName(Driver.Get(), L"Gaps", DISPATCH_PROPERTYGET, {}, &result))
        << "IADC3's own IDispatch answers IADC3's members only";
    SysFreeString(text.bstrVal);
    ASSERT_TRUE(Start(1000));
    EXPECT_EQ(std::vector<double>{}, Gaps()) << "a list for each recording";
}

}  // namespace
}  // namespace corvane::test
