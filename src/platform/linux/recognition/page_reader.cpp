#include "platform/linux/recognition/page_reader.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <opencv2/imgproc.hpp>

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

bool isTall(const TextRegion& region, double ratio) {
    return region.slant.size.empty() && region.box.height > ratio * region.box.width;
}

// A bar alone is a capital I or the character for one, when it is as thick as letters are: a text cursor is thinner, a
// bullet thicker, a rule longer. The network takes it for whatever has that shape.
void nameBar(Reading& reading, const LinePiece& piece) {
    if (piece.runs.size() != 1 || reading.size() > 1 || !piece.flatBackground || piece.inkBox.empty()) return;
    constexpr double full = 0.65;
    if (cv::mean(piece.ink(piece.inkBox))[0] < full * 255) return;
    const double shape = static_cast<double>(piece.inkBox.width) / piece.inkBox.height;
    const bool upright = piece.turn == Turn::none || piece.turn == Turn::half;
    const bool isCapital = upright && 1 / shape > 4 && 1 / shape < 12.5;
    const bool isOne = upright && shape > 7 && shape < 16;
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

class PagePass {
public:
    PagePass(const cv::Mat& picture, const PageReaders& readers, const std::stop_token& stop)
        : picture_(picture), readers_(readers), stop_(stop), regions_(readers.detector.detect(picture, stop)) {}

    Page run() {
        // The widest first, so that the cores end together.
        std::ranges::sort(regions_, std::greater(), [](const TextRegion& region) {
            return static_cast<double>(std::max(region.box.width, region.box.height)) /
                   std::min(region.box.width, region.box.height);
        });
        auto read = readAll(Turn::none);
        if (isUpsideDown(read)) read = readAll(Turn::half);
        Page page;
        for (auto& [piece, reading] : read) {
            if (piece.runs.empty()) continue;
            page.pieces.push_back(std::move(piece));
            page.readings.push_back(std::move(reading));
        }
        for (SecondReader* reader : readers_.secondReaders)
            readOtherScript(page.readings, page.pieces, readers_.network, *reader, stop_);
        return finished(std::move(page));
    }

private:
    ReadPiece readTurned(const TextRegion& region, Turn turn) const {
        ReadPiece read{cutLinePiece(picture_, region, turn), {}};
        if (!read.piece.runs.empty()) read.reading = readers_.network.read(read.piece.color, stop_);
        return read;
    }

    // Vertical writing is read like lines that lie on their right side: the network has learned that.
    ReadPiece readRegion(const TextRegion& region, Turn turn) const {
        if (!isTall(region, tall)) return readTurned(region, turn);
        std::vector<Turn> turns = {Turn::counterclockwise, Turn::clockwise};
        if (!isTall(region, column)) turns.insert(turns.begin(), turn);
        ReadPiece upright{cutLinePiece(picture_, region, turn), {}};
        if (upright.piece.runs.size() == 1 && upright.piece.inkBox.height > tall * upright.piece.inkBox.width) {
            upright.reading = readers_.network.read(upright.piece.color, stop_);
            return upright;  // a single narrow glyph
        }
        ReadPiece best;
        for (const Turn one : turns) {
            ReadPiece read = readTurned(region, one);
            const double confidence = meanConfidence(read.reading);
            if (best.piece.runs.empty() || confidence > meanConfidence(best.reading)) best = std::move(read);
            if (confidence >= doubtful) break;
        }
        return best;
    }

    std::vector<ReadPiece> readAll(Turn turn) const {
        std::vector<ReadPiece> read(regions_.size());
        parallelFor(regions_.size(), recognitionThreads(),
                    [&](std::size_t index) { read[index] = readRegion(regions_[index], turn); });
        return read;
    }

    // When most of the text is read badly and the longest lines are read well from the other side.
    bool isUpsideDown(const std::vector<ReadPiece>& read) const {
        constexpr std::size_t samples = 3;
        constexpr double convincing = 0.9;
        double characters = 0, confidence = 0;
        for (const auto& one : read) {
            characters += static_cast<double>(one.reading.size());
            confidence += meanConfidence(one.reading) * static_cast<double>(one.reading.size());
        }
        if (characters > 0 && confidence / characters >= doubtful) return false;
        double turned = 0, count = 0;
        for (std::size_t i = 0; i < std::min(samples, regions_.size()); ++i) {
            if (isTall(regions_[i], tall)) continue;
            const Reading reading = readTurned(regions_[i], Turn::half).reading;
            constexpr std::size_t enough = 3;
            if (reading.size() < enough) return false;
            turned += meanConfidence(reading);
            ++count;
        }
        return count > 0 && turned / count >= convincing;
    }

    static Page finished(Page page) {
        Page text;
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

    const cv::Mat& picture_;
    const PageReaders& readers_;
    const std::stop_token& stop_;
    std::vector<TextRegion> regions_;
};

// What a reading of the page is worth: its characters, each counted by its confidence.
double worth(const Page& page) {
    double sum = 0;
    for (const Reading& reading : page.readings) sum += meanConfidence(reading) * static_cast<double>(reading.size());
    return sum;
}

// Reads the page as it is when turned that way; the pieces lie in the picture as it was given.
Page readTurnedPage(const cv::Mat& picture, Turn turn, const PageReaders& readers, const std::stop_token& stop) {
    const bool isClockwise = turn == Turn::clockwise;
    const Turn opposite = isClockwise ? Turn::counterclockwise : Turn::clockwise;
    cv::Mat turned;
    cv::rotate(picture, turned, isClockwise ? cv::ROTATE_90_CLOCKWISE : cv::ROTATE_90_COUNTERCLOCKWISE);
    Page page = PagePass(turned, readers, stop).run();
    for (LinePiece& piece : page.pieces) {
        const cv::Rect& box = piece.box;
        piece.box = isClockwise ? cv::Rect(box.y, picture.rows - box.br().x, box.height, box.width)
                                : cv::Rect(picture.cols - box.br().y, box.x, box.height, box.width);
        piece.turn = piece.turn == Turn::half ? opposite : turn;
    }
    return page;
}

}  // namespace

// Lines of Latin letters that stand on end are hardly found: a page without an upright line is looked at from its
// sides.
Page readPage(const cv::Mat& picture, const PageReaders& readers, const std::stop_token& stop) {
    Page page = PagePass(picture, readers, stop).run();
    const auto isUpright = [](const LinePiece& piece) { return piece.turn == Turn::none || piece.turn == Turn::half; };
    if (std::ranges::any_of(page.pieces, isUpright)) return page;
    // Columns are worth as much when they lie on their side, and keep their order as they are.
    constexpr double clearlyBetter = 1.1;
    for (const Turn turn : {Turn::counterclockwise, Turn::clockwise}) {
        Page turned = readTurnedPage(picture, turn, readers, stop);
        if (worth(turned) > clearlyBetter * worth(page)) page = std::move(turned);
    }
    return page;
}

}  // namespace ovrin
