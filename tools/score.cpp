// Scores the text recogniser on a folder of pictures with their truth; tools/score says how.
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "platform/linux/recognition/linux_image_decoder.h"
#include "platform/linux/recognition/onnx_text_recognizer.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;
using Characters = std::map<char32_t, int>;

// What is compared: without white space, with typographic and full-width forms made plain.
std::u32string plain(const std::string& text) {
    static const std::map<char32_t, const char16_t*> forms = {{U'“', u"\""},  {U'”', u"\""}, {U'‘', u"'"}, {U'’', u"'"},
                                                              {U'—', u"-"},   {U'–', u"-"},  {U'−', u"-"}, {U'·', u"."},
                                                              {U'…', u"..."}, {U'×', u"x"}};
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString result;
    const auto source = icu::UnicodeString::fromUTF8(text);
    for (int i = 0; i < source.length(); i = source.moveIndex32(i, 1)) {
        const auto form = forms.find(static_cast<char32_t>(source.char32At(i)));
        form == forms.end() ? result.append(source.char32At(i)) : result.append(icu::UnicodeString(form->second));
    }
    result = icu::Normalizer2::getNFKCInstance(status)->normalize(result, status);
    std::u32string squeezed;
    for (int i = 0; i < result.length(); i = result.moveIndex32(i, 1)) {
        if (!u_isUWhiteSpace(result.char32At(i))) squeezed += static_cast<char32_t>(result.char32At(i));
    }
    return squeezed;
}

int occurrences(const std::u32string& text, const std::u32string& part) {
    int count = 0;
    for (auto at = text.find(part); at != std::u32string::npos; at = text.find(part, at + part.size())) ++count;
    return count;
}

Characters charactersOf(const std::u32string& text) {
    Characters characters;
    for (const char32_t character : text) ++characters[character];
    return characters;
}

int beyond(const Characters& characters, const Characters& others) {
    int count = 0;
    for (const auto& [character, times] : characters) {
        const auto other = others.find(character);
        count += std::max(0, times - (other == others.end() ? 0 : other->second));
    }
    return count;
}

double editDistance(const std::u32string& expected, const std::u32string& read) {
    std::vector<std::size_t> row(read.size() + 1);
    for (std::size_t j = 0; j < row.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= expected.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j < row.size(); ++j) {
            const std::size_t above = row[j];
            row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (expected[i - 1] == read[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return static_cast<double>(row.back());
}

struct Figures {
    int lines = 0, readLines = 0, characters = 0, missed = 0, spurious = 0, pictures = 0;
    double edits = 0, milliseconds = 0;

    void add(const Figures& other) {
        lines += other.lines;
        readLines += other.readLines;
        characters += other.characters;
        missed += other.missed;
        spurious += other.spurious;
        pictures += other.pictures;
        edits += other.edits;
        milliseconds += other.milliseconds;
    }

    void print(const std::string& name) const {
        const double percent = 100.0 / std::max(1, characters);
        std::printf("%-32s %5.1f %7.2f %9.2f %9.2f %6d %8.0f\n", name.c_str(), 100.0 * readLines / std::max(1, lines),
                    percent * missed, percent * spurious, percent * edits, pictures, milliseconds);
    }
};

struct Truth {
    fs::path picture;
    std::string language;
    std::vector<std::string> lines;
    std::vector<std::string> ignored;
};

std::vector<Truth> truthOf(const fs::path& folder) {
    std::ifstream input(folder / "truth.json");
    if (!input) throw std::runtime_error((folder / "truth.json").string() + " cannot be read");
    std::vector<Truth> truth;
    for (const auto& item : nlohmann::json::parse(input)) {
        truth.push_back({folder / item.at("image").get<std::string>(), item.at("lang"), item.at("lines"),
                         item.value("ignore", std::vector<std::string>{})});
    }
    return truth;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) text += line + "\n";
    return text;
}

// The picture with a box around every line, green where the truth has it; beside it the text at its place, and below
// what was not read.
void draw(const fs::path& file, const Image& image, const std::vector<TextObservation>& observations,
          const std::u32string& truth, const std::vector<std::string>& unread) {
    constexpr int rowHeight = 24;
    const int height = image.height() + rowHeight * static_cast<int>(unread.size() + 1);
    QImage sheet(image.width() * 2, height, QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    painter.drawImage(0, 0, QImage(image.data(), image.width(), image.height(), QImage::Format_RGB32));
    for (const auto& observation : observations) {
        const LocalRect box = toLocalSpace(
            observation.boundingBox,
            LocalRect{.width = static_cast<double>(image.width()), .height = static_cast<double>(image.height())});
        const QRectF place(box.x, box.y, box.width, box.height);
        const auto& candidate = observation.candidates.front();
        const bool right = truth.find(plain(candidate.string)) != std::u32string::npos;
        painter.setPen(QPen(right ? QColor(0, 150, 60) : QColor(220, 0, 0), 1));
        painter.drawRect(place);
        QFont font = painter.font();
        font.setPixelSize(std::clamp(static_cast<int>(place.height() * 0.8), 9, 40));
        painter.setFont(font);
        painter.drawText(place.translated(image.width(), 0).adjusted(0, -8, image.width(), 8),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip,
                         QString::fromStdString(candidate.string) +
                             QString("  %1").arg(static_cast<double>(candidate.confidence), 0, 'f', 2));
    }
    painter.setPen(QColor(220, 0, 0));
    QFont font = painter.font();
    font.setPixelSize(rowHeight * 2 / 3);
    painter.setFont(font);
    int y = image.height() + rowHeight;
    for (const auto& line : unread) {
        painter.drawText(8, y, "not read: " + QString::fromStdString(line));
        y += rowHeight;
    }
    painter.end();
    sheet.save(QString::fromStdString(file.string()));
}

Figures scored(OnnxTextRecognizer& recognizer, const Truth& truth, const fs::path& output) {
    std::ifstream input(truth.picture, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(input), {}};
    const Image image = LinuxImageDecoder().decode(std::as_bytes(std::span(bytes)));
    const auto start = std::chrono::steady_clock::now();
    const auto observations =
        recognizer.perform({.usesLanguageCorrection = true,
                            .automaticallyDetectsLanguage = true,
                            .recognitionLanguages = {"zh-Hans", "zh-Hant", "en-US", "ja-JP", "ko-KR"}},
                           image, {});
    Figures figures;
    figures.milliseconds = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    figures.pictures = 1;

    std::string text;
    for (const auto& observation : observations) text += observation.candidates.front().string + "\n";
    const std::u32string read = plain(text);
    const std::u32string expected = plain(joined(truth.lines));
    std::map<std::u32string, int> wanted;
    for (const auto& line : truth.lines) ++wanted[plain(line)];
    std::vector<std::string> unread;
    for (const auto& line : truth.lines) {
        const auto entry = wanted.find(plain(line));
        if (entry == wanted.end() || entry->first.size() < 2) continue;
        const int found = std::min(entry->second, occurrences(read, entry->first));
        figures.lines += entry->second;
        figures.readLines += found;
        unread.insert(unread.end(), static_cast<std::size_t>(entry->second - found), line);
        wanted.erase(entry);
    }
    Characters allowed = charactersOf(expected);
    figures.characters = static_cast<int>(expected.size());
    figures.missed = beyond(allowed, charactersOf(read));
    figures.edits = editDistance(expected, read);
    for (const auto& [character, count] : charactersOf(plain(joined(truth.ignored)))) allowed[character] += count;
    figures.spurious = beyond(charactersOf(read), allowed);

    const std::string name = truth.picture.stem().string();
    std::ofstream(output / (name + ".txt")) << text;
    std::u32string known = expected + plain(joined(truth.ignored));
    draw(output / (name + ".png"), image, observations, known, unread);
    return figures;
}

int run(const fs::path& folder, const fs::path& output) {
    fs::create_directories(output);
    OnnxTextRecognizer recognizer(RecognitionFiles::ofThisProgram());
    recognizer.prepare();
    std::map<std::string, Figures> languages;
    Figures all;
    std::printf("%-32s %5s %7s %9s %9s %6s %8s\n", "", "lines", "missed", "spurious", "edits", "", "ms");
    for (const auto& truth : truthOf(folder)) {
        const Figures figures = scored(recognizer, truth, output);
        figures.print(truth.picture.filename().string());
        languages[truth.language].add(figures);
        all.add(figures);
    }
    std::puts("");
    for (const auto& [language, figures] : languages) figures.print(language);
    all.print("all");
    return 0;
}

}  // namespace
}  // namespace ovrin

int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ovrin::OnnxTextRecognizer::forbidTelemetry();
    const QGuiApplication application(count, arguments);
    if (count != 3) {
        std::fprintf(stderr, "usage: ovrin_score FOLDER OUTPUT\n");
        return 2;
    }
    try {
        return ovrin::run(arguments[1], arguments[2]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
