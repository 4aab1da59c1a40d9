// The marks on Latin letters. The network's list holds only some of the marked letters of Europe's languages; it reads
// the others as their bare letters.
#pragma once

#include "platform/linux/recognition/reading.h"

namespace ovrin {

// Whether there is a letter such as é: the picture is then likely to hold others that the network can't name.
bool hasMarkedLetter(const Reading& reading);

// Gives bare letters the marks that the other reading of the same piece saw on the same letters; changes nothing else.
void adoptDiacritics(Reading& reading, const Reading& other);

}  // namespace ovrin
