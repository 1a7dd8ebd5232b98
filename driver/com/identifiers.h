// The fixed identifiers under which hosts and the platform know the component. The identifiers of the interfaces and of
// the class itself come with the generated headers.
#pragma once

#include <ADCInterface3.h>
#include <CorvaneStatus.h>
#include <Tessmark.h>

namespace corvane {

constexpr wchar_t ProgrammaticIdentifier[] = L"Tessmark.Corvane";
constexpr wchar_t ComponentDescription[] = L"L-Card Corvane ADC Driver";

// Type library resources of the component's file.
constexpr int TessmarkResource = 1;
constexpr int ADCInterface3Resource = 2;
constexpr int CorvaneStatusResource = 3;

constexpr GUID TessmarkLibrary = {0xB4598549, 0xF4AF, 0x4583, {0x85, 0x3E, 0xDC, 0xB9, 0x1F, 0xC0, 0xCD, 0xFD}};
constexpr wchar_t TessmarkVersion[] = L"1.1";
constexpr wchar_t TessmarkLocale[] = L"409";  // hexadecimal, as the registry names it

constexpr GUID ADCInterface3Library = {0x97B526A7, 0x3B46, 0x11D7, {0xB6, 0x88, 0xFD, 0xAE, 0xA8, 0x66, 0x8E, 0x28}};
constexpr wchar_t ADCInterface3Version[] = L"1.0";

constexpr GUID CorvaneStatusLibrary = {0xE73A14C2, 0x4CB9, 0x4E85, {0x85, 0x01, 0x43, 0x9A, 0xD7, 0xF1, 0x6B, 0xC7}};
constexpr wchar_t CorvaneStatusVersion[] = L"1.0";

// The identifier that _Corvane had in earlier releases, for hosts that were built against them; its members are the
// same.
constexpr GUID EarlierCorvane = {0xFAC99029, 0x3AFF, 0x4FAD, {0xA8, 0x3E, 0xC4, 0x16, 0xF4, 0x0B, 0x48, 0xB6}};

}  // namespace corvane
