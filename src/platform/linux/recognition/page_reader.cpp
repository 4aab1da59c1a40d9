#include "platform/linux/recognition/page_reader.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "platform/linux/recognition/control_marks.h"
#include "platform/linux/recognition/glyph_places.h"
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

// What the page's readings are worth: their characters, each counted by its confidence.
double worth(const std::vector<LinePiece>& page) {
    double sum = 0;
    for (const auto& piece : page) sum += meanConfidence(piece.reading) * static_cast<double>(piece.reading.size());
    return sum;
}

// A bar alone is a capital I or the character for one, when it is as thick as letters are: a text cursor is thinner, a
// bullet thicker, a rule longer. The network takes it for whatever has that shape.
void nameBar(LinePiece& piece) {
    constexpr double full = 0.6;
    if (!piece.flatBackground || piece.runs.size() != 1 || piece.reading.size() > 1) return;
    if (cv::mean(piece.ink(piece.inkBox))[0] < full * 255) return;
    const double shape = static_cast<double>(piece.inkBox.width) / piece.inkBox.height;
    piece.reading.clear();
    if (piece.turn != Turn::none) return;
    const ReadCharacter bar{.code = shape < 1 ? U'I' : U'一',
                            .confidence = 0.98F,
                            .left = static_cast<double>(piece.inkBox.x),
                            .right = static_cast<double>(piece.inkBox.br().x)};
    if ((shape > 0.08 && shape < 0.25) || (shape >= 6 && shape < 16)) piece.reading.push_back(bar);
}

// Vertical writing is read like lines that lie on their right side: the network has learned that.
LinePiece readBox(const cv::Mat& picture, const cv::Rect& box, const LineRecognizer& network,
                  const std::stop_token& stop, int longest) {
    LinePiece best;
    for (const Turn turn : {Turn::none, Turn::counterclockwise, Turn::clockwise}) {
        LinePiece piece = cutLinePiece(picture, box, turn);
        const bool isNarrowGlyph =
            turn == Turn::none && piece.runs.size() == 1 && piece.inkBox.height > tall * piece.inkBox.width;
        if (turn == Turn::none && box.height > column * box.width && !isNarrowGlyph) continue;
        if (!piece.runs.empty()) piece.reading = network.read(piece, {0, piece.color.cols}, stop, longest);
        if (best.runs.empty() || meanConfidence(piece.reading) > meanConfidence(best.reading)) best = std::move(piece);
        if (box.height <= tall * box.width || isNarrowGlyph || meanConfidence(best.reading) >= doubtful) break;
    }
    return best;
}

std::vector<LinePiece> readAsItIs(const cv::Mat& picture, const PageReaders& readers, const std::stop_token& stop) {
    auto boxes = readers.detector.detect(picture, stop);
    std::ranges::sort(boxes, std::greater(), &cv::Rect::width);  // a long line begun last would keep one core waiting
    const LineRecognizer& network = *readers.network.get();
    std::vector<LinePiece> page(boxes.size());
    const auto readAll = [&](int longest) {
        parallelFor(boxes.size(), [&](std::size_t i) { page[i] = readBox(picture, boxes[i], network, stop, longest); });
    };
    // The cores share a line that is the only one, as long as its halves show no doubt.
    const bool isAlone = boxes.size() == 1;
    if (isAlone) readAll(longestOfHalf);
    if (!isAlone || meanConfidence(page.front().reading) < sureOfHalves) readAll(LineRecognizer::longestPart);
    readOtherScript(page, network, readers.secondReaders, stop);
    return page;
}

// What remains once marks of the user interface are out, with its spaces.
std::vector<LinePiece> cleaned(std::vector<LinePiece> page) {
    for (LinePiece& piece : page) {
        nameBar(piece);
        placeOnInk(piece.reading, piece);
        removeControlMarks(piece);
    }
    std::erase_if(page, [](const LinePiece& piece) { return piece.reading.empty(); });
    placeSpaces(page);
    return page;
}

// Reads the page as it is when turned that way; the pieces lie in the picture as it was given.
std::vector<LinePiece> readTurned(const cv::Mat& picture, Turn turn, const PageReaders& readers,
                                  const std::stop_token& stop) {
    const cv::Mat turnedPicture = turned(picture, turn);
    auto page = cleaned(readAsItIs(turnedPicture, readers, stop));
    for (LinePiece& piece : page) {
        piece.box = turned(piece.box, opposite(turn), turnedPicture.size());
        piece.turn = turn == Turn::half && piece.turn != Turn::none ? opposite(piece.turn) : turn;
    }
    return page;
}

}  // namespace

// Lines of Latin letters that stand on end are hardly found: a page without an upright line is looked at from its
// sides. One that is read badly may stand on its head.
std::vector<LinePiece> readPage(const cv::Mat& picture, const PageReaders& readers, const std::stop_token& stop) {
    auto page = readAsItIs(picture, readers, stop);
    double characters = 0;
    for (const auto& piece : page) characters += static_cast<double>(piece.reading.size());
    std::vector<Turn> turns;
    if (worth(page) < doubtful * characters) turns.push_back(Turn::half);
    page = cleaned(std::move(page));
    if (std::ranges::none_of(page, [](const LinePiece& piece) { return piece.turn == Turn::none; }))
        turns.insert(turns.end(), {Turn::counterclockwise, Turn::clockwise});
    // Columns are worth as much when they lie on their side, and keep their order as they are.
    constexpr double clearlyBetter = 1.1;
    constexpr double fewestCharacters = 2;  // a single one may look like another from every side
    for (const Turn turn : turns) {
        auto other = readTurned(picture, turn, readers, stop);
        if (worth(other) > std::max(clearlyBetter * worth(page), fewestCharacters)) page = std::move(other);
    }
    return page;
}

}  // namespace ovrin
