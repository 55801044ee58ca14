#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace framora {

/// Takes the colours of a coded picture to sRGB, told by the numbers of ITU-T H.273.
///
/// The transfer functions of standard video count as sRGB's own, as every player has it; so do the primaries
/// of standard-definition video, whose difference is smaller than the truth of their labels. Display P3 and
/// BT.2020 are converted. High dynamic range (PQ, HLG) has its reference white of 203 cd/m2 at sRGB's white,
/// and what is brighter is rolled off into the upper half of the range, hue kept.
class CodedColors {
public:
    CodedColors(int primaries, int transfer);

    /// Whether there is nothing to do.
    bool isSrgb() const { return m_isSrgb; }

    /// Converts pixels of four 16-bit channels in place: red, green, blue, alpha; straight, 65535 is full.
    /// Alpha stays.
    void toSrgb(std::span<std::uint16_t> rgba) const;

private:
    bool m_isSrgb = true;
    bool m_isHlg = false;
    bool m_isHdr = false;
    std::array<float, 9> m_toSrgb{}; ///< linear, row by row
    std::array<float, 3> m_luminance{};
    std::vector<float> m_linear;          ///< by coded value; 1 is white
    std::vector<std::uint16_t> m_encoded; ///< sRGB's by linear value
};

} // namespace framora
