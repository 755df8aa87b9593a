// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "capture/scanner/twain/page_transfer.h"

#include "capture/scanner/twain/dib_page.h"
#include "capture/scanner/twain/failure.h"
#include "capture/scanner/twain/frame_pipe.h"
#include "capture/scanner/twain/twain_codes.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace folidex::twain {

namespace {

/// Buffers of a page: what sources like, within these.
constexpr TW_UINT32 kSmallestBuffer = 64u << 10;
constexpr TW_UINT32 kUsualBuffer = 256u << 10;
constexpr TW_UINT32 kLargestBuffer = 64u << 20;
/// Some sources answer with nothing while the paper moves or the lamp warms up; they are not asked
/// faster than this.
constexpr DWORD kRest = 10; // milliseconds

TW_FIX32 fixed(TW_UINT32 value) {
    return std::bit_cast<TW_FIX32>(value);
}

} // namespace

/// Page and rows as frames, none longer than the program takes.
class PageTransfer::Sink : public PageSink {
public:
    explicit Sink(PageTransfer& transfer) : transfer_(transfer) {}

    void begin(const PageHeader& page) override {
        transfer_.begun_ = true;
        FramePipe::of_process().send(Kind::kPage, page);
    }
    void rows(const std::uint8_t* data, std::size_t bytes) override {
        while (bytes > 0) {
            // Rows come in far smaller pieces; only a JPEG may be cut anywhere.
            const std::size_t piece = std::min<std::size_t>(bytes, kLongestPayload);
            FramePipe::of_process().send(Kind::kRows, data, piece);
            data += piece;
            bytes -= piece;
        }
    }

private:
    PageTransfer& transfer_;
};

PageTransfer::PageTransfer(Session& session, bool by_memory, Clock::duration idle,
                           std::function<bool()> breathe)
    : session_(session), by_memory_(by_memory), idle_(idle), breathe_(std::move(breathe)) {}

void PageTransfer::fail(Step step, TW_UINT16 answer) const {
    throw Failure{Outcome::kFailed, step, answer, session_.condition()};
}

bool PageTransfer::run() {
    const PageFacts facts = ask();
    return by_memory_ ? strips(facts) : whole(facts);
}

PageFacts PageTransfer::ask() const {
    PageFacts facts;
    const TW_UINT16 answer = session_.image(DAT_IMAGEINFO, &facts.info);
    if (answer != TWRC_SUCCESS)
        fail(Step::kPageInfo, answer);
    const auto unit = static_cast<TW_UINT16>(session_.get(ICAP_UNITS).value_or(TWUN_INCHES));
    facts.x_resolution = pixels_an_inch(facts.info.XResolution, unit);
    facts.y_resolution = pixels_an_inch(facts.info.YResolution, unit);
    if (facts.x_resolution <= 0)
        if (const auto value = session_.get(ICAP_XRESOLUTION))
            facts.x_resolution = pixels_an_inch(fixed(*value), unit);
    if (facts.y_resolution <= 0)
        if (const auto value = session_.get(ICAP_YRESOLUTION))
            facts.y_resolution = pixels_an_inch(fixed(*value), unit);
    // One side alone holds for both.
    if (facts.x_resolution <= 0)
        facts.x_resolution = facts.y_resolution;
    if (facts.y_resolution <= 0)
        facts.y_resolution = facts.x_resolution;
    facts.zero_is_light = session_.get(ICAP_PIXELFLAVOR) == TW_UINT32{TWPF_VANILLA};
    if (by_memory_ && facts.info.PixelType == TWPT_PALETTE)
        facts.palette = palette();
    return facts;
}

std::vector<Colour> PageTransfer::palette() const {
    TW_PALETTE8 told{};
    std::vector<Colour> colours;
    if (session_.image(DAT_PALETTE8, &told) != TWRC_SUCCESS || told.PaletteType > TWPA_GRAY)
        return colours;
    for (std::size_t i = 0; i < std::min<std::size_t>(told.NumColors, 256); ++i) {
        const TW_ELEMENT8& colour = told.Colors[i];
        const bool gray = told.PaletteType == TWPA_GRAY;
        colours.push_back({colour.Channel1, gray ? colour.Channel1 : colour.Channel2,
                           gray ? colour.Channel1 : colour.Channel3});
    }
    return colours;
}

TW_UINT32 PageTransfer::buffer_size() const {
    TW_SETUPMEMXFER setup{};
    const TW_UINT16 answer = session_.control(DAT_SETUPMEMXFER, MSG_GET, &setup);
    if (answer != TWRC_SUCCESS)
        fail(Step::kTransfer, answer);
    const auto told = [](TW_UINT32 size) { return size != 0 && size != TWON_DONTCARE32; };
    TW_UINT32 size = told(setup.Preferred) ? setup.Preferred : kUsualBuffer;
    const TW_UINT32 least = told(setup.MinBufSize) ? setup.MinBufSize : kSmallestBuffer;
    const TW_UINT32 most = told(setup.MaxBufSize) ? setup.MaxBufSize : kLargestBuffer;
    if (least > most || least > kLargestBuffer)
        throw PageRefused{};
    size = std::min(std::clamp(size, least, most), kLargestBuffer);
    return size;
}

bool PageTransfer::strips(const PageFacts& facts) {
    Sink sink(*this);
    StripPage page(facts, sink);
    std::vector<std::uint8_t> buffer(buffer_size());
    const auto room = static_cast<TW_UINT32>(buffer.size());
    for (auto heard = Clock::now();;) {
        TW_IMAGEMEMXFER strip{};
        strip.Compression = TWON_DONTCARE16;
        strip.BytesPerRow = strip.Columns = strip.Rows = TWON_DONTCARE32;
        strip.XOffset = strip.YOffset = TWON_DONTCARE32;
        strip.Memory = {TWMF_APPOWNS | TWMF_POINTER, room, buffer.data()};
        const TW_UINT16 answer = session_.image(DAT_IMAGEMEMXFER, &strip);
        if (answer == TWRC_FAILURE)
            fail(Step::kTransfer, answer);
        session_.transferring();
        if (answer == TWRC_CANCEL)
            return false;
        if (answer != TWRC_SUCCESS && answer != TWRC_XFERDONE)
            fail(Step::kTransfer, answer);
        const bool something = page.take(strip, buffer.data(), room);
        if (answer == TWRC_XFERDONE) {
            page.finish();
            end(page.rows());
            return true;
        }
        if (breathe_())
            return false;
        if (something)
            heard = Clock::now();
        else if (Clock::now() - heard >= idle_)
            fail(Step::kTransfer, answer);
        else
            Sleep(kRest);
    }
}

bool PageTransfer::whole(const PageFacts& facts) {
    TW_HANDLE handle = nullptr;
    const TW_UINT16 answer = session_.image(DAT_IMAGENATIVEXFER, &handle);
    if (answer == TWRC_XFERDONE || answer == TWRC_CANCEL)
        session_.transferring();
    Manager& manager = session_.manager();
    if (answer != TWRC_XFERDONE) {
        if (answer == TWRC_CANCEL)
            return false;
        fail(Step::kTransfer, answer);
    }
    if (handle == nullptr)
        throw PageRefused{};
    const auto* dib = static_cast<const std::uint8_t*>(manager.lock(handle));
    std::uint32_t rows = 0;
    try {
        Sink sink(*this);
        rows = read_dib(dib, Manager::readable_bytes(handle, dib), facts.x_resolution,
                        facts.y_resolution, sink);
    } catch (const PageRefused&) {
        manager.unlock(handle);
        manager.free(handle);
        throw;
    }
    manager.unlock(handle);
    manager.free(handle);
    end(rows);
    return true;
}

void PageTransfer::end(std::uint32_t rows) {
    FramePipe::of_process().send(Kind::kPageEnd, PageEnd{rows});
    begun_ = false;
}

} // namespace folidex::twain
