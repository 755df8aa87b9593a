// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

// The part of Source that hands over pages.

#include "tests/support/twain/script.h"
#include "tests/support/twain/scripted_source.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

namespace folidex::scripted {

using namespace twain;

namespace {

std::string read_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

/// "trouble=20:2" is condition 20 in the middle of page 2; it is gone when the page is tried again.
Source::Answer Source::trouble() {
    const int page = static_cast<int>(page_) + 1;
    if (say("cancel") == page)
        return TWRC_CANCEL;
    const auto parts = split(text(section_, "trouble"), ':');
    if (trouble_over_ || parts.size() != 2 || std::atoi(parts[1].c_str()) != page)
        return TWRC_SUCCESS;
    in_trouble_ = true;
    return fail(static_cast<TW_UINT16>(std::atoi(parts[0].c_str())));
}

Source::Answer Source::info(TW_IMAGEINFO& info) {
    mishap_at(section_, "info", static_cast<int>(page_) + 1);
    if (const Answer told = fail_if_told("info"))
        return told;
    info = image_info(pages_[page_]);
    if (say("unknown_height") != 0)
        info.ImageLength = -1;
    if (say("unknown_width") != 0)
        info.ImageWidth = -1;
    if (say("unknown_resolution") != 0)
        info.XResolution = info.YResolution = {0, 0};
    if (is("nonsense", "length"))
        info.ImageLength = 1000000;
    if (is("nonsense", "planar"))
        info.Planar = 1;
    if (is("nonsense", "compression"))
        info.Compression = 5;
    if (is("nonsense", "type"))
        info.PixelType = 5;
    return TWRC_SUCCESS;
}

Source::Answer Source::setup(TW_SETUPMEMXFER& setup) const {
    const auto preferred = static_cast<TW_UINT32>(say("strip", 65536));
    setup = {std::min<TW_UINT32>(preferred, 1024), TWON_DONTCARE32, preferred};
    if (is("nonsense", "buffer"))
        setup.MinBufSize = setup.Preferred = 0xf0000000u;
    return TWRC_SUCCESS;
}

Source::Answer Source::strip(TW_IMAGEMEMXFER& strip) {
    const Page& page = pages_[page_];
    const int number = static_cast<int>(page_) + 1;
    if (row_ == 0) {
        mishap_at(section_, "transfer", number);
        Sleep(static_cast<DWORD>(say("page_ms")));
    }
    if (row_ >= page.height / 2 || say("trouble_first") != 0) {
        mishap_at(section_, "middle", number);
        if (const Answer told = trouble())
            return told;
    }
    state_ = 7;
    if (page.kind == "jpeg")
        return jpeg_strip(strip);
    // Some drivers pad, and some pad each buffer as they like.
    const auto padding = static_cast<std::size_t>(say("padding") * (1 + row_ % 3));
    const std::size_t stride = row_bytes(page) + padding;
    const int fitting = static_cast<int>(strip.Memory.Length / stride);
    const int rows = std::min({fitting, page.height - row_, say("rows", 1 << 20)});
    if (rows < 1)
        return fail(TWCC_BADVALUE);
    auto* out = static_cast<std::uint8_t*>(strip.Memory.TheMem);
    for (int i = 0; i < rows; ++i, out += stride) {
        make_row(page, row_ + i, out);
        std::memset(out + row_bytes(page), 0xaa, padding);
    }
    strip.Compression = TWCP_NONE;
    strip.BytesPerRow = static_cast<TW_UINT32>(stride);
    strip.Columns = static_cast<TW_UINT32>(page.width);
    strip.Rows = static_cast<TW_UINT32>(rows);
    strip.XOffset = 0;
    strip.YOffset = static_cast<TW_UINT32>(row_);
    strip.BytesWritten = static_cast<TW_UINT32>(stride * static_cast<std::size_t>(rows));
    row_ += rows;
    spoil(strip);
    if (say("close_during") == number)
        tell(MSG_CLOSEDSREQ);
    Sleep(static_cast<DWORD>(say("strip_ms")));
    if (is("nonsense", "endless") || is("nonsense", "empty"))
        row_ = 0;
    return row_ >= page.height ? TWRC_XFERDONE : TWRC_SUCCESS;
}

void Source::spoil(TW_IMAGEMEMXFER& strip) const {
    if (is("nonsense", "rows"))
        strip.Rows += 5; // than it wrote
    if (is("nonsense", "written"))
        strip.BytesWritten = strip.Memory.Length + 1;
    if (is("nonsense", "stride"))
        strip.BytesPerRow = 1;
    if (is("nonsense", "columns"))
        strip.Columns = 4000000000u;
    if (is("nonsense", "narrow") && strip.YOffset > 0)
        strip.Columns -= 1;
    if (is("nonsense", "tiles"))
        strip.XOffset = 50;
    if (is("nonsense", "compression"))
        strip.Compression = 5;
    if (is("nonsense", "empty")) {
        strip.Rows = strip.BytesWritten = 0;
        note(section_ + " gives nothing");
    }
}

Source::Answer Source::jpeg_strip(TW_IMAGEMEMXFER& strip) {
    static const std::string bytes = read_file(text(section_, "jpeg_file"));
    const std::size_t piece = std::min<std::size_t>(strip.Memory.Length, bytes.size() - jpeg_at_);
    std::memcpy(strip.Memory.TheMem, bytes.data() + jpeg_at_, piece);
    strip.Compression = TWCP_JPEG;
    strip.BytesWritten = static_cast<TW_UINT32>(piece);
    jpeg_at_ += piece;
    row_ = pages_[page_].height / 2;
    return jpeg_at_ == bytes.size() ? TWRC_XFERDONE : TWRC_SUCCESS;
}

Source::Answer Source::bitmap(TW_HANDLE& handle) {
    const Page& page = pages_[page_];
    mishap_at(section_, "transfer", static_cast<int>(page_) + 1);
    Sleep(static_cast<DWORD>(say("page_ms")));
    if (const Answer told = trouble()) {
        if (told == TWRC_CANCEL)
            state_ = 7;
        return told;
    }
    state_ = 7;
    std::vector<std::uint8_t> dib = make_dib(page, say("top_down") != 0);
    auto* header = reinterpret_cast<BITMAPINFOHEADER*>(dib.data());
    if (say("unknown_resolution") > 1)
        header->biXPelsPerMeter = header->biYPelsPerMeter = 0;
    if (is("nonsense", "height"))
        header->biHeight *= 50;
    if (is("nonsense", "header"))
        header->biSize = 1000000;
    if (is("nonsense", "colours"))
        header->biClrUsed = 0xfffffff0u;
    if (is("nonsense", "packed"))
        header->biCompression = BI_RLE8;
    handle = nullptr;
    if (is("nonsense", "nothing"))
        return TWRC_XFERDONE;
    handle = memory.allocate(static_cast<TW_UINT32>(dib.size()));
    std::memcpy(memory.lock(handle), dib.data(), dib.size());
    memory.unlock(handle);
    return TWRC_XFERDONE;
}

Source::Answer Source::pending(TW_UINT16 message, TW_PENDINGXFERS& pending) {
    note(section_ + (message == MSG_ENDXFER ? " endxfer"
                     : message == MSG_RESET ? " reset"
                                            : " stopfeeder"));
    mishap_at(section_, "endxfer", static_cast<int>(page_) + 1);
    if (message == MSG_RESET) {
        if (const Answer told = fail_if_told("reset"))
            return told;
        if (state_ != 6)
            return fail(TWCC_SEQERROR);
        page_ = pages_.size();
    } else if (message == MSG_ENDXFER) {
        if (const Answer told = fail_if_told(in_trouble_ ? "endxfer_in_trouble" : "endxfer"))
            return told;
        if (state_ != 6 && state_ != 7)
            return fail(TWCC_SEQERROR);
        if (!in_trouble_)
            ++page_;
        trouble_over_ = trouble_over_ || in_trouble_;
    }
    row_ = 0;
    jpeg_at_ = 0;
    std::size_t left = pages_.size() - std::min(page_, pages_.size());
    const bool stops = in_trouble_ && say("trouble_stops") != 0;
    in_trouble_ = false;
    state_ = left > 0 && !stops ? 6 : 5;
    if (stops) {
        left = 0;
        SetTimer(window_, 1, static_cast<UINT>(say("ready_ms", 10)), nullptr);
    }
    // A feeder cannot count its sheets.
    pending.Count = left == 0 ? 0 : say("counts") != 0 ? static_cast<TW_UINT16>(left) : 0xffff;
    return TWRC_SUCCESS;
}

} // namespace folidex::scripted
