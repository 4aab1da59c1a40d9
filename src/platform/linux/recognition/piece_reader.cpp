#include "platform/linux/recognition/piece_reader.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "base/error.h"
#include "platform/linux/recognition/diacritics.h"
#include "platform/linux/recognition/parallel.h"
#include "platform/linux/recognition/reading_choice.h"
#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

constexpr std::size_t probes = 2;    // pieces that every language is tried on
constexpr double convincing = 0.95;  // mean confidence of Tesseract in the right language
constexpr double possible = 0.8;     // below, what Tesseract says is nothing

struct ScriptCounts {
    std::size_t traditional = 0, simplified = 0, kana = 0, hangul = 0, han = 0, latin = 0;
};

ScriptCounts countScripts(const Reading& reading) {
    ScriptCounts counts;
    for (const auto& character : reading) {
        switch (scriptOf(character.code)) {
            case Script::han:
                ++counts.han;
                break;
            case Script::kana:
                ++counts.kana;
                break;
            case Script::hangul:
                ++counts.hangul;
                break;
            case Script::latin:
            case Script::digit:
                ++counts.latin;
                break;
            default:
                break;
        }
        if (isTraditionalOnly(character.code)) ++counts.traditional;
        if (isSimplifiedOnly(character.code)) ++counts.simplified;
    }
    return counts;
}

// How much the reading looks like the language it was read in, 0..1.
double credibility(const Reading& reading, const std::string& language) {
    constexpr std::u32string_view strokes = U"ー一-_—|丨";  // what lines and icons are read as
    if (std::all_of(reading.begin(), reading.end(), [&](const ReadCharacter& character) {
            return strokes.find(character.code) != std::u32string_view::npos;
        }))
        return 0;
    const ScriptCounts counts = countScripts(reading);
    double score = meanConfidence(reading);
    const auto letters = counts.han + counts.kana + counts.hangul;
    if (language == "kor" && counts.hangul == 0) score -= 0.2;
    if (language != "kor" && letters == 0) score -= 0.2;
    return score;
}

struct PieceState {
    Reading network;
    double unexplained = 0;
    double glyphs = 0;  // how many squares would fill the piece
    ScriptCounts counts;
    Reading other;
    double otherScore = 0;
    std::string otherLanguage;
};

bool isUnreadable(const PieceState& piece) {
    return (piece.unexplained > 0.12 && piece.unexplained * piece.glyphs > 0.6) ||
           (meanConfidence(piece.network) < 0.85 && piece.glyphs > 1.5);
}

// In a picture of this language, is the piece worth a second reading?
bool isDoubtful(const PieceState& piece, const std::string& language) {
    if (isUnreadable(piece)) return true;
    const bool weak = std::any_of(piece.network.begin(), piece.network.end(),
                                  [](const ReadCharacter& character) { return character.confidence < 0.9F; });
    if (language == "kor") return piece.unexplained > 0.05 || (weak && piece.counts.han > 0);
    if (language == "chi_tra") return piece.counts.han > 0 || piece.unexplained > 0.05;
    return piece.unexplained > 0.05 || piece.counts.kana > 0 ||
           (piece.counts.han > 0 && (weak || piece.counts.simplified > 0 || piece.counts.traditional > 0));
}

using ScoredReading = std::pair<Reading, double>;

// The reading of one picture's pieces, step by step.
class Pass {
public:
    Pass(const LineRecognizer& network, TesseractReader& tesseract, std::vector<std::string> languages,
         const std::string& markedLetterLanguages, const std::vector<LinePiece>& pieces, const std::stop_token& stop)
        : network_(network),
          tesseract_(tesseract),
          languages_(std::move(languages)),
          markedLetterLanguages_(markedLetterLanguages),
          pieces_(pieces),
          stop_(stop),
          states_(pieces.size()) {}

    std::vector<Reading> run() {
        readWithNetwork();
        // A picture whose Chinese is simplified holds no traditional lines: they only look like it when read badly.
        if (total_.simplified > total_.traditional) std::erase(languages_, "chi_tra");
        const auto probed = piecesToProbe();
        if (!languages_.empty() && !probed.empty()) {
            const auto language = languageOf(probed);
            if (language) readDoubtful(*language);
        }
        readDiacritics();
        return joined();
    }

private:
    void readWithNetwork() {
        // The widest first, so that the cores end together.
        std::vector<std::size_t> order(pieces_.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return shape(a) > shape(b); });
        parallelFor(order.size(), recognitionThreads(), [&](std::size_t position) {
            const LinePiece& piece = pieces_[order[position]];
            PieceState& state = states_[order[position]];
            state.network = network_.read(piece.color, stop_);
            state.unexplained = unexplainedInk(state.network, piece);
            state.counts = countScripts(state.network);
            const int width = piece.inkBox.empty() ? piece.color.cols : piece.inkBox.width;
            state.glyphs = width / piece.glyphHeight();
        });
        for (const auto& state : states_) {
            total_.traditional += state.counts.traditional;
            total_.simplified += state.counts.simplified;
        }
    }

    double shape(std::size_t index) const {
        return static_cast<double>(pieces_[index].color.cols) / pieces_[index].color.rows;
    }

    // The pieces that tell the picture's language: those with the most ink that nobody explained.
    std::vector<std::size_t> piecesToProbe() const {
        std::vector<std::size_t> probed;
        const bool traditional = total_.traditional >= 2 && total_.traditional > total_.simplified;
        for (std::size_t i = 0; i < states_.size(); ++i) {
            if (isUnreadable(states_[i])) probed.push_back(i);
        }
        if (probed.empty() && traditional) {
            for (std::size_t i = 0; i < states_.size(); ++i) {
                if (states_[i].counts.traditional > 0) probed.push_back(i);
            }
        }
        const auto weight = [&](std::size_t i) { return (0.1 + states_[i].unexplained) * shape(i); };
        std::sort(probed.begin(), probed.end(), [&](std::size_t a, std::size_t b) { return weight(a) > weight(b); });
        probed.resize(std::min(probed.size(), probes));
        return probed;
    }

    // Tries every language on the probed pieces; none when no language shows itself.
    std::optional<std::string> languageOf(const std::vector<std::size_t>& probed) {
        const std::size_t count = languages_.size();
        std::vector<ScoredReading> results(probed.size() * count);
        parallelFor(results.size(), recognitionThreads(), [&](std::size_t task) {
            results[task] = readWithTesseract(probed[task / count], languages_[task % count]);
        });
        std::vector<double> scores(count, 0);
        for (std::size_t task = 0; task < results.size(); ++task) {
            scores[task % count] += results[task].second / static_cast<double>(probed.size());
            keepBetter(probed[task / count], std::move(results[task]), languages_[task % count]);
        }
        const auto best = std::max_element(scores.begin(), scores.end());
        const std::string& language = languages_[static_cast<std::size_t>(best - scores.begin())];
        if (isEstablished(language, probed)) return *best >= possible ? std::optional(language) : std::nullopt;
        for (const std::size_t index : probed) states_[index].otherScore = 0;
        return std::nullopt;
    }

    // Do the probed pieces show enough of the language's own script, and not one stroke read over and over?
    bool isEstablished(const std::string& language, const std::vector<std::size_t>& probed) const {
        std::set<char32_t> own;
        std::size_t kana = 0;
        for (const std::size_t index : probed) {
            if (states_[index].otherLanguage != language) continue;
            for (const auto& character : states_[index].other) {
                const Script script = scriptOf(character.code);
                const bool isOwn =
                    language == "kor" ? script == Script::hangul : script == Script::han || script == Script::kana;
                if (isOwn && character.confidence > 0.9F) own.insert(character.code);
                if (script == Script::kana && character.code != U'ー') ++kana;
            }
        }
        // Kanji alone are no evidence against a picture whose Chinese the network reads.
        if (language == "jpn" && kana == 0 && total_.simplified > 0) return false;
        return own.size() >= 2;
    }

    void readDoubtful(const std::string& language) {
        std::vector<std::size_t> doubtful;
        for (std::size_t i = 0; i < states_.size(); ++i) {
            if (states_[i].otherLanguage.empty() && isDoubtful(states_[i], language)) doubtful.push_back(i);
        }
        parallelFor(doubtful.size(), recognitionThreads(), [&](std::size_t position) {
            const std::size_t index = doubtful[position];
            keepBetter(index, readWithTesseract(index, language), language);
            if (states_[index].otherScore >= convincing || !isUnreadable(states_[index])) return;
            for (const auto& another : languages_) {
                if (another != language) keepBetter(index, readWithTesseract(index, another), another);
            }
        });
    }

    // Where one letter carries a mark that the network knows, others may carry marks that it doesn't.
    void readDiacritics() {
        const auto isMarked = [](const PieceState& state) { return hasMarkedLetter(state.network); };
        if (markedLetterLanguages_.empty() || std::none_of(states_.begin(), states_.end(), isMarked)) return;
        std::vector<std::size_t> latin;
        for (std::size_t i = 0; i < states_.size(); ++i) {
            if (states_[i].counts.latin > 1 && states_[i].otherLanguage.empty()) latin.push_back(i);
        }
        parallelFor(latin.size(), recognitionThreads(), [&](std::size_t position) {
            const std::size_t index = latin[position];
            if (stop_.stop_requested()) throw CancellationError();
            adoptDiacritics(states_[index].network, tesseract_.read(pieces_[index], markedLetterLanguages_));
        });
    }

    ScoredReading readWithTesseract(std::size_t index, const std::string& language) {
        if (stop_.stop_requested()) throw CancellationError();
        Reading reading = tesseract_.read(pieces_[index], language);
        const double score = credibility(reading, language);
        return {std::move(reading), score};
    }

    void keepBetter(std::size_t index, ScoredReading result, const std::string& language) {
        PieceState& state = states_[index];
        if (result.second <= state.otherScore) return;
        state.other = std::move(result.first);
        state.otherScore = result.second;
        state.otherLanguage = language;
    }

    std::vector<Reading> joined() {
        std::vector<Reading> readings;
        readings.reserve(states_.size());
        for (std::size_t i = 0; i < states_.size(); ++i) {
            PieceState& state = states_[i];
            const bool credible =
                state.otherScore >= convincing || (state.otherScore >= possible && state.unexplained > 0.3);
            readings.push_back(credible ? joinReadings(state.network, state.other, pieces_[i].glyphHeight(),
                                                       [&](char32_t character) { return network_.knows(character); })
                                        : std::move(state.network));
        }
        return readings;
    }

    const LineRecognizer& network_;
    TesseractReader& tesseract_;
    std::vector<std::string> languages_;
    const std::string& markedLetterLanguages_;
    const std::vector<LinePiece>& pieces_;
    const std::stop_token& stop_;
    std::vector<PieceState> states_;
    ScriptCounts total_;
};

}  // namespace

PieceReader::PieceReader(const LineRecognizer& network, TesseractReader& tesseract, Languages languages)
    : network_(network), tesseract_(tesseract), languages_(std::move(languages)) {}

std::vector<Reading> PieceReader::read(const std::vector<LinePiece>& pieces, const std::stop_token& stop) const {
    return Pass(network_, tesseract_, languages_.otherScripts, languages_.markedLetters, pieces, stop).run();
}

}  // namespace ovrin
