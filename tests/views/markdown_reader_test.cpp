#include "views/components/markdown_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovrin {
namespace {

using Ending = MarkdownReader::Ending;
using Kind = MarkdownLine::Kind;

// The line's text with its spans written as b(…), i(…), c(…), and links as …->target.
std::string shown(QStringView source, Ending ending = Ending::known) {
    const MarkdownLine line = MarkdownReader().read(source, ending);
    QString result;
    qsizetype covered = 0;
    for (const MarkdownSpan& span : line.spans) {
        result += line.text.sliced(covered, span.start - covered);
        const QString words = line.text.sliced(span.start, span.length);
        const QString style = QString(span.isBold ? "b" : "") + (span.isItalic ? "i" : "") + (span.isCode ? "c" : "");
        result += style + '(' + words + (span.link.isEmpty() ? "" : "->" + span.link) + ')';
        covered = span.start + span.length;
    }
    return (result + line.text.sliced(covered)).toStdString();
}

TEST(MarkdownReader, ReadsMarksWithinALine) {
    EXPECT_EQ(shown(u"一个**重要**的词"), "一个b(重要)的词");
    EXPECT_EQ(shown(u"**“引号”**之后"), "b(“引号”)之后");
    EXPECT_EQ(shown(u"***both*** *i* **b *bi* b**"), "bi(both) i(i) b(b )bi(bi)b( b)");
    EXPECT_EQ(shown(u"`a**b**` and ``x`y``"), "c(a**b**) and c(x`y)");
    EXPECT_EQ(shown(u"\\*not\\* emphasis"), "*not* emphasis");
}

TEST(MarkdownReader, LeavesWhatIsNoMarkAsItIsWritten) {
    for (const QStringView text : {u"2 * 3 * 4 = 24", u"snake_case_name", u"a ** b", u"[1] and [x]", u"`open",
                                   u"**open", u"[words](open", u"![] <b>"}) {
        EXPECT_EQ(shown(text), text.toString().toStdString());
    }
}

TEST(MarkdownReader, FindsLinksAndWhereTheyEnd) {
    EXPECT_EQ(shown(u"[文档](https://a.b/c_(d) \"title\")。"), "(文档->https://a.b/c_(d))。");
    EXPECT_EQ(shown(u"见https://a.b/c?d=e_f，然后"), "见(https://a.b/c?d=e_f->https://a.b/c?d=e_f)，然后");
    EXPECT_EQ(shown(u"(http://a.b)."), "((http://a.b->http://a.b)).");
    EXPECT_EQ(shown(u"<https://a.b> **https://a.b**"), "(https://a.b->https://a.b) b(https://a.b->https://a.b)");
}

// While a line grows, its text must not flash up in a form that it will not keep.
TEST(MarkdownReader, ShowsAnOpenLineAsItIsLikelyToBecome) {
    EXPECT_EQ(shown(u"一个**重", Ending::open), "一个b(重)");
    EXPECT_EQ(shown(u"一个**重*", Ending::open), "一个b(重)");
    EXPECT_EQ(shown(u"一个*", Ending::open), "一个");
    EXPECT_EQ(shown(u"用`co", Ending::open), "用c(co)");
    EXPECT_EQ(shown(u"见[文档](https://exa", Ending::open), "见(文档->https://exa)");
    for (const QStringView begun : {u"-", u"##", u"**", u"``", u"--"}) {
        EXPECT_EQ(MarkdownReader().read(begun, Ending::open).kind, Kind::nothing) << begun.toString().toStdString();
    }
}

TEST(MarkdownReader, NestsListsAndTheirContinuations) {
    MarkdownReader reader;
    const auto read = [&reader](QStringView line) { return reader.read(line, Ending::known); };
    EXPECT_EQ(read(u"1. one").marker, "1.");
    EXPECT_EQ(read(u"   - inner").depth, 2);
    EXPECT_EQ(read(u"     more of it").depth, 2);
    EXPECT_EQ(read(u"   more of the outer one").depth, 1);
    EXPECT_EQ(read(u"").kind, Kind::nothing);
    EXPECT_EQ(read(u"2. two").depth, 1);
    EXPECT_EQ(read(u"after the list").depth, 0);
    EXPECT_EQ(read(u"--- ").kind, Kind::rule);
    EXPECT_EQ(read(u"-5 degrees").kind, Kind::paragraph);
}

TEST(MarkdownReader, KeepsFencedCodeAsItIs) {
    MarkdownReader reader;
    const auto read = [&reader](QStringView line) { return reader.read(line, Ending::known); };
    EXPECT_EQ(read(u"````md").kind, Kind::fence);
    const MarkdownLine code = read(u"    **x** # y");
    EXPECT_EQ(code.kind, Kind::code);
    EXPECT_EQ(code.text, "    **x** # y");
    EXPECT_EQ(read(u"```").kind, Kind::code);
    EXPECT_EQ(reader.read(u"``", Ending::open).kind, Kind::nothing);
    EXPECT_EQ(read(u"````").kind, Kind::fence);
    EXPECT_EQ(read(u"# heading").kind, Kind::heading);
}

}  // namespace
}  // namespace ovrin
