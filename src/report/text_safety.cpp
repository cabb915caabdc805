#include "text_safety.h"

#include <cstdint>

namespace q7report {
namespace {

const char kReplacement[] = "\xEF\xBF\xBD";  // U+FFFD

// The length of the valid UTF-8 sequence at `at`, or 0; its code point.
size_t SequenceAt(const std::string &text, size_t at, uint32_t &codePoint)
{
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned char lead = byte(at);
    size_t length = lead < 0x80 ? 1 : (lead & 0xE0) == 0xC0 ? 2 : (lead & 0xF0) == 0xE0 ? 3 : (lead & 0xF8) == 0xF0 ? 4 : 0;
    if (length == 0 || at + length > text.size())
        return 0;
    codePoint = length == 1 ? lead : lead & (0x7F >> length);
    for (size_t i = 1; i < length; i++) {
        if ((byte(at + i) & 0xC0) != 0x80)
            return 0;
        codePoint = (codePoint << 6) | (byte(at + i) & 0x3F);
    }
    static const uint32_t kShortest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (codePoint < kShortest[length] || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
        return 0;
    return length;
}

// The control picture of a C0 control (U+2400 to U+241F) or of DEL (U+2421):
// every one is three bytes of UTF-8.
std::string ControlPicture(uint32_t control)
{
    const uint32_t picture = control == 0x7F ? 0x2421 : 0x2400 + control;
    return {static_cast<char>(0xE0 | (picture >> 12)), static_cast<char>(0x80 | ((picture >> 6) & 0x3F)),
            static_cast<char>(0x80 | (picture & 0x3F))};
}

}  // namespace

bool IsValidUtf8(const std::string &text)
{
    uint32_t codePoint = 0;
    for (size_t at = 0; at < text.size();) {
        size_t length = SequenceAt(text, at, codePoint);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}

std::string ValidUtf8(const std::string &text)
{
    if (IsValidUtf8(text))
        return text;
    std::string valid;
    uint32_t codePoint = 0;
    for (size_t at = 0; at < text.size();) {
        size_t length = SequenceAt(text, at, codePoint);
        if (length == 0) {
            valid += kReplacement;
            at++;
        } else {
            valid.append(text, at, length);
            at += length;
        }
    }
    return valid;
}

std::string VisibleControls(const std::string &text)
{
    std::string visible;
    uint32_t codePoint = 0;
    for (size_t at = 0; at < text.size();) {
        size_t length = SequenceAt(text, at, codePoint);
        if (length == 0) {
            visible += kReplacement;
            at++;
            continue;
        }
        if ((codePoint < 0x20 && codePoint != '\t' && codePoint != '\n') || codePoint == 0x7F)
            visible += ControlPicture(codePoint);
        else if (codePoint == 0xFFFE || codePoint == 0xFFFF)
            visible += kReplacement;
        else
            visible.append(text, at, length);
        at += length;
    }
    return visible;
}

}  // namespace q7report
