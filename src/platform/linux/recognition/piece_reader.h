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
    // By Tesseract's names.
    struct Languages {
        std::vector<std::string> otherScripts;  // tried where the network can't read
        std::string markedLetters;              // "fra+deu": read together for letters such as ö; may be empty
    };

    PieceReader(const LineRecognizer& network, TesseractReader& tesseract, Languages languages);

    // One reading for each piece, in their order. The pieces must hold ink.
    std::vector<Reading> read(const std::vector<LinePiece>& pieces, const std::stop_token& stop) const;

private:
    const LineRecognizer& network_;
    TesseractReader& tesseract_;
    Languages languages_;
};

}  // namespace ovrin
