#include "platform/linux/recognition/piece_reader.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <string_view>

#include "base/error.h"
#include "platform/linux/recognition/parallel.h"
#include "platform/linux/recognition/reading_choice.h"
#include "platform/linux/recognition/script.h"

namespace ovrin {
namespace {

constexpr std::size_t probes = 2;          // pieces that every language is tried on
constexpr double convincing = 0.95;        // mean confidence of Tesseract in the right language
constexpr double possible = 0.8;           // below, what Tesseract says is nothing

struct ScriptCounts {
    std::size_t traditional = 0, simplified = 0, kana = 0, hangul = 0, han = 0, latin = 0;
};

ScriptCounts countScripts(const Reading& reading) {
    ScriptCounts counts;
    for (const auto& character : reading) {
        switch (scriptOf(character.code)) {
            case Script::han: ++counts.han; break;
            case Script::kana: ++counts.kana; break;
            case Script::hangul: ++counts.hangul; break;
            case Script::latin: case Script::digit: ++counts.latin; break;
            default: break;
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
    if (piece.glyphs == 0) return false;
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
    return piece.unexplained > 0.05 || piece.counts.kana > 0 || (piece.counts.han > 0 && (weak || piece.counts.simplified > 0 || piece.counts.traditional > 0));
}

// Do the probed pieces show enough of the language's own script, and not one stroke read over and over?
bool isEstablished(const std::string& language, const std::vector<std::size_t>& probed,
                   const std::vector<PieceState>& states, const ScriptCounts& total) {
    std::set<char32_t> own;
    std::size_t kana = 0;
    for (const std::size_t index : probed) {
        if (states[index].otherLanguage != language) continue;
        for (const auto& character : states[index].other) {
            const Script script = scriptOf(character.code);
            const bool isOwn = language == "kor" ? script == Script::hangul : script == Script::han || script == Script::kana;
            if (isOwn && character.confidence > 0.9F) own.insert(character.code);
            if (script == Script::kana && character.code != U'ー') ++kana;
        }
    }
    // Kanji alone are no evidence against a picture whose Chinese the network reads.
    if (language == "jpn" && kana == 0 && total.simplified > 0) return false;
    return own.size() >= 2;
}

}  // namespace

PieceReader::PieceReader(const LineRecognizer& network, TesseractReader& tesseract, std::vector<std::string> languages)
    : network_(network), tesseract_(tesseract), languages_(std::move(languages)) {}

std::vector<Reading> PieceReader::read(const std::vector<LinePiece>& pieces, const std::stop_token& stop) const {
    std::vector<PieceState> states(pieces.size());
    // The widest first, so that the cores end together.
    std::vector<std::size_t> order(pieces.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return pieces[a].color.cols * pieces[b].color.rows > pieces[b].color.cols * pieces[a].color.rows;
    });
    parallelFor(pieces.size(), recognitionThreads(), [&](std::size_t position) {
        const std::size_t index = order[position];
        auto& state = states[index];
        state.network = network_.read(pieces[index].color, stop);
        state.unexplained = unexplainedInk(state.network, pieces[index]);
        state.counts = countScripts(state.network);
        state.glyphs = pieces[index].runs.empty() ? 0 : (pieces[index].inkBox.empty() ? pieces[index].color.cols : pieces[index].inkBox.width) / pieces[index].glyphHeight();
    });

    ScriptCounts total;
    std::vector<std::size_t> unreadable;
    for (std::size_t i = 0; i < states.size(); ++i) {
        total.traditional += states[i].counts.traditional;
        total.simplified += states[i].counts.simplified;
        total.kana += states[i].counts.kana;
        if (isUnreadable(states[i])) unreadable.push_back(i);
    }
    const auto readWith = [&](std::size_t index, const std::string& language) {
        if (stop.stop_requested()) throw CancellationError();
        Reading reading = tesseract_.read(pieces[index], language);
        const double score = credibility(reading, language);
        return std::pair(std::move(reading), score);
    };
    const auto keepBetter = [&](PieceState& state, std::pair<Reading, double> result, const std::string& language) {
        if (result.second <= state.otherScore) return;
        state.other = std::move(result.first);
        state.otherScore = result.second;
        state.otherLanguage = language;
    };

    const bool traditional = total.traditional >= 2 && total.traditional > total.simplified;
    std::vector<std::string> languages_ = this->languages_;
    if (total.simplified > total.traditional) std::erase(languages_, "chi_tra");
    if (!languages_.empty() && (!unreadable.empty() || traditional)) {
        // The pieces with the most ink that nobody explained tell the picture's language.
        std::vector<std::size_t> probed = unreadable;
        if (probed.empty()) {
            for (std::size_t i = 0; i < states.size(); ++i) if (states[i].counts.traditional > 0) probed.push_back(i);
        }
        std::sort(probed.begin(), probed.end(), [&](std::size_t a, std::size_t b) {
            const auto weight = [&](std::size_t i) {
                return (0.1 + states[i].unexplained) * pieces[i].color.cols / pieces[i].color.rows;
            };
            return weight(a) > weight(b);
        });
        probed.resize(std::min(probed.size(), probes));
        const std::size_t tasks = probed.size() * languages_.size();
        std::vector<std::pair<Reading, double>> results(tasks);
        parallelFor(tasks, recognitionThreads(), [&](std::size_t task) {
            results[task] = readWith(probed[task / languages_.size()], languages_[task % languages_.size()]);
        });
        std::vector<double> scores(languages_.size(), 0);
        for (std::size_t task = 0; task < tasks; ++task) {
            scores[task % languages_.size()] += results[task].second;
        }
        for (std::size_t task = 0; task < tasks; ++task) {
            keepBetter(states[probed[task / languages_.size()]], std::move(results[task]), languages_[task % languages_.size()]);
        }
        const auto best = static_cast<std::size_t>(std::max_element(scores.begin(), scores.end()) - scores.begin());
        const std::string& language = languages_[best];
        if (!isEstablished(language, probed, states, total)) {
            for (const std::size_t index : probed) states[index].otherScore = 0;
        } else if (scores[best] / static_cast<double>(probed.size()) >= possible) {
            std::vector<std::size_t> doubtful;
            for (std::size_t i = 0; i < states.size(); ++i) {
                if (states[i].otherLanguage.empty() && isDoubtful(states[i], language)) doubtful.push_back(i);
            }
            parallelFor(doubtful.size(), recognitionThreads(), [&](std::size_t position) {
                auto& state = states[doubtful[position]];
                keepBetter(state, readWith(doubtful[position], language), language);
                if (state.otherScore >= convincing || !isUnreadable(state)) return;
                for (const auto& another : languages_) {
                    if (another != language) keepBetter(state, readWith(doubtful[position], another), another);
                }
            });
        }
    }

    std::vector<Reading> readings(pieces.size());
    for (std::size_t i = 0; i < states.size(); ++i) {
        auto& state = states[i];
        if (pieces[i].runs.empty()) continue;
        if (state.otherScore >= convincing || (state.otherScore >= possible && state.unexplained > 0.3)) {
            readings[i] = joinReadings(state.network, state.other, pieces[i].glyphHeight(),
                                       [this](char32_t character) { return network_.knows(character); });
        } else {
            readings[i] = std::move(state.network);
        }
    }
    return readings;
}

}  // namespace ovrin
