// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>

/// The structures of the public TWAIN interface, as far as they are used here: the TWAIN
/// 2.5 standard, chapter 8, with its names. On Windows all of them are packed to 2 bytes; handles
/// and pointers have the word size of the program. The numbers stand in twain_codes.h.
namespace folidex::twain {

using TW_HANDLE = void*;
using TW_MEMREF = void*;
using TW_INT16 = std::int16_t;
using TW_INT32 = std::int32_t;
using TW_UINT16 = std::uint16_t;
using TW_UINT32 = std::uint32_t;
using TW_BOOL = std::uint16_t;

#pragma pack(push, 2)
struct TW_FIX32 {
    TW_INT16 Whole;
    TW_UINT16 Frac;
};
struct TW_VERSION {
    TW_UINT16 MajorNum, MinorNum, Language, Country;
    char Info[34];
};
struct TW_IDENTITY {
    TW_UINT32 Id;
    TW_VERSION Version;
    TW_UINT16 ProtocolMajor, ProtocolMinor;
    TW_UINT32 SupportedGroups;
    char Manufacturer[34], ProductFamily[34], ProductName[34];
};
struct TW_CAPABILITY {
    TW_UINT16 Cap, ConType;
    TW_HANDLE hContainer;
};
struct TW_ONEVALUE {
    TW_UINT16 ItemType;
    TW_UINT32 Item;
};
struct TW_ENUMERATION {
    TW_UINT16 ItemType;
    TW_UINT32 NumItems, CurrentIndex, DefaultIndex;
    std::uint8_t ItemList[2];
};
struct TW_ARRAY {
    TW_UINT16 ItemType;
    TW_UINT32 NumItems;
    std::uint8_t ItemList[2];
};
struct TW_RANGE {
    TW_UINT16 ItemType;
    TW_UINT32 MinValue, MaxValue, StepSize, DefaultValue, CurrentValue;
};
struct TW_EVENT {
    TW_MEMREF pEvent;
    TW_UINT16 TWMessage;
};
struct TW_STATUS {
    TW_UINT16 ConditionCode, Data;
};
struct TW_USERINTERFACE {
    TW_BOOL ShowUI, ModalUI;
    TW_HANDLE hParent;
};
struct TW_PENDINGXFERS {
    TW_UINT16 Count;
    TW_UINT32 EOJ;
};
struct TW_SETUPMEMXFER {
    TW_UINT32 MinBufSize, MaxBufSize, Preferred;
};
struct TW_MEMORY {
    TW_UINT32 Flags, Length;
    TW_MEMREF TheMem;
};
struct TW_IMAGEMEMXFER {
    TW_UINT16 Compression;
    TW_UINT32 BytesPerRow, Columns, Rows, XOffset, YOffset, BytesWritten;
    TW_MEMORY Memory;
};
struct TW_IMAGEINFO {
    TW_FIX32 XResolution, YResolution;
    TW_INT32 ImageWidth, ImageLength;
    TW_INT16 SamplesPerPixel, BitsPerSample[8], BitsPerPixel;
    TW_BOOL Planar;
    TW_INT16 PixelType;
    TW_UINT16 Compression;
};
struct TW_ELEMENT8 {
    std::uint8_t Index, Channel1, Channel2, Channel3;
};
struct TW_PALETTE8 {
    TW_UINT16 NumColors, PaletteType;
    TW_ELEMENT8 Colors[256];
};
struct TW_CALLBACK {
    TW_MEMREF CallBackProc;
    TW_UINT32 RefCon;
    TW_INT16 Message;
};
struct TW_CALLBACK2 {
    TW_MEMREF CallBackProc;
    std::uintptr_t RefCon;
    TW_INT16 Message;
};
/// The five entries are functions; DSM_Entry and the memory functions of the manager.
struct TW_ENTRYPOINT {
    TW_UINT32 Size;
    void (*DSM_Entry)();
    void (*DSM_MemAllocate)();
    void (*DSM_MemFree)();
    void (*DSM_MemLock)();
    void (*DSM_MemUnlock)();
};
#pragma pack(pop)

inline constexpr std::size_t kPointer = sizeof(void*);
static_assert(sizeof(TW_VERSION) == 42 && sizeof(TW_IDENTITY) == 156);
static_assert(sizeof(TW_CAPABILITY) == 4 + kPointer && sizeof(TW_ONEVALUE) == 6);
static_assert(offsetof(TW_ENUMERATION, ItemList) == 14 && offsetof(TW_ARRAY, ItemList) == 6);
static_assert(sizeof(TW_RANGE) == 22 && sizeof(TW_EVENT) == 2 + kPointer && sizeof(TW_STATUS) == 4);
static_assert(sizeof(TW_USERINTERFACE) == 4 + kPointer && sizeof(TW_PENDINGXFERS) == 6);
static_assert(sizeof(TW_SETUPMEMXFER) == 12 && sizeof(TW_MEMORY) == 8 + kPointer);
static_assert(sizeof(TW_IMAGEMEMXFER) == 34 + kPointer && sizeof(TW_IMAGEINFO) == 42);
static_assert(sizeof(TW_PALETTE8) == 1028 && sizeof(TW_ENTRYPOINT) == 4 + 5 * kPointer);
static_assert(sizeof(TW_CALLBACK) == 6 + kPointer && sizeof(TW_CALLBACK2) == 2 + 2 * kPointer);

} // namespace folidex::twain
