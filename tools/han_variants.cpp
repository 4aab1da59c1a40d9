// Writes a header with the Chinese characters that only one of the two standards has, from ICU's tables. Making these
// tables takes ICU 20 ms, which nobody should wait for who wants to know the language of a text.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <set>

#include <unicode/translit.h>
#include <unicode/unistr.h>

namespace {

// The unified ideographs in common use that the transliterator changes.
std::set<std::uint32_t> changedBy(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Transliterator> transform(
        icu::Transliterator::createInstance(name, UTRANS_FORWARD, status));
    std::set<std::uint32_t> changed;
    if (U_FAILURE(status) || !transform) return changed;
    for (std::uint32_t character = 0x4e00; character < 0xa000; ++character) {
        icu::UnicodeString text(static_cast<UChar32>(character));
        transform->transliterate(text);
        if (text.countChar32() == 1 && text.char32At(0) != static_cast<UChar32>(character)) changed.insert(character);
    }
    return changed;
}

void write(const char* name, const std::set<std::uint32_t>& characters) {
    std::printf("inline constexpr char16_t %s[] = {", name);
    for (const auto character : characters) std::printf("0x%x,", character);
    std::puts("};");
}

}  // namespace

int main() {
    const auto traditional = changedBy("Traditional-Simplified");
    auto simplified = changedBy("Simplified-Traditional");
    for (const auto character : traditional) simplified.erase(character);
    if (traditional.empty() || simplified.empty()) {
        std::fputs("ICU has no tables of Chinese variants.\n", stderr);
        return 1;
    }
    std::puts("#pragma once\nnamespace ovrin {");
    write("traditionalOnly", traditional);
    write("simplifiedOnly", simplified);
    std::puts("}");
    return 0;
}
