#include "practice/page_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace ovrin {
namespace {

constexpr std::array chineseSentences{
    PageSentence{.simplifiedChinese = "夜班列车离开城市，窗外的灯火渐渐稀疏。",
                 .english = "The night train leaves the city, and the lights outside the window grow sparse.",
                 .japanese = "夜行列車は街を離れ、窓の外の灯りはまばらになっていく。",
                 .korean = "야간열차가 도시를 떠나자 창밖의 불빛이 점점 드물어진다."},
    PageSentence{.simplifiedChinese = "清晨六点，海的气味比海先到。",
                 .english = "At six in the morning the smell of the sea arrives before the sea.",
                 .japanese = "朝六時、海より先に海の匂いが届く。",
                 .korean = "아침 여섯 시, 바다보다 바다 냄새가 먼저 도착한다."},
    PageSentence{.simplifiedChinese = "站台上只有一位老人和他的自行车。",
                 .english = "There is nobody on the platform but an old man and his bicycle.",
                 .japanese = "ホームにいるのは老人と自転車だけだ。",
                 .korean = "승강장에는 노인 한 사람과 자전거뿐이다."}};

constexpr std::array englishSentences{
    PageSentence{.simplifiedChinese = "车站的钟从人们记事起就快五分钟。",
                 .english = "The station clock has been five minutes fast for as long as anyone remembers.",
                 .japanese = "駅の時計は誰もが覚えている限り五分進んでいる。",
                 .korean = "역의 시계는 모두가 기억하는 한 늘 오 분 빠르다."},
    PageSentence{.simplifiedChinese = "没有人去修它，因为渡轮总是准时。",
                 .english = "Nobody repairs it, because the ferry is always on time.",
                 .japanese = "誰も直さない。渡し船がいつも時間通りだから。",
                 .korean = "아무도 고치지 않는다. 여객선이 언제나 제시간에 오기 때문이다."},
    PageSentence{.simplifiedChinese = "一张到小岛的船票要三枚硬币。",
                 .english = "A ticket to the small island costs three coins.",
                 .japanese = "小さな島への切符は硬貨三枚だ。",
                 .korean = "작은 섬으로 가는 표는 동전 세 닢이다."}};

constexpr std::array japaneseSentences{
    PageSentence{.simplifiedChinese = "站前的饭馆里，渔夫们已经吃完了早饭。",
                 .english = "In the diner by the station the fishermen have already finished breakfast.",
                 .japanese = "駅前の食堂では、漁師たちがもう朝食を終えていた。",
                 .korean = "역 앞 식당에서는 어부들이 벌써 아침 식사를 마쳤다."},
    PageSentence{.simplifiedChinese = "窗边的猫一直望着船回来的方向。",
                 .english = "The cat at the window keeps watching where the boats come home.",
                 .japanese = "窓辺の猫は、船が帰ってくる方をずっと見ている。",
                 .korean = "창가의 고양이는 배가 돌아오는 쪽을 줄곧 바라본다."}};

constexpr std::array koreanSentences{PageSentence{.simplifiedChinese = "小小的邮局只在刮风的日子关门。",
                                                  .english = "The little post office closes only on windy days.",
                                                  .japanese = "小さな郵便局は風の強い日にだけ閉まる。",
                                                  .korean = "작은 우체국은 바람이 부는 날에만 문을 닫는다."},
                                     PageSentence{.simplifiedChinese = "那时信件就由海鸥保管。",
                                                  .english = "On those days the gulls look after the letters.",
                                                  .japanese = "その日、手紙はカモメが預かる。",
                                                  .korean = "그런 날에는 갈매기가 편지를 맡아 둔다."}};

constexpr std::array sections{PageSection{.languageTag = "zh-Hans", .name = "中文", .sentences = chineseSentences},
                              PageSection{.languageTag = "en", .name = "English", .sentences = englishSentences},
                              PageSection{.languageTag = "ja", .name = "日本語", .sentences = japaneseSentences},
                              PageSection{.languageTag = "ko", .name = "한국어", .sentences = koreanSentences}};

constexpr std::array<std::string_view, sections.size()> languageTags{"zh-Hans", "en", "ja", "ko"};

// Of the longer text, what may be wrong with it and it still counts as the same.
constexpr double tolerance = 0.25;

std::vector<UChar32> lettersOf(std::string_view text) {
    const auto whole =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    std::vector<UChar32> letters;
    for (std::int32_t at = 0; at < whole.length(); at = whole.moveIndex32(at, 1)) {
        const UChar32 character = whole.char32At(at);
        if (u_isalnum(character)) letters.push_back(u_foldCase(character, U_FOLD_CASE_DEFAULT));
    }
    return letters;
}

std::size_t editDistance(const std::vector<UChar32>& first, const std::vector<UChar32>& second) {
    std::vector<std::size_t> row(second.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t line = 0; line < first.size(); ++line) {
        std::size_t diagonal = std::exchange(row[0], line + 1);
        for (std::size_t column = 0; column < second.size(); ++column) {
            const std::size_t replaced = diagonal + (first[line] == second[column] ? 0 : 1);
            diagonal = row[column + 1];
            row[column + 1] = std::min({replaced, diagonal + 1, row[column] + 1});
        }
    }
    return row.back();
}

// 0 for the same letters, 1 for nothing in common.
double difference(const std::vector<UChar32>& first, const std::vector<UChar32>& second) {
    const std::size_t longer = std::max(first.size(), second.size());
    return longer == 0 ? 1 : static_cast<double>(editDistance(first, second)) / static_cast<double>(longer);
}

}  // namespace

std::span<const PageSection> pageSections() {
    return sections;
}

std::optional<std::string_view> sentenceIn(const PageSentence& sentence, std::string_view languageTag) {
    if (languageTag == "zh-Hans") return sentence.simplifiedChinese;
    if (languageTag == "en") return sentence.english;
    if (languageTag == "ja") return sentence.japanese;
    if (languageTag == "ko") return sentence.korean;
    return std::nullopt;
}

std::optional<std::string> pageTranslation(std::string_view line, std::string_view languageTag) {
    const std::vector<UChar32> letters = lettersOf(line);
    double best = tolerance;
    std::optional<std::string> translation;
    for (const PageSection& section : sections) {
        for (const PageSentence& sentence : section.sentences) {
            for (const std::string_view tag : languageTags) {
                const double found = difference(letters, lettersOf(*sentenceIn(sentence, tag)));
                if (found > best) continue;
                best = found;
                translation = sentenceIn(sentence, languageTag);
            }
        }
    }
    return translation;
}

}  // namespace ovrin
