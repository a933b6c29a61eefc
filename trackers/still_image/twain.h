// The part of the public TWAIN standard, version 1.7, that this system uses: an application asks
// the source manager which data sources are installed. Structures are packed to two bytes, text is
// in the ANSI code page, and the names are the standard's own.
#pragma once

#include <windows.h>
#include <cstddef>
#include <cstdint>

namespace kestraboot::twain
{

using TW_UINT16 = std::uint16_t;
using TW_UINT32 = std::uint32_t;
using TW_STR32 =
    char[34]; ///< 32 characters, one of margin, and a terminator that a source may leave out
using TW_MEMREF = void*;

#pragma pack(push, 2)

struct TW_VERSION {
    TW_UINT16 MajorNum;
    TW_UINT16 MinorNum;
    TW_UINT16 Language;
    TW_UINT16 Country;
    TW_STR32 Info;
};

/// An application or a data source. The source manager fills in the Id.
struct TW_IDENTITY {
    TW_UINT32 Id;
    TW_VERSION Version;
    TW_UINT16 ProtocolMajor;
    TW_UINT16 ProtocolMinor;
    TW_UINT32 SupportedGroups; ///< DG_ flags
    TW_STR32 Manufacturer;
    TW_STR32 ProductFamily;
    TW_STR32 ProductName;
};

#pragma pack(pop)

static_assert(sizeof(TW_VERSION) == 42 && alignof(TW_VERSION) == 2);
static_assert(offsetof(TW_VERSION, MajorNum) == 0);
static_assert(offsetof(TW_VERSION, MinorNum) == 2);
static_assert(offsetof(TW_VERSION, Language) == 4);
static_assert(offsetof(TW_VERSION, Country) == 6);
static_assert(offsetof(TW_VERSION, Info) == 8);

static_assert(sizeof(TW_IDENTITY) == 156 && alignof(TW_IDENTITY) == 2);
static_assert(offsetof(TW_IDENTITY, Id) == 0);
static_assert(offsetof(TW_IDENTITY, Version) == 4);
static_assert(offsetof(TW_IDENTITY, ProtocolMajor) == 46);
static_assert(offsetof(TW_IDENTITY, ProtocolMinor) == 48);
static_assert(offsetof(TW_IDENTITY, SupportedGroups) == 50);
static_assert(offsetof(TW_IDENTITY, Manufacturer) == 54);
static_assert(offsetof(TW_IDENTITY, ProductFamily) == 88);
static_assert(offsetof(TW_IDENTITY, ProductName) == 122);

inline constexpr TW_UINT32 DG_CONTROL = 0x0001;
inline constexpr TW_UINT32 DG_IMAGE = 0x0002;

inline constexpr TW_UINT16 DAT_IDENTITY = 0x0003;
inline constexpr TW_UINT16 DAT_PARENT = 0x0004;

inline constexpr TW_UINT16 MSG_GETFIRST = 0x0004;
inline constexpr TW_UINT16 MSG_GETNEXT = 0x0005;
inline constexpr TW_UINT16 MSG_OPENDSM = 0x0301;  ///< data: a pointer to the parent window's handle
inline constexpr TW_UINT16 MSG_CLOSEDSM = 0x0302; ///< the same

inline constexpr TW_UINT16 TWRC_SUCCESS = 0;
inline constexpr TW_UINT16 TWRC_FAILURE = 1;

inline constexpr TW_UINT16 TWLG_USA = 13;
inline constexpr TW_UINT16 TWCY_USA = 1;

inline constexpr TW_UINT16 kProtocolMajor = 1;
inline constexpr TW_UINT16 kProtocolMinor = 7;

/// The source manager's one entry point: ordinal 1 of its library. Returns a TWRC_ code.
using DSMENTRYPROC = TW_UINT16(WINAPI*)(TW_IDENTITY* origin, TW_IDENTITY* destination,
                                        TW_UINT32 dataGroup, TW_UINT16 dataArgumentType,
                                        TW_UINT16 message, TW_MEMREF data);
inline constexpr WORD kDsmEntryOrdinal = 1;

} // namespace kestraboot::twain
