// The names of languages as the prompts and windows write them.
#pragma once

#include <string>
#include <string_view>

namespace ovrin {

// The American English name of the whole tag, else of its language, else the tag itself. Any thread.
std::string englishLanguageName(std::string_view tag);

// What a language is called in the windows: the name from the offered languages, else the English one, else the tag.
// Any thread.
std::string displayLanguageName(std::string_view tag);

}  // namespace ovrin
