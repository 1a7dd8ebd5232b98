// The type libraries as the component's file carries them: every entry and every member.
#include <map>

#include "driver/com/identifiers.h"
#include "tests/windows/com_host.h"

namespace corvane::test {
namespace {

std::string Take(BSTR text, const char* before = "") {
    const std::string narrow(text, text + SysStringLen(text));
    SysFreeString(text);
    return text != nullptr ? before + narrow : "";
}

// Name, help text and help file of a library (-1), of a type (MEMBERID_NIL) or of its member.
template <class Source>
std::string Title(Source* source, LONG of = MEMBERID_NIL) {
    BSTR name = nullptr, help = nullptr, file = nullptr;
    EXPECT_EQ(S_OK, source->GetDocumentation(of, &name, &help, nullptr, &file));
    return Take(name) + Take(help, " | ") + Take(file, " | ");
}

std::string Identified(const std::string& title, const GUID& identifier) {
    wchar_t text[39];
    StringFromGUID2(identifier, text, 39);
    return title + ' ' + std::string(text, text + 38) + ' ';
}

std::string LibraryTitle(ITypeLib* library) {
    TLIBATTR* attributes = nullptr;
    EXPECT_EQ(S_OK, library->GetLibAttr(&attributes));
    const std::string text = Identified(Title(library, -1), attributes->guid) +
                             std::to_string(attributes->wMajorVerNum) + '.' + std::to_string(attributes->wMinorVerNum) +
                             " locale " + std::to_string(attributes->lcid);
    library->ReleaseTLibAttr(attributes);
    return text;
}

ComPtr<ITypeInfo> Referenced(ITypeInfo* info, HREFTYPE reference) {
    ComPtr<ITypeInfo> other;
    EXPECT_EQ(S_OK, info->GetRefTypeInfo(reference, other.GetAddressOf()));
    return other;
}

ComPtr<ITypeInfo> Implemented(ITypeInfo* info, UINT index) {
    HREFTYPE reference = 0;
    EXPECT_EQ(S_OK, info->GetRefTypeOfImplType(index, &reference));
    return Referenced(info, reference);
}

std::string TypeName(ITypeInfo* info, const TYPEDESC& type) {
    if (type.vt == VT_PTR) return TypeName(info, *type.lptdesc) + "*";
    if (type.vt == VT_SAFEARRAY) return "array of " + TypeName(info, *type.lptdesc);
    if (type.vt == VT_USERDEFINED) return Title(Referenced(info, type.hreftype).Get());
    const std::map<VARTYPE, const char*> names = {
        {VT_UI1, "byte"},         {VT_I2, "short"},        {VT_I4, "long"},
        {VT_R4, "float"},         {VT_R8, "double"},       {VT_BOOL, "bool"},
        {VT_BSTR, "BSTR"},        {VT_HRESULT, "HRESULT"}, {VT_DISPATCH, "IDispatch*"},
        {VT_UNKNOWN, "IUnknown*"}};
    return names.contains(type.vt) ? names.at(type.vt) : "type " + std::to_string(type.vt);
}

std::string Words(int flags, const std::map<int, const char*>& names) {
    std::string words;
    for (const auto& [flag, name] : names) words += flags & flag ? std::string(name) + ' ' : "";
    return words;
}

// Slot, kind, dispatch identifier, name and arguments. The last argument is what is put or returned: it needs no name.
std::string Member(ITypeInfo* info, UINT index) {
    FUNCDESC* member = nullptr;
    EXPECT_EQ(S_OK, info->GetFuncDesc(index, &member));
    BSTR names[5] = {};
    UINT count = 0;
    info->GetNames(member->memid, names, 5, &count);
    const std::map<int, const char*> kinds = {
        {INVOKE_FUNC, "do"}, {INVOKE_PROPERTYGET, "get"}, {INVOKE_PROPERTYPUT, "put"}};
    std::string text = std::to_string(member->oVft / 4) + ' ' + Words(member->invkind, kinds) +
                       std::to_string(member->memid) + ' ' + Take(names[0]) + '(';
    for (short i = 0; i < member->cParams; i++) {
        const ELEMDESC& argument = member->lprgelemdescParam[i];
        text += Words(argument.paramdesc.wParamFlags,
                      {{PARAMFLAG_FIN, "in"}, {PARAMFLAG_FOUT, "out"}, {PARAMFLAG_FRETVAL, "retval"}});
        const std::string name = Take(names[i + 1], " ");
        text += TypeName(info, argument.tdesc) + (i + 1 < member->cParams ? name + ", " : "");
    }
    EXPECT_EQ("HRESULT", TypeName(info, member->elemdescFunc.tdesc)) << text;
    EXPECT_TRUE(member->funckind == FUNC_PUREVIRTUAL && member->callconv == CC_STDCALL && !member->wFuncFlags) << text;
    info->ReleaseFuncDesc(member);
    return text + ")\n";
}

// A line for the entry itself, then the interfaces of a class or the members of an interface.
std::string Entry(ComPtr<ITypeInfo> info) {
    TYPEATTR* attributes = nullptr;
    EXPECT_EQ(S_OK, info->GetTypeAttr(&attributes));
    if (attributes->typekind == TKIND_DISPATCH) {  // half of a dual interface; the other half knows the slots
        info->ReleaseTypeAttr(attributes);
        info = Implemented(info.Get(), static_cast<UINT>(-1));
        EXPECT_EQ(S_OK, info->GetTypeAttr(&attributes));
    }
    const TYPEKIND kind = attributes->typekind;
    std::string text = Identified(Title(info.Get()), attributes->guid);
    text += Words(attributes->wTypeFlags, {{TYPEFLAG_FCANCREATE, "creatable"},
                                           {TYPEFLAG_FHIDDEN, "hidden"},
                                           {TYPEFLAG_FDUAL, "dual"},
                                           {TYPEFLAG_FNONEXTENSIBLE, "not extensible"},
                                           {TYPEFLAG_FOLEAUTOMATION, "automation"}});
    if (kind == TKIND_ALIAS) text += "alias of " + TypeName(info.Get(), attributes->tdescAlias);
    if (kind == TKIND_COCLASS) text += "class";
    if (kind == TKIND_INTERFACE) text += Title(Implemented(info.Get(), 0).Get());
    text += '\n';
    for (UINT i = 0; kind == TKIND_COCLASS && i < attributes->cImplTypes; i++) {
        int flags = 0;
        info->GetImplTypeFlags(i, &flags);
        const ComPtr<ITypeInfo> face = Implemented(info.Get(), i);
        ComPtr<ITypeLib> library;
        UINT index = 0;
        EXPECT_EQ(S_OK, face->GetContainingTypeLib(library.GetAddressOf(), &index));
        text += (flags == IMPLTYPEFLAG_FDEFAULT ? "default, of " : "also, of ") + LibraryTitle(library.Get()) + ": " +
                Entry(face);
    }
    for (UINT i = 0; i < attributes->cFuncs; i++) text += Member(info.Get(), i);
    info->ReleaseTypeAttr(attributes);
    return text;
}

std::string Library(const std::wstring& path, UINT count, const std::vector<GUID>& entries) {
    ComPtr<ITypeLib> library;
    EXPECT_EQ(S_OK, LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.GetAddressOf()));
    std::string text = LibraryTitle(library.Get()) + '\n';
    EXPECT_EQ(count, library->GetTypeInfoCount());
    for (const GUID& identifier : entries) {
        ComPtr<ITypeInfo> info;
        EXPECT_EQ(S_OK, library->GetTypeInfoOfGuid(identifier, info.GetAddressOf()));
        text += Entry(info);
    }
    return text;
}

TEST(TypeLibraries, SayWhatHostsAreCompiledAgainst) {
    // What the class refers to is found through the registry.
    ASSERT_EQ(S_OK, LoadedComponent().Call("DllRegisterServer"));
    EXPECT_EQ(TestData("type_libraries.txt"), Library(ComponentPath() + L"\\2", 1, {__uuidof(IADC3)}) +
                                                  Library(ComponentPath(), 3, {__uuidof(::Corvane), EarlierCorvane}) +
                                                  Library(ComponentPath() + L"\\3", 1, {__uuidof(ICorvaneStatus)}));
    EXPECT_EQ(S_OK, LoadedComponent().Call("DllUnregisterServer"));
}

}  // namespace
}  // namespace corvane::test
