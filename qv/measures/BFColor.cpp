// Hue follows the usual hexcone model: the sector is chosen by the largest channel, red before
// green before blue on ties, and the position within it by the other two.
#include <qv/measures/BFColor.h>

float BFColor::Hue() const noexcept {
    float const max = Max();
    float const d = max - Min();
    if (!(max > 0.0f) || !(d / max > 0.0f))
        return 0.0f;
    float h;
    if (max == m_red)
        h = (m_green - m_blue) / d;
    else if (max == m_green)
        h = (m_blue - m_red) / d + 2.0f;
    else
        h = (m_red - m_green) / d + 4.0f;
    h *= 60.0f;
    return h < 0.0f ? h + 360.0f : h;
}

void BFColor::ConvertToHSB(float& hue, float& saturation, float& brightness) const noexcept {
    hue = Hue();
    saturation = Saturation();
    brightness = Brightness();
}

BFColor BFColor::Average(BArray<BFColor>* colors) {
    unsigned long long const n = colors->Count();
    if (n == 0)
        return {0.0f, 0.0f, 0.0f, 0.0f};
    float sum[4] = {};
    for (BFColor const& c : *colors) {
        sum[0] += c.m_red;
        sum[1] += c.m_green;
        sum[2] += c.m_blue;
        sum[3] += c.m_alpha;
    }
    auto const count = static_cast<float>(n);
    return {sum[0] / count, sum[1] / count, sum[2] / count, sum[3] / count};
}

void BFColor::Read(std::FILE* stream) {
    float channels[4];
    if (std::fread(channels, sizeof channels, 1, stream) != 1)
        return;
    m_red = channels[0];
    m_green = channels[1];
    m_blue = channels[2];
    m_alpha = channels[3];
}

void BFColor::Write(std::FILE* stream) const {
    float const channels[4] = {m_red, m_green, m_blue, m_alpha};
    std::fwrite(channels, sizeof channels, 1, stream);
}

template <>
BArchive& BArchive::operator<<(BFColor const& color) {
    return *this << color.Red() << color.Green() << color.Blue() << color.Alpha();
}

template <>
BArchive& BArchive::operator>>(BFColor& color) {
    float red = color.Red(), green = color.Green(), blue = color.Blue(), alpha = color.Alpha();
    *this >> red >> green >> blue >> alpha;
    color = BFColor(red, green, blue, alpha);
    return *this;
}
