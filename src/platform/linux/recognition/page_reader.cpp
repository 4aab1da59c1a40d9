#include "platform/linux/recognition/page_reader.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "platform/linux/recognition/control_marks.h"
#include "platform/linux/recognition/glyph_places.h"
#include "platform/linux/recognition/letter_choice.h"
#include "platform/linux/recognition/other_script.h"
#include "platform/linux/recognition/parallel.h"
#include "platform/linux/recognition/word_spaces.h"

namespace ovrin {
namespace {

constexpr double tall = 1.5;      // times as high as wide: a column, or a line of a page that lies on its side
constexpr double column = 3;      // so high it is no single character
constexpr double doubtful = 0.8;  // below, a line may be turned otherwise
constexpr double sureOfHalves = 0.95;
constexpr int longestOfHalf = 400;  // columns that the network sees; in less, a line is not worth being cut in two

// What a reading is worth: its characters, each counted by its confidence.
double worth(const Reading& reading) {
    return meanConfidence(reading) * static_cast<double>(reading.size());
}

double worth(const Page& page) {
    double sum = 0;
    for (const Reading& reading : page.readings) sum += worth(reading);
    return sum;
}

// A bar alone is a capital I or the character for one, when it is as thick as letters are: a text cursor is thinner, a
// bullet thicker, a rule longer. The network takes it for whatever has that shape.
void nameBar(Reading& reading, const LinePiece& piece) {
    if (piece.runs.size() != 1 || reading.size() > 1 || !piece.flatBackground || piece.inkBox.empty()) return;
    constexpr double full = 0.6;
    if (cv::mean(piece.ink(piece.inkBox))[0] < full * 255) return;
    const double shape = static_cast<double>(piece.inkBox.width) / piece.inkBox.height;
    const bool isCapital = piece.turn == Turn::none && 1 / shape > 4 && 1 / shape < 12.5;
    const bool isOne = piece.turn == Turn::none && shape >= 6 && shape < 16;
    reading.clear();
    if (!isCapital && !isOne) return;
    reading.push_back({.code = isCapital ? U'I' : U'一',
                       .confidence = 0.98F,
                       .left = static_cast<double>(piece.inkBox.x),
                       .right = static_cast<double>(piece.inkBox.br().x)});
}

struct ReadPiece {
    LinePiece piece;
    Reading reading;
};

// Vertical writing is read like lines that lie on their right side: the network has learned that.
ReadPiece readBox(const cv::Mat& picture, const cv::Rect& box, const LineRecognizer& network,
                  const std::stop_token& stop, int longest) {
    ReadPiece best{cutLinePiece(picture, box, Turn::none), {}};
    const LinePiece& upright = best.piece;
    const bool isNarrowGlyph = upright.runs.size() == 1 && upright.inkBox.height > tall * upright.inkBox.width;
    if (box.height > column * box.width && !isNarrowGlyph) {
        best = {};
    } else if (!upright.runs.empty()) {
        best.reading = network.read(upright.color, stop, longest);
    }
    if (box.height <= tall * box.width || isNarrowGlyph) return best;
    for (const Turn turn : {Turn::counterclockwise, Turn::clockwise}) {
        if (meanConfidence(best.reading) >= doubtful) break;
        ReadPiece read{cutLinePiece(picture, box, turn), {}};
        if (!read.piece.runs.empty()) read.reading = network.read(read.piece.color, stop, longest);
        if (best.piece.runs.empty() || meanConfidence(read.reading) > meanConfidence(best.reading))
            best = std::move(read);
    }
    return best;
}

// What remains of the pieces once marks of the user interface are out, with its spaces.
Page cleaned(Page page) {
    Page text;
    text.confidence = page.confidence;
    for (std::size_t i = 0; i < page.pieces.size(); ++i) {
        LinePiece& piece = page.pieces[i];
        Reading& reading = page.readings[i];
        nameBar(reading, piece);
        placeOnInk(reading, piece);
        removeControlMarks(reading, piece);
        if (reading.empty()) continue;
        chooseByNeighbours(reading);
        restoreRepeatedMarks(reading, piece);
        if (piece.flatBackground) widenMarksByGaps(reading, piece.em);
        text.pieces.push_back(std::move(piece));
        text.readings.push_back(std::move(reading));
    }
    placeSpaces(text.readings, text.pieces);
    return text;
}

Page readAsItIs(const cv::Mat& picture, const PageReaders& readers, const std::stop_token& stop) {
    const auto boxes = readers.detector.detect(picture, stop);
    const LineRecognizer& network = *readers.network.get();
    std::vector<ReadPiece> read(boxes.size());
    const auto readAll = [&](int longest) {
        parallelFor(boxes.size(), [&](std::size_t i) { read[i] = readBox(picture, boxes[i], network, stop, longest); });
    };
    // The cores share a line that is the only one, as long as its halves show no doubt.
    const bool isAlone = boxes.size() == 1;
    if (isAlone) readAll(longestOfHalf);
    if (!isAlone || meanConfidence(read.front().reading) < sureOfHalves) readAll(LineRecognizer::longestPart);
    Page page;
    for (auto& [piece, reading] : read) {
        // Two boxes may have grown to the same ink.
        const bool isKnown = std::ranges::find(page.pieces, piece.box, &LinePiece::box) != page.pieces.end();
        if (piece.runs.empty() || isKnown) continue;
        page.pieces.push_back(std::move(piece));
        page.readings.push_back(std::move(reading));
    }
    readOtherScript(page.readings, page.pieces, network, readers.secondReaders, stop);
    double characters = 0;
    for (const Reading& reading : page.readings) characters += static_cast<double>(reading.size());
    if (characters > 0) page.confidence = worth(page) / characters;
    return cleaned(std::move(page));
}

// Reads the page as it is when turned that way; the pieces lie in the picture as it was given.
Page readTurnedPage(const cv::Mat& picture, Turn turn, const PageReaders& readers, const std::stop_token& stop) {
    const cv::Mat page = turned(picture, turn);
    Page result = readAsItIs(page, readers, stop);
    for (LinePiece& piece : result.pieces) {
        piece.box = turned(piece.box, opposite(turn), page.size());
        piece.turn = turn == Turn::half && piece.turn != Turn::none ? opposite(piece.turn) : turn;
    }
    return result;
}

}  // namespace

// Lines of Latin letters that stand on end are hardly found: a page without an upright line is looked at from its
// sides. One that is read badly may stand on its head.
Page readPage(const cv::Mat& picture, const PageReaders& readers, const std::stop_token& stop) {
    Page page = readAsItIs(picture, readers, stop);
    std::vector<Turn> turns;
    if (page.confidence > 0 && page.confidence < doubtful) turns.push_back(Turn::half);
    if (std::ranges::none_of(page.pieces, [](const LinePiece& piece) { return piece.turn == Turn::none; }))
        turns.insert(turns.end(), {Turn::counterclockwise, Turn::clockwise});
    // Columns are worth as much when they lie on their side, and keep their order as they are.
    constexpr double clearlyBetter = 1.1;
    constexpr double fewestCharacters = 2;  // a single one may look like another from every side
    for (const Turn turn : turns) {
        Page other = readTurnedPage(picture, turn, readers, stop);
        if (worth(other) > std::max(clearlyBetter * worth(page), fewestCharacters)) page = std::move(other);
    }
    return page;
}

}  // namespace ovrin
