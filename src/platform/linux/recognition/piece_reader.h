// Reads the pieces of one picture: with the network first, then, where the evidence says that it could not, with
// Tesseract in the language that the picture turns out to be in.
#pragma once

#include <stop_token>
#include <string>
#include <vector>

#include "platform/linux/recognition/line_piece.h"
#include "platform/linux/recognition/line_recognizer.h"
#include "platform/linux/recognition/reading.h"
#include "platform/linux/recognition/tesseract_reader.h"

namespace ovrin {

class PieceReader {
public:
    PieceReader(const LineRecognizer& network, TesseractReader& tesseract, std::vector<std::string> languages);

    // One reading for each piece, in their order. The pieces must hold ink.
    std::vector<Reading> read(const std::vector<LinePiece>& pieces, const std::stop_token& stop) const;

private:
    const LineRecognizer& network_;
    TesseractReader& tesseract_;
    std::vector<std::string> languages_;  // Tesseract's names
};

}  // namespace ovrin
