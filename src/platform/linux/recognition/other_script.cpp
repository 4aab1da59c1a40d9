#include "platform/linux/recognition/other_script.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "platform/linux/recognition/glyph_places.h"
#include "platform/linux/recognition/parallel.h"
#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

// Chosen on eleven Korean pictures and 77 others. Stretches of three syllables and more mostly get 0.97 and above from
// Tesseract, what only looks like such to it gets 0.93 at most.
constexpr double establishing = 0.95;
constexpr double following = 0.9;
constexpr double sureNetwork = 0.88;     // a word's mean confidence; of Hangul the network makes less
constexpr double sureHan = 0.985;        // of a Chinese word in a Korean picture
constexpr float sureLetter = 0.9F;       // of one letter
constexpr double wordGap = 0.22;         // ems
constexpr double mostUnexplained = 0.2;  // share of a word's ink
constexpr double mostGlyphs = 0.35;      // and how many squares that makes
constexpr double mostGlyphsAmid = 0.2;   // in a picture of the other script
constexpr std::size_t mostAttempts = 4;  // readings of a picture that may well hold nothing of the script
constexpr double fewestGlyphs = 2.5;     // squares of ink of these

double centerOf(const ReadCharacter& character) {
    return (character.left + character.right) / 2;
}

// Words side by side that the network could not read.
struct Stretch {
    std::size_t piece = 0;
    ColumnRun columns;
    double glyphs = 0;  // how many squares would fill it
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

bool isIn(const ReadCharacter& character, const ColumnRun& columns, double tolerance) {
    return centerOf(character) > columns.left - tolerance && centerOf(character) < columns.right + tolerance;
}

Reading partOf(const Reading& reading, const ColumnRun& columns, double tolerance) {
    Reading part;
    std::ranges::copy_if(reading, std::back_inserter(part),
                         [&](const ReadCharacter& character) { return isIn(character, columns, tolerance); });
    return part;
}

// The piece as if only these columns of it held ink.
LinePiece partOf(LinePiece piece, const ColumnRun& columns) {
    std::erase_if(piece.runs, [&](const ColumnRun& run) {
        return run.left + run.right < 2 * columns.left || run.left + run.right > 2 * columns.right;
    });
    return piece;
}

bool isLetterOrDigit(char32_t character) {
    const Script script = scriptOf(character);
    return script != Script::mark && script != Script::wideMark;
}

// How sure the network has to be of a word. Of Hangul it makes Chinese characters that look alike.
double sureOf(const Reading& word, bool established) {
    const bool han = std::ranges::all_of(
        word, [](const ReadCharacter& character) { return scriptOf(character.code) == Script::han; });
    return established && han ? sureHan : sureNetwork;
}

bool isRead(const Reading& reading, const LinePiece& piece, const ColumnRun& word, bool established) {
    const Reading part = partOf(reading, word, 0.15 * piece.em);
    const double glyphs = word.width() / piece.em;
    const double unexplained = unexplainedInk(part, piece, word);
    const auto letters = std::ranges::count_if(part, [](const ReadCharacter& character) {
        return scriptOf(character.code) == Script::latin && character.confidence > sureLetter;
    });
    // A word in a frame: its letters are beyond doubt, the frame's ink is nobody's.
    if (letters >= 3 && static_cast<std::size_t>(letters) == part.size() && unexplained < 0.5) return true;
    return meanConfidence(part) >= sureOf(part, established) &&
           (unexplained < mostUnexplained || unexplained * glyphs < (established ? mostGlyphsAmid : mostGlyphs));
}

// Where the part of a word begins that the network could not read: Korean puts its endings right behind words in Latin
// letters, which the network reads. The reading must be on its ink.
int unreadColumn(const Reading& reading, const ColumnRun& word) {
    int column = word.left;
    std::size_t letters = 0;
    for (const auto& character : reading) {
        if (!isIn(character, word, 0)) continue;
        const Script script = scriptOf(character.code);
        const bool foreign = script == Script::latin || script == Script::digit || script == Script::mark;
        if (!foreign || character.confidence < sureLetter) break;
        if (script != Script::latin) continue;
        ++letters;
        column = static_cast<int>(std::lround(character.right));
    }
    return letters >= 2 && column < word.right ? column : word.left;
}

std::vector<Stretch> unreadStretches(const Reading& reading, const LinePiece& piece, std::size_t index,
                                     bool established) {
    std::vector<Stretch> stretches;
    bool open = false;
    Reading placed = reading;
    placeOnInk(placed, piece);
    for (auto word : wordsOf(piece)) {
        const bool unread = !isRead(reading, piece, word, established);
        const int column = unread ? unreadColumn(placed, word) : word.left;
        const bool continues = open && column == word.left;
        word.left = column;
        if (unread && continues) {
            stretches.back().columns.right = word.right;
        } else if (unread) {
            stretches.push_back({index, word, 0});
        }
        open = unread;
    }
    for (auto& stretch : stretches) stretch.glyphs = stretch.columns.width() / piece.em;
    return stretches;
}

// What a reader made of a stretch, and how far that can be believed: 0 where it is not of the reader's script or the
// picture does not support it.
double credibility(const Reading& reading, const LinePiece& piece, const ColumnRun& columns,
                   const SecondReader& reader) {
    double own = 0, others = 0, width = 0;
    for (const auto& character : reading) {
        const Script script = scriptOf(character.code);
        if (reader.isOwn(character.code)) {
            ++own;
        } else if (script != Script::mark && script != Script::digit) {
            ++others;
        }
        width += isWide(character.code) ? 0.95 : 0.5;
    }
    if (own == 0 || own < others) return 0;
    const double ratio = width * piece.glyphHeight() / columns.width();
    if (ratio < 0.55 || ratio > 1.7) return 0;
    if (unexplainedInk(reading, piece, columns) > 0.35) return 0;
    return meanConfidence(reading);
}

void replace(Reading& reading, const LinePiece& piece, const ColumnRun& columns, const Reading& other) {
    const double tolerance = 0.15 * piece.em;
    std::erase_if(reading, [&](const ReadCharacter& character) { return isIn(character, columns, tolerance); });
    const auto at = std::ranges::find_if(
        reading, [&](const ReadCharacter& character) { return centerOf(character) > columns.left; });
    reading.insert(at, other.begin(), other.end());
}

class OtherScript {
public:
    OtherScript(std::vector<Reading>& readings, const std::vector<LinePiece>& pieces, const LineRecognizer& network,
                SecondReader& reader, const std::stop_token& stop)
        : readings_(readings), pieces_(pieces), network_(network), reader_(reader), stop_(stop) {}

    void run() {
        if (!isEstablished()) return;
        const auto stretches = unreadStretches(true);
        std::vector<Reading> others(stretches.size());
        parallelFor(stretches.size(), recognitionThreads(), [&](std::size_t k) { others[k] = read(stretches[k]); });
        for (std::size_t k = 0; k < stretches.size(); ++k) {
            const Stretch& stretch = stretches[k];
            const LinePiece& piece = pieces_[stretch.piece];
            // A single character amid others is as likely a mark of another kind.
            const bool amidOthers = stretch.columns.width() < 0.8 * piece.inkBox.width;
            if (ownCount(others[k]) < 2 && amidOthers && !hasNeighbours(stretches, others, k)) continue;
            for (const auto& word : wordsOf(piece)) {
                if (word.right <= stretch.columns.left || word.left >= stretch.columns.right) continue;
                takeWord(readings_[stretch.piece], piece, {std::max(word.left, stretch.columns.left), word.right},
                         others[k]);
            }
        }
    }

private:
    // Puts the other reader's part of a word into the reading where it is of its script. What else it makes of letters
    // is worth nothing: the network reads those when it sees the word alone.
    void takeWord(Reading& reading, const LinePiece& piece, const ColumnRun& word, const Reading& other) const {
        Reading part = partOf(other, word, 0);
        const auto isForeign = [&](const ReadCharacter& character) {
            return !reader_.isOwn(character.code) && isLetterOrDigit(character.code);
        };
        ColumnRun rest = word;
        Reading alone;
        if (std::ranges::any_of(part, isForeign)) {
            alone = readAlone(piece, word);
            if (!alone.empty()) alone.front().spaceBefore = 1;
            if (ownCount(part) == 0) {
                if (isRead(alone, piece, word, true)) replace(reading, piece, word, alone);
                return;
            }
            rest.left = unreadColumn(alone, word);
            std::erase_if(alone, [&](const ReadCharacter& character) { return centerOf(character) > rest.left; });
            std::erase_if(part, [&](const ReadCharacter& character) { return centerOf(character) < rest.left; });
        } else if (ownCount(part) == 0) {
            // Marks that the network left out.
            if (partOf(reading, word, 0).empty() && meanConfidence(part) >= following)
                replace(reading, piece, word, part);
            return;
        }
        if (credibility(part, piece, rest, reader_) < following) return;
        part.insert(part.begin(), alone.begin(), alone.end());
        replace(reading, piece, word, part);
    }

    Reading readAlone(const LinePiece& piece, const ColumnRun& word) const {
        const int margin = static_cast<int>(std::lround(0.2 * piece.em));
        const int left = std::max(0, word.left - margin);
        Reading reading =
            network_.read(piece.color.colRange(left, std::min(piece.color.cols, word.right + margin)).clone(), stop_);
        for (auto& character : reading) {
            character.left += left;
            character.right += left;
        }
        placeOnInk(reading, partOf(piece, word));
        return reading;
    }

    std::vector<Stretch> unreadStretches(bool established) const {
        std::vector<Stretch> stretches;
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            for (const auto& stretch : ovrin::unreadStretches(readings_[i], pieces_[i], i, established))
                stretches.push_back(stretch);
        }
        std::ranges::sort(stretches, std::greater(), &Stretch::glyphs);
        return stretches;
    }

    // Does one of the longest stretches show the reader's script beyond doubt?
    bool isEstablished() {
        auto stretches = unreadStretches(false);
        stretches.resize(std::min(mostAttempts, stretches.size()));
        std::erase_if(stretches, [](const Stretch& stretch) { return stretch.glyphs < fewestGlyphs; });
        std::vector<char> established(stretches.size());
        parallelFor(stretches.size(), recognitionThreads(),
                    [&](std::size_t k) { established[k] = establishes(read(stretches[k]), stretches[k]); });
        return std::ranges::any_of(established, [](char one) { return one != 0; });
    }

    // Does another stretch of the same piece hold the reader's script?
    bool hasNeighbours(const std::vector<Stretch>& stretches, const std::vector<Reading>& others, std::size_t k) const {
        for (std::size_t other = 0; other < stretches.size(); ++other) {
            if (other != k && stretches[other].piece == stretches[k].piece && ownCount(others[other]) > 1) return true;
        }
        return false;
    }

    Reading read(const Stretch& stretch) {
        const LinePiece& piece = pieces_[stretch.piece];
        const int margin = static_cast<int>(std::lround(0.2 * piece.em));
        const ColumnRun columns{std::max(0, stretch.columns.left - margin),
                                std::min(piece.color.cols, stretch.columns.right + margin)};
        Reading result = reader_.read(piece, columns, stop_);
        placeOnInk(result, partOf(piece, stretch.columns));
        return result;
    }

    std::size_t ownCount(const Reading& reading) const {
        return static_cast<std::size_t>(std::ranges::count_if(
            reading, [&](const ReadCharacter& character) { return reader_.isOwn(character.code); }));
    }

    // Enough of the script, little else, where the network saw next to nothing.
    bool establishes(const Reading& reading, const Stretch& stretch) const {
        const Reading network = partOf(readings_[stretch.piece], stretch.columns, 0);
        const bool blank =
            meanConfidence(network) < 0.6 || unexplainedInk(network, pieces_[stretch.piece], stretch.columns) > 0.5;
        return blank && ownCount(reading) >= 3 && ownCount(reading) * 3 >= reading.size() * 2 &&
               credibility(reading, pieces_[stretch.piece], stretch.columns, reader_) >= establishing;
    }

    std::vector<Reading>& readings_;
    const std::vector<LinePiece>& pieces_;
    const LineRecognizer& network_;
    SecondReader& reader_;
    const std::stop_token& stop_;
};

}  // namespace

double unexplainedInk(const Reading& reading, const LinePiece& piece, const ColumnRun& columns) {
    const double height = piece.glyphHeight();
    int total = 0;
    int unexplained = 0;
    std::size_t next = 0;
    for (const auto& run : piece.runs) {
        for (int x = std::max(run.left, columns.left); x < std::min(run.right, columns.right); ++x) {
            ++total;
            while (next + 1 < reading.size() &&
                   std::abs(centerOf(reading[next + 1]) - x) <= std::abs(centerOf(reading[next]) - x)) {
                ++next;
            }
            const double reach = reading.empty() ? 0 : isWide(reading[next].code) ? 0.65 * height : 0.5 * height;
            if (reading.empty() || std::abs(centerOf(reading[next]) - x) > reach) ++unexplained;
        }
    }
    return total == 0 ? 0 : unexplained / static_cast<double>(total);
}

void readOtherScript(std::vector<Reading>& readings, const std::vector<LinePiece>& pieces,
                     const LineRecognizer& network, SecondReader& reader, const std::stop_token& stop) {
    OtherScript(readings, pieces, network, reader, stop).run();
}

}  // namespace ovrin
