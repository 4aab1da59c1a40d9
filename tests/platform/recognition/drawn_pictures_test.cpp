// The recogniser on pictures that are drawn here: every fault that these found had once been in it.
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "platform/linux/recognition/onnx_text_recognizer.h"

namespace ovrin {
namespace {

using testing::HasSubstr;

// The drawing toolkit wants an application, though none of its windows.
void needDrawing() {
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never destroyed: other statics outlive it otherwise.
    static const auto* application = new QGuiApplication(count, arguments);
    static_cast<void>(application);
}

OnnxTextRecognizer& recognizer() {
    // Never destroyed: Tesseract's own statics, which came later, go first.
    static OnnxTextRecognizer& shared =
        *new OnnxTextRecognizer({.modelFolder = OVRIN_BINARY_DIR "/share/ovrin/models",
                                 .tesseractFolder = RecognitionFiles::ofThisProgram().tesseractFolder});
    return shared;
}

std::vector<TextObservation> observationsOf(const QImage& picture) {
    const QImage pixels = picture.convertToFormat(QImage::Format_RGB32);
    const Image image(pixels.width(), pixels.height(),
                      {pixels.constBits(), pixels.constBits() + static_cast<std::ptrdiff_t>(pixels.sizeInBytes())});
    return recognizer().perform({.usesLanguageCorrection = true,
                                 .automaticallyDetectsLanguage = true,
                                 .recognitionLanguages = {"zh-Hans", "zh-Hant", "en-US", "ja-JP", "ko-KR"}},
                                image, {});
}

std::string read(const QImage& picture) {
    std::string text;
    for (const auto& observation : observationsOf(picture))
        text += (text.empty() ? "" : "\n") + observation.candidates.front().string;
    return text;
}

struct Look {
    QColor paper = Qt::white;
    QColor ink = Qt::black;
};
const Look dark{QColor(30, 32, 36), QColor(225, 225, 225)};

class Canvas {
public:
    Canvas(int width, int height, Look look = {}) : image_(width, height, QImage::Format_RGB32), look_(look) {
        needDrawing();
        image_.fill(look.paper);
    }

    Canvas& text(int x, int baseline, const char* text, int pixels, const char* family = "Noto Sans CJK SC") {
        QPainter painter(&image_);
        QFont font(family);
        font.setPixelSize(pixels);
        painter.setFont(font);
        painter.setPen(look_.ink);
        painter.drawText(x, baseline, QString::fromUtf8(text));
        return *this;
    }

    Canvas& draw(const QRectF& place, const std::function<void(QPainter&)>& draw) {
        QPainter painter(&image_);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(place.topLeft());
        painter.scale(place.width() / 24, place.height() / 24);
        painter.setPen(QPen(look_.ink, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        draw(painter);
        return *this;
    }

    const QImage& image() const { return image_; }

private:
    QImage image_;
    Look look_;
};

using Control = std::function<void(QPainter&)>;

Control lines(std::vector<std::vector<QPointF>> strokes) {
    return [strokes = std::move(strokes)](QPainter& painter) {
        for (const auto& stroke : strokes) {
            // The toolkit leaves out lines without length.
            if (stroke.front() == stroke.back()) painter.drawPoint(stroke.front());
            painter.drawPolyline(stroke.data(), static_cast<int>(stroke.size()));
        }
    };
}

Control filled(std::vector<QPointF> corners) {
    return [corners = std::move(corners)](QPainter& painter) {
        painter.setBrush(painter.pen().color());
        painter.drawPolygon(corners.data(), static_cast<int>(corners.size()));
    };
}

Control ring(double radius, double dot = 0, QColor fill = {}) {
    return [=](QPainter& painter) {
        if (fill.isValid()) painter.setBrush(fill);
        painter.drawEllipse(QPointF(12, 12), radius, radius);
        if (dot == 0) return;
        painter.setBrush(painter.pen().color());
        painter.drawEllipse(QPointF(12, 12), dot, dot);
    };
}

Control together(std::vector<Control> parts) {
    return [parts = std::move(parts)](QPainter& painter) {
        for (const auto& part : parts) {
            painter.save();
            part(painter);
            painter.restore();
        }
    };
}

Control box(double left, double top, double width, double height, QColor fill = {}) {
    return [=](QPainter& painter) {
        if (fill.isValid()) {
            painter.setBrush(fill);
            painter.setPen(Qt::NoPen);
        }
        painter.drawRoundedRect(QRectF(left, top, width, height), 2, 2);
    };
}

// In a square of 24.
const std::map<std::string, Control>& controls() {
    const QColor blue(40, 110, 240);
    static const Control tick = lines({{{7, 12}, {11, 16}, {18, 8}}});
    static const std::map<std::string, Control> all = {
        {"check box", box(3, 3, 18, 18)},
        {"ticked box", together({box(3, 3, 18, 18), tick})},
        {"filled ticked box", together({box(3, 3, 18, 18, blue), tick})},
        {"tick", tick},
        {"radio button", ring(9)},
        {"chosen radio button", ring(9, 4)},
        {"bullet", ring(3, 3)},
        {"open bullet", ring(4)},
        {"square bullet", filled({{9, 9}, {15, 9}, {15, 15}, {9, 15}})},
        {"heart", filled({{12, 20}, {3, 11}, {3, 6}, {7, 4}, {12, 8}, {17, 4}, {21, 6}, {21, 11}})},
        {"arrow left", lines({{{20, 12}, {4, 12}}, {{10, 6}, {4, 12}, {10, 18}}})},
        {"arrow right", lines({{{4, 12}, {20, 12}}, {{14, 6}, {20, 12}, {14, 18}}})},
        {"arrow up", lines({{{12, 20}, {12, 4}}, {{6, 10}, {12, 4}, {18, 10}}})},
        {"arrow down", lines({{{12, 4}, {12, 20}}, {{6, 14}, {12, 20}, {18, 14}}})},
        {"chevron left", lines({{{15, 5}, {8, 12}, {15, 19}}})},
        {"chevron right", lines({{{9, 5}, {16, 12}, {9, 19}}})},
        {"chevron up", lines({{{5, 15}, {12, 8}, {19, 15}}})},
        {"chevron down", lines({{{5, 9}, {12, 16}, {19, 9}}})},
        {"triangle right", filled({{8, 5}, {18, 12}, {8, 19}})},
        {"triangle down", filled({{5, 8}, {19, 8}, {12, 18}})},
        {"cross", lines({{{6, 6}, {18, 18}}, {{18, 6}, {6, 18}}})},
        {"plus", lines({{{5, 12}, {19, 12}}, {{12, 5}, {12, 19}}})},
        {"menu", lines({{{4, 6}, {20, 6}}, {{4, 12}, {20, 12}}, {{4, 18}, {20, 18}}})},
        {"dots across", lines({{{5, 12}, {5, 12}}, {{12, 12}, {12, 12}}, {{19, 12}, {19, 12}}})},
        {"dots down", lines({{{12, 5}, {12, 5}}, {{12, 12}, {12, 12}}, {{12, 19}, {12, 19}}})},
        {"lens", together({lines({{{16, 16}, {21, 21}}}),
                           [](QPainter& painter) { painter.drawEllipse(QPointF(10.5, 10.5), 7, 7); }})},
        {"clock", together({ring(9), lines({{{12, 7}, {12, 12}, {15, 14}}})})},
        {"information", together({ring(9), lines({{{12, 11}, {12, 16}}, {{12, 8}, {12, 8}}})})},
        {"star", filled({{12, 3}, {14.5, 9}, {21, 9.5}, {16, 14}, {18, 20.5}, {12, 17}, {6, 20.5}, {8, 14}, {3, 9.5}, {9.5, 9}})},
        {"pause", together({filled({{7, 5}, {9, 5}, {9, 19}, {7, 19}}), filled({{15, 5}, {17, 5}, {17, 19}, {15, 19}})})},
        {"stop", filled({{6, 6}, {18, 6}, {18, 18}, {6, 18}})},
        {"cursor bar", lines({{{12, 2}, {12, 22}}})},
        {"house", lines({{{3, 12}, {12, 4}, {21, 12}}, {{6, 10}, {6, 20}, {18, 20}, {18, 10}}})},
        {"folder", lines({{{3, 19}, {3, 5}, {9, 5}, {11, 8}, {21, 8}, {21, 19}, {3, 19}}})},
        {"letter", together({box(3, 5, 18, 14), lines({{{3, 7}, {12, 13}, {21, 7}}})})},
        {"person", together({lines({{{5, 21}, {6, 16}, {12, 14}, {18, 16}, {19, 21}}}),
                             [](QPainter& painter) { painter.drawEllipse(QPointF(12, 8), 4, 4); }})},
        {"download", lines({{{12, 3}, {12, 15}}, {{7, 10}, {12, 15}, {17, 10}}, {{4, 20}, {20, 20}}})},
        {"emoji", together({ring(9, 0, QColor(250, 205, 60)), lines({{{9, 10}, {9, 10}}, {{15, 10}, {15, 10}}, {{8, 14}, {12, 17}, {16, 14}}})})},
        {"logo", together({box(2, 2, 20, 20, QColor(230, 70, 50)),
                           [](QPainter& painter) {
                               painter.setPen(Qt::NoPen);
                               painter.setBrush(Qt::white);
                               painter.drawPie(QRectF(6, 6, 12, 12), 45 * 16, 270 * 16);
                           }})},
        {"switch", together({box(1, 6, 22, 12, QColor(50, 180, 90)),
                             [](QPainter& painter) {
                                 painter.setPen(Qt::NoPen);
                                 painter.setBrush(Qt::white);
                                 painter.drawEllipse(QPointF(17, 12), 5, 5);
                             }})},
    };
    return all;
}

TEST(DrawnPicturesTest, ControlsAreNoText) {
    ASSERT_EQ(controls().size(), 40U);
    int drawn = 0, right = 0;
    std::string wrong;
    for (const auto& [name, control] : controls()) {
        for (const int size : {16, 24, 32}) {
            for (const Look& look : {Look{}, dark}) {
                const QRectF place(24, 40 - size / 2.0, size, size);
                const std::string alone = read(Canvas(160, 80, look).draw(place, control).image());
                const std::string word = size % 3 == 0 ? "Settings" : "设置";
                const Canvas both = Canvas(240, 80, look)
                                        .draw(place, control)
                                        .text(24 + size * 3 / 2, 40 + size * 3 / 10, word.c_str(), size * 3 / 4);
                const std::string beside = read(both.image());
                drawn += 2;
                right += (alone.empty() ? 1 : 0) + (beside == word ? 1 : 0);
                if (!alone.empty()) wrong += name + " of " + std::to_string(size) + " alone: " + alone + "\n";
                if (beside != word) wrong += name + " of " + std::to_string(size) + " beside: " + beside + "\n";
            }
        }
    }
    // Known limits: a short cursor bar is the picture of a capital I, two bars beside a word that of a numeral, an i in
    // a ring that of a step's number.
    EXPECT_GE(right, drawn - 12) << wrong;
}

TEST(DrawnPicturesTest, ALetterOnALineOfItsOwnIsRead) {
    int wrong = 0;
    std::string which;
    for (const char* letter : {"A", "B", "I", "K", "R", "g", "5", "一", "十", "文", "あ"}) {
        for (const int size : {16, 24, 40}) {
            for (const Look& look : {Look{}, dark}) {
                const std::string text = read(Canvas(200, 90, look).text(30, 60, letter, size).image());
                if (text == letter) continue;
                ++wrong;
                which += letter + (" of " + std::to_string(size)) + ": " + text + "\n";
            }
        }
    }
    EXPECT_LE(wrong, 1) << which;
}

TEST(DrawnPicturesTest, TurnedAndVerticalTextIsRead) {
    const QImage upright =
        Canvas(420, 120).text(20, 40, "Quarterly report 2024", 22).text(20, 90, "季度报告已经完成", 22).image();
    const std::string text = "Quarterly report 2024\n季度报告已经完成";
    const QImage line = Canvas(320, 90).text(40, 52, "Turned text read well", 18).image();
    for (const int degrees : {0, 90, 180, 270}) {
        EXPECT_EQ(read(upright.transformed(QTransform().rotate(degrees))), text) << degrees;
        EXPECT_EQ(read(line.transformed(QTransform().rotate(degrees))), "Turned text read well") << degrees;
    }

    // Columns run from right to left.
    Canvas vertical(160, 380);
    const auto column = [&](int x, const char* characters) {
        int y = 40;
        for (const QString& character : QString::fromUtf8(characters).split("", Qt::SkipEmptyParts)) {
            vertical.text(x, y, character.toUtf8().constData(), 28);
            y += 32;
        }
    };
    column(100, "吾輩は猫である");
    column(40, "名前はまだ無い");
    EXPECT_EQ(read(vertical.image()), "吾輩は猫である\n名前はまだ無い");
}

TEST(DrawnPicturesTest, KoreanIsReadAndNothingElseIsTakenForIt) {
    for (const Look& look : {Look{}, dark}) {
        std::string text = read(Canvas(520, 120, look)
                                    .text(20, 40, "번역 결과는 자동으로 복사됩니다.", 20)
                                    .text(20, 90, "#2 milestone 화면에서 확인하세요", 20)
                                    .image());
        std::erase(text, ' ');  // the gaps between syllables of this font are nearly as wide as its spaces
        EXPECT_EQ(text, "번역결과는자동으로복사됩니다.\n#2milestone화면에서확인하세요");
    }
    Canvas page(520, 260);
    page.text(20, 40, "文件编辑查看帮助", 18)
        .text(20, 80, "ネットワークの設定", 18)
        .text(20, 120, "Größe ändern, café, naïve", 18);
    double x = 8;
    for (const auto& [name, control] : controls()) {
        x += 12;
        page.draw({x, 150 + std::fmod(x, 90), 16, 16}, control);
    }
    const std::string text = read(page.image());
    for (const char* line : {"文件编辑查看帮助", "ネットワークの設定", "Größe ändern, café, naïve"})
        EXPECT_THAT(text, HasSubstr(line));
    for (const QChar& character : QString::fromStdString(text))
        EXPECT_FALSE(character.unicode() >= 0xac00 && character.unicode() <= 0xd7a3) << text;
}

TEST(DrawnPicturesTest, SpacesAreWhereThePictureHasThem) {
    const char* line = "Backup finished: 3.5 MB of 12 files, ok?";
    for (const char* family : {"Noto Sans CJK SC", "DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono"}) {
        for (const int size : {13, 18, 30}) {
            const std::string text = read(Canvas(800, 80).text(20, 50, line, size, family).image());
            EXPECT_EQ(text, line) << family << ' ' << size;
        }
    }
    EXPECT_EQ(read(Canvas(500, 80).text(20, 50, "请在设置中打开「网络」，再重试。", 20).image()),
              "请在设置中打开「网络」，再重试。");
}

TEST(DrawnPicturesTest, PicturesOfAnyShapeEndInAResult) {
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 20000}, {20000, 1}, {3000, 3}, {8, 8}}) {
        QImage noise(width, height, QImage::Format_RGB32);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) noise.setPixel(x, y, static_cast<QRgb>((x * 7919 + y * 104729) % 0xffffff));
        }
        EXPECT_EQ(read(noise), "") << width << 'x' << height;
    }
}

}  // namespace
}  // namespace ovrin
