// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "capture/scanner/twain/twain_types.h"

/// The numbers of the public TWAIN interface that are used here: the TWAIN 2.5 standard,
/// chapters 7, 8, 10 and 11, with its names.
namespace folidex::twain {

/// Groups of operations, and what an identity can do.
enum : TW_UINT32 {
    DG_CONTROL = 1,
    DG_IMAGE = 2,
    DF_DSM2 = 0x10000000,
    DF_APP2 = 0x20000000,
    DF_DS2 = 0x40000000,
};

enum : TW_UINT16 {
    DAT_NULL = 0,
    DAT_CAPABILITY = 1,
    DAT_EVENT = 2,
    DAT_IDENTITY = 3,
    DAT_PARENT = 4,
    DAT_PENDINGXFERS = 5,
    DAT_SETUPMEMXFER = 6,
    DAT_STATUS = 8,
    DAT_USERINTERFACE = 9,
    DAT_CALLBACK = 0x10,
    DAT_CALLBACK2 = 0x12,
    DAT_IMAGEINFO = 0x101,
    DAT_IMAGEMEMXFER = 0x103,
    DAT_IMAGENATIVEXFER = 0x104,
    DAT_PALETTE8 = 0x10a,
    DAT_ENTRYPOINT = 0x403,
};

enum : TW_UINT16 {
    MSG_NULL = 0,
    MSG_GET = 1,
    MSG_GETCURRENT = 2,
    MSG_GETFIRST = 4,
    MSG_GETNEXT = 5,
    MSG_SET = 6,
    MSG_RESET = 7,
    MSG_XFERREADY = 0x101,
    MSG_CLOSEDSREQ = 0x102,
    MSG_CLOSEDSOK = 0x103,
    MSG_OPENDSM = 0x301,
    MSG_CLOSEDSM = 0x302,
    MSG_OPENDS = 0x401,
    MSG_CLOSEDS = 0x402,
    MSG_DISABLEDS = 0x501,
    MSG_ENABLEDS = 0x502,
    MSG_PROCESSEVENT = 0x601,
    MSG_ENDXFER = 0x701,
    MSG_STOPFEEDER = 0x702,
    MSG_REGISTER_CALLBACK = 0x902,
};

enum : TW_UINT16 {
    CAP_XFERCOUNT = 1,
    ICAP_COMPRESSION = 0x100,
    ICAP_PIXELTYPE = 0x101,
    ICAP_UNITS = 0x102,
    ICAP_XFERMECH = 0x103,
    CAP_FEEDERENABLED = 0x1002,
    CAP_AUTOFEED = 0x1007,
    CAP_INDICATORS = 0x100b,
    CAP_DUPLEX = 0x1012,
    CAP_DUPLEXENABLED = 0x1013,
    ICAP_XRESOLUTION = 0x1118,
    ICAP_YRESOLUTION = 0x1119,
    ICAP_PIXELFLAVOR = 0x111f,
};

enum : TW_UINT16 {
    TWRC_SUCCESS = 0,
    TWRC_FAILURE = 1,
    TWRC_CHECKSTATUS = 2,
    TWRC_CANCEL = 3,
    TWRC_DSEVENT = 4,
    TWRC_NOTDSEVENT = 5,
    TWRC_XFERDONE = 6,
    TWRC_ENDOFLIST = 7,
};

enum : TW_UINT16 {
    TWCC_SUCCESS = 0,
    TWCC_BUMMER = 1,
    TWCC_LOWMEMORY = 2,
    TWCC_NODS = 3,
    TWCC_MAXCONNECTIONS = 4,
    TWCC_OPERATIONERROR = 5,
    TWCC_BADPROTOCOL = 9,
    TWCC_BADVALUE = 10,
    TWCC_SEQERROR = 11,
    TWCC_BADDEST = 12,
    TWCC_CAPUNSUPPORTED = 13,
    TWCC_PAPERJAM = 20,
    TWCC_PAPERDOUBLEFEED = 21,
    TWCC_INTERLOCK = 24,
    TWCC_NOMEDIA = 29,
};

/// Types of items, kinds of containers, and the values of capabilities.
enum : TW_UINT16 {
    TWTY_INT8 = 0,
    TWTY_INT16 = 1,
    TWTY_INT32 = 2,
    TWTY_UINT8 = 3,
    TWTY_UINT16 = 4,
    TWTY_UINT32 = 5,
    TWTY_BOOL = 6,
    TWTY_FIX32 = 7,
    TWON_ARRAY = 3,
    TWON_ENUMERATION = 4,
    TWON_ONEVALUE = 5,
    TWON_RANGE = 6,
    TWON_DONTCARE16 = 0xffff,
    TWSX_NATIVE = 0,
    TWSX_MEMORY = 2,
    TWPT_BW = 0,
    TWPT_GRAY = 1,
    TWPT_RGB = 2,
    TWPT_PALETTE = 3,
    TWPT_SRGB = 10,
    TWPF_CHOCOLATE = 0,
    TWPF_VANILLA = 1,
    TWCP_NONE = 0,
    TWCP_JPEG = 6,
    TWPA_RGB = 0,
    TWPA_GRAY = 1,
    TWUN_INCHES = 0,
    TWUN_CENTIMETERS = 1,
    TWUN_PICAS = 2,
    TWUN_POINTS = 3,
    TWUN_TWIPS = 4,
    TWUN_PIXELS = 5,
    TWUN_MILLIMETERS = 6,
};
inline constexpr TW_UINT32 TWON_DONTCARE32 = 0xffffffff;

/// Who owns a buffer, and what TheMem is.
enum : TW_UINT32 { TWMF_APPOWNS = 1, TWMF_POINTER = 8, TWMF_HANDLE = 16 };

} // namespace folidex::twain
