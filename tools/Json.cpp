#include "Json.h"

#include <cmath>
#include <cstdio>

#include "Output.h"

namespace xuntool {

Json JsonText(const std::string& text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        const size_t length = Utf8SequenceLength(text, i);
        if (length == 0) {
            // Not UTF-8: the byte read as a Latin-1 character.
            const unsigned char c = static_cast<unsigned char>(text[i++]);
            utf8 += static_cast<char>(0xC0 | (c >> 6));
            utf8 += static_cast<char>(0x80 | (c & 0x3F));
            continue;
        }
        utf8.append(text, i, length);
        i += length;
    }
    return Json(utf8);
}

Json JsonNumber(double value) {
    if (!std::isfinite(value))
        return Json(nullptr);
    // Integers up to 2^53 are exact in a double, and print without ".0".
    if (std::fabs(value) <= 9007199254740992.0 && std::trunc(value) == value)
        return Json(static_cast<long long>(value));
    return Json(value);
}

void PrintJson(const Json& document) {
    const std::string text = document.dump(2);
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}

} // namespace xuntool
