#include "platform/linux/recognition/other_script.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "base/script.h"
#include "platform/linux/recognition/glyph_places.h"
#include "platform/linux/recognition/parallel.h"

namespace ovrin {
namespace {

// Chosen on eleven Korean pictures and 77 others. Stretches of three syllables and more mostly get 0.97 and above from
// Tesseract, what only looks like such to it gets 0.93 at most.
constexpr double establishing = 0.96;
constexpr double following = 0.9;
// Of a word: on drawn lines in five narrow scripts their readers mostly give words of their own 0.993 and above, Latin
// words 0.99 at most.
constexpr double certain = 0.992;
constexpr double sureNetwork = 0.88;        // a word's mean confidence; of Hangul the network makes less
constexpr double sureHan = 0.985;           // of a Chinese word: the network makes such of Hangul
constexpr float sureLetter = 0.9F;          // of one letter
constexpr double wordGap = 0.22;            // ems
constexpr double mostUnexplained = 0.2;     // share of a word's ink
constexpr std::ptrdiff_t mostAttempts = 4;  // readings of a picture that may well hold nothing of the script
constexpr double fewestGlyphs = 2.5;        // squares of ink of these

// Words side by side that the network could not read.
struct Stretch {
    LinePiece* piece;
    ColumnRun columns;
    const SecondReader* reader = nullptr;  // the one that is believed most, and what it read
    Reading reading = {};
    double credibility = -1;

    double glyphs() const { return columns.width() / piece->em; }
};

std::vector<ColumnRun> wordsOf(const LinePiece& piece) {
    std::vector<ColumnRun> words;
    for (const auto& run : piece.runs) {
        if (words.empty() || run.left - words.back().right > wordGap * piece.em) words.push_back(run);
        words.back().right = run.right;
    }
    return words;
}

auto isIn(const ColumnRun& columns, double tolerance) {
    return [=](const ReadCharacter& character) {
        return character.center() > columns.left - tolerance && character.center() < columns.right + tolerance;
    };
}

Reading partOf(const Reading& reading, const ColumnRun& columns, double tolerance = 0) {
    Reading part;
    std::ranges::copy_if(reading, std::back_inserter(part), isIn(columns, tolerance));
    return part;
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

std::ptrdiff_t ownCount(const SecondReader& reader, const Reading& reading) {
    return std::ranges::count_if(reading, [&](const ReadCharacter& character) { return reader.isOwn(character.code); });
}

// How far the reader can be believed: not at all where little of what it read is of its script.
double credibility(const SecondReader& reader, const Reading& reading) {
    const std::ptrdiff_t own = ownCount(reader, reading);
    const auto others = std::ranges::count_if(reading, [&](const ReadCharacter& character) {
        const Script script = scriptOf(character.code);
        return !reader.isOwn(character.code) && script != Script::mark && script != Script::digit;
    });
    return own > 0 && own >= others ? meanConfidence(reading) : 0;
}

// Enough of the script and little else.
bool establishes(const Stretch& stretch) {
    const std::ptrdiff_t own = ownCount(*stretch.reader, stretch.reading);
    return own >= 3 && own * 3 >= std::ssize(stretch.reading) * 2 && stretch.credibility >= establishing;
}

class OtherScript {
public:
    OtherScript(std::vector<LinePiece>& pieces, const LineRecognizer& network, std::span<SecondReader* const> readers,
                const std::stop_token& stop)
        : pieces_(pieces), network_(network), readers_(readers.begin(), readers.end()), stop_(stop) {}

    void run() {
        for (LinePiece& piece : pieces_) findStretches(piece);
        std::ranges::sort(stretches_, std::greater(), &Stretch::glyphs);
        // The longest show which script is there, if any.
        const auto isLong = [](const Stretch& stretch) { return stretch.glyphs() >= fewestGlyphs; };
        const auto attempts = std::min<std::ptrdiff_t>(mostAttempts, std::ranges::count_if(stretches_, isLong));
        const std::span shown(stretches_.begin(), static_cast<std::size_t>(attempts));
        readStretches(shown);
        std::erase_if(readers_, [&](const SecondReader* reader) {
            return std::ranges::none_of(
                shown, [&](const Stretch& stretch) { return stretch.reader == reader && establishes(stretch); });
        });
        if (readers_.empty()) return;
        for (Stretch& stretch : shown)
            if (std::ranges::find(readers_, stretch.reader) == readers_.end()) stretch.credibility = -1;
        readStretches(stretches_);
        for (const Stretch& stretch : stretches_) {
            const ColumnRun& columns = stretch.columns;
            for (const auto& word : wordsOf(*stretch.piece)) {
                if (word.right > columns.left && word.left < columns.right)
                    takeWord(stretch, {std::max(word.left, columns.left), word.right});
            }
        }
    }

private:
    bool isRead(const Reading& reading, const LinePiece& piece, const ColumnRun& word) const {
        const Reading part = partOf(reading, word, 0.15 * piece.em);
        const bool isHan = std::ranges::all_of(
            part, [](const ReadCharacter& character) { return scriptOf(character.code) == Script::han; });
        // The network knows some letters of other scripts, but not those scripts.
        const bool isForeign =
            std::ranges::any_of(readers_, [&](const SecondReader* reader) { return ownCount(*reader, part) > 0; });
        return meanConfidence(part) >= (isHan ? sureHan : sureNetwork) && !isForeign &&
               unexplainedInk(part, piece, word) < mostUnexplained;
    }

    void findStretches(LinePiece& piece) {
        Reading placed = piece.reading;
        placeOnInk(placed, piece);
        bool continues = false;
        for (const auto& word : wordsOf(piece)) {
            const bool unread = !isRead(piece.reading, piece, word);
            const int column = unread ? unreadColumn(placed, word) : word.left;
            if (unread && continues && column == word.left)
                stretches_.back().columns.right = word.right;
            else if (unread)
                stretches_.push_back({&piece, {column, word.right}});
            continues = unread;
        }
    }

    // Has every reader that is left read them, and keeps what is most credible.
    void readStretches(std::span<Stretch> stretches) {
        parallelFor(stretches.size(), [&](std::size_t index) {
            Stretch& stretch = stretches[index];
            const SecondReader* known = stretch.reader;
            for (SecondReader* reader : readers_) {
                if (reader == known) continue;
                Reading reading = reader->read(*stretch.piece, withMargin(stretch.columns, *stretch.piece), stop_);
                placeOnInk(reading, *stretch.piece, stretch.columns);
                const double believed = credibility(*reader, reading);
                if (believed > stretch.credibility)
                    stretch = {stretch.piece, stretch.columns, reader, std::move(reading), believed};
            }
        });
    }

    // Puts the second reader's part of a word into the reading where it is of its script. What else it makes of letters
    // is worth nothing: the network reads those when it sees the word alone.
    void takeWord(const Stretch& stretch, const ColumnRun& word) {
        LinePiece& piece = *stretch.piece;
        Reading part = partOf(stretch.reading, word);
        const bool hasOwn = ownCount(*stretch.reader, part) > 0;
        const bool holdsOthers = std::ranges::any_of(part, [&](const ReadCharacter& character) {
            return !stretch.reader->isOwn(character.code) && isOfWords(character.code);
        });
        const bool mayBeLatin =
            meanConfidence(part) < certain && std::ranges::none_of(part, isWide, &ReadCharacter::code);
        Reading alone = holdsOthers || mayBeLatin ? readAlone(piece, word) : Reading();
        if ((mayBeLatin ? alone.size() >= 3 : holdsOthers && !hasOwn) && isRead(alone, piece, word))
            return replace(piece, word, alone);
        const ColumnRun rest{holdsOthers ? unreadColumn(alone, word) : word.left, word.right};
        std::erase_if(alone, [&](const ReadCharacter& character) { return character.center() > rest.left; });
        std::erase_if(part, [&](const ReadCharacter& character) { return character.center() < rest.left; });
        if (credibility(*stretch.reader, part) < following) return;
        part.insert(part.begin(), alone.begin(), alone.end());
        replace(piece, word, part);
    }

    Reading readAlone(const LinePiece& piece, const ColumnRun& word) const {
        Reading reading = network_.read(piece, withMargin(word, piece), stop_);
        if (!reading.empty()) reading.front().spaceBefore = 1;
        placeOnInk(reading, piece, word);
        return reading;
    }

    static void replace(LinePiece& piece, const ColumnRun& columns, const Reading& other) {
        std::erase_if(piece.reading, isIn(columns, 0.15 * piece.em));
        const auto at = std::ranges::upper_bound(piece.reading, columns.left, {}, &ReadCharacter::center);
        piece.reading.insert(at, other.begin(), other.end());
    }

    std::vector<LinePiece>& pieces_;
    const LineRecognizer& network_;
    std::vector<SecondReader*> readers_;
    const std::stop_token& stop_;
    std::vector<Stretch> stretches_;
};

}  // namespace

double unexplainedInk(const Reading& reading, const LinePiece& piece, const ColumnRun& columns) {
    int total = 0, unexplained = 0;
    for (const auto& run : piece.runs) {
        for (int x = std::max(run.left, columns.left); x < std::min(run.right, columns.right); ++x) {
            ++total;
            unexplained += std::ranges::none_of(reading, [&](const ReadCharacter& character) {
                const double reach = (isWide(character.code) ? 0.65 : 0.5) * piece.glyphHeight();
                return std::abs(character.center() - x) <= reach;
            });
        }
    }
    return total == 0 ? 0 : unexplained / static_cast<double>(total);
}

void readOtherScript(std::vector<LinePiece>& pieces, const LineRecognizer& network,
                     std::span<SecondReader* const> readers, const std::stop_token& stop) {
    OtherScript(pieces, network, readers, stop).run();
}

}  // namespace ovrin
