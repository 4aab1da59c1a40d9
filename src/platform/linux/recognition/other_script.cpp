#include "platform/linux/recognition/other_script.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "platform/linux/recognition/glyph_places.h"
#include "platform/linux/recognition/parallel.h"
#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

// Chosen on eleven Korean pictures and 77 others. Stretches of three syllables and more mostly get 0.97 and above from
// Tesseract, what only looks like such to it gets 0.93 at most.
constexpr double establishing = 0.96;
constexpr double following = 0.9;
// Of a word: on drawn lines in five narrow scripts their readers mostly give words of their own 0.993 and above, Latin
// words 0.99 at most.
constexpr double certain = 0.992;
constexpr double sureNetwork = 0.88;     // a word's mean confidence; of Hangul the network makes less
constexpr double sureHan = 0.985;        // of a Chinese word: the network makes such of Hangul
constexpr float sureLetter = 0.9F;       // of one letter
constexpr double doubtful = 0.6;         // of a stretch that may establish the script
constexpr double wordGap = 0.22;         // ems
constexpr double mostUnexplained = 0.2;  // share of a word's ink
constexpr double mostGlyphs = 0.2;       // and how many squares that makes
constexpr std::size_t mostAttempts = 4;  // readings of a picture that may well hold nothing of the script
constexpr double fewestGlyphs = 2.5;     // squares of ink of these

// Words side by side that the network could not read.
struct Stretch {
    std::size_t piece = 0;
    ColumnRun columns;
    Reading reading;                       // the second reader's
    const SecondReader* reader = nullptr;  // whose that is
};

std::vector<ColumnRun> wordsOf(const LinePiece& piece) {
    std::vector<ColumnRun> words;
    for (const auto& run : piece.runs) {
        if (words.empty() || run.left - words.back().right > wordGap * piece.em) {
            words.push_back(run);
        } else {
            words.back().right = run.right;
        }
    }
    return words;
}

bool isIn(const ReadCharacter& character, const ColumnRun& columns, double tolerance = 0) {
    return character.center() > columns.left - tolerance && character.center() < columns.right + tolerance;
}

Reading partOf(const Reading& reading, const ColumnRun& columns, double tolerance = 0) {
    Reading part;
    std::ranges::copy_if(reading, std::back_inserter(part),
                         [&](const ReadCharacter& character) { return isIn(character, columns, tolerance); });
    return part;
}

// Puts the characters, which a reader saw in these columns alone, on the ink of just these.
void placeOnInkOf(const ColumnRun& columns, Reading& reading, LinePiece piece) {
    std::erase_if(piece.runs,
                  [&](const ColumnRun& run) { return run.center() < columns.left || run.center() > columns.right; });
    placeOnInk(reading, piece);
}

ColumnRun withMargin(const ColumnRun& columns, const LinePiece& piece) {
    const int margin = static_cast<int>(std::lround(0.2 * piece.em));
    return {std::max(0, columns.left - margin), std::min(piece.color.cols, columns.right + margin)};
}

// Where the part of a word begins that the network could not read: Korean puts its endings right behind words in Latin
// letters, which the network reads. The reading must be on its ink.
int unreadColumn(const Reading& reading, const ColumnRun& word) {
    int column = word.left;
    std::size_t letters = 0;
    for (const auto& character : partOf(reading, word)) {
        const Script script = scriptOf(character.code);
        const bool foreign = script == Script::latin || script == Script::digit || script == Script::mark;
        if (!foreign || character.confidence < sureLetter) break;
        if (script != Script::latin) continue;
        ++letters;
        column = static_cast<int>(std::lround(character.right));
    }
    return letters >= 2 && column < word.right ? column : word.left;
}

class OtherScript {
public:
    OtherScript(std::vector<Reading>& readings, const std::vector<LinePiece>& pieces, const LineRecognizer& network,
                std::span<SecondReader* const> readers, const std::stop_token& stop)
        : readings_(readings),
          pieces_(pieces),
          network_(network),
          readers_(readers.begin(), readers.end()),
          stop_(stop) {}

    void run() {
        for (std::size_t i = 0; i < pieces_.size(); ++i) findStretches(i);
        std::ranges::sort(stretches_, std::greater(), [&](const Stretch& stretch) { return glyphs(stretch); });
        // The longest that the network saw next to nothing of show which script is there, if any.
        const auto rest = std::stable_partition(stretches_.begin(), stretches_.end(),
                                                [&](const Stretch& stretch) { return isBlank(stretch); });
        const auto attempts = std::min<std::size_t>(mostAttempts, static_cast<std::size_t>(rest - stretches_.begin()));
        readStretches(0, attempts);
        std::erase_if(readers_, [&](const SecondReader* reader) {
            return std::ranges::none_of(
                stretches_, [&](const Stretch& stretch) { return stretch.reader == reader && establishes(stretch); });
        });
        if (readers_.empty()) return;
        readStretches(0, stretches_.size());
        for (const Stretch& stretch : stretches_) take(stretch);
    }

private:
    // The network knows some letters of other scripts, but not those scripts.
    bool isForeign(const Reading& reading) const {
        return std::ranges::any_of(readers_,
                                   [&](const SecondReader* reader) { return ownCount(*reader, reading) > 0; });
    }

    bool isRead(const Reading& reading, const LinePiece& piece, const ColumnRun& word) const {
        const Reading part = partOf(reading, word, 0.15 * piece.em);
        const bool isHan = std::ranges::all_of(
            part, [](const ReadCharacter& character) { return scriptOf(character.code) == Script::han; });
        const double unexplained = unexplainedInk(part, piece, word);
        return meanConfidence(part) >= (isHan ? sureHan : sureNetwork) && !isForeign(part) &&
               (unexplained < mostUnexplained || unexplained * word.width() / piece.em < mostGlyphs);
    }

    double glyphs(const Stretch& stretch) const { return stretch.columns.width() / pieces_[stretch.piece].em; }

    void findStretches(std::size_t index) {
        const LinePiece& piece = pieces_[index];
        Reading placed = readings_[index];
        placeOnInk(placed, piece);
        bool continues = false;
        for (const auto& word : wordsOf(piece)) {
            const bool unread = !isRead(readings_[index], piece, word);
            const int column = unread ? unreadColumn(placed, word) : word.left;
            if (unread && continues && column == word.left) {
                stretches_.back().columns.right = word.right;
            } else if (unread) {
                stretches_.push_back({index, {column, word.right}, {}, nullptr});
            }
            continues = unread;
        }
    }

    bool isBlank(const Stretch& stretch) const {
        const Reading network = partOf(readings_[stretch.piece], stretch.columns);
        return glyphs(stretch) >= fewestGlyphs &&
               (meanConfidence(network) < doubtful || isForeign(network) ||
                unexplainedInk(network, pieces_[stretch.piece], stretch.columns) > 0.5);
    }

    // Has every reader that is left read them, and keeps what is most credible.
    void readStretches(std::size_t first, std::size_t last) {
        parallelFor(last - first, [&](std::size_t index) {
            Stretch& stretch = stretches_[first + index];
            const LinePiece& piece = pieces_[stretch.piece];
            const auto isLeft = std::ranges::find(readers_, stretch.reader) != readers_.end();
            double best = isLeft ? credibility(*stretch.reader, stretch.reading, piece, stretch.columns) : -1;
            for (SecondReader* reader : readers_) {
                if (reader == stretch.reader) continue;
                Reading reading = reader->read(piece, withMargin(stretch.columns, piece), stop_);
                placeOnInkOf(stretch.columns, reading, piece);
                const double worth = credibility(*reader, reading, piece, stretch.columns);
                if (worth <= best) continue;
                best = worth;
                stretch.reading = std::move(reading);
                stretch.reader = reader;
            }
        });
    }

    static std::size_t ownCount(const SecondReader& reader, const Reading& reading) {
        return static_cast<std::size_t>(std::ranges::count_if(
            reading, [&](const ReadCharacter& character) { return reader.isOwn(character.code); }));
    }

    // What the reader made of these columns, and how far that can be believed: 0 where it is not of the reader's script
    // or the picture does not support it.
    static double credibility(const SecondReader& reader, const Reading& reading, const LinePiece& piece,
                              const ColumnRun& columns) {
        const std::size_t own = ownCount(reader, reading);
        std::size_t others = 0;
        double width = 0;
        for (const auto& character : reading) {
            const Script script = scriptOf(character.code);
            if (!reader.isOwn(character.code) && script != Script::mark && script != Script::digit) ++others;
            width += isWide(character.code) ? 0.95 : 0.5;
        }
        const double ratio = width * piece.glyphHeight() / columns.width();
        const bool supported = ratio > 0.55 && ratio < 1.7 && unexplainedInk(reading, piece, columns) <= 0.35;
        return own > 0 && own >= others && supported ? meanConfidence(reading) : 0;
    }

    // Enough of the script and little else.
    bool establishes(const Stretch& stretch) const {
        const std::size_t own = ownCount(*stretch.reader, stretch.reading);
        return own >= 3 && own * 3 >= stretch.reading.size() * 2 &&
               credibility(*stretch.reader, stretch.reading, pieces_[stretch.piece], stretch.columns) >= establishing;
    }

    void take(const Stretch& stretch) {
        const LinePiece& piece = pieces_[stretch.piece];
        // A single character amid others is as likely a mark of another kind, unless the line holds more of the script.
        const bool amidOthers = stretch.columns.width() < 0.8 * piece.inkBox.width;
        const bool hasNeighbours = std::ranges::any_of(stretches_, [&](const Stretch& other) {
            return &other != &stretch && other.piece == stretch.piece && ownCount(*other.reader, other.reading) > 1;
        });
        if (ownCount(*stretch.reader, stretch.reading) < 2 && amidOthers && !hasNeighbours) return;
        for (const auto& word : wordsOf(piece)) {
            if (word.right <= stretch.columns.left || word.left >= stretch.columns.right) continue;
            takeWord(stretch, {std::max(word.left, stretch.columns.left), word.right});
        }
    }

    // Puts the second reader's part of a word into the reading where it is of its script. What else it makes of letters
    // is worth nothing: the network reads those when it sees the word alone.
    void takeWord(const Stretch& stretch, const ColumnRun& word) {
        const LinePiece& piece = pieces_[stretch.piece];
        Reading part = partOf(stretch.reading, word);
        const bool holdsOthers = std::ranges::any_of(part, [&](const ReadCharacter& character) {
            return !stretch.reader->isOwn(character.code) && isOfWords(character.code);
        });
        const bool mayBeLatin =
            meanConfidence(part) < certain && std::ranges::none_of(part, isWide, &ReadCharacter::code);
        Reading alone = holdsOthers || mayBeLatin ? readAlone(piece, word) : Reading();
        if (mayBeLatin && alone.size() >= 3 && isRead(alone, piece, word)) {
            replace(stretch.piece, word, alone);
            return;
        }
        if (!holdsOthers) {
            // Marks alone are taken where the network left them out.
            const bool isTaken =
                ownCount(*stretch.reader, part) == 0
                    ? partOf(readings_[stretch.piece], word).empty() && meanConfidence(part) >= following
                    : credibility(*stretch.reader, part, piece, word) >= following;
            if (isTaken) replace(stretch.piece, word, part);
            return;
        }
        if (ownCount(*stretch.reader, part) == 0) {
            if (isRead(alone, piece, word)) replace(stretch.piece, word, alone);
            return;
        }
        const ColumnRun rest{unreadColumn(alone, word), word.right};
        std::erase_if(alone, [&](const ReadCharacter& character) { return character.center() > rest.left; });
        std::erase_if(part, [&](const ReadCharacter& character) { return character.center() < rest.left; });
        if (credibility(*stretch.reader, part, piece, rest) < following) return;
        part.insert(part.begin(), alone.begin(), alone.end());
        replace(stretch.piece, word, part);
    }

    Reading readAlone(const LinePiece& piece, const ColumnRun& word) const {
        const ColumnRun columns = withMargin(word, piece);
        Reading reading = network_.read(piece.color.colRange(columns.left, columns.right).clone(), stop_);
        for (auto& character : reading) {
            character.left += columns.left;
            character.right += columns.left;
        }
        if (!reading.empty()) reading.front().spaceBefore = 1;
        placeOnInkOf(word, reading, piece);
        return reading;
    }

    void replace(std::size_t index, const ColumnRun& columns, const Reading& other) {
        Reading& reading = readings_[index];
        const double tolerance = 0.15 * pieces_[index].em;
        std::erase_if(reading, [&](const ReadCharacter& character) { return isIn(character, columns, tolerance); });
        const auto at = std::ranges::find_if(
            reading, [&](const ReadCharacter& character) { return character.center() > columns.left; });
        reading.insert(at, other.begin(), other.end());
    }

    std::vector<Reading>& readings_;
    const std::vector<LinePiece>& pieces_;
    const LineRecognizer& network_;
    std::vector<SecondReader*> readers_;
    const std::stop_token& stop_;
    std::vector<Stretch> stretches_;
};

}  // namespace

double unexplainedInk(const Reading& reading, const LinePiece& piece, const ColumnRun& columns) {
    int total = 0;
    int unexplained = 0;
    for (const auto& run : piece.runs) {
        for (int x = std::max(run.left, columns.left); x < std::min(run.right, columns.right); ++x) {
            ++total;
            const auto nearest = std::ranges::min_element(
                reading, {}, [x](const ReadCharacter& character) { return std::abs(character.center() - x); });
            const bool explained =
                nearest != reading.end() &&
                std::abs(nearest->center() - x) <= (isWide(nearest->code) ? 0.65 : 0.5) * piece.glyphHeight();
            if (!explained) ++unexplained;
        }
    }
    return total == 0 ? 0 : unexplained / static_cast<double>(total);
}

void readOtherScript(std::vector<Reading>& readings, const std::vector<LinePiece>& pieces,
                     const LineRecognizer& network, std::span<SecondReader* const> readers,
                     const std::stop_token& stop) {
    OtherScript(readings, pieces, network, readers, stop).run();
}

}  // namespace ovrin
