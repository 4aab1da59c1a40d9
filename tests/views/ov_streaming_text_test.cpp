#include "views/components/ov_streaming_text.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStringList>
#include <QVBoxLayout>
#include <memory>

#include <gtest/gtest.h>

#include "views/components/drawing.h"
#include "views/components/ov_error_note.h"
#include "views/components/ov_scroll_area.h"

namespace ovrin {
namespace {

using Ending = MarkdownReader::Ending;
using Mode = StreamedDocument::Mode;
using Position = StreamedDocument::Position;
using Progress = OVStreamingText::Progress;

const std::string answer =
    "## 标题\n\n这是**重要**的“引文”，以及 `code`。\n- 第一项\n  1. 内层 [链接](https://a.b)\n\n> 引用\n"
    "```py\nfor x in y:\n    print(x)\n```\n末尾。他说：“好。”\n\n---\nlast *line*\n";

std::string longParagraph() {
    std::string text;
    for (int i = 0; i < 150; ++i) text += "没有换行的段落，mixing words，会“一直”增长" + std::to_string(i) + "。";
    return text;
}

std::string all(const StreamedDocument& document) {
    return document.text({document.begin(), document.end()}).toStdString();
}

void expectSameAsAtOnce(const std::string& text, Mode mode, std::size_t step) {
    StreamedDocument grown(mode);
    for (std::size_t length = step; length < text.size(); length += step) {
        const std::string_view prefix = std::string_view(text).substr(0, length);
        grown.setText(prefix, Ending::open);
        const bool isInsideCharacter = (text[length] & 0xC0) == 0x80;
        if (isInsideCharacter) continue;
        StreamedDocument atOnce(mode);
        atOnce.setText(prefix, Ending::open);
        ASSERT_EQ(all(grown), all(atOnce)) << "after " << length << " bytes";
        ASSERT_EQ(grown.height(), atOnce.height()) << "after " << length << " bytes";
    }
}

TEST(StreamedDocument, GrowsToTheSameAsIfShownAtOnce) {
    expectSameAsAtOnce(answer, Mode::markdown, 1);
    expectSameAsAtOnce(answer, Mode::plain, 1);
    expectSameAsAtOnce(longParagraph(), Mode::markdown, 97);
}

TEST(StreamedDocument, CopiesPlainTextUnchanged) {
    for (const std::string text : {"一行\n\n  两行：“引文”后\n\tthree", "**no** markdown\n- here", "\n\nx"}) {
        StreamedDocument document(Mode::plain);
        document.setText(text, Ending::known);
        EXPECT_EQ(all(document), text);
    }
}

TEST(StreamedDocument, CopiesAnswersAsTheyRead) {
    StreamedDocument document(Mode::markdown);
    document.setText(answer, Ending::known);
    EXPECT_EQ(all(document),
              "标题\n\n这是重要的“引文”，以及 code。\n• 第一项\n  1. 内层 链接\n\n引用\n\nfor x in y:\n    print(x)\n\n"
              "末尾。他说：“好。”\n\n\nlast line");
}

// Walks over the lines of the document and gives each one's text.
QStringList lines(const StreamedDocument& document) {
    QStringList lines;
    Position begin = document.begin();
    while (begin < document.end()) {
        const Position end = document.lineEnd(begin);
        lines.push_back(document.text({begin, end}));
        begin = end.offset == document.blockAt(end).end.offset ? Position{end.block + 1, 0} : end;
    }
    return lines;
}

TEST(StreamedDocument, BreaksLinesWhereReadersExpectIt) {
    const std::string text =
        "他说：“这段代码写得很好”，但“性能”和“可读性”之间（还有别的），需要“权衡”；Latin words 与中文混排！"
        "地址 https://example.com/very/long/path/that/goes/on?and=on&and=on 和"
        "一个ALongIdentifierWithoutAnyPlaceToBreakItAnywhereAtAllThatGoesOnAndOn。";
    for (int width = 150; width < 460; width += 7) {
        StreamedDocument document(Mode::plain);
        document.setText(text, Ending::known);
        document.setWidth(width);
        QString joined;
        for (const QString& line : lines(document)) {
            EXPECT_FALSE(QStringView(u"，。、；：！？）”").contains(line.front())) << line.toStdString();
            EXPECT_FALSE(QStringView(u"（“").contains(line.back())) << line.toStdString();
            joined += line;
        }
        EXPECT_EQ(joined.toStdString(), text);
        for (Position at; at < document.end(); at = document.nextCharacter(at)) {
            ASSERT_LE(document.areaOf(at).left(), width);
        }
    }
}

TEST(StreamedDocument, LettersAmongChineseAreSetInTheFaceOfTheWindow) {
    StreamedDocument document(Mode::plain);
    document.setText("汉字abcdefgh汉字", Ending::known);
    const double width = document.areaOf({0, 10}).left() - document.areaOf({0, 2}).left();
    EXPECT_NEAR(width, QFontMetricsF(toQFont(theme::font::body)).horizontalAdvance("abcdefgh"), 0.5);
}

// Whether anything is drawn in the part of a picture of the document.
bool hasInk(const StreamedDocument& document, const QRect& part) {
    QImage picture(part.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.translate(-part.topLeft());
    document.draw(painter, part, {});
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qAlpha(picture.pixel(x, y)) > 0) return true;
        }
    }
    return false;
}

TEST(StreamedDocument, IsFlushRightWithItsMarkersWhereItRunsFromTheRight) {
    constexpr int width = 300;
    StreamedDocument document(Mode::markdown);
    StreamedDocument::Look look;
    look.text = look.quietText = look.line = Qt::black;
    document.setLook(look);
    document.setWidth(width);
    document.setText("שלום\n- שלום\n\n> שלום\n\n```\nשלום\n```", Ending::known);
    const auto row = [&](std::size_t block) { return document.areaOf({block, 0}).toAlignedRect(); };
    EXPECT_FALSE(hasInk(document, {0, 0, width / 2, row(2).bottom()}));
    EXPECT_NEAR(document.areaOf(document.begin()).left(), width, 1);
    EXPECT_EQ(document.at({width - 1.0, 5}), document.begin());
    EXPECT_TRUE(hasInk(document, {width - 20, row(1).top(), 20, row(1).height()}));  // the bullet
    EXPECT_TRUE(hasInk(document, {width - 2, row(2).top(), 2, row(2).height()}));    // the bar of the quote
    EXPECT_TRUE(hasInk(document, {12, row(3).top(), 20, row(3).height()}));          // code stays where it was

    document.setText("שלום code", Ending::known);
    EXPECT_LT(document.characterArea({0, 5}).right(), document.characterArea({0, 6}).right());
}

class StreamingText : public testing::Test {
protected:
    void show(const std::string& words, Progress progress) {
        text.setTextSoFar(words, progress);
        text.showPending();
        text.resize(400, text.heightForWidth(400));
    }

    void mouse(QEvent::Type type, const QPointF& place) {
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, place, text.mapToGlobal(place), button, held, Qt::NoModifier);
        QApplication::sendEvent(&text, &event);
    }
    void drag(const QPointF& from, const QPointF& to) {
        mouse(QEvent::MouseButtonPress, from);
        mouse(QEvent::MouseMove, to);
        mouse(QEvent::MouseButtonRelease, to);
    }
    void key(int key, Qt::KeyboardModifiers modifiers) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&text, &event);
    }

    ViewEnvironment environment;
    OVStreamingText text{environment, Mode::markdown};
};

TEST_F(StreamingText, KeepsTheSelectionWhileTextIsAppended) {
    show("**第一**段\n\n第二", Progress::streaming);
    mouse(QEvent::MouseButtonPress, {1, 5});
    mouse(QEvent::MouseMove, {399, 5});
    EXPECT_EQ(text.selectedText(), "第一段");
    show("**第一**段\n\n第二段\n\n第三段", Progress::streaming);
    EXPECT_EQ(text.selectedText(), "第一段");
    mouse(QEvent::MouseMove, {399, text.height() - 1.0});
    EXPECT_EQ(text.selectedText(), "第一段\n\n第二段\n\n第三段");
}

TEST_F(StreamingText, SelectsByKeyboard) {
    show("one two“三”\nfour", Progress::finished);
    key(Qt::Key_Right, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(text.selectedText(), "one ");
    key(Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(text.selectedText(), "one two“三”");
    key(Qt::Key_Left, Qt::ShiftModifier);
    key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(text.selectedText(), "one two“三”\nfour");
    key(Qt::Key_Home, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_FALSE(text.hasSelection());
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "one two“三”\nfour");
}

TEST_F(StreamingText, SelectsWordsAndParagraphsByClicks) {
    show("one two\nthree four", Progress::finished);
    mouse(QEvent::MouseButtonPress, {5, 30});
    mouse(QEvent::MouseButtonRelease, {5, 30});
    EXPECT_FALSE(text.hasSelection());
    mouse(QEvent::MouseButtonDblClick, {5, 30});
    EXPECT_EQ(text.selectedText(), "three");
    mouse(QEvent::MouseMove, {5, 5});
    EXPECT_EQ(text.selectedText(), "one two\nthree");
    mouse(QEvent::MouseButtonRelease, {5, 5});
    mouse(QEvent::MouseButtonDblClick, {5, 30});
    mouse(QEvent::MouseButtonPress, {5, 30});
    EXPECT_EQ(text.selectedText(), "three four");
}

TEST_F(StreamingText, OpensALinkThatIsClickedButNotOneThatIsSelected) {
    QStringList opened;
    QObject::connect(&text, &OVStreamingText::linkActivated, [&opened](const QUrl& url) { opened << url.toString(); });
    show("[documentation](https://a.b/c)\n\nother", Progress::finished);
    drag({5, 10}, {60, 10});
    drag({300, 10}, {300, 10});
    EXPECT_TRUE(opened.isEmpty());
    drag({20, 10}, {20, 10});
    EXPECT_EQ(opened, QStringList("https://a.b/c"));
}

TEST_F(StreamingText, IsDrawnAtItsWidthWhateverOtherALayoutAskedAbout) {
    show(answer, Progress::finished);
    text.resize(150, text.heightForWidth(150));
    const QImage before = text.grab().toImage();
    text.heightForWidth(1000);
    EXPECT_EQ(text.grab().toImage(), before);
}

TEST_F(StreamingText, StartsOverWithAnotherText) {
    show("first text\nof two lines", Progress::finished);
    text.selectAll();
    show("second", Progress::streaming);
    EXPECT_EQ(text.plainText(), "second");
    EXPECT_TRUE(QStringLiteral("second").contains(text.selectedText()));
}

TEST_F(StreamingText, IsReadByCharacterAndLineAndSelectedByOffset) {
    show("- 他说：“好”，走\n- b\n\nlast **line** that is long enough to be wrapped here", Progress::finished);
    text.resize(150, text.heightForWidth(150));
    QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(&text);
    QAccessibleTextInterface* const words = told->textInterface();
    ASSERT_NE(words, nullptr);
    EXPECT_EQ(words->text(0, words->characterCount()), text.plainText());

    QStringList lines;
    int begin = 0;
    int end = -1;
    do {
        lines << words->textAtOffset(end + 1, QAccessible::LineBoundary, &begin, &end);
    } while (end < words->characterCount() && lines.size() < 10);
    ASSERT_GE(lines.size(), 4);
    EXPECT_EQ(lines[0], "• 他说：“好”，走");
    EXPECT_EQ(lines[1], "• b");
    EXPECT_EQ(lines.mid(2).join(""), "last line that is long enough to be wrapped here");
    EXPECT_EQ(words->textBeforeOffset(begin, QAccessible::LineBoundary, &begin, &end), lines[lines.size() - 2]);

    for (int offset = 0; offset < words->characterCount(); ++offset) {
        words->setSelection(0, offset, offset + 1);
        words->selection(0, &begin, &end);
        if (end == begin) continue;  // within a marker or a blank line
        EXPECT_EQ(text.selectedText(), words->text(begin, end));
        if (words->text(begin, end).contains('\n')) continue;
        EXPECT_EQ(words->offsetAtPoint(words->characterRect(begin).center() - QPoint(1, 0)), begin);
    }
}

TEST(FocusRing, GoesAroundATextThatTheKeyboardReachedAndMovesWithIt) {
    ViewEnvironment environment;
    OVScrollArea area(environment);
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    auto* text = new OVStreamingText(environment, Mode::plain);
    auto* note = new OVErrorNote(environment);
    column->addWidget(text);
    column->addSpacing(1000);
    column->addWidget(note);
    area.setContent(content);
    text->setTextSoFar("读到这里", Progress::finished);
    note->setMessage("失败");
    area.show();
    QApplication::processEvents();
    const auto focus = [](QWidget& widget, QEvent::Type type, Qt::FocusReason reason) {
        QFocusEvent event(type, reason);
        QApplication::sendEvent(&widget, &event);
    };
    // Of the ring, as far as there is one.
    const auto ringed = [&] {
        for (const auto* ring : area.findChildren<OVFocusRing*>()) {
            if (!ring->isHidden()) return QRect(ring->mapTo(&area, QPoint()), ring->size());
        }
        return QRect();
    };
    focus(*text, QEvent::FocusIn, Qt::MouseFocusReason);
    EXPECT_TRUE(ringed().isNull());
    focus(*text, QEvent::FocusIn, Qt::TabFocusReason);
    const auto place = [&] { return QRect(text->mapTo(&area, QPoint()), text->size()); };
    EXPECT_TRUE(ringed().contains(place(), true));
    area.verticalScrollBar()->setValue(15);
    EXPECT_TRUE(ringed().contains(place(), true));
    focus(*text, QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    EXPECT_TRUE(ringed().isNull());
    focus(*text, QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    EXPECT_FALSE(ringed().isNull());
    focus(*text, QEvent::FocusOut, Qt::TabFocusReason);
    EXPECT_TRUE(ringed().isNull());

    focus(*note->findChild<OVStreamingText*>(), QEvent::FocusIn, Qt::TabFocusReason);
    EXPECT_EQ(ringed().size(), note->size());
    delete note;
    EXPECT_TRUE(ringed().isNull());
}

}  // namespace
}  // namespace ovrin
