// The decoder of the line discipline: any bytes in any portions must neither harm it nor make a frame of
// forbidden length; and whatever is encoded comes back whole, however it is cut and whatever came before.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "platform/rvcom/linediscipline.h"

namespace {

void Check(bool bHolds) {
    if (!bHolds) {
        std::abort();
    }
}

/// Puts Bytes in portions of the lengths that Cuts gives, over and over.
void PutInPortions(LineDiscipline::CDecoder& rDecoder, std::span<const std::uint8_t> Bytes,
                   std::span<const std::uint8_t> Cuts) {
    std::size_t nCut = 0;
    while (!Bytes.empty()) {
        const std::size_t nWanted = Cuts.empty() ? Bytes.size() : Cuts[nCut++ % Cuts.size()] + std::size_t{1};
        const std::size_t nPortion = std::min(nWanted, Bytes.size());
        rDecoder.Put(Bytes.first(nPortion));
        Bytes = Bytes.subspan(nPortion);
    }
}

}  // namespace

/// Byte 0: how many of the next ones (at most 15) are lengths of portions. The rest is the line, and a frame.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    std::span<const std::uint8_t> Input(pData, nSize);
    if (Input.empty()) {
        return 0;
    }
    const std::size_t nCuts = std::min<std::size_t>(Input[0] & 0x0FU, nSize - 1);
    const auto Cuts = Input.subspan(1, nCuts);
    const auto Line = Input.subspan(1 + nCuts);

    std::vector<std::vector<std::uint8_t>> Frames;
    LineDiscipline::CDecoder Decoder([&Frames](std::span<const std::uint8_t> Frame) {
        Check(Frame.size() >= LineDiscipline::MIN_FRAME && Frame.size() <= LineDiscipline::MAX_FRAME);
        Frames.emplace_back(Frame.begin(), Frame.end());
    });
    PutInPortions(Decoder, Line, Cuts);

    // In one piece, the same frames come out.
    std::size_t nWhole = 0;
    LineDiscipline::CDecoder Whole([&](std::span<const std::uint8_t> Frame) {
        Check(nWhole < Frames.size() && std::ranges::equal(Frame, Frames[nWhole]));
        ++nWhole;
    });
    Whole.Put(Line);
    Check(nWhole == Frames.size());
    Check(Whole.GetBadCrc() == Decoder.GetBadCrc() && Whole.GetTooShort() == Decoder.GetTooShort() &&
          Whole.GetTooLong() == Decoder.GetTooLong());

    // The input as a frame, behind the input as noise. The noise may end in bytes that its END makes a frame.
    Decoder.Put(std::vector<std::uint8_t>{0xC0});
    Frames.clear();
    PutInPortions(Decoder, LineDiscipline::Encode(Line), Cuts);
    const bool bPossible =
        Line.size() >= LineDiscipline::MIN_FRAME && Line.size() <= LineDiscipline::MAX_FRAME;
    Check(Frames.size() == (bPossible ? 1U : 0U));
    Check(!bPossible || std::ranges::equal(Frames[0], Line));
    return 0;
}
