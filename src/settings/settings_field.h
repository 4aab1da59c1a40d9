// One value that the settings window edits: what its control shows, the quiet line that says where it stands, and what
// went wrong with it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "base/published.h"

namespace ovrin {

// Where a field stands, for a quiet line below its control.
struct SettingsNote {
    enum class Kind : std::uint8_t {
        none,
        loading,           // the keyring has not answered yet; the control is disabled meanwhile
        unread,            // the keyring did not tell it; what is stored stays unless something is typed
        unsaved,           // holds a draft
        changedElsewhere,  // holds a draft, and what is stored has become something else
        provided,          // an environment variable gives the value
    };

    Kind kind = Kind::none;
    std::string text = {};  // for the user; empty when none

    bool operator==(const SettingsNote&) const = default;
};

SettingsNote settingsNote(SettingsNote::Kind kind);
// variable: the environment variable that gives the effective value. isShown: whether the field shows that value.
SettingsNote providedNote(const std::string& variable, bool isShown);

// Views read; the SettingsStore changes. Main thread. Same: whether two values are the same for the user.
template <typename T, typename Same = std::equal_to<>>
class SettingsField {
public:
    const Published<T>& value() const { return value_; }
    const Published<SettingsNote>& note() const { return note_; }
    // What the user has to know about the value, below its control; empty when all is well.
    const Published<std::string>& error() const { return error_; }

    // Differs from what was loaded or saved last.
    bool isDraft() const { return !Same()(value_.value(), saved_); }
    // What is stored could not be had.
    bool isUnread() const { return reading_ == Reading::failed; }

    // The user's edit. What was wrong with the value before is forgotten.
    void edit(T value) {
        value_.set(std::move(value));
        error_.set({});
        tell();
    }

    // What counts by now, and the environment variable that it comes from, if any. A field without a draft takes it; a
    // draft stays, and is told of a change.
    void follow(const T& effective, std::optional<std::string> variable = {}) {
        variable_ = std::move(variable);
        reading_ = Reading::done;
        if (!effective_ || !Same()(effective, *effective_)) {
            const bool hadDraft = isDraft();
            isChangedElsewhere_ = hadDraft && effective_.has_value();
            saved_ = effective;
            effective_ = effective;
            if (!hadDraft) value_.set(effective);
        }
        tell();
    }

    // The value was stored; the user may have gone on editing since. effective: what counts by now, which is another
    // value where an environment variable overrides.
    void markSaved(T value, T effective) {
        reading_ = Reading::done;
        isChangedElsewhere_ = false;
        saved_ = std::move(value);
        effective_ = std::move(effective);
        tell();
    }

    // Drops a draft.
    void revert() {
        value_.set(saved_);
        tell();
    }

    // What is stored is being asked for, or could not be had.
    void setLoading() { setReading(Reading::underWay); }
    void setUnread() { setReading(Reading::failed); }

    void setError(std::string text) { error_.set(std::move(text)); }

private:
    enum class Reading : std::uint8_t { done, underWay, failed };

    void setReading(Reading reading) {
        reading_ = reading;
        tell();
    }

    void tell() {
        using Kind = SettingsNote::Kind;
        if (!isDraft()) isChangedElsewhere_ = false;
        if (reading_ == Reading::underWay) return note_.set(settingsNote(Kind::loading));
        if (isDraft()) return note_.set(settingsNote(isChangedElsewhere_ ? Kind::changedElsewhere : Kind::unsaved));
        if (isUnread()) return note_.set(settingsNote(Kind::unread));
        if (!variable_) return note_.set({});
        note_.set(providedNote(*variable_, effective_ && Same()(value_.value(), *effective_)));
    }

    Published<T> value_;
    Published<SettingsNote> note_;
    Published<std::string> error_;
    T saved_{};                   // what the field held when it was loaded or saved
    std::optional<T> effective_;  // what the program goes by; none when that has never been known
    std::optional<std::string> variable_;
    Reading reading_ = Reading::done;
    bool isChangedElsewhere_ = false;
};

}  // namespace ovrin
