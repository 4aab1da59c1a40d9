// The alphabetical order of text.h.
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/stringpiece.h>

#include "base/text.h"

namespace ovrin::text {
namespace {

icu::Locale collationLocale(const Environment& environment) {
    for (const char* name : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        // "de_DE.UTF-8" and the like, as the environment spells it.
        if (const auto locale = environment.value(name)) return icu::Locale::createCanonical(locale->c_str());
    }
    return icu::Locale::getRoot();
}

}  // namespace

struct CaseInsensitiveOrder::Rules {
    std::unique_ptr<icu::Collator> collator;  // none where the Unicode library has no data
};

CaseInsensitiveOrder::CaseInsensitiveOrder(const Environment& environment) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(collationLocale(environment), status));
    if (U_FAILURE(status)) collator.reset();
    if (collator) collator->setStrength(icu::Collator::SECONDARY);
    rules_ = std::make_unique<const Rules>(Rules{.collator = std::move(collator)});
}

CaseInsensitiveOrder::~CaseInsensitiveOrder() = default;
CaseInsensitiveOrder::CaseInsensitiveOrder(CaseInsensitiveOrder&&) noexcept = default;
CaseInsensitiveOrder& CaseInsensitiveOrder::operator=(CaseInsensitiveOrder&&) noexcept = default;

int CaseInsensitiveOrder::compare(std::string_view first, std::string_view second) const {
    if (!rules_->collator) return lowercased(first).compare(lowercased(second));
    UErrorCode status = U_ZERO_ERROR;
    return rules_->collator->compareUTF8(icu::StringPiece(first.data(), static_cast<std::int32_t>(first.size())),
                                         icu::StringPiece(second.data(), static_cast<std::int32_t>(second.size())),
                                         status);
}

}  // namespace ovrin::text
