// What the programs that measure the assistant from outside have in common.
#pragma once

#include <chrono>
#include <functional>
#include <vector>

namespace ovrin {

class Image;
class OnnxTextRecognizer;

double millisecondsSince(std::chrono::steady_clock::time_point begin);

// Of at least one value.
double median(std::vector<double> values);
double medianOf(int runs, const std::function<double()>& measure);

// Milliseconds, with the options of the assistant.
double recognitionTime(OnnxTextRecognizer& recognizer, const Image& picture);

// Prints a figure beside its limit.
void report(const char* what, double value, const char* unit, double limit);

// Like waitFor(), with pauses so short that the time may count. Without any, who is waited for would have to share what
// is left of the machine. Throws Error after half a minute.
void spinUntil(const char* what, const std::function<bool()>& condition,
               std::chrono::milliseconds pause = std::chrono::milliseconds(1));

}  // namespace ovrin
